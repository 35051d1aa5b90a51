#include "app/Icons.h"

#include <QGuiApplication>
#include <QImage>

#include <cstdio>

// marvento-icongen SIZE FILE.png
int main(int argc, char* argv[]) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: marvento-icongen SIZE FILE.png\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  const int size = QString::fromLocal8Bit(argv[1]).toInt();
  if (size < 8 || size > 1024) {
    std::fprintf(stderr, "marvento-icongen: size must be 8 to 1024\n");
    return 2;
  }
  if (!marvento::AppIconImage(size).save(QString::fromLocal8Bit(argv[2]), "PNG")) {
    std::fprintf(stderr, "marvento-icongen: cannot write %s\n", argv[2]);
    return 1;
  }
  return 0;
}
