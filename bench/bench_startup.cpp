// Start-up: the time from the start of a new process to the main window shown (offscreen),
// and the peak resident memory of the process at that moment. Each iteration starts this
// program anew (fork and exec of itself), so library loading and static set-up count too.

#include "app/Module1.h"
#include "app/frmMain.h"

#include <benchmark/benchmark.h>
#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QWindow>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marvento {
namespace {

// Set in the child's environment: the pipe to report on.
constexpr const char* kReportFd = "MARVENTO_BENCH_STARTUP_FD";

long peakKb() {
  QFile status(QStringLiteral("/proc/self/status"));
  if (!status.open(QIODevice::ReadOnly)) return -1;
  for (const QByteArray& line : status.readAll().split('\n')) {
    if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
  }
  return -1;
}

// The child: what the program's main() does, up to the moment the window is shown.
void BM_StartupChild(benchmark::State& state) {
  const int fd = std::atoi(std::getenv(kReportFd));
  int argc = 1;
  char name[] = "marvento";
  char* argv[] = {name, nullptr};
  QApplication app(argc, argv);
  Main();
  frmMain* window = State().MainForm;
  while (!window->isVisible() || !window->windowHandle() || !window->windowHandle()->isExposed()) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
  }
  const std::string report = std::to_string(peakKb()) + "\n";
  if (write(fd, report.data(), report.size()) < 0) std::_Exit(3);
  // Nothing of the benchmark's own bookkeeping is needed in the child.
  for (auto _ : state) break;
  std::_Exit(0);
}

void BM_Startup(benchmark::State& state) {
  double peakSum = 0;
  long peakMax = 0;
  for (auto _ : state) {
    QTemporaryDir home;
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
      state.SkipWithError("pipe");
      return;
    }
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid == 0) {
      close(pipeFds[0]);
      // The child's own benchmark header would repeat itself twenty times in the output.
      const int devNull = open("/dev/null", O_WRONLY);
      if (devNull >= 0) {
        dup2(devNull, STDOUT_FILENO);
        dup2(devNull, STDERR_FILENO);
      }
      setenv(kReportFd, std::to_string(pipeFds[1]).c_str(), 1);
      setenv("QT_QPA_PLATFORM", "offscreen", 1);
      setenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toLocal8Bit().constData(), 1);
      setenv("XDG_RUNTIME_DIR", home.path().toLocal8Bit().constData(), 1);
      execl("/proc/self/exe", "bench_startup", "--benchmark_filter=^BM_StartupChild",
            static_cast<char*>(nullptr));
      std::_Exit(127);
    }
    close(pipeFds[1]);
    char buffer[64] = {};
    const ssize_t n = read(pipeFds[0], buffer, sizeof buffer - 1);
    const auto shown = std::chrono::steady_clock::now();
    close(pipeFds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    if (n <= 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
      state.SkipWithError("the child did not show the window");
      return;
    }
    state.SetIterationTime(std::chrono::duration<double>(shown - start).count());
    const long peak = std::atol(buffer);
    peakSum += peak;
    peakMax = std::max(peakMax, peak);
  }
  state.counters["peak_MB_mean"] = peakSum / 1024.0 / static_cast<double>(state.iterations());
  state.counters["peak_MB_max"] = static_cast<double>(peakMax) / 1024.0;
}

// The child is registered only in the child, so that a plain run lists one benchmark.
const bool kRegistered = [] {
  if (std::getenv(kReportFd)) {
    benchmark::RegisterBenchmark("BM_StartupChild", BM_StartupChild)->Iterations(1);
  } else {
    benchmark::RegisterBenchmark("BM_Startup", BM_Startup)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond)
        ->Iterations(20);
  }
  return true;
}();

}  // namespace
}  // namespace marvento
