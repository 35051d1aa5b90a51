// Contest logs: checking a 100,000-QSO EDI file (reading included), and the points of one
// QSO against hamlib's locator2longlat and qrb for the same pairs.
#include "contest/EdiCheck.h"
#include "contest/IaruPoints.h"

#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <hamlib/rig.h>
#include <hamlib/rotator.h>

#include <cmath>
#include <random>
#include <vector>

namespace marvento {
namespace {

constexpr int kQsos = 100000;

// Locators spread over Europe (fields IM to KP), as a VHF contest log holds them.
std::vector<QByteArray> remoteLocators(int n) {
  std::mt19937 rng(27);
  std::vector<QByteArray> out;
  out.reserve(n);
  for (int i = 0; i < n; ++i) {
    QByteArray l(6, ' ');
    l[0] = static_cast<char>('I' + rng() % 3);
    l[1] = static_cast<char>('M' + rng() % 4);
    l[2] = static_cast<char>('0' + rng() % 10);
    l[3] = static_cast<char>('0' + rng() % 10);
    l[4] = static_cast<char>('A' + rng() % 24);
    l[5] = static_cast<char>('A' + rng() % 24);
    out.push_back(l);
  }
  return out;
}

const QByteArray kOwn = "JO62QM";

void BM_CheckEdi100k(benchmark::State& state) {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("contest.edi"));
  {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly)) {
      state.SkipWithError("cannot write the test log");
      return;
    }
    f.write(
        "[REG1TEST;1]\r\nTName=Bench\r\nPCall=DL0ABC\r\nPWWLo=JO62QM\r\nCQSOs=100000;1\r\n"
        "CQSOP=0\r\n[QSORecords;100000]\r\n");
    const auto locators = remoteLocators(kQsos);
    QByteArray line;
    for (int i = 0; i < kQsos; ++i) {
      line = "261024;" + QByteArray::number(1400 + i % 1000) + ";DL" + QByteArray::number(i) +
             "X;1;59;" + QByteArray::number(i + 1) + ";59;" + QByteArray::number(i + 7) + ";;" +
             locators[i] + ';' + QByteArray::number(i % 900) + ";;N;;\r\n";
      f.write(line);
    }
    f.write("[END;Bench]\r\n");
  }
  qint64 qsos = 0;
  for (auto _ : state) {
    const EdiCheck log = CheckEdiFile(path);
    qsos = static_cast<qint64>(log.qsos.size());
    benchmark::DoNotOptimize(log.pointsTotal);
  }
  if (qsos != kQsos) state.SkipWithError("the log did not read whole");
  state.SetItemsProcessed(state.iterations() * kQsos);
  state.counters["QSO/s"] = benchmark::Counter(static_cast<double>(state.iterations()) * kQsos,
                                               benchmark::Counter::kIsRate);
}
BENCHMARK(BM_CheckEdi100k)->Unit(benchmark::kMillisecond);

// One QSO's points from the two locator texts: both squares decoded, the distance, the rule.
void BM_PointsMarvento(benchmark::State& state) {
  const auto locators = remoteLocators(4096);
  std::size_t i = 0;
  long long sum = 0;
  for (auto _ : state) {
    const QByteArray& r = locators[i++ & 4095];
    const auto own = SquareOfLatin1(kOwn.constData(), 6);
    const auto remote = SquareOfLatin1(r.constData(), 6);
    sum += IaruPoints(*own, *remote);
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PointsMarvento);

// The same with hamlib: locator2longlat for both, qrb for the distance, then the rule on
// hamlib's sphere turned into degrees of arc.
void BM_PointsHamlib(benchmark::State& state) {
  // hamlib traces every call on standard error unless told not to.
  rig_set_debug(RIG_DEBUG_NONE);
  const auto locators = remoteLocators(4096);
  std::size_t i = 0;
  long long sum = 0;
  constexpr double kHamlibKmPerDegree = 6378.137 * M_PI / 180.0;  // hamlib's RADIAN * arc
  for (auto _ : state) {
    const QByteArray& r = locators[i++ & 4095];
    double lon1 = 0, lat1 = 0, lon2 = 0, lat2 = 0, km = 0, az = 0;
    locator2longlat(&lon1, &lat1, kOwn.constData());
    locator2longlat(&lon2, &lat2, r.constData());
    qrb(lon1, lat1, lon2, lat2, &km, &az);
    sum += static_cast<long long>(std::floor(km / kHamlibKmPerDegree * kIaruKmPerDegree)) + 1;
    benchmark::DoNotOptimize(sum);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_PointsHamlib);

}  // namespace
}  // namespace marvento
