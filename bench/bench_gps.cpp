// GPS reception: decoding speed; the longest stall of the event loop and the processor time
// while an exchange waits on a silent port, for the blocking wait of before and the
// event-driven exchange of now; the delay from the completing "$G" to the new text in tbMyLg.

#include "../tests/support/Pty.h"
#include "gps/GpsPoll.h"
#include "gps/SentenceDecoding.h"
#include "gps/SerialExchange.h"
#include "platform/Clock.h"
#include "platform/CommControl.h"

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
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

// The wait as it was before the exchange became event-driven: the loop sleeps on the port
// until the deadline, and no event is handled meanwhile.
void blockingSilentWait(CommControl& comm) {
  comm.setCommPort(1);
  comm.setSettings(QStringLiteral("4800,N,8,1"));
  comm.setPortOpen(true);
  QElapsedTimer clock;
  clock.start();
  const double wait = ExchangeWaitMs(4800);
  while (clock.elapsed() < wait) {
    comm.waitForInput(std::max(1, static_cast<int>(wait - static_cast<double>(clock.elapsed()))));
    if (comm.inBufferCount() > kChunkThreshold) comm.input();
  }
  comm.setPortOpen(false);
}

// One exchange at 4800 baud on a port where nothing arrives (the full wait of 4.99 s), with
// a 10-ms timer in the event loop whose longest gap is the stall the window would see.
// First argument 0: the blocking wait of before; 1: the event-driven exchange. Second
// argument 1: with the probe; 0: without it, for the processor time of the wait alone (the
// probe's 500 ticks cost more than the exchange).
void BM_SilentExchangeStall(benchmark::State& state) {
  ensureApplication();
  test::Pty pty;
  test::SetPortDevice(1, pty.path());
  CommControl comm;
  const bool eventDriven = state.range(0) == 1;
  for (auto _ : state) {
    QEventLoop loop;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    QElapsedTimer sinceTick;
    qint64 longest = 0;
    QObject::connect(&probe, &QTimer::timeout,
                     [&] { longest = std::max(longest, sinceTick.restart()); });
    SerialExchange exchange(comm);
    bool timedOut = false;
    const double cpu0 = cpuSeconds();
    const auto t0 = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point t1;
    auto done = [&] {
      t1 = std::chrono::steady_clock::now();
      // A few more ticks, so that a stall at the very end is seen too.
      QTimer::singleShot(100, &loop, &QEventLoop::quit);
    };
    QTimer::singleShot(0, [&] {
      if (eventDriven) {
        exchange.start({1, QStringLiteral("4800,N,8,1"), 0, {}}, [&](const ExchangeResult& r) {
          timedOut = r.kind == ExchangeResult::Kind::NoReception;
          done();
        });
      } else {
        blockingSilentWait(comm);
        timedOut = true;
        done();
      }
    });
    sinceTick.start();
    if (state.range(1) == 1) probe.start(10);
    loop.exec();
    const double cpu = cpuSeconds() - cpu0;
    const std::chrono::duration<double> wall = t1 - t0;
    state.counters["wait_s"] = wall.count();
    if (state.range(1) == 1) state.counters["longest_stall_ms"] = static_cast<double>(longest);
    state.counters["cpu_percent"] = 100.0 * cpu / wall.count();
    if (!timedOut) state.SkipWithError("no timeout");
  }
  test::ClearPortDevices();
}
BENCHMARK(BM_SilentExchangeStall)
    ->Args({0, 1})
    ->Args({1, 1})
    ->Args({1, 0})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

// A receiver that goes away 300 ms into an exchange at 4800 baud: time until the exchange
// reports, and processor time meanwhile.
void BM_HangUpEndsExchange(benchmark::State& state) {
  ensureApplication();
  CommControl comm;
  for (auto _ : state) {
    test::Pty pty;
    test::SetPortDevice(1, pty.path());
    SerialExchange exchange(comm);
    QEventLoop loop;
    bool disconnected = false;
    QTimer::singleShot(300, [&] { pty.close(); });
    const double cpu0 = cpuSeconds();
    const auto t0 = std::chrono::steady_clock::now();
    exchange.start({1, QStringLiteral("4800,N,8,1"), 0, {}}, [&](const ExchangeResult& r) {
      disconnected = r.kind == ExchangeResult::Kind::Disconnected;
      loop.quit();
    });
    loop.exec();
    const std::chrono::duration<double, std::milli> wall = std::chrono::steady_clock::now() - t0;
    state.counters["after_unplug_ms"] = wall.count() - 300.0;
    state.counters["cpu_percent"] = 100.0 * (cpuSeconds() - cpu0) * 1000.0 / wall.count();
    if (!disconnected) state.SkipWithError("not told as disconnected");
  }
  test::ClearPortDevices();
}
BENCHMARK(BM_HangUpEndsExchange)->Iterations(1)->Unit(benchmark::kMillisecond);

// Whole polls at 4800 baud: a GGA stands in the port without its successor; then a piece
// that begins with "$G" arrives, and the time until tbMyLg shows the fix is taken.
void BM_LatencyToTbMyLg(benchmark::State& state) {
  ensureApplication();
  test::Pty pty;
  test::SetPortDevice(1, pty.path());
  CommControl comm;
  QLabel lbInfo, lbKurs, panel2;
  QLineEdit tbMyLoc, tbMyLg, tbMyBr, tbFremdLoc, tbFremdLg, tbFremdBr;
  QTimer timer;
  std::chrono::steady_clock::time_point shown;
  GpsPollHooks hooks;
  hooks.Settings = [] {
    GpsPollSettings settings;
    settings.comPort = QStringLiteral("Com1");
    settings.receptionOn = true;
    settings.gradDezimal = true;
    return settings;
  };
  hooks.Compute = [&] { shown = std::chrono::steady_clock::now(); };
  GpsPoll poll({&lbInfo, &lbKurs, &tbMyLoc, &tbMyLg, &tbMyBr, &tbFremdLoc, &tbFremdLg, &tbFremdBr,
                &panel2, &timer, &comm},
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
      QEventLoop loop;
      poll.poll(1, "4800,N,8,1", [&] { loop.quit(); });
      if (poll.isPolling()) loop.exec();
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
