// Start-up: the time from the start of a new process to the main window shown (offscreen),
// the processor time spent on it and the peak resident memory of the process at that moment.
// Each iteration starts this program anew (fork and exec of itself), so library loading and
// static set-up count too.
//
// Beside Marvento's window the same way starts a bare Qt window with the same kinds of
// controls (menu bar with two menus, tool bar with six icon buttons, six line edits, a combo,
// labels, a status bar with five panels), built from the same executable so that both load
// the same libraries. BM_StartupRatio starts the two in turn and gives Marvento's figures as
// multiples of the bare window's.

#include "app/Module1.h"
#include "app/frmMain.h"

#include <benchmark/benchmark.h>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QStatusBar>
#include <QStyle>
#include <QTemporaryDir>
#include <QToolBar>
#include <QWindow>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marvento {
namespace {

// Set in the child's environment: the pipe to report on, and which window to show.
constexpr const char* kReportFd = "MARVENTO_BENCH_STARTUP_FD";
constexpr const char* kWindowKind = "MARVENTO_BENCH_STARTUP_WINDOW";

enum class Window { Marvento, Bare };

long peakKb() {
  QFile status(QStringLiteral("/proc/self/status"));
  if (!status.open(QIODevice::ReadOnly)) return -1;
  for (const QByteArray& line : status.readAll().split('\n')) {
    if (line.startsWith("VmHWM:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
  }
  return -1;
}

// What a plain Qt program with Marvento's kinds of controls builds, with the style's own
// icons on the tool bar.
QMainWindow* bareWindow() {
  auto* window = new QMainWindow;
  window->setWindowTitle(QStringLiteral("Fenster"));
  QMenu* first = window->menuBar()->addMenu(QStringLiteral("&Aktion"));
  for (const char* text :
       {"&Neu", "&Rechnen", "Gegenrich&tung", "Höhe", "&Einstellungen", "&Protokoll", "&Beenden"}) {
    first->addAction(QString::fromUtf8(text))->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
  }
  QMenu* second = window->menuBar()->addMenu(QStringLiteral("&Hilfe"));
  second->addAction(QStringLiteral("&Hilfe"))->setShortcut(QKeySequence(Qt::Key_F1));
  second->addAction(QStringLiteral("&Info"))->setShortcut(QKeySequence(Qt::Key_F2));

  QToolBar* bar = window->addToolBar(QStringLiteral("Werkzeuge"));
  bar->setIconSize(QSize(16, 16));
  for (QStyle::StandardPixmap icon :
       {QStyle::SP_FileIcon, QStyle::SP_MediaPlay, QStyle::SP_DialogCloseButton,
        QStyle::SP_FileDialogDetailedView, QStyle::SP_MessageBoxInformation,
        QStyle::SP_DialogHelpButton}) {
    bar->addAction(window->style()->standardIcon(icon), QString())
        ->setToolTip(QStringLiteral("Knopf"));
  }

  auto* client = new QWidget(window);
  auto* grid = new QGridLayout(client);
  for (int i = 0; i < 6; ++i) {
    grid->addWidget(new QLabel(QStringLiteral("Feld %1").arg(i), client), (i / 3) * 2, i % 3);
    auto* field = new QLineEdit(client);
    field->setToolTip(QStringLiteral("Eingabe"));
    grid->addWidget(field, (i / 3) * 2 + 1, i % 3);
  }
  auto* combo = new QComboBox(client);
  combo->setEditable(true);
  combo->addItems({QStringLiteral("6371"), QStringLiteral("6378"), QStringLiteral("6357")});
  grid->addWidget(combo, 4, 0);
  grid->addWidget(new QLabel(QStringLiteral("Ergebnis"), client), 4, 1);
  grid->addWidget(new QLabel(QStringLiteral("Ergebnis"), client), 4, 2);
  grid->addWidget(new QLabel(QStringLiteral("Info:"), client), 5, 0, 1, 3);
  window->setCentralWidget(client);

  for (int i = 0; i < 5; ++i) {
    window->statusBar()->addWidget(new QLabel(QStringLiteral("Feld %1").arg(i)));
  }
  window->show();
  return window;
}

// The child: what the program's main() does (or the bare window), up to the moment the
// window is shown.
void BM_StartupChild(benchmark::State& state) {
  const int fd = std::atoi(std::getenv(kReportFd));
  const bool bare = std::strcmp(std::getenv(kWindowKind), "bare") == 0;
  int argc = 1;
  char name[] = "marvento";
  char* argv[] = {name, nullptr};
  QApplication app(argc, argv);
  QWidget* window = nullptr;
  if (bare) {
    window = bareWindow();
  } else {
    window = Main();
  }
  while (!window->isVisible() || !window->windowHandle() || !window->windowHandle()->isExposed()) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 10);
  }
  const std::string report = std::to_string(peakKb()) + "\n";
  if (write(fd, report.data(), report.size()) < 0) std::_Exit(3);
  // Nothing of the benchmark's own bookkeeping is needed in the child.
  for (auto _ : state) break;
  std::_Exit(0);
}

struct Start {
  double seconds = 0;     // from fork to the report of the shown window
  double cpuSeconds = 0;  // user and system time of the child, to its end right after
  long peakKb = 0;
};

std::optional<Start> startOnce(Window which) {
  QTemporaryDir home;
  int pipeFds[2];
  if (pipe(pipeFds) != 0) return std::nullopt;
  const auto start = std::chrono::steady_clock::now();
  const pid_t pid = fork();
  if (pid == 0) {
    close(pipeFds[0]);
    // The child's own benchmark header would repeat itself in the output.
    const int devNull = open("/dev/null", O_WRONLY);
    if (devNull >= 0) {
      dup2(devNull, STDOUT_FILENO);
      dup2(devNull, STDERR_FILENO);
    }
    setenv(kReportFd, std::to_string(pipeFds[1]).c_str(), 1);
    setenv(kWindowKind, which == Window::Bare ? "bare" : "marvento", 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("XDG_CONFIG_HOME", (home.path() + QStringLiteral("/config")).toLocal8Bit().constData(),
           1);
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
  rusage usage{};
  wait4(pid, &status, 0, &usage);
  if (n <= 0 || !WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
  auto seconds = [](const timeval& t) { return static_cast<double>(t.tv_sec) + t.tv_usec / 1e6; };
  return Start{std::chrono::duration<double>(shown - start).count(),
               seconds(usage.ru_utime) + seconds(usage.ru_stime), std::atol(buffer)};
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t n = values.size();
  return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

void BM_Startup(benchmark::State& state, Window which) {
  double cpuSum = 0;
  double peakSum = 0;
  long peakMax = 0;
  for (auto _ : state) {
    const std::optional<Start> run = startOnce(which);
    if (!run) {
      state.SkipWithError("the child did not show the window");
      return;
    }
    state.SetIterationTime(run->seconds);
    cpuSum += run->cpuSeconds;
    peakSum += static_cast<double>(run->peakKb);
    peakMax = std::max(peakMax, run->peakKb);
  }
  const auto runs = static_cast<double>(state.iterations());
  state.counters["cpu_ms_mean"] = cpuSum * 1000 / runs;
  state.counters["peak_MB_mean"] = peakSum / 1024.0 / runs;
  state.counters["peak_MB_max"] = static_cast<double>(peakMax) / 1024.0;
}

// Pairs of starts, Marvento first and the bare window first in turn, so that a change of
// load on the machine falls on both alike. The ratios are of the medians.
void BM_StartupRatio(benchmark::State& state) {
  std::vector<double> time[2], cpu[2], peak[2];
  int pair = 0;
  for (auto _ : state) {
    ++pair;
    for (int k = 0; k < 2; ++k) {
      const int side = (pair + k) % 2;  // 0 Marvento, 1 bare
      const std::optional<Start> run = startOnce(side == 0 ? Window::Marvento : Window::Bare);
      if (!run) {
        state.SkipWithError("a child did not show its window");
        return;
      }
      time[side].push_back(run->seconds);
      cpu[side].push_back(run->cpuSeconds);
      peak[side].push_back(static_cast<double>(run->peakKb));
    }
  }
  state.counters["bare_ms"] = median(time[1]) * 1000;
  state.counters["marvento_ms"] = median(time[0]) * 1000;
  state.counters["time_x"] = median(time[0]) / median(time[1]);
  state.counters["cpu_x"] = median(cpu[0]) / median(cpu[1]);
  state.counters["peak_x"] = median(peak[0]) / median(peak[1]);
}

// The child is registered only in the child, so that a plain run lists the real benchmarks.
const bool kRegistered = [] {
  if (std::getenv(kReportFd)) {
    benchmark::RegisterBenchmark("BM_StartupChild", BM_StartupChild)->Iterations(1);
    return true;
  }
  benchmark::RegisterBenchmark("BM_Startup", BM_Startup, Window::Marvento)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond)
      ->Iterations(20);
  benchmark::RegisterBenchmark("BM_StartupBare", BM_Startup, Window::Bare)
      ->UseManualTime()
      ->Unit(benchmark::kMillisecond)
      ->Iterations(20);
  benchmark::RegisterBenchmark("BM_StartupRatio", BM_StartupRatio)
      ->Unit(benchmark::kMillisecond)
      ->Iterations(20);
  return true;
}();

}  // namespace
}  // namespace marvento
