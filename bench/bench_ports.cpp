// Time of the port scan that the settings dialog runs before it opens, with all 29 port
// numbers pointing at devices that do not exist (a machine without serial ports).

#include "options/PortList.h"
#include "platform/CommControl.h"

#include <QApplication>
#include <QComboBox>
#include <QSettings>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

namespace {

// One application and one private settings folder for the whole run.
void prepare() {
  static QTemporaryDir config;
  static std::unique_ptr<QApplication> app;
  if (app) return;
  qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "bench_ports";
  static char* argv[] = {name, nullptr};
  app = std::make_unique<QApplication>(argc, argv);
  QSettings store(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                  QStringLiteral("Marvento"));
  for (int number = 1; number <= 29; ++number) {
    store.setValue(QStringLiteral("Ports/Com%1").arg(number),
                   QStringLiteral("/nonexistent/marvento-bench/tty%1").arg(number));
  }
}

void BM_ProbeMissingPorts(benchmark::State& state) {
  prepare();
  marvento::CommControl control;
  for (auto _ : state) {
    int missing = 0;
    for (std::int16_t number = 1; number <= 29; ++number) {
      control.setCommPort(number);
      missing += control.setPortOpen(true).number == marvento::comInvalidPort;
    }
    benchmark::DoNotOptimize(missing);
    if (missing != 29) state.SkipWithError("a port that should be missing was found");
  }
}
BENCHMARK(BM_ProbeMissingPorts)->Unit(benchmark::kMillisecond);

void BM_FillPortListMissing(benchmark::State& state) {
  prepare();
  marvento::CommControl control;
  QComboBox combo;
  for (auto _ : state) {
    const marvento::PortScanOutcome outcome = marvento::FillPortList(combo, control, 1);
    if (outcome.errorCount != 29) state.SkipWithError("the scan found a port");
  }
}
BENCHMARK(BM_FillPortListMissing)->Unit(benchmark::kMillisecond);

}  // namespace
