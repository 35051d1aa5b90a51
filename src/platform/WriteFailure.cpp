#include "platform/WriteFailure.h"

#include <cerrno>
#include <cstring>

namespace marvento {

QString WriteFailureReason(int error) {
  switch (error) {
    case ENOSPC: return QStringLiteral("Der Datenträger ist voll.");
    case EDQUOT: return QStringLiteral("Das Speicherkontingent ist erschöpft.");
    case EFBIG: return QStringLiteral("Die Datei überschreitet die erlaubte Größe.");
    case EACCES:
    case EPERM: return QStringLiteral("Keine Schreibberechtigung im Ordner.");
    case EROFS: return QStringLiteral("Das Dateisystem ist schreibgeschützt.");
    case ENOENT:
    case ENOTDIR: return QStringLiteral("Der Ordner ist nicht vorhanden.");
    case EIO: return QStringLiteral("Ein-/Ausgabefehler beim Schreiben.");
    case ELOOP: return QStringLiteral("Die Datei ist eine symbolische Verknüpfung.");
    case EINVAL: return QStringLiteral("Die Datei ist keine gewöhnliche Datei.");
    default: return QString::fromLocal8Bit(std::strerror(error));
  }
}

}  // namespace marvento
