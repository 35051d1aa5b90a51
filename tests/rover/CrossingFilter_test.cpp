#include "rover/CrossingFilter.h"

#include <gtest/gtest.h>
#include <QStringList>

#include <cmath>
#include <numbers>
#include <random>

namespace marvento {
namespace {

constexpr double kMetresPerDegree = kRoverEarthRadiusM * std::numbers::pi / 180.0;

struct FilterCase {
  const char* name;
  double metresNorth;  // from the row edge at 52.5 N, south negative
  const char* event;   // "" none, "start", or the square entered
};

// Fixes about the row edge at 52.5 N (JO62QL below, JO62QM above), margin 25 m.
TEST(CrossingFilter, ACrossingCountsOnlyTheMarginInside) {
  const FilterCase drive[] = {
      {"start below", -100, "start"},
      {"just across", 10, ""},
      {"still short", 24, ""},
      {"back below", -5, ""},
      {"across again", 20, ""},
      {"margin reached", 26, "JO62QM"},
      {"deeper", 300, ""},
      {"just below", -3, ""},
      {"below within margin", -20, ""},
      {"below beyond margin", -30, "JO62QL"},
  };
  CrossingFilter filter(SquareLevel::Six, 25);
  for (const FilterCase& c : drive) {
    const auto step = filter.next({52.5 + c.metresNorth / kMetresPerDegree, 13.38});
    QString event;
    if (step.started) event = QStringLiteral("start");
    if (step.crossed) event = CellLocator(step.to);
    EXPECT_EQ(event, QString::fromLatin1(c.event)) << c.name;
  }
}

TEST(CrossingFilter, MarginZeroCountsEverySquareChangeAndLevelFourIgnoresSubsquares) {
  CrossingFilter every(SquareLevel::Six, 0);
  CrossingFilter fields(SquareLevel::Four, 25);
  int everyCount = 0, fieldCount = 0;
  // East along 52.52 N from 13.30 to 14.20 E: subsquare edges every 1/12°, one square edge at 14.
  for (int i = 0; i <= 900; ++i) {
    const GeoPoint p{52.52, 13.30 + i * 0.001};
    everyCount += every.next(p).crossed;
    fieldCount += fields.next(p).crossed;
  }
  EXPECT_EQ(everyCount, 11);  // 13.3333, 13.4167, ... 14.0833, 14.1667
  EXPECT_EQ(fieldCount, 1);
  EXPECT_EQ(CellLocator(*fields.square()), QStringLiteral("JO72"));
}

// A drive along the row edge at 52.5 N with GPS noise that drifts slowly (a random walk held
// within 15 m), then a real turn north across it and back south across it again: two
// crossings, none for the jitter, whatever the seed.
TEST(CrossingFilter, ADriveAlongAnEdgeWithDriftingNoiseGivesOneCrossingPerRealCrossing) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> kick(0.0, 2.0);
    double error = 0;
    const auto noisy = [&](double north) {
      error = std::clamp(error + kick(random), -15.0, 15.0);
      return north + error;
    };
    CrossingFilter filter(SquareLevel::Six, 25);
    QStringList entered;
    double lon = 13.34;
    const auto fix = [&](double north) {
      lon += 0.0001;  // about 7 m a second, and all in one column
      const auto step = filter.next({52.5 + noisy(north) / kMetresPerDegree, lon});
      if (step.crossed) entered << CellLocator(step.to);
    };
    for (int i = 0; i < 5; ++i) fix(-100);           // the start, well south
    for (int i = 0; i < 200; ++i) fix(-2);           // along the edge, just south
    for (int i = 0; i <= 20; ++i) fix(-2 + i * 10);  // turn north, 200 m across
    for (int i = 0; i < 50; ++i) fix(198);
    for (int i = 0; i <= 20; ++i) fix(198 - i * 10);  // back to the edge
    for (int i = 0; i < 150; ++i) fix(2);             // along it, just north
    for (int i = 0; i <= 20; ++i) fix(2 - i * 10);    // then south for good
    EXPECT_EQ(entered, QStringList({"JO62QM", "JO62QL"}))
        << "seed " << seed << ": " << entered.join(u' ').toStdString();
  }
}

}  // namespace
}  // namespace marvento
