#include "platform/Programs.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace marvento {

namespace {

bool isExecutableFile(const QString& path) {
  const QFileInfo info(path);
  return info.isFile() && info.isExecutable();
}

}  // namespace

QString FindOnPath(const QString& name) {
  if (name.isEmpty()) return {};
  if (name.contains(QLatin1Char('/'))) return isExecutableFile(name) ? name : QString();
  // Read anew each time: the search follows the environment as it is now.
  const QStringList folders =
      qEnvironmentVariable("PATH").split(QLatin1Char(':'), Qt::SkipEmptyParts);
  for (const QString& folder : folders) {
    const QString candidate = QDir(folder).absoluteFilePath(name);
    if (isExecutableFile(candidate)) return QDir::cleanPath(candidate);
  }
  return {};
}

bool IsProgramFile(const QString& path) {
  return QFileInfo(path).isAbsolute() && isExecutableFile(path);
}

bool StartDetached(const QString& program, const QStringList& arguments) {
  if (program.isEmpty()) return false;
  return QProcess::startDetached(program, arguments);
}

}  // namespace marvento
