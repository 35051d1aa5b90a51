#include "gps/GpsLog.h"

#include "platform/PrintZones.h"
#include "platform/Timer.h"

#include "platform/Clock.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTimer>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marvento {

namespace {

QString reasonFor(int error) {
  switch (error) {
    case EACCES:
    case EPERM: return QStringLiteral("keine Schreibberechtigung");
    case EROFS: return QStringLiteral("Dateisystem ist schreibgeschützt");
    case ENOSPC: return QStringLiteral("Datenträger ist voll");
    case EFBIG: return QStringLiteral("Datei hat die erlaubte Größe erreicht");
    case EDQUOT: return QStringLiteral("Speicherkontingent ist erschöpft");
    case EISDIR: return QStringLiteral("ist ein Verzeichnis");
    case ENOENT: return QStringLiteral("Verzeichnis nicht gefunden");
    case ELOOP: return QStringLiteral("ist eine symbolische Verknüpfung");
    case ENXIO:
    case EINVAL: return QStringLiteral("ist keine gewöhnliche Datei");
    default: return QString::fromLocal8Bit(std::strerror(error));
  }
}

QString failure(int error, const QString& path) {
  return reasonFor(error) + QStringLiteral(" (") + QDir::current().absoluteFilePath(path) + u')';
}

}  // namespace

QString LogDateText(QDate date) {
  QString format = QLocale().dateFormat(QLocale::ShortFormat);
  // Short forms with a two-digit year would make the log ambiguous across centuries.
  if (!format.contains(QStringLiteral("yyyy")))
    format.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
  return QLocale().toString(date, format);
}

std::optional<QString> AppendToFile(const QString& path, const QString& text) {
  const QByteArray name = QFile::encodeName(path);
  // A link put in the log's place would have each line written into its target, which may be
  // any file the user (or root) may write; a pipe without reader would hang the window.
  const int fd = ::open(name.constData(),
                        O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0666);
  if (fd < 0) return failure(errno, path);
  struct stat before {};
  if (::fstat(fd, &before) != 0 || !S_ISREG(before.st_mode)) {
    ::close(fd);
    return failure(EINVAL, path);
  }
  const QByteArray bytes = text.toUtf8();
  qsizetype done = 0;
  while (done < bytes.size()) {
    const ssize_t n =
        ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
    if (n <= 0) {
      if (n < 0 && errno == EINTR) continue;
      const int error = n < 0 ? errno : ENOSPC;
      // A line cut off by a full disk is taken back, so that the next one does not stick to it.
      if (done > 0) {
        [[maybe_unused]] const int cut = ::ftruncate(fd, before.st_size);
      }
      ::close(fd);
      return failure(error, path);
    }
    done += n;
  }
  if (::close(fd) != 0) return failure(errno, path);
  return std::nullopt;
}

GpsLog::GpsLog(std::function<bool()> receptionOn, const GpsLogView& view, Clock& clock)
    : m_receptionOn(std::move(receptionOn)), m_view(view), m_clock(clock) {}

void GpsLog::WriteGpsLog() {
  const QString dateItem = LogDateText(m_clock.date());
  const QString timeItem = m_view.panel2 ? m_view.panel2->text() : QString();
  const QString locItem = m_view.tbMyLoc ? m_view.tbMyLoc->text() : QString();
  if (locItem == m_lastLogLoc || timeItem == m_lastLogTime) return;

  const bool on = m_receptionOn && m_receptionOn();
  if (on && m_view.Timer1) m_view.Timer1->stop();
  const auto error =
      AppendToFile(kFileName, PrintZones({dateItem, timeItem, locItem}) + QStringLiteral("\r\n"));
  if (on && m_view.Timer1) SetTimerEnabled(m_view.Timer1, true);

  if (error) {
    m_warning = QStringLiteral("Protokoll nicht schreibbar: ") + *error;
    showWarning();
    return;
  }
  if (!m_warning.isEmpty() && m_view.lbInfo && m_view.lbInfo->text() == m_warning) {
    m_view.lbInfo->clear();
  }
  m_warning.clear();
  m_lastLogTime = timeItem;
  m_lastLogLoc = locItem;
}

void GpsLog::showWarning() {
  if (!m_warning.isEmpty() && m_view.lbInfo) m_view.lbInfo->setText(m_warning);
}

}  // namespace marvento
