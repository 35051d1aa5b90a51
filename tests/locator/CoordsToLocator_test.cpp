#include "locator/CoordsToLocator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace marvento {
namespace {

TEST(CoordsToLocator, MatchesTheWorkedPositionsAndCellEdges) {
  const struct {
    double Lg, Br;
    const char* six;
    const char* ten;
  } cases[] = {
      {13.4, 52.52, "JO62QM", "JO62QM84AT"},
      {0, 0, "JJ00AA", "JJ00AA00AA"},
      // 6 characters are the true square: no truncation carries them across the zero lines.
      {-0.004, -0.004, "II99XX", "II99XX99MA"},
      // 0.084 lies east of the subsquare edge at 1/12 degree, in both forms alike.
      {0.084, 0, "JJ00BA", "JJ00BA00BA"},
      // -163.67 lies west of the edge at -163.6666..., so its square is D, not E.
      {-163.67, 0.5, "AJ80DM", "AJ80DM90OA"},
      {179.9999999, 89.9999999, "RR99XX", "RR99XX99XX"},
      {-179.9999999, -89.9999999, "AA00AA", "AA00AA00AA"},
      // 370 m north of the row edge at 52.5417 degrees: the station is in N, not in M.
      {13.375, 52.545, "JO62QN", "JO62QN50AT"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.Lg << " / " << c.Br);
    EXPECT_EQ(CoordsToLocator6(c.Lg, c.Br), QLatin1String(c.six));
    EXPECT_EQ(CoordsToLocator10(c.Lg, c.Br), QLatin1String(c.ten));
  }
}

// Subsquares counted from the south-west corner of the grid: 4320 columns of 1/12 degree and
// 4320 rows of 1/24 degree. The locator of a column and a row is built from the whole numbers
// alone, so it knows nothing of how a position is turned into one.
std::string referenceSquare(int column, int row) {
  std::string loc(6, ' ');
  loc[0] = static_cast<char>('A' + column / 240);
  loc[1] = static_cast<char>('A' + row / 240);
  loc[2] = static_cast<char>('0' + column / 24 % 10);
  loc[3] = static_cast<char>('0' + row / 24 % 10);
  loc[4] = static_cast<char>('A' + column % 24);
  loc[5] = static_cast<char>('A' + row % 24);
  return loc;
}

constexpr double kMetresPerDegree = 111320.0;
constexpr double kPi = 3.14159265358979323846;

// Every column edge of the grid, crossed along a row north and a row south of the equator,
// and every row edge, crossed along a column east and a column west of the zero meridian,
// one metre on either side: the 6-character locator names the square on that side in all
// four quadrants, and the 10-character one starts with it.
TEST(CoordsToLocator, OneMetreEitherSideOfEveryEdgeIsInTheSquareOnThatSide) {
  int wrong = 0;
  auto check = [&wrong](double lg, double br, int column, int row) {
    const QString six = CoordsToLocator6(lg, br);
    if (six.toStdString() == referenceSquare(column, row) &&
        CoordsToLocator10(lg, br).startsWith(six)) {
      return;
    }
    if (++wrong <= 5) ADD_FAILURE() << lg << " / " << br << ": " << qPrintable(six);
  };
  for (const int row : {3400, 900}) {  // 51.7 N and 52.5 S
    const double br = -90 + (row + 0.5) / 24.0;
    const double metre = 1 / (kMetresPerDegree * std::cos(br * kPi / 180));
    for (int edge = 1; edge < 4320; ++edge) {
      const double lg = -180 + edge / 12.0;
      check(lg - metre, br, edge - 1, row);
      check(lg + metre, br, edge, row);
    }
  }
  for (const int column : {2300, 1500}) {  // 11.7 E and 55 W
    const double lg = -180 + (column + 0.5) / 12.0;
    const double metre = 1 / kMetresPerDegree;
    for (int edge = 1; edge < 4320; ++edge) {
      const double br = -90 + edge / 24.0;
      check(lg, br - metre, column, edge - 1);
      check(lg, br + metre, column, edge);
    }
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace
}  // namespace marvento
