#include "map/AzimuthalProjection.h"
#include "map/MapGeometry.h"

#include <GeographicLib/AzimuthalEquidistant.hpp>
#include <GeographicLib/Geodesic.hpp>

#include <gtest/gtest.h>

#include <cmath>

namespace marvento {
namespace {

constexpr double kR = 6371.0;

struct Case {
  const char* name;
  GeoPoint centre;
  GeoPoint point;
};

// The reference solves the same problems on a sphere (flattening 0) in metres.
const GeographicLib::Geodesic& sphere() {
  static const GeographicLib::Geodesic g(kR * 1000.0, 0.0);
  return g;
}

// GeographicLib orients a pole centre by the longitude given; the map puts the 0° meridian up.
double referenceLon0(GeoPoint c) {
  if (c.lat >= 90.0) return 180.0;
  if (c.lat <= -90.0) return 0.0;
  return c.lon;
}

class ProjectionTable : public testing::TestWithParam<Case> {};

TEST_P(ProjectionTable, ForwardReverseAndPathAgreeWithGeographicLib) {
  const Case& c = GetParam();
  const AzimuthalProjection projection(c.centre, kR);
  const GeographicLib::AzimuthalEquidistant reference(sphere());
  const double lon0 = referenceLon0(c.centre);

  double x = 0, y = 0;
  projection.Forward(c.point.lat, c.point.lon, x, y);
  double rx = 0, ry = 0, razi = 0, rrk = 0;
  reference.Forward(c.centre.lat, lon0, c.point.lat, c.point.lon, rx, ry, razi, rrk);
  const double distance = std::hypot(rx, ry) / 1000.0;
  // Distance from the centre to within a millimetre per 1000 km; direction to within a few
  // metres on the ground, except at the antipode where every direction is right.
  EXPECT_NEAR(std::hypot(x, y), distance, 1e-6 * (1 + distance)) << c.name;
  if (distance < projection.antipodeKm() - 1e-3) {
    EXPECT_NEAR(x, rx / 1000.0, 5e-3) << c.name;
    EXPECT_NEAR(y, ry / 1000.0, 5e-3) << c.name;
  }

  // Back to the point (longitude compared only where it is defined).
  double lat = 0, lon = 0;
  projection.Reverse(x, y, lat, lon);
  EXPECT_NEAR(lat, c.point.lat, 1e-7) << c.name;
  if (std::fabs(c.point.lat) < 90.0 - 1e-6) {
    EXPECT_NEAR(std::remainder(lon - c.point.lon, 360.0), 0.0, 1e-6) << c.name;
  }

  // The point half way along the short path, from the reference's direct problem.
  double km = 0, bearing = 0;
  projection.Inverse(c.point.lat, c.point.lon, km, bearing);
  double s12 = 0, azi1 = 0, azi2 = 0;
  sphere().Inverse(c.centre.lat, lon0, c.point.lat, c.point.lon, s12, azi1, azi2);
  EXPECT_NEAR(km, s12 / 1000.0, 1e-6 * (1 + km)) << c.name;
  if (km > 1e-3 && km < projection.antipodeKm() - 1e-3) {
    double mlat = 0, mlon = 0;
    sphere().Direct(c.centre.lat, lon0, azi1, s12 / 2, mlat, mlon);
    const PathLines paths = GreatCirclePaths(projection, c.point, km / 7.5);
    const GeoPoint mid = projection.Direct(km / 2, bearing);
    double gap = 0, a = 0, b = 0;
    sphere().Inverse(mid.lat, mid.lon, mlat, mlon, gap, a, b);
    EXPECT_LT(gap, 1.0) << c.name << " half way, metres";
    // Both paths end at the other station; together they go once round the earth.
    EXPECT_EQ(paths.shortPath.back(), c.point);
    EXPECT_EQ(paths.longPath.front(), c.point);
    sphere().Inverse(paths.longPath.back().lat, paths.longPath.back().lon, c.centre.lat,
                     c.centre.lon, gap, a, b);
    EXPECT_LT(gap, 1.0) << c.name << " long path back home, metres";
  }
}

INSTANTIATE_TEST_SUITE_P(
    Edges, ProjectionTable,
    testing::Values(Case{"JO62 to W1", {52.5, 13.4}, {42.36, -71.06}},
                    Case{"Across 180°", {-17.7, 178.0}, {-16.5, -179.8}},
                    Case{"Centre on 180°", {10.0, 180.0}, {10.0, -170.0}},
                    Case{"Centre on -180°", {10.0, -180.0}, {-20.0, 175.0}},
                    Case{"Near the antipode", {52.5, 13.4}, {-52.4999, -166.6}},
                    Case{"Antipode", {30.0, 20.0}, {-30.0, -160.0}},
                    Case{"Identical", {48.1, 11.6}, {48.1, 11.6}},
                    Case{"A few metres", {48.1, 11.6}, {48.10002, 11.60003}},
                    Case{"North pole centre", {90.0, 0.0}, {50.0, 90.0}},
                    Case{"North pole centre, 0° meridian", {90.0, 123.0}, {10.0, 0.0}},
                    Case{"South pole centre", {-90.0, 0.0}, {-60.0, -45.0}},
                    Case{"To the pole", {52.5, 13.4}, {90.0, 0.0}},
                    Case{"Equator quarter", {0.0, 0.0}, {0.0, 90.0}}),
    [](const testing::TestParamInfo<Case>& info) { return "row" + std::to_string(info.index); });

TEST(ProjectLine, NoPieceJumpsAcrossTheMapAtTheAntipodeOrAt180) {
  const AzimuthalProjection projection({52.5, 13.4}, kR);
  // Lines through the antipode (-52.5, -166.6) and along the 180° meridian.
  const std::vector<GeoLine> lines = {{{-80, -166.6}, {0, -166.6}},
                                      {{-52.5, 150}, {-52.5, 170}, {-52.5, -150}},
                                      {{-60, 180}, {60, -180}},
                                      {{10, 170}, {10, -170}}};
  for (const GeoLine& line : lines) {
    for (const KmLine& piece : ProjectLine(projection, line, 1.0)) {
      for (std::size_t i = 1; i < piece.size(); ++i) {
        const double step =
            std::hypot(piece[i].x() - piece[i - 1].x(), piece[i].y() - piece[i - 1].y());
        EXPECT_LT(step, 0.5 * kR);
      }
    }
  }
  // Away from the antipode, a line across 180° stays one piece.
  EXPECT_EQ(ProjectLine(projection, lines[3], 1.0).size(), 1u);
  // Through the antipode it is cut, not dropped.
  EXPECT_EQ(ProjectLine(projection, lines[0], 1.0).size(), 2u);
}

TEST(ProjectRing, TurningSenseTellsWhichSideHoldsTheAntipode) {
  const AzimuthalProjection projection({0, 0}, kR);
  // Clockwise round a place near the centre: land inside.
  const GeoLine nearRing = {{10, -10}, {10, 10}, {-10, 10}, {-10, -10}, {10, -10}};
  EXPECT_FALSE(ProjectRing(projection, nearRing, 1.0).anticlockwise);
  // The same turn round the antipode: its area is the outside of the projected ring.
  const GeoLine farRing = {{10, 170}, {10, -170}, {-10, -170}, {-10, 170}, {10, 170}};
  const KmRing far = ProjectRing(projection, farRing, 1.0);
  EXPECT_TRUE(far.anticlockwise);
  for (const QPointF& p : far.points)
    EXPECT_LE(std::hypot(p.x(), p.y()), projection.antipodeKm() + 1e-6);
}

TEST(Terminator, LiesAQuarterCircleFromTheSubsolarPoint) {
  const QDateTime utc(QDate(2024, 6, 20), QTime(12, 0), Qt::UTC);
  const GeoPoint sun = SubsolarPoint(utc);
  // Near the June solstice at noon UTC the sun stands over the Tropic of Cancer near 0°.
  EXPECT_NEAR(sun.lat, 23.43, 0.1);
  EXPECT_NEAR(sun.lon, 0.42, 0.1);  // the sun runs 1.7 minutes late
  for (const GeoPoint& p : Terminator(utc, 36)) {
    double s12 = 0, a = 0, b = 0;
    sphere().Inverse(sun.lat, sun.lon, p.lat, p.lon, s12, a, b);
    EXPECT_NEAR(s12 / 1000.0, kR * M_PI / 2, 1e-3);
  }
}

TEST(RingSpacing, RoundValuesAboutFourPerSpan) {
  const struct {
    double span, spacing;
  } rows[] = {{20015, 5000}, {10000, 2000}, {2500, 500}, {400, 100}, {10, 2}, {1, 0.2}};
  for (const auto& r : rows) EXPECT_DOUBLE_EQ(RingSpacingKm(r.span), r.spacing) << r.span;
}

TEST(GridLines, FieldsOfTheWholeEarth) {
  // 18 fields round, 19 meridians counting 180° twice; 17 parallels between the poles.
  const auto lines = GridLines(0, -90, 90, -180, 180, 5);
  EXPECT_EQ(lines.size(), 19u + 17u);
  // Subsquares in a small box: meridians 5' apart, parallels 2.5' apart.
  const auto sub = GridLines(2, 48.0, 48.1, 11.5, 11.6, 0.01);
  EXPECT_EQ(sub.size(), 2u + 3u);
}

}  // namespace
}  // namespace marvento
