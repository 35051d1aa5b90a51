// The entry of the core's GoogleTest binary: a QCoreApplication, since nothing in the core
// may need more, in a private settings store and runtime folder.
#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QTemporaryDir>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  QTemporaryDir home;
  if (qEnvironmentVariableIsEmpty("XDG_CONFIG_HOME")) {
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toLocal8Bit());
  }
  qputenv("XDG_RUNTIME_DIR", (home.path() + QStringLiteral("/runtime")).toLocal8Bit());
  int qtArgc = 1;
  QCoreApplication app(qtArgc, argv);
  return RUN_ALL_TESTS();
}
