#include "rover/GridSquare.h"

#include "locator/CoordsToLocator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace marvento {
namespace {

constexpr double kRad = std::numbers::pi / 180.0;

// The reference walks the great circle with the textbook destination formula and names each
// place by the program's general locator conversion, not by the grid cells under test.
GeoPoint destination(const GeoPoint& p, double courseDeg, double metres) {
  const double d = metres / kRoverEarthRadiusM, f1 = p.lat * kRad, c = courseDeg * kRad;
  const double f2 =
      std::asin(std::sin(f1) * std::cos(d) + std::cos(f1) * std::sin(d) * std::cos(c));
  const double l2 = p.lon * kRad + std::atan2(std::sin(c) * std::sin(d) * std::cos(f1),
                                              std::cos(d) - std::sin(f1) * std::sin(f2));
  double lon = std::fmod(l2 / kRad + 540.0, 360.0) - 180.0;
  if (lon >= 180.0) lon -= 360.0;
  return {f2 / kRad, lon};
}

QString squareAt(const GeoPoint& p, int characters) {
  return CoordsToLocator10(p.lon, std::min(p.lat, 89.9999999)).left(characters);
}

struct Reference {
  double distanceM;
  QString next;
};

// Marches in 5 m steps until the square changes, then halves the last step down to a
// millimetre.
Reference march(const GeoPoint& p, double course, int characters) {
  const QString start = squareAt(p, characters);
  double inside = 0, outside = 5;
  while (squareAt(destination(p, course, outside), characters) == start) {
    inside = outside;
    outside += 5;
  }
  while (outside - inside > 0.001) {
    const double mid = (inside + outside) / 2;
    (squareAt(destination(p, course, mid), characters) == start ? inside : outside) = mid;
  }
  return {outside, squareAt(destination(p, course, outside + 0.01), characters)};
}

struct AheadCase {
  const char* name;
  GeoPoint p;
  double course;
  int characters;
};

class BoundaryAlongTest : public testing::TestWithParam<AheadCase> {};

TEST_P(BoundaryAlongTest, MatchesAMarchAlongTheGreatCircle) {
  const AheadCase& c = GetParam();
  const SquareLevel level = c.characters == 4 ? SquareLevel::Four : SquareLevel::Six;
  EXPECT_EQ(CellLocator(CellAt(c.p, level)), squareAt(c.p, c.characters));
  const auto ahead = BoundaryAlong(c.p, c.course, level);
  ASSERT_TRUE(ahead.has_value());
  const Reference ref = march(c.p, c.course, c.characters);
  EXPECT_NEAR(ahead->distanceM, ref.distanceM, 0.05);
  EXPECT_EQ(CellLocator(ahead->next), ref.next);
  // The crossing point lies on the edge handed to the map.
  const GeoPoint x = destination(c.p, c.course, ref.distanceM);
  const auto& [a, b] = ahead->edge;
  if (a.lat == b.lat) {
    EXPECT_NEAR(x.lat, a.lat, 1e-6);
  } else {
    EXPECT_NEAR(std::cos(x.lat * kRad) * std::remainder(x.lon - a.lon, 360.0), 0, 1e-6);
    EXPECT_NEAR(a.lon, b.lon, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Courses, BoundaryAlongTest,
                         testing::Values(AheadCase{"north6", {52.52, 13.40}, 0, 6},
                                         AheadCase{"northeast6", {52.52, 13.40}, 45, 6},
                                         AheadCase{"east6", {52.52, 13.40}, 90, 6},
                                         AheadCase{"west6", {52.52, 13.40}, 271, 6},
                                         AheadCase{"south6", {52.52, 13.40}, 180, 6},
                                         AheadCase{"north4", {52.52, 13.40}, 0, 4},
                                         AheadCase{"northeast4", {52.52, 13.40}, 45, 4},
                                         AheadCase{"east4", {52.52, 13.40}, 90, 4},
                                         AheadCase{"west4", {52.52, 13.40}, 271, 4},
                                         AheadCase{"southern6", {-33.87, 151.21}, 200, 6},
                                         AheadCase{"overNorthPole6", {89.99, 10.04}, 0, 6},
                                         AheadCase{"nearNorthPoleEast6", {89.97, 10.04}, 90, 6},
                                         AheadCase{"overNorthPole4", {89.6, -45.0}, 3, 4},
                                         AheadCase{"nearSouthPole6", {-89.98, -100.04}, 225, 6},
                                         AheadCase{"eastAcross180_6", {10.2, 179.97}, 90, 6},
                                         AheadCase{"eastAcross180_4", {10.2, 179.7}, 90, 4},
                                         AheadCase{"westAcross180_6", {-5.3, -179.99}, 271, 6},
                                         AheadCase{"westAcross180_4", {-5.3, -179.4}, 271, 4}),
                         [](const testing::TestParamInfo<AheadCase>& info) {
                           return std::string(info.param.name);
                         });

double haversine(const GeoPoint& a, const GeoPoint& b) {
  const double df = (b.lat - a.lat) * kRad, dl = (b.lon - a.lon) * kRad;
  const double h = std::pow(std::sin(df / 2), 2) +
                   std::cos(a.lat * kRad) * std::cos(b.lat * kRad) * std::pow(std::sin(dl / 2), 2);
  return 2 * std::asin(std::sqrt(h)) * kRoverEarthRadiusM;
}

struct StillCase {
  GeoPoint p;
  int characters;
};

class NearestBoundaryTest : public testing::TestWithParam<StillCase> {};

// Standing still, the nearest edge is the least distance to any point of the square's outline,
// and the course given leads there.
TEST_P(NearestBoundaryTest, IsTheLeastDistanceToTheOutline) {
  const StillCase& c = GetParam();
  const SquareLevel level = c.characters == 4 ? SquareLevel::Four : SquareLevel::Six;
  const GridCell cell = CellAt(c.p, level);
  const GeoPoint sw = CellSouthWest(cell), ne = CellNorthEast(cell);
  double least = INFINITY;
  constexpr int kSteps = 20000;
  for (int i = 0; i <= kSteps; ++i) {
    const double t = double(i) / kSteps;
    const double lat = sw.lat + t * (ne.lat - sw.lat), lon = sw.lon + t * (ne.lon - sw.lon);
    for (const GeoPoint& q : {GeoPoint{lat, sw.lon}, GeoPoint{lat, ne.lon}, GeoPoint{sw.lat, lon},
                              GeoPoint{ne.lat, lon}}) {
      least = std::min(least, haversine(c.p, q));
    }
  }
  const auto nearest = NearestBoundary(c.p, level);
  ASSERT_TRUE(nearest.has_value());
  EXPECT_NEAR(nearest->distanceM, least, least * 1e-4 + 0.5);
  const Reference ref = march(c.p, nearest->bearingDeg, c.characters);
  EXPECT_NEAR(ref.distanceM, nearest->distanceM, 0.05);
  EXPECT_EQ(CellLocator(nearest->next), ref.next);
}

INSTANTIATE_TEST_SUITE_P(
    Standing, NearestBoundaryTest,
    testing::Values(StillCase{{52.5230, 13.4000}, 6}, StillCase{{52.5100, 13.4160}, 6},
                    StillCase{{52.5010, 13.3500}, 6}, StillCase{{52.3000, 12.0100}, 4},
                    StillCase{{52.9000, 13.0000}, 4}, StillCase{{-0.0200, 179.995}, 6},
                    StillCase{{89.99, 100.04}, 6}));

TEST(CellAt, WrapsLongitudeAndHoldsThePoles) {
  struct Case {
    GeoPoint p;
    SquareLevel level;
    const char* locator;
  };
  const Case cases[] = {
      {{52.52, 13.40}, SquareLevel::Six, "JO62QM"},
      {{52.52, 13.40}, SquareLevel::Four, "JO62"},
      {{0.0, 180.0}, SquareLevel::Six, "AJ00AA"},
      {{0.0, -180.0}, SquareLevel::Six, "AJ00AA"},
      {{0.0, 540.0}, SquareLevel::Four, "AJ00"},
      {{90.0, 0.0}, SquareLevel::Six, "JR09AX"},
      {{-90.0, 179.99}, SquareLevel::Six, "RA90XA"},
      {{-0.0001, -0.0001}, SquareLevel::Four, "II99"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(CellLocator(CellAt(c.p, c.level)), QString::fromLatin1(c.locator))
        << c.p.lat << " " << c.p.lon;
  }
}

TEST(DepthInside, IsTheDistanceToTheNearestEdge) {
  // 52.5 N is a row edge of the 6-character squares, 52 N of both; 13.5 E a column edge.
  const double metresPerDegreeLat = kRoverEarthRadiusM * kRad;
  EXPECT_NEAR(DepthInside({52.5003, 13.45}, SquareLevel::Six), 0.0003 * metresPerDegreeLat, 0.01);
  EXPECT_NEAR(DepthInside({52.52, 13.5004}, SquareLevel::Six),
              0.0004 * metresPerDegreeLat * std::cos(52.52 * kRad), 0.01);
  EXPECT_NEAR(DepthInside({52.0003, 13.45}, SquareLevel::Four), 0.0003 * metresPerDegreeLat, 0.01);
}

}  // namespace
}  // namespace marvento
