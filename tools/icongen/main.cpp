#include "IconPainter.h"

#include <QGuiApplication>
#include <QImage>

#include <cstdio>
#include <cstring>

// marvento-icongen SIZE FILE.png      the program's icon at one size, for the icon theme
// marvento-icongen --resources DIR    every tool bar and window image and their icons.qrc
int main(int argc, char* argv[]) {
  if (argc != 3) {
    std::fprintf(stderr, "usage: marvento-icongen SIZE FILE.png | --resources DIR\n");
    return 2;
  }
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  if (std::strcmp(argv[1], "--resources") == 0) {
    QString error;
    if (!marvento::icongen::WriteIconResources(QString::fromLocal8Bit(argv[2]), &error)) {
      std::fprintf(stderr, "marvento-icongen: %s\n", qPrintable(error));
      return 1;
    }
    return 0;
  }
  const int size = QString::fromLocal8Bit(argv[1]).toInt();
  if (size < 8 || size > 1024) {
    std::fprintf(stderr, "marvento-icongen: size must be 8 to 1024\n");
    return 2;
  }
  if (!marvento::icongen::PaintAppIcon(size).save(QString::fromLocal8Bit(argv[2]), "PNG")) {
    std::fprintf(stderr, "marvento-icongen: cannot write %s\n", argv[2]);
    return 1;
  }
  return 0;
}
