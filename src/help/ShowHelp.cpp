#include "help/ShowHelp.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMimeDatabase>

#include "platform/MimeApps.h"
#include "platform/MsgBox.h"
#include "platform/Programs.h"

namespace marvento {

void ShowHelp(const QString& appDir) {
  const QString file = QDir(appDir).filePath(QStringLiteral("Marvento.pdf"));
  if (!FileFound(file)) return;
  const Viewer viewer = FindViewer(file);
  if (!viewer.program.isEmpty() && IsProgramFile(viewer.program)) {
    OpenWithViewer(viewer, file);
    return;
  }
  MsgBox(QStringLiteral("Acrobat Reader o. Ä. nicht gefunden!\nHilfe finden Sie in der Datei \n") +
             file + QStringLiteral("\n"),
         vbCritical, QStringLiteral(" Hilfe"));
}

bool FileFound(const QString& file) {
  if (QFileInfo(file).isFile()) return true;
  MsgBox(QStringLiteral("Die Datei \n") + file +
             QStringLiteral("\nist nicht vorhanden!\nBitte selbst nach der Datei suchen."),
         vbCritical, QStringLiteral(" Datei nicht gefunden"));
  return false;
}

Viewer FindViewer(const QString& file) {
  const QMimeType type = QMimeDatabase().mimeTypeForFile(file, QMimeDatabase::MatchExtension);
  QString typeName = type.name();
  // Without a MIME database on the machine the help file must still find its viewer.
  if ((!type.isValid() || type.isDefault()) &&
      QFileInfo(file).suffix().compare(QLatin1String("pdf"), Qt::CaseInsensitive) == 0) {
    typeName = QStringLiteral("application/pdf");
  }
  const auto entry = DefaultApplication(typeName);
  if (!entry) return {};
  const auto command = ParseExec(entry->exec);
  if (!command) return {};
  Viewer viewer = *command;
  const QString found = FindOnPath(command->program);
  if (!found.isEmpty()) viewer.program = found;
  if (QFileInfo(viewer.program) == QFileInfo(file)) return {};
  return viewer;
}

bool OpenWithViewer(const Viewer& viewer, const QString& file) {
  const bool started = StartDetached(viewer.program, viewer.argumentsFor(file));
  QCoreApplication::processEvents();
  return started;
}

}  // namespace marvento
