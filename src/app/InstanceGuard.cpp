#include "app/InstanceGuard.h"

#include <QDir>
#include <QLockFile>
#include <QStandardPaths>

#include <memory>

namespace marvento {

namespace {

std::unique_ptr<QLockFile>& lock() {
  static std::unique_ptr<QLockFile> file;
  return file;
}

QString lockPath() {
  QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
  if (folder.isEmpty()) folder = QDir::tempPath();
  QDir().mkpath(folder);
  return folder + QStringLiteral("/marvento.lock");
}

}  // namespace

bool AcquireInstanceLock() {
  if (lock()) return true;
  auto file = std::make_unique<QLockFile>(lockPath());
  file->setStaleLockTime(0);
  if (!file->tryLock(0)) return false;
  lock() = std::move(file);
  return true;
}

void ReleaseInstanceLock() {
  lock().reset();
}

}  // namespace marvento
