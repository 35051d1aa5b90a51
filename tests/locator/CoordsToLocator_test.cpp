#include "locator/CoordsToLocator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace marvento {
namespace {

struct EncodeCase {
  double Lg;
  double Br;
  const char* six;
  const char* ten;  // nullptr where only the 6-character form is of interest
};

TEST(CoordsToLocator, MatchesTheWorkedPositionsAndCellEdges) {
  const EncodeCase cases[] = {
      {13.4, 52.52, "JO62QM", "JO62QM84AT"},
      {151.21, -33.87, "QF56OD", nullptr},
      {0, 0, "JJ00AA", "JJ00AA00AA"},
      {-0.5, -0.5, "II99SM", "II99SM00AA"},
      // Truncation toward zero carries the 6-character form across both zero lines.
      {-0.004, -0.004, "JJ00AA", "II99XX99MA"},
      {0.084, 0, "JJ00AA", "JJ00BA00BA"},
      // -163.67 * 100 is -16366.999999999998 and must truncate to -16366, not round.
      {-163.67, 0.5, "AJ80EM", "AJ80DM90OA"},
      {179.9999999, 89.9999999, "RR99XX", "RR99XX99XX"},
      {-179.9999999, -89.9999999, "AA00AA", "AA00AA00AA"},
      // The corner of "BB35LF84OR" as decoded lies a hair below its cell edges.
      {-153.01180555555558, -74.77204861111112, "BB35LF", "BB35LF84NQ"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.Lg << " / " << c.Br);
    EXPECT_EQ(CoordsToLocator6(c.Lg, c.Br), QLatin1String(c.six));
    EXPECT_EQ(CoordsToLocator(c.Lg, c.Br, false), QLatin1String(c.six));
    if (c.ten) {
      EXPECT_EQ(CoordsToLocator10(c.Lg, c.Br), QLatin1String(c.ten));
      EXPECT_EQ(CoordsToLocator(c.Lg, c.Br, true), QLatin1String(c.ten));
    }
  }
}

// Floor division, also for negative numbers.
int floorDiv(int a, int b) {
  return a / b - ((a % b != 0) && ((a < 0) != (b < 0)));
}

// The three characters of one axis for a position of k hundredths of a degree, in whole
// numbers: steps of `perDegree` cells per degree counted from the grid's lower edge.
QString axisOracle(int k, int perDegree, int degreesPerSquare, int halfRange) {
  const int step = floorDiv(k * perDegree, 100) + halfRange * perDegree;
  const int perSquare = perDegree * degreesPerSquare;
  QString s;
  s += QChar(u'A' + step / (perSquare * 10));
  s += QChar(u'0' + (step / perSquare) % 10);
  s += QChar(u'A' + step % perSquare);
  return s;
}

// A position half a hundredth past grid point k, so that the truncation lands on k.
double pastHundredth(int k) {
  return (k + (k < 0 ? -0.5 : 0.5)) / 100.0;
}

// Every cell edge of the 6-character form must fall where whole-number arithmetic puts it,
// for every hundredth of a degree; the float arithmetic may not misplace one.
TEST(CoordsToLocator6, PlacesEveryHundredthLikeWholeNumberArithmetic) {
  int wrong = 0;
  for (int k = -18000; k < 18000; ++k) {
    const QString loc = CoordsToLocator6(pastHundredth(k), 0.005);
    const QString want = axisOracle(k, 12, 2, 180);
    const QString got = QString{loc[0]} + loc[2] + loc[4];
    if (got != want && ++wrong <= 5)
      ADD_FAILURE() << "Lg hundredths " << k << ": " << got.toStdString();
  }
  for (int k = -9000; k < 9000; ++k) {
    const QString loc = CoordsToLocator6(0.005, pastHundredth(k));
    const QString want = axisOracle(k, 24, 1, 90);
    const QString got = QString{loc[1]} + loc[3] + loc[5];
    if (got != want && ++wrong <= 5)
      ADD_FAILURE() << "Br hundredths " << k << ": " << got.toStdString();
  }
  EXPECT_EQ(wrong, 0);
}

// Outside the grid a coordinate is held at its edge and NaN counts as 0: no caller passes
// such values, but they must never yield a character outside the alphabet.
TEST(CoordsToLocator, HoldsPositionsOutsideTheGridAtItsEdges) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const double below180 = std::nextafter(180.0, 0.0);
  const EncodeCase cases[] = {
      {180, 90, "RR99XX", "RR99XX99XX"},
      {inf, -inf, "RA90XA", "RA90XA90XA"},
      {nan, nan, "JJ00AA", "JJ00AA00AA"},
      {nan, 52.52, "JO02AM", "JO02AM04AT"},
      // Inside the range, but + 180 rounds up to 360: still the top field, not an "S".
      {below180, std::nextafter(90.0, 0.0), "RR99XX", "RR99XX99XX"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.Lg << " / " << c.Br);
    EXPECT_EQ(CoordsToLocator6(c.Lg, c.Br), QLatin1String(c.six));
    EXPECT_EQ(CoordsToLocator10(c.Lg, c.Br), QLatin1String(c.ten));
  }
}

}  // namespace
}  // namespace marvento
