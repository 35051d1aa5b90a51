#include "gps/GpsTime.h"

#include "support/GermanLocale.h"

namespace marvento {
namespace {

// What the second status panel shows, and whether the field is a time of day at all; the
// other parts are read by the clock correction below.
TEST(GpsTime, SplitsTheUtcField) {
  const struct {
    const char* utc;
    const char* shown;
    bool inRange;
  } cases[] = {
      // Whole seconds begun, not rounded: a rounded 59.6 would show a 60th second.
      {"123519.60", "12:35:19", true},
      {"235959.90", "23:59:59", true},
      {"123559.999", "12:35:59", true},
      {"000000.00", "00:00:00", true},
      {"235960.50", "23:59:60", true},  // the leap second
      // Receivers that send no fraction mean hhmmss.
      {"123519", "12:35:19", true},
      {"256161.00", "25:61:61", false},
      {"240000.00", "24:00:00", false},
      {"126000.00", "12:60:00", false},
      {"123560.00", "12:35:60", false},  // 60 only after 23:59
      {"235961.00", "23:59:61", false},
      {"1.5", "::01", false},  // a point too far left: minutes and hours are skipped steps
      {"-23519.00", "-2:35:19", false},
  };
  for (const auto& c : cases) {
    const UtcTimeParts parts = SplitUtc(QString::fromLatin1(c.utc));
    EXPECT_EQ(parts.shown, QString::fromLatin1(c.shown)) << c.utc;
    EXPECT_EQ(parts.inRange, c.inRange) << c.utc;
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
