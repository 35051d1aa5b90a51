// GPS reception: decoding speed, processor time while an exchange waits on a silent port,
// and the delay from the completing "$G" to the new text in tbMyLg.

#include "../tests/support/Pty.h"
#include "app/Module1.h"
#include "gps/GpsOpenPort.h"
#include "gps/GpsPoll.h"
#include "gps/SentenceDecoding.h"
#include "platform/Clock.h"
#include "platform/CommControl.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

namespace marvento {
namespace {

const QByteArray kGga = "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*69\r\n";
const QByteArray kGsa = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39\r\n";
const QByteArray kGsv = "$GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45*75\r\n";
const QByteArray kRmc = "$GPRMC,123519.00,A,4807.038,N,01131.000,E,022.4,084.4,230394,,*3F\r\n";

// Widgets need an application; the port map needs a settings folder of its own.
void ensureApplication() {
  static QTemporaryDir config;
  static std::unique_ptr<QApplication> app;
  if (QCoreApplication::instance()) return;
  qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
  qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "bench_gps";
  static char* argv[] = {name, nullptr};
  app = std::make_unique<QApplication>(argc, argv);
}

double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

void BM_DecodeGgaWithRmc(benchmark::State& state) {
  const QString sentence = QString::fromLatin1(kGga);
  const QString raw = QString::fromLatin1(kGga + kGsa + kRmc + kGsv);
  for (auto _ : state) benchmark::DoNotOptimize(DecodeSentence(sentence, raw));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecodeGgaWithRmc);

void BM_ScanBurst(benchmark::State& state) {
  const QString burst = QString::fromLatin1(kGsv + kGsv + kGsa + kRmc + kGga);
  for (auto _ : state) {
    SentenceScanner scanner;
    benchmark::DoNotOptimize(scanner.add(burst));
  }
}
BENCHMARK(BM_ScanBurst);

// One exchange at 4800 baud on a port where nothing arrives: the full wait of 4.99 s.
void BM_SilentWaitCpu(benchmark::State& state) {
  ensureApplication();
  test::Pty pty;
  test::SetPortDevice(1, pty.path());
  CommControl comm;
  Module1 module;
  for (auto _ : state) {
    QString raw;
    const double cpu0 = cpuSeconds();
    const auto t0 = std::chrono::steady_clock::now();
    const QString result = GpsOpenPort(comm, module, nullptr, 1, "4800,N,8,1", raw);
    const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - t0;
    const double cpu = cpuSeconds() - cpu0;
    state.counters["wait_s"] = wall.count();
    state.counters["cpu_ms"] = cpu * 1000.0;
    state.counters["cpu_percent"] = 100.0 * cpu / wall.count();
    if (result != QStringLiteral("!Zur Zeit kein GPS-Empfang")) state.SkipWithError("no timeout");
  }
  test::ClearPortDevices();
}
BENCHMARK(BM_SilentWaitCpu)->Iterations(1)->Unit(benchmark::kSecond);

// Whole polls at 4800 baud: a GGA stands in the port without its successor; then a piece
// that begins with "$G" arrives, and the time until tbMyLg shows the fix is taken.
void BM_LatencyToTbMyLg(benchmark::State& state) {
  ensureApplication();
  test::Pty pty;
  test::SetPortDevice(1, pty.path());
  CommControl comm;
  Module1 module;
  module.GpsStatus = kGpsAn;
  module.GradDezimal = true;
  QLabel lbInfo, lbKurs, panel1, panel2;
  QLineEdit tbMyLoc, tbMyLg, tbMyBr, tbFremdLoc, tbFremdLg, tbFremdBr;
  QTimer timer;
  std::chrono::steady_clock::time_point shown;
  GpsPollHooks hooks;
  hooks.Compute = [&] { shown = std::chrono::steady_clock::now(); };
  GpsPoll poll(module,
               {&lbInfo, &lbKurs, &tbMyLoc, &tbMyLg, &tbMyBr, &tbFremdLoc, &tbFremdLg, &tbFremdBr,
                &panel1, &panel2, &timer, &comm},
               hooks, SystemClock());
  std::vector<double> samples;
  for (auto _ : state) {
    for (int i = 0; i < 30; ++i) {
      tbMyLg.clear();
      std::chrono::steady_clock::time_point sent;
      std::thread feeder([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        pty.write(kGsv + kGsv + kGsa + kGga);
        std::this_thread::sleep_for(std::chrono::milliseconds(40));
        sent = std::chrono::steady_clock::now();
        pty.write(kGsa + kGsv + kGsv + kGsv);
      });
      poll.poll(1, "4800,N,8,1");
      feeder.join();
      if (tbMyLg.text().isEmpty()) {
        state.SkipWithError("no fix written");
        break;
      }
      samples.push_back(std::chrono::duration<double, std::milli>(shown - sent).count());
    }
  }
  if (samples.empty()) return;
  std::sort(samples.begin(), samples.end());
  state.counters["median_ms"] = samples[samples.size() / 2];
  state.counters["max_ms"] = samples.back();
  test::ClearPortDevices();
}
BENCHMARK(BM_LatencyToTbMyLg)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
}  // namespace marvento
