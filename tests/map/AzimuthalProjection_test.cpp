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
    const GeoPoint mid = projection.Direct(km / 2, bearing);
    double gap = 0, a = 0, b = 0;
    sphere().Inverse(mid.lat, mid.lon, mlat, mlon, gap, a, b);
    EXPECT_LT(gap, 1.0) << c.name << " half way, metres";
    // Points of the reference's great circle, on the short path and on round the earth,
    // lie on the lines the map draws (within a metre).
    const PathLines paths = GreatCirclePaths(projection, c.point);
    const double round = 2 * M_PI * kR;
    for (const double f : {0.25, 0.6, 1.0, 1.2, 1.6, 1.85}) {
      const bool onShort = f <= 1.0;
      const double s = onShort ? f * km : km + (f - 1.0) * (round - km);
      double plat = 0, plon = 0;
      sphere().Direct(c.centre.lat, lon0, azi1, s * 1000.0, plat, plon);
      double px = 0, py = 0, pazi = 0, prk = 0;
      reference.Forward(c.centre.lat, lon0, plat, plon, px, py, pazi, prk);
      const QPointF p(px / 1000.0, py / 1000.0);
      std::vector<KmLine> lines = paths.longPath;
      if (onShort) lines = {paths.shortPath};
      double nearest = 1e300;
      for (const KmLine& line : lines) {
        for (std::size_t i = 1; i < line.size(); ++i) {
          const QPointF u = line[i] - line[i - 1], w = p - line[i - 1];
          const double len2 = QPointF::dotProduct(u, u);
          const double t = len2 > 0 ? std::clamp(QPointF::dotProduct(w, u) / len2, 0.0, 1.0) : 0;
          const QPointF d = w - u * t;
          nearest = std::min(nearest, std::hypot(d.x(), d.y()));
        }
      }
      EXPECT_LT(nearest, 1e-3) << c.name << (onShort ? " short" : " long") << " path at " << f;
    }
    EXPECT_NEAR(paths.shortPath.back().x(), x, 1e-9) << c.name;
    EXPECT_NEAR(paths.shortPath.back().y(), y, 1e-9) << c.name;
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

TEST(ProjectLine, PointsLandWhereTheProjectionPutsThem) {
  for (const GeoPoint centre :
       {GeoPoint{52.5, 13.4}, GeoPoint{-33.9, 151.2}, GeoPoint{90, 0}, GeoPoint{0, 180}}) {
    const AzimuthalProjection projection(centre, kR);
    for (double lat = -89.5; lat < 90; lat += 7.25) {
      for (double lon = -180; lon < 180; lon += 11.5) {
        double x = 0, y = 0;
        projection.Forward(lat, lon, x, y);
        if (std::hypot(x, y) > projection.antipodeKm() - 1.0) continue;
        const auto pieces = ProjectLine(projection, GeoLine{{lat, lon}, {lat, lon}}, 1.0);
        ASSERT_EQ(pieces.size(), 1u);
        EXPECT_NEAR(pieces[0][0].x(), x, 1e-7) << lat << ' ' << lon;
        EXPECT_NEAR(pieces[0][0].y(), y, 1e-7) << lat << ' ' << lon;
      }
    }
  }
}

TEST(ProjectRing, CoastPiecesAreTheClosedRingAsProjectLineGivesIt) {
  const AzimuthalProjection projection({52.5, 13.4}, kR);
  // Round a place near the centre, and along the antipode (-52.5, -166.6), where the ring
  // is cut into pieces.
  const GeoLine rings[] = {{{50, 10}, {50, 20}, {45, 20}, {45, 10}},
                           {{-52.5, -170}, {-52.5, -163}, {-40, -163}, {-40, -170}}};
  for (const GeoLine& ring : rings) {
    std::vector<KmLine> pieces;
    ProjectRing(projection, ToUnitLine(ring), 1.0, &pieces);
    GeoLine closed = ring;
    closed.push_back(ring.front());
    const std::vector<KmLine> lines = ProjectLine(projection, closed, 1.0);
    // The same points, though a ring cut at the antipode may start its first piece elsewhere.
    std::size_t a = 0, b = 0;
    for (const KmLine& p : pieces) a += p.size();
    for (const KmLine& p : lines) b += p.size();
    EXPECT_EQ(a, b);
    EXPECT_EQ(pieces.size(), lines.size());
    EXPECT_GE(lines.size(), &ring == &rings[0] ? 1u : 2u) << "cut at the antipode";
    if (lines.size() == 1) {
      ASSERT_EQ(pieces.size(), 1u);
      for (std::size_t i = 0; i < lines[0].size(); ++i) {
        EXPECT_NEAR(pieces[0][i].x(), lines[0][i].x(), 1e-9);
        EXPECT_NEAR(pieces[0][i].y(), lines[0][i].y(), 1e-9);
      }
    }
  }
}

// How often a closed polygon turns round a point.
int windingRound(const KmLine& ring, QPointF p) {
  int w = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const QPointF a = ring[i] - p, b = ring[(i + 1) % ring.size()] - p;
    if ((a.x() > 0) != (b.x() > 0) && a.y() + (b.y() - a.y()) * -a.x() / (b.x() - a.x()) > 0)
      w += b.x() < a.x() ? 1 : -1;
  }
  return w;
}

// A land larger than a hemisphere, land on the right: along 60° N from 10° W to 170° E, south
// to the equator, west to 60° E, down to 35° S at 20° E and back north along 15° W.
UnitLine bigLand() {
  GeoLine ring;
  const auto run = [&](GeoPoint from, GeoPoint to) {
    const int n = int(std::max(std::fabs(to.lat - from.lat), std::fabs(to.lon - from.lon)) / 0.5);
    for (int i = 0; i < n; ++i)
      ring.push_back(
          {from.lat + (to.lat - from.lat) * i / n, from.lon + (to.lon - from.lon) * i / n});
  };
  run({60, -15}, {60, 170});
  run({60, 170}, {0, 170});
  run({0, 170}, {0, 60});
  run({0, 60}, {-35, 20});
  run({-35, 20}, {-35, -15});
  run({-35, -15}, {60, -15});
  ring.push_back(ring.front());
  return ToUnitLine(ring);
}

bool landHolds(const UnitLine& ring, GeoPoint place) {
  return ProjectRing(AzimuthalProjection(place, kR), ring, 1.0).areaHoldsCentre(true);
}

TEST(ProjectRing, CutRingTurnsRoundEveryPlaceInReachAsTheWholeRing) {
  const UnitLine ring = bigLand();
  EXPECT_GE(CapOf(ring.data(), ring.size()).radius, M_PI / 2) << "the test land is a big one";
  const std::vector<SphereCap> caps = RingRunCaps(ring);
  for (const SphereCap& cap : caps) EXPECT_LT(cap.radius, M_PI / 2);
  struct Row {
    GeoPoint centre;
    double reachKm;
  } rows[] = {{{50, 40}, 800},   {{50, 40}, 3000},   {{59.9, 100}, 50}, {{-40, 0}, 2500},
              {{20, -60}, 4000}, {{-10, 100}, 1500}, {{0.1, 120}, 300}, {{70, -100}, 9000}};
  for (const Row& row : rows) {
    SCOPED_TRACE(std::to_string(row.centre.lat) + " " + std::to_string(row.centre.lon) + " " +
                 std::to_string(row.reachKm));
    const AzimuthalProjection projection(row.centre, kR);
    const KmRing whole = ProjectRing(projection, ring, 1.0);
    const RingReach reach{row.reachKm, &caps};
    const KmRing cut = ProjectRing(projection, ring, 1.0, nullptr, &reach);
    EXPECT_TRUE(cut.cut);
    EXPECT_LT(cut.points.size(), whole.points.size());
    EXPECT_EQ(cut.windingAtCentre, whole.windingAtCentre);
    EXPECT_EQ(cut.windingAtCentre, windingRound(whole.points, {0, 0}));
    for (double x = -1; x <= 1; x += 0.125) {
      for (double y = -1; y <= 1; y += 0.125) {
        if (std::hypot(x, y) > 0.98) continue;
        const QPointF p(x * row.reachKm + 1e-3, y * row.reachKm + 2e-3);
        ASSERT_EQ(windingRound(cut.points, p), windingRound(whole.points, p)) << x << ' ' << y;
      }
    }
  }
}

TEST(AreaSideChanges, OddCrossingsWhereTheLandHoldsOnlyOneOfTwoPlaces) {
  const UnitLine ring = bigLand();
  const GeoPoint places[] = {{50, 40},   {-40, 0},   {20, -60},   {59.9, 100}, {60.1, 100},
                             {-10, 100}, {0.1, 120}, {-0.1, 120}, {-89, 0},    {89, 170}};
  int landCount = 0;
  for (const GeoPoint a : places) {
    landCount += landHolds(ring, a);
    for (const GeoPoint b : places) {
      EXPECT_EQ(AreaSideChanges(ring, ToUnitLine({a}).front(), ToUnitLine({b}).front()),
                landHolds(ring, a) != landHolds(ring, b))
          << a.lat << ' ' << a.lon << " to " << b.lat << ' ' << b.lon;
    }
  }
  EXPECT_EQ(landCount, 3) << "land at 50N 40E, 59.9N 100E and 0.1N 120E";
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
  // Subsquares in a small box: meridians 5' apart, parallels 2.5' apart, each on its own
  // meridian or parallel from end to end.
  const auto sub = GridLines(2, 48.0, 48.1, 11.5, 11.6, 0.01);
  ASSERT_EQ(sub.size(), 2u + 3u);
  const auto latOf = [](const UnitVector& v) { return std::asin(v.z) / kDeg; };
  const auto lonOf = [](const UnitVector& v) { return std::atan2(v.y, v.x) / kDeg; };
  const double meridians[] = {11.5, 11.5 + 1.0 / 12};
  const double parallels[] = {48.0, 48.0 + 1.0 / 24, 48.0 + 2.0 / 24};
  for (std::size_t i = 0; i < sub.size(); ++i) {
    ASSERT_GE(sub[i].size(), 2u);
    for (const UnitVector& v : sub[i]) {
      EXPECT_NEAR(std::hypot(std::hypot(v.x, v.y), v.z), 1.0, 1e-12);
      if (i < 2) {
        EXPECT_NEAR(lonOf(v), meridians[i], 1e-9);
        EXPECT_GE(latOf(v), 48.0 - 1e-9);
        EXPECT_LE(latOf(v), 48.1 + 1e-9);
      } else {
        EXPECT_NEAR(latOf(v), parallels[i - 2], 1e-9);
      }
    }
  }
}

}  // namespace
}  // namespace marvento
