#include "contest/IaruPoints.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

// Expected points worked out apart from the program (centres of the 6-character squares,
// haversine on 111.2 km per degree, truncated, plus 1).
TEST(IaruPoints, RuleWithItsEdges) {
  const struct {
    const char* own;
    const char* remote;
    int points;
    const char* why;
  } cases[] = {
      {"JO62QM", "JO62QM", 1, "same square"},
      {"JO62QM", "jo62qm", 1, "same square in small letters"},
      {"JO62QM12", "JO62QM98XX", 1, "same square, longer locators"},
      {"JO62QM", "JO62RN", 8, "neighbour, 7.30 km"},
      {"JO62QM", "JO62QL", 5, "4.63 km"},
      {"JO62QM", "JO70ED", 274, "273.08 km"},
      {"JO62QM", "IO91WM", 930, "929.08 km"},
      {"JO62QM", "JO61QG", 140, "exactly 139 km: the whole kilometre counts"},
      {"JO62QM", "JN67QM", 557, "exactly 556 km"},
      {"JO62QM", "IO37EV", 1800, "1799.999996 km, just below a whole kilometre"},
      {"JO62QM", "IO38NV", 1777, "1776.000008 km, just above a whole kilometre"},
      {"JO62QM84", "JO70ED", 274, "8 characters: their 6-character square"},
      {"JO62QM84AT", "JO70ED12XX", 274, "10 characters: their 6-character square"},
      {"JO62QM5", "JO70ED", 274, "an odd tail does not count"},
      {"JO62", "JO70ED", 0, "4 characters name no 6-character square"},
      {"JO62QM", "JO7", 0, "too short"},
      {"JO62QM", "JO62QY", 0, "Y is no subsquare letter"},
      {"JO62QM", "SA00AA", 0, "S is no field letter"},
      {"JO62QM", "", 0, "empty"},
      {"", "JO62QM", 0, "own locator empty"},
      {"AA00AA", "RR99XX", 20012, "opposite corners of the grid, 20011.37 km"},
      {"AJ00AA", "RJ90XA", 10, "across the date line, 9.27 km"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    const QString own = QString::fromLatin1(c.own), remote = QString::fromLatin1(c.remote);
    EXPECT_EQ(IaruPoints(own, remote), c.points) << c.own << ' ' << c.remote;
    EXPECT_EQ(IaruPoints(remote, own), c.points) << "the rule is symmetric";
  }
}

TEST(IaruPoints, SquareCentreAndBytes) {
  const auto s = SquareOf(u"jo62qm84");
  ASSERT_TRUE(s);
  EXPECT_EQ(QLatin1String(s->key, 6), QLatin1String("JO62QM"));
  EXPECT_NEAR(s->centre.lat, 52.5 + 1.0 / 48, 1e-12);
  EXPECT_NEAR(s->centre.lon, 13.375, 1e-12);
  const QByteArray bytes("JO62qmXX");
  const auto b = SquareOfLatin1(bytes.constData(), bytes.size());
  ASSERT_TRUE(b);
  EXPECT_TRUE(*b == *s);
  EXPECT_FALSE(SquareOfLatin1("JO62\xe4m", 6));
}

}  // namespace
}  // namespace marvento
