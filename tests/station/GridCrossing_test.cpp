#include "station/GridCrossing.h"

#include "locator/CoordsToLocator.h"

#include <gtest/gtest.h>
#include <QStringList>

namespace marvento {
namespace {

// A drive east along 52.52° N from 13.30° E to 13.60° E, a fix every 0.005° (about 340 m),
// several fixes per subsquare, which is 1/12° wide: it passes four subsquare edges.
TEST(GridCrossing, ADriveGivesOneCrossingPerSquareEntered) {
  GridCrossing crossing;
  QStringList entered;
  for (int step = 0; step <= 60; ++step) {
    const GridCrossing::Step s = crossing.next(CoordsToLocator10(13.30 + step * 0.005, 52.52));
    if (s.crossed) entered << s.from + QStringLiteral(">") + s.to;
  }
  EXPECT_EQ(entered,
            QStringList({"JO62PM>JO62QM", "JO62QM>JO62RM", "JO62RM>JO62SM", "JO62SM>JO62TM"}));
  EXPECT_EQ(crossing.square(), QStringLiteral("JO62TM"));
}

TEST(GridCrossing, FirstFixSameSquareAndInvalidTextsAreNoCrossing) {
  struct Case {
    const char* locator;
    bool crossed;
    const char* square;  // the square after the step
  };
  const Case drive[] = {
      {"", false, ""},
      {"JO62QM", false, "JO62QM"},  // the first fix only sets the start
      {"JO62QM84AT", false, "JO62QM"},
      {"JO62Q", false, "JO62QM"},   // too short
      {"ZZ99ZZ", false, "JO62QM"},  // off the grid
      {"JO62QN", true, "JO62QN"},
      // Back into the square before is a crossing too: the track shows the return.
      {"JO62QM00AA", true, "JO62QM"},
  };
  GridCrossing crossing;
  for (const auto& c : drive) {
    SCOPED_TRACE(c.locator);
    const QString from = crossing.square();
    const GridCrossing::Step step = crossing.next(QString::fromLatin1(c.locator));
    EXPECT_EQ(step.crossed, c.crossed);
    EXPECT_EQ(crossing.square(), QLatin1String(c.square));
    if (step.crossed) {
      EXPECT_EQ(step.from, from);
      EXPECT_EQ(step.to, QLatin1String(c.square));
    }
  }
  crossing.reset();
  EXPECT_FALSE(crossing.next(QStringLiteral("JO62QM")).crossed);
}

}  // namespace
}  // namespace marvento
