#include <QApplication>

#include "app/Module1.h"

int main(int argc, char* argv[]) {
  QApplication app(argc, argv);
  marvento::Main();
  return QApplication::exec();
}
