#include "app/Icons.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

// The images are painted by marvento-icongen while the program is built and compiled into
// the library; a static library drops an unreferenced resource unless it is pulled in. (Out of
// every namespace: the macro declares the resource's own function.)
static void initIconResources() {
  static const bool done = [] {
    Q_INIT_RESOURCE(icons);
    return true;
  }();
  (void)done;
}

namespace marvento {

namespace {

// One PNG per size in FOLDER, named <size>.png; the icon holds them all, as the window
// manager may ask for any of them.
QIcon iconFromFolder(const QString& folder) {
  initIconResources();
  QIcon icon;
  const QFileInfoList files = QDir(folder).entryInfoList({QStringLiteral("*.png")}, QDir::Files);
  for (const QFileInfo& file : files) {
    const int size = file.completeBaseName().toInt();
    icon.addFile(file.filePath(), QSize(size, size));
  }
  return icon;
}

}  // namespace

QIcon ToolbarIcon(const QString& key) {
  if (key.isEmpty() || key.contains(u'/') || key.startsWith(u'.')) return {};
  return iconFromFolder(QStringLiteral(":/icons/toolbar/") + key);
}

QIcon AppIcon() {
  // The application and the main window both take it; its seven images are read once.
  static QIcon* cached = nullptr;
  if (!cached) {
    cached = new QIcon(iconFromFolder(QStringLiteral(":/icons/app")));
    qAddPostRoutine([] {
      delete cached;
      cached = nullptr;
    });
  }
  return *cached;
}

}  // namespace marvento
