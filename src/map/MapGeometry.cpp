#include "map/MapGeometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marvento {

namespace {

using Vec = UnitVector;

Vec toVec(GeoPoint p) {
  const double phi = p.lat * kDeg, lam = p.lon * kDeg;
  return {std::cos(phi) * std::cos(lam), std::cos(phi) * std::sin(lam), std::sin(phi)};
}

double angleBetween(Vec a, Vec b) {
  const Vec c{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
  return std::atan2(std::sqrt(c.x * c.x + c.y * c.y + c.z * c.z),
                    a.x * b.x + a.y * b.y + a.z * b.z);
}

double dot(Vec a, Vec b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec cross(Vec a, Vec b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// atan2 in a few nanoseconds instead of glibc's several dozen, to about 1e-13 radians (well
// under a millimetre on the ground): the map projects tens of thousands of points a view. The
// argument is brought to within 7.5 degrees of a multiple of 15 degrees, where six terms of
// the series suffice.
double fastAtan2(double y, double x) {
  static const double kTan[] = {0.0, std::tan(std::numbers::pi / 12),
                                std::tan(std::numbers::pi / 6), 1.0};
  static const double kEdge[] = {std::tan(std::numbers::pi / 24), std::tan(std::numbers::pi / 8),
                                 std::tan(5 * std::numbers::pi / 24)};
  const double ay = std::fabs(y), ax = std::fabs(x);
  const bool steep = ay > ax;
  const double big = steep ? ay : ax;
  if (big == 0) return 0;
  const double t = (steep ? ax : ay) / big;
  const int k = (t > kEdge[0]) + (t > kEdge[1]) + (t > kEdge[2]);
  const double u = (t - kTan[k]) / (1 + t * kTan[k]);
  const double u2 = u * u;
  const double series =
      u * (1 - u2 * (1.0 / 3 - u2 * (1.0 / 5 - u2 * (1.0 / 7 - u2 * (1.0 / 9 - u2 / 11)))));
  double r = k * (std::numbers::pi / 12) + series;
  if (steep) r = std::numbers::pi / 2 - r;
  if (x < 0) r = std::numbers::pi - r;
  return y < 0 ? -r : r;
}

// The projection from unit vectors: the centre's up, east and north directions, so that a
// point costs three dot products, a square root and an arc tangent.
struct Frame {
  Vec up, east, north;
  double radiusKm;
  explicit Frame(const AzimuthalProjection& projection) : radiusKm(projection.radiusKm()) {
    const double phi = projection.centre().lat * kDeg, lam = projection.orientingLon() * kDeg;
    const double cosPhi = projection.centreAtPole() ? 0.0 : std::cos(phi);
    const double sinPhi = std::sin(phi);
    up = {cosPhi * std::cos(lam), cosPhi * std::sin(lam), sinPhi};
    east = {-std::sin(lam), std::cos(lam), 0};
    north = {-sinPhi * std::cos(lam), -sinPhi * std::sin(lam), cosPhi};
  }
  QPointF project(Vec v) const {
    const double e = dot(v, east), n = dot(v, north);
    const double h = std::sqrt(e * e + n * n);
    const double c = fastAtan2(h, dot(v, up));
    // At the centre and the antipode the direction is taken as up.
    if (h < 1e-15) return {0.0, c * radiusKm};
    const double k = c * radiusKm / h;
    return {e * k, n * k};
  }
  // Bearing from the centre, radians clockwise from up.
  double bearing(Vec v) const { return fastAtan2(dot(v, east), dot(v, north)); }
};

// Points from a towards b along the great circle, b included, a not; a segment shorter than
// the step gives b alone, without further arithmetic.
template <typename Emit>
void divide(Vec va, Vec vb, double cosStep, double stepDeg, Emit out) {
  const double d = dot(va, vb);
  if (d >= cosStep) {
    out(vb);
    return;
  }
  const double omega = angleBetween(va, vb);
  const int n = std::max(1, static_cast<int>(std::ceil(omega / (stepDeg * kDeg))));
  const double s = std::sin(omega);
  for (int i = 1; i < n && s > 1e-12; ++i) {
    const double t = double(i) / n;
    const double wa = std::sin((1 - t) * omega) / s, wb = std::sin(t * omega) / s;
    out(Vec{wa * va.x + wb * vb.x, wa * va.y + wb * vb.y, wa * va.z + wb * vb.z});
  }
  out(vb);
}

double polar(QPointF p) {
  return std::atan2(p.x(), p.y());
}

// Two consecutive points further apart than this (in radius units) lie either side of the
// antipode: a divided segment never stretches so far elsewhere.
constexpr double kJumpRadii = 0.5;

bool jumps(const AzimuthalProjection& projection, QPointF a, QPointF b) {
  const double d = std::hypot(a.x() - b.x(), a.y() - b.y());
  return d > kJumpRadii * projection.radiusKm();
}

}  // namespace

PathLines GreatCirclePaths(const AzimuthalProjection& projection, GeoPoint remote) {
  double km = 0, bearing = 0;
  projection.Inverse(remote.lat, remote.lon, km, bearing);
  const double rim = projection.antipodeKm();
  const auto at = [](double r, double deg) {
    return QPointF(r * std::sin(deg * kDeg), r * std::cos(deg * kDeg));
  };
  PathLines lines;
  lines.shortPath = {QPointF(0, 0), at(km, bearing)};
  if (rim - km > 1e-9) lines.longPath.push_back({at(km, bearing), at(rim, bearing)});
  lines.longPath.push_back({at(rim, bearing + 180.0), QPointF(0, 0)});
  return lines;
}

std::vector<UnitLine> GridLines(int level, double south, double north, double west, double east,
                                double stepDeg) {
  const double dLon = level == 0 ? 20.0 : level == 1 ? 2.0 : 2.0 / 24.0;
  const double dLat = dLon / 2.0;
  south = std::max(-90.0, south);
  north = std::min(90.0, north);
  if (east <= west) east += 360.0;
  // The sine and cosine of each sample latitude and longitude are worked out once: a point
  // of the grid then costs three products, not two trigonometric calls.
  struct Angle {
    double cos, sin;
  };
  const auto samples = [stepDeg](double from, double to) {
    const int n = std::max(1, static_cast<int>(std::ceil((to - from) / stepDeg)));
    std::vector<Angle> out;
    out.reserve(std::size_t(n) + 1);
    for (int i = 0; i <= n; ++i) {
      const double a = (from + (to - from) * i / n) * kDeg;
      out.push_back({std::cos(a), std::sin(a)});
    }
    return out;
  };
  std::vector<UnitLine> lines;
  // Meridians from pole side to pole side of the box, grid-aligned to -180.
  const std::vector<Angle> lats = samples(south, north);
  const double firstLon = -180.0 + std::ceil((west + 180.0) / dLon - 1e-9) * dLon;
  for (double lon = firstLon; lon <= east + 1e-9; lon += dLon) {
    const double cl = std::cos(lon * kDeg), sl = std::sin(lon * kDeg);
    UnitLine line;
    line.reserve(lats.size());
    for (const Angle& phi : lats) line.push_back({phi.cos * cl, phi.cos * sl, phi.sin});
    lines.push_back(std::move(line));
  }
  const std::vector<Angle> lons = samples(west, east);
  const double firstLat = -90.0 + std::ceil((south + 90.0) / dLat - 1e-9) * dLat;
  for (double lat = firstLat; lat <= north + 1e-9; lat += dLat) {
    if (std::fabs(lat) >= 90.0) continue;
    const double cp = std::cos(lat * kDeg), sp = std::sin(lat * kDeg);
    UnitLine line;
    line.reserve(lons.size());
    for (const Angle& lam : lons) line.push_back({cp * lam.cos, cp * lam.sin, sp});
    lines.push_back(std::move(line));
  }
  return lines;
}

GeoPoint SubsolarPoint(const QDateTime& utc) {
  // The sun's position from the low-precision formulas of the Astronomical Almanac.
  const QDateTime t = utc.toUTC();
  const double days = (t.toMSecsSinceEpoch() / 86400000.0) - 10957.5;  // since J2000.0
  const double g = std::fmod(357.529 + 0.98560028 * days, 360.0) * kDeg;
  const double q = std::fmod(280.459 + 0.98564736 * days, 360.0);
  const double l = (q + 1.915 * std::sin(g) + 0.020 * std::sin(2 * g)) * kDeg;
  const double e = (23.439 - 0.00000036 * days) * kDeg;
  const double ra = std::atan2(std::cos(e) * std::sin(l), std::cos(l)) / kDeg;
  const double dec = std::asin(std::sin(e) * std::sin(l)) / kDeg;
  const double gmst = std::fmod(280.46061837 + 360.98564736629 * days, 360.0);
  return {dec, NormalisedLongitude(ra - gmst)};
}

GeoLine Terminator(const QDateTime& utc, int points) {
  const GeoPoint sun = SubsolarPoint(utc);
  const AzimuthalProjection fromNight({-sun.lat, NormalisedLongitude(sun.lon + 180.0)});
  const double quarter = fromNight.antipodeKm() / 2.0;
  GeoLine ring;
  for (int i = 0; i <= points; ++i) ring.push_back(fromNight.Direct(quarter, 360.0 * i / points));
  ring.back() = ring.front();
  return ring;
}

double RingSpacingKm(double spanKm) {
  const double raw = std::max(spanKm, 1e-3) / 4.0;
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (double m : {1.0, 2.0, 5.0, 10.0}) {
    if (m * power >= raw * 0.7) return m * power;
  }
  return 10 * power;
}

UnitLine ToUnitLine(const GeoLine& line) {
  UnitLine out;
  out.reserve(line.size());
  for (const GeoPoint& p : line) out.push_back(toVec(p));
  return out;
}

std::vector<KmLine> ProjectLine(const AzimuthalProjection& projection, const GeoLine& line,
                                double stepDeg) {
  return ProjectLine(projection, ToUnitLine(line), stepDeg);
}

KmRing ProjectRing(const AzimuthalProjection& projection, const GeoLine& ring, double stepDeg) {
  return ProjectRing(projection, ToUnitLine(ring), stepDeg);
}

std::vector<KmLine> ProjectLine(const AzimuthalProjection& projection, const UnitLine& line,
                                double stepDeg) {
  std::vector<KmLine> pieces;
  if (line.empty()) return pieces;
  const Frame frame(projection);
  const double cosStep = std::cos(stepDeg * kDeg);
  Vec prev = line.front();
  KmLine current{frame.project(prev)};
  for (std::size_t i = 1; i < line.size(); ++i) {
    const Vec next = line[i];
    divide(prev, next, cosStep, stepDeg, [&](Vec v) {
      const QPointF q = frame.project(v);
      if (jumps(projection, current.back(), q)) {
        if (current.size() > 1) pieces.push_back(std::move(current));
        current.clear();
      }
      current.push_back(q);
    });
    prev = next;
  }
  if (current.size() > 1) pieces.push_back(std::move(current));
  return pieces;
}

KmRing ProjectRing(const AzimuthalProjection& projection, const UnitLine& ring, double stepDeg,
                   std::vector<KmLine>* pieces, const RingReach* reach) {
  KmRing out;
  if (ring.size() < 3) return out;
  const Frame frame(projection);
  const double cosStep = std::cos(stepDeg * kDeg);
  const double rim = projection.antipodeKm();
  KmLine& pts = out.points;
  pts.reserve(ring.size() + 1);
  const Vec first = ring.front();
  pts.push_back(frame.project(first));
  KmLine run;
  if (pieces) run.push_back(pts.back());
  const auto add = [&](Vec v) {
    const QPointF q = frame.project(v);
    if (jumps(projection, pts.back(), q)) {
      if (pieces) {
        if (run.size() > 1) pieces->push_back(std::move(run));
        run.clear();
      }
      // Round the antipode along the outer circle, the shorter way.
      const double a0 = polar(pts.back());
      double da = polar(q) - a0;
      while (da > std::numbers::pi) da -= 2 * std::numbers::pi;
      while (da < -std::numbers::pi) da += 2 * std::numbers::pi;
      const int n = std::max(2, static_cast<int>(std::fabs(da) / (2 * kDeg)));
      for (int k = 0; k <= n; ++k) {
        const double a = a0 + da * k / n;
        pts.emplace_back(rim * std::sin(a), rim * std::cos(a));
      }
    }
    pts.push_back(q);
    if (pieces) run.push_back(q);
  };
  // A run beyond the reach, away from the antipode, lies within less than half a turn as seen
  // from the centre: the arc between its ends' bearings turns round every place inside the
  // reach as often as the run itself.
  const double reachRad = reach ? reach->km / projection.radiusKm() : 0.0;
  const auto beyondReach = [&](const SphereCap& cap) {
    if (cap.radius >= std::numbers::pi / 2) return false;
    const double d = std::acos(std::clamp(dot(frame.up, cap.mid), -1.0, 1.0));
    return d - cap.radius > reachRad && d + cap.radius < std::numbers::pi - 0.01;
  };
  const auto arcTo = [&](Vec from, Vec to) {
    const double a0 = frame.bearing(from);
    const double da = std::remainder(frame.bearing(to) - a0, 2 * std::numbers::pi);
    const int n = std::max(2, static_cast<int>(std::fabs(da) / (2 * kDeg)));
    for (int k = 0; k <= n; ++k) {
      const double a = a0 + da * k / n;
      pts.emplace_back(reach->km * std::sin(a), reach->km * std::cos(a));
    }
    if (pieces) {
      if (run.size() > 1) pieces->push_back(std::move(run));
      run.clear();
    }
    // Out again along the bearing: no jump across the antipode.
    pts.push_back(frame.project(to));
    if (pieces) run.push_back(pts.back());
    out.cut = true;
  };
  Vec prev = first;
  for (std::size_t i = 1; i < ring.size();) {
    if (reach && (i - 1) % kRingRun == 0) {
      const std::size_t k = (i - 1) / kRingRun;
      const std::size_t end = std::min(ring.size() - 1, (k + 1) * kRingRun);
      if (k < reach->runCaps->size() && beyondReach((*reach->runCaps)[k])) {
        arcTo(prev, ring[end]);
        prev = ring[end];
        i = end + 1;
        continue;
      }
    }
    const Vec next = ring[i];
    divide(prev, next, cosStep, stepDeg, add);
    prev = next;
    ++i;
  }
  const Vec last = ring.back();
  if (last.x != first.x || last.y != first.y || last.z != first.z) {
    divide(prev, first, cosStep, stepDeg, add);
  }
  if (pieces && run.size() > 1) pieces->push_back(std::move(run));
  // Signed area with y north: positive for an anticlockwise ring. The winding round the
  // centre counts the crossings of the ray north from it.
  double area = 0;
  for (std::size_t i = 0; i < pts.size(); ++i) {
    const QPointF a = pts[i], b = pts[(i + 1) % pts.size()];
    area += a.x() * b.y() - b.x() * a.y();
    if ((a.x() > 0) != (b.x() > 0) && a.y() + (b.y() - a.y()) * (0 - a.x()) / (b.x() - a.x()) > 0)
      out.windingAtCentre += b.x() < a.x() ? 1 : -1;
  }
  out.anticlockwise = area > 0;
  return out;
}

SphereCap CapOf(const UnitVector* points, std::size_t count) {
  Vec sum;
  for (std::size_t i = 0; i < count; ++i) {
    sum.x += points[i].x;
    sum.y += points[i].y;
    sum.z += points[i].z;
  }
  const double len = std::sqrt(dot(sum, sum));
  SphereCap cap{{}, std::numbers::pi};
  if (len > 1e-9) {
    cap.mid = {sum.x / len, sum.y / len, sum.z / len};
    double least = 1;  // the cosine of the widest angle from the middle
    for (std::size_t i = 0; i < count; ++i) least = std::min(least, dot(cap.mid, points[i]));
    const double most = std::acos(std::clamp(least, -1.0, 1.0));
    if (most < std::numbers::pi / 2 - 1e-6) cap.radius = most;
  }
  return cap;
}

std::vector<SphereCap> RingRunCaps(const UnitLine& ring) {
  std::vector<SphereCap> caps;
  for (std::size_t from = 0; from + 1 < ring.size(); from += kRingRun) {
    const std::size_t end = std::min(ring.size() - 1, from + kRingRun);
    caps.push_back(CapOf(ring.data() + from, end - from + 1));
  }
  return caps;
}

bool AreaSideChanges(const UnitLine& ring, UnitVector from, UnitVector to) {
  const Vec n = cross(from, to);
  bool odd = false;
  const auto edge = [&](Vec a, Vec b) {
    const double sa = dot(n, a), sb = dot(n, b);
    if ((sa >= 0) == (sb >= 0)) return;
    // Where the edge meets the plane of the arc, as a combination of its ends with positive
    // weights: on the edge, not on the far side of the earth.
    Vec p{sb * a.x - sa * b.x, sb * a.y - sa * b.y, sb * a.z - sa * b.z};
    if (sb < 0) p = {-p.x, -p.y, -p.z};
    if (dot(cross(from, p), n) >= 0 && dot(cross(p, to), n) >= 0) odd = !odd;
  };
  if (ring.size() < 2) return false;
  for (std::size_t i = 1; i < ring.size(); ++i) edge(ring[i - 1], ring[i]);
  const Vec a = ring.back(), b = ring.front();
  if (a.x != b.x || a.y != b.y || a.z != b.z) edge(a, b);
  return odd;
}

}  // namespace marvento
