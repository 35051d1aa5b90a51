// The entry of the GoogleTest binary: one application object for every test, in a private
// settings store and runtime folder, torn down before Qt's own statics go.
#include <QApplication>
#include <QTemporaryDir>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QTemporaryDir home;
  if (qEnvironmentVariableIsEmpty("XDG_CONFIG_HOME")) {
    qputenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toLocal8Bit());
  }
  qputenv("XDG_RUNTIME_DIR", (home.path() + QStringLiteral("/runtime")).toLocal8Bit());
  int qtArgc = 1;
  QApplication app(qtArgc, argv);
  return RUN_ALL_TESTS();
}
