#include "gps/GpsTime.h"

#include "support/GermanLocale.h"

namespace marvento {
namespace {

// What the second status panel shows; the other parts are read by the clock correction below.
TEST(GpsTime, SplitsTheUtcField) {
  const std::pair<const char*, const char*> cases[] = {
      {"123519.60", "12:35:20"},
      {"235959.90", "23:59:60"},
      // No point, or one too far left: minutes and hours are skipped steps.
      {"123519", "::123519"},
      {"1.5", "::02"},
  };
  for (const auto& [utc, shown] : cases) {
    EXPECT_EQ(SplitUtc(QString::fromLatin1(utc)).shown, QString::fromLatin1(shown)) << utc;
  }
}

TEST(GpsTime, CorrectsMinutesAndSecondsOnly) {
  const struct {
    const char* name;
    QTime clock;
    const char* utc;
    std::optional<QTime> expected;
  } cases[] = {
      {"five seconds slow", QTime(14, 22, 10), "122315.00", QTime(14, 23, 15)},
      {"seconds right, minute wrong", QTime(14, 22, 15), "122315.00", std::nullopt},
      {"hour is not advanced", QTime(14, 59, 59), "130002.00", QTime(14, 0, 2)},
      {"clock hour 00", QTime(0, 30, 10), "123015.00", std::nullopt},
      {"0.4 s apart", QTime(14, 22, 15), "122315.40", std::nullopt},
      {"0.5 s apart", QTime(14, 22, 15), "122315.50", QTime(14, 23, 16)},
      {"59.8 and up gives up", QTime(14, 22, 10), "122359.80", std::nullopt},
      {"59.7 carries into the next minute", QTime(14, 22, 10), "122359.70", QTime(14, 24, 0)},
      {"carry past midnight", QTime(23, 10, 10), "225959.70", QTime(0, 0, 0)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CorrectedTime(SplitUtc(QString::fromLatin1(c.utc)), c.clock), c.expected) << c.name;
  }
}

}  // namespace
}  // namespace marvento
