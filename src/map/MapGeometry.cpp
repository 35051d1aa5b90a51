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
    const double c = std::atan2(h, dot(v, up));
    // At the centre and the antipode the direction is taken as up.
    if (h < 1e-15) return {0.0, c * radiusKm};
    const double k = c * radiusKm / h;
    return {e * k, n * k};
  }
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

PathLines GreatCirclePaths(const AzimuthalProjection& projection, GeoPoint remote, double stepKm) {
  double km = 0, bearing = 0;
  projection.Inverse(remote.lat, remote.lon, km, bearing);
  const double full = 2 * projection.antipodeKm();
  stepKm = std::max(stepKm, full / 1e5);
  PathLines lines;
  const int nShort = std::max(1, static_cast<int>(std::ceil(km / stepKm)));
  for (int i = 0; i <= nShort; ++i)
    lines.shortPath.push_back(projection.Direct(km * i / nShort, bearing));
  lines.shortPath.back() = remote;
  const double rest = full - km;
  const int nLong = std::max(1, static_cast<int>(std::ceil(rest / stepKm)));
  for (int i = 0; i <= nLong; ++i) {
    lines.longPath.push_back(projection.Direct(km + rest * i / nLong, bearing));
  }
  lines.longPath.front() = remote;
  return lines;
}

std::vector<GeoLine> GridLines(int level, double south, double north, double west, double east,
                               double stepDeg) {
  const double dLon = level == 0 ? 20.0 : level == 1 ? 2.0 : 2.0 / 24.0;
  const double dLat = dLon / 2.0;
  south = std::max(-90.0, south);
  north = std::min(90.0, north);
  if (east <= west) east += 360.0;
  std::vector<GeoLine> lines;
  const auto sample = [&](double from, double to) {
    return std::max(1, static_cast<int>(std::ceil((to - from) / stepDeg)));
  };
  // Meridians from pole side to pole side of the box, grid-aligned to -180.
  const double firstLon = -180.0 + std::ceil((west + 180.0) / dLon - 1e-9) * dLon;
  for (double lon = firstLon; lon <= east + 1e-9; lon += dLon) {
    GeoLine line;
    const int n = sample(south, north);
    for (int i = 0; i <= n; ++i)
      line.push_back({south + (north - south) * i / n, NormalisedLongitude(lon)});
    lines.push_back(std::move(line));
  }
  const double firstLat = -90.0 + std::ceil((south + 90.0) / dLat - 1e-9) * dLat;
  for (double lat = firstLat; lat <= north + 1e-9; lat += dLat) {
    if (std::fabs(lat) >= 90.0) continue;
    GeoLine line;
    const int n = sample(west, east);
    for (int i = 0; i <= n; ++i)
      line.push_back({lat, NormalisedLongitude(west + (east - west) * i / n)});
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
                   std::vector<KmLine>* pieces) {
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
  Vec prev = first;
  for (std::size_t i = 1; i < ring.size(); ++i) {
    const Vec next = ring[i];
    divide(prev, next, cosStep, stepDeg, add);
    prev = next;
  }
  const Vec last = ring.back();
  if (last.x != first.x || last.y != first.y || last.z != first.z) {
    divide(prev, first, cosStep, stepDeg, add);
  }
  if (pieces && run.size() > 1) pieces->push_back(std::move(run));
  // Signed area with y north: positive for an anticlockwise ring.
  double area = 0;
  for (std::size_t i = 0; i < pts.size(); ++i) {
    const QPointF a = pts[i], b = pts[(i + 1) % pts.size()];
    area += a.x() * b.y() - b.x() * a.y();
  }
  out.anticlockwise = area > 0;
  return out;
}

}  // namespace marvento
