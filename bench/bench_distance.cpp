#include "distance/ComputeCommand.h"
#include "distance/Coordinates.h"
#include "distance/GreatCircle.h"
#include "platform/MsgBoxRecorder.h"

#include <benchmark/benchmark.h>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>

namespace {

using namespace marvento;

void useGerman() {
  static const bool once = [] {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    return true;
  }();
  (void)once;
}

QApplication& app() {
  static int argc = 1;
  static char name[] = "bench_distance";
  static char* argv[] = {name, nullptr};
  static QApplication* instance = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(argc, argv);
  }();
  return *instance;
}

void BM_SolveDistanceBearing(benchmark::State& state) {
  useGerman();
  const QString radius = QStringLiteral("6371,00079");
  double fremdLg = 13.4;
  for (auto _ : state) {
    benchmark::DoNotOptimize(SolveDistanceBearing(51.5, 52.5, 8.5, fremdLg, radius));
    fremdLg += 1e-9;
  }
}
BENCHMARK(BM_SolveDistanceBearing);

void BM_ParseCoordinatesDecimal(benchmark::State& state) {
  const QString lg = QStringLiteral("13,4");
  const QString br = QStringLiteral("52,52");
  for (auto _ : state) benchmark::DoNotOptimize(ParseCoordinates(lg, br, true));
}
BENCHMARK(BM_ParseCoordinatesDecimal);

void BM_ParseCoordinatesDegrees(benchmark::State& state) {
  const QString lg = QStringLiteral("-13° 22' 30,5\"");
  const QString br = QStringLiteral(" 52° 31' 15\"");
  for (auto _ : state) benchmark::DoNotOptimize(ParseCoordinates(lg, br, false));
}
BENCHMARK(BM_ParseCoordinatesDegrees);

void BM_ParseCoordinatesLongText(benchmark::State& state) {
  const QString lg = QString(10000, u'9') + QStringLiteral("°0'0\"");
  const QString br = QStringLiteral("0°0'0\"");
  for (auto _ : state) benchmark::DoNotOptimize(ParseCoordinates(lg, br, false));
}
BENCHMARK(BM_ParseCoordinatesLongText);

void BM_CoordinateTextDegrees(benchmark::State& state) {
  useGerman();
  for (auto _ : state) benchmark::DoNotOptimize(CoordinateText(52.520833333333336, false));
}
BENCHMARK(BM_CoordinateTextDegrees);

// The application and the locale stand before the first widget is made.
struct QtReady {
  QtReady() {
    app();
    useGerman();
  }
};

struct Bench : QtReady {
  QLineEdit tbMyLoc, tbFremdLoc, tbMyLg, tbMyBr, tbFremdLg, tbFremdBr;
  QLabel lblEntfernung, lblRichtung;
  QComboBox Combo1;
  ComputePreferences module;
  ComputeCommand command{ComputeFields{&tbMyLoc, &tbFremdLoc, &tbMyLg, &tbMyBr, &tbFremdLg,
                                       &tbFremdBr, &lblEntfernung, &lblRichtung, &Combo1},
                         [this] { return module; }, [] {}};
  Bench() {
    Combo1.setEditable(true);
    Combo1.setEditText(QStringLiteral("6371,00079"));
    module.GradDezimal = true;
  }
  // Both locators typed and computed once, so that the memory holds them.
  void computePair() {
    tbMyLoc.setText(QStringLiteral("JO62QM"));
    tbFremdLoc.setText(QStringLiteral("JO31NK"));
    command.Compute();
  }
};

// Nothing changed since the last run: only the solve and the labels.
void BM_ComputeRouteF(benchmark::State& state) {
  Bench b;
  b.computePair();
  for (auto _ : state) b.command.Compute();
}
BENCHMARK(BM_ComputeRouteF);

// Both locators decoded and all four coordinate fields written, as after a typed pair.
void BM_ComputeRouteA(benchmark::State& state) {
  Bench b;
  for (auto _ : state) {
    b.tbMyLoc.setText(QStringLiteral("jo62qm"));
    b.tbFremdLoc.setText(QStringLiteral("jo31nk"));
    b.tbFremdBr.clear();
    b.command.Compute();
  }
}
BENCHMARK(BM_ComputeRouteA);

// A GPS fix: new own coordinates each time, so route B makes the own locator.
void BM_ComputeRouteB(benchmark::State& state) {
  Bench b;
  b.computePair();
  int i = 0;
  const QString lg[] = {QStringLiteral("13,4"), QStringLiteral("13,41")};
  for (auto _ : state) {
    b.tbMyLg.setText(lg[i++ & 1]);
    b.command.Compute();
  }
}
BENCHMARK(BM_ComputeRouteB);

// A refused entry: the message goes to a recorder instead of a box.
void BM_ComputeRefusedLongText(benchmark::State& state) {
  MsgBoxRecorder rec;
  Bench b;
  b.tbMyLg.setText(QString(10000, u'A'));
  b.tbMyBr.setText(QStringLiteral("1"));
  b.tbFremdLoc.setText(QStringLiteral("JO31NK"));
  b.module.GradDezimal = false;
  for (auto _ : state) {
    b.command.Compute();
    rec.clear();
  }
}
BENCHMARK(BM_ComputeRefusedLongText);

// The decision alone, without widgets: what the window adds is the rest of the figures above.
void BM_DecideUnchanged(benchmark::State& state) {
  useGerman();
  ComputeTexts fields;
  fields[ComputeField::MyLoc] = QStringLiteral("JO62QM");
  fields[ComputeField::FremdLoc] = QStringLiteral("JO31NK");
  const QString radius = QStringLiteral("6371,00079");
  const ComputePreferences prefs{true, false, false};
  ComputeOutcome first = DecideCompute(fields, radius, {}, prefs);
  for (auto _ : state) {
    ComputeOutcome out = DecideCompute(first.fields, radius, first.memory, prefs);
    benchmark::DoNotOptimize(out);
    if (out.route != Route::Unchanged) state.SkipWithError("not the unchanged route");
  }
}
BENCHMARK(BM_DecideUnchanged);

void BM_DecideBothLocators(benchmark::State& state) {
  useGerman();
  ComputeTexts fields;
  fields[ComputeField::MyLoc] = QStringLiteral("jo62qm");
  fields[ComputeField::FremdLoc] = QStringLiteral("jo31nk");
  const QString radius = QStringLiteral("6371,00079");
  const ComputePreferences prefs{true, false, false};
  for (auto _ : state) benchmark::DoNotOptimize(DecideCompute(fields, radius, {}, prefs));
}
BENCHMARK(BM_DecideBothLocators);

}  // namespace
