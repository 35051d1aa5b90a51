// Time of the write at exit when the settings file is large: the eleven keys of the exit
// beside many others (a store that other tools or old versions filled).

#include "app/Module1.h"
#include "app/SettingsStore.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

// A store of `keys` extra entries of 100 characters each in a group of their own.
void prepare(int keys) {
  static QTemporaryDir config;
  static std::unique_ptr<QCoreApplication> app;
  if (!app) {
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    static int argc = 1;
    static char name[] = "bench_settings";
    static char* argv[] = {name, nullptr};
    app = std::make_unique<QCoreApplication>(argc, argv);
  }
  QByteArray text = "[Extra]\n";
  for (int i = 0; i < keys; ++i) {
    text += "Key" + QByteArray::number(i) + '=' + QByteArray(100, 'x') + '\n';
  }
  QFile::remove(config.filePath(QStringLiteral("Marvento/Marvento.conf")));
  QDir(config.path()).mkpath(QStringLiteral("Marvento"));
  QFile file(config.filePath(QStringLiteral("Marvento/Marvento.conf")));
  if (file.open(QIODevice::WriteOnly)) file.write(text);
}

void BM_ExitSettingsLargeFile(benchmark::State& state) {
  prepare(static_cast<int>(state.range(0)));
  marvento::Module1 module;
  module.GpsStatus = marvento::kGpsAn;
  module.ComSettings = QStringLiteral("9600,N,8,1");
  int flip = 0;
  for (auto _ : state) {
    // A value that changes each time, so that every write has something to store.
    module.GpsIntervalSeconds = 30 + (++flip % 2);
    marvento::WriteExitSettings(module, marvento::ExitSettings{2, false, 1000, 1000});
  }
}
BENCHMARK(BM_ExitSettingsLargeFile)->Arg(1000)->Arg(50000)->Unit(benchmark::kMillisecond);

}  // namespace
