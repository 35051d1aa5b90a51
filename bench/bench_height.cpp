#include "height/HeightEvaluate.h"
#include "height/HeightReport.h"
#include "height/HeightTable.h"

#include <benchmark/benchmark.h>
#include <QDateTime>
#include <QString>

#include <vector>

namespace {

using marvento::HeightTable;

// Heights as a receiver sends them: scattered a few metres around 545 m.
std::vector<QString> heightTexts() {
  std::vector<QString> texts;
  for (int k = 0; k < 256; ++k) {
    texts.push_back(QString::number(545.4 + ((k * 37) % 101 - 50) / 10.0, 'f', 1));
  }
  return texts;
}

HeightTable typicalTable() {
  HeightTable table;
  for (const QString& alt : heightTexts()) table.sample(alt, QStringLiteral("M"), u"8");
  return table;
}

// Reaches both limits, so the figures walk the largest table there can be. The jump filter
// lets a table grow only in steps below 36.0, hence the walk.
HeightTable widestTable() {
  HeightTable table;
  for (int index = HeightTable::kLowestIndex; index <= HeightTable::kHighestIndex; index += 300) {
    table.sample(QString::number(index / 10.0, 'f', 1), QStringLiteral("M"), u"8");
  }
  return table;
}

void BM_Sample(benchmark::State& state) {
  const std::vector<QString> texts = heightTexts();
  const QString unit = QStringLiteral("M");
  const QString sats = QStringLiteral("8");
  HeightTable table;
  std::size_t k = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(table.sample(texts[k], unit, sats));
    k = (k + 1) % texts.size();
  }
}
BENCHMARK(BM_Sample);

void BM_FiguresTypical(benchmark::State& state) {
  const HeightTable table = typicalTable();
  for (auto _ : state) benchmark::DoNotOptimize(table.figures());
}
BENCHMARK(BM_FiguresTypical);

void BM_FiguresWidest(benchmark::State& state) {
  const HeightTable table = widestTable();
  for (auto _ : state) benchmark::DoNotOptimize(table.figures());
}
BENCHMARK(BM_FiguresWidest);

void BM_EvaluationMessage(benchmark::State& state) {
  const HeightTable table = typicalTable();
  for (auto _ : state) benchmark::DoNotOptimize(marvento::HeightMessage(table.figures()));
}
BENCHMARK(BM_EvaluationMessage);

void BM_ReportText(benchmark::State& state) {
  const HeightTable table = typicalTable();
  const QDateTime now = QDateTime::currentDateTime();
  for (auto _ : state) {
    benchmark::DoNotOptimize(marvento::HeightReportText(
        table, now, QStringLiteral("JO31AB"), QStringLiteral("7,12345"), QStringLiteral("51,5")));
  }
}
BENCHMARK(BM_ReportText);

}  // namespace
