#include "locator/CoordsToLocator.h"
#include "locator/LocatorToCoords.h"
#include "locator/QraToCoords.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

namespace marvento {
namespace {

constexpr int kSixCharLocators = 18 * 18 * 10 * 10 * 24 * 24;  // 18,662,400

// The i-th six-character locator, the last position running fastest.
void sixCharLocator(int i, QString& loc) {
  loc[5] = QChar(u'A' + i % 24), i /= 24;
  loc[4] = QChar(u'A' + i % 24), i /= 24;
  loc[3] = QChar(u'0' + i % 10), i /= 10;
  loc[2] = QChar(u'0' + i % 10), i /= 10;
  loc[1] = QChar(u'A' + i % 18), i /= 18;
  loc[0] = QChar(u'A' + i);
}

// Every six-character locator decoded and encoded again must give the same text. Reports
// the number that do not as the counter "mismatches" and names the first few on stderr.
void BM_SixCharRoundTripAll(benchmark::State& state) {
  long long mismatches = 0;
  for (auto _ : state) {
    mismatches = 0;
    QString loc(6, QChar(u' '));
    for (int i = 0; i < kSixCharLocators; ++i) {
      sixCharLocator(i, loc);
      const LocatorDecode d = DecodeLocator(loc);
      if (d.status != LocatorDecode::Ok || CoordsToLocator6(d.Lg, d.Br) != loc) {
        if (++mismatches <= 10) std::fprintf(stderr, "mismatch: %s\n", qPrintable(loc));
      }
    }
  }
  state.counters["locators"] = kSixCharLocators;
  state.counters["mismatches"] = static_cast<double>(mismatches);
  if (mismatches != 0) state.SkipWithError("six-character round trip has mismatches");
}
BENCHMARK(BM_SixCharRoundTripAll)->Iterations(1)->Unit(benchmark::kSecond);

// A spread of positions over the whole grid, away from any regular pattern.
std::vector<std::pair<double, double>> positions() {
  std::vector<std::pair<double, double>> out;
  for (int i = 0; i < 4096; ++i) {
    out.emplace_back(-179.99 + (i * 0.6180339887 - static_cast<int>(i * 0.6180339887)) * 359.98,
                     -89.99 + (i * 0.7548776662 - static_cast<int>(i * 0.7548776662)) * 179.98);
  }
  return out;
}

void BM_CoordsToLocator6(benchmark::State& state) {
  const auto pos = positions();
  size_t i = 0;
  for (auto _ : state) {
    const auto& [Lg, Br] = pos[i++ % pos.size()];
    benchmark::DoNotOptimize(CoordsToLocator6(Lg, Br));
  }
}
BENCHMARK(BM_CoordsToLocator6);

void BM_CoordsToLocator10(benchmark::State& state) {
  const auto pos = positions();
  size_t i = 0;
  for (auto _ : state) {
    const auto& [Lg, Br] = pos[i++ % pos.size()];
    benchmark::DoNotOptimize(CoordsToLocator10(Lg, Br));
  }
}
BENCHMARK(BM_CoordsToLocator10);

std::vector<QString> locators(bool ten) {
  std::vector<QString> out;
  for (const auto& [Lg, Br] : positions()) {
    out.push_back(ten ? CoordsToLocator10(Lg, Br) : CoordsToLocator6(Lg, Br));
  }
  return out;
}

void BM_DecodeLocator6(benchmark::State& state) {
  const auto locs = locators(false);
  size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(DecodeLocator(locs[i++ % locs.size()]));
}
BENCHMARK(BM_DecodeLocator6);

void BM_DecodeLocator10(benchmark::State& state) {
  const auto locs = locators(true);
  size_t i = 0;
  for (auto _ : state) benchmark::DoNotOptimize(DecodeLocator(locs[i++ % locs.size()]));
}
BENCHMARK(BM_DecodeLocator10);

void BM_QraToCoords(benchmark::State& state) {
  const QString texts[] = {QStringLiteral("EK74H"), QStringLiteral("YM44B"),
                           QStringLiteral("AA10A"), QStringLiteral("ZZ80J"),
                           QStringLiteral("EK81A"), QStringLiteral("EK74I")};
  size_t i = 0;
  double Lg = 0;
  double Br = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(QraToCoords(texts[i++ % std::size(texts)], Lg, Br));
    benchmark::DoNotOptimize(Lg);
  }
}
BENCHMARK(BM_QraToCoords);

}  // namespace
}  // namespace marvento
