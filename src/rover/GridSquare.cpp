#include "rover/GridSquare.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

namespace marvento {

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kRad = kPi / 180.0;

// Squares per degree of longitude and of latitude.
double columnsPerDegree(SquareLevel level) {
  return level == SquareLevel::Four ? 0.5 : 12.0;
}
double rowsPerDegree(SquareLevel level) {
  return level == SquareLevel::Four ? 1.0 : 24.0;
}
int columnCount(SquareLevel level) {
  return int(std::lround(360.0 * columnsPerDegree(level)));
}
int rowCount(SquareLevel level) {
  return int(std::lround(180.0 * rowsPerDegree(level)));
}

struct Vec {
  double x, y, z;
};
Vec operator*(const Vec& v, double f) {
  return {v.x * f, v.y * f, v.z * f};
}
Vec operator+(const Vec& a, const Vec& b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
double dot(const Vec& a, const Vec& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}

Vec toVec(const GeoPoint& p) {
  const double f = p.lat * kRad, l = p.lon * kRad;
  return {std::cos(f) * std::cos(l), std::cos(f) * std::sin(l), std::sin(f)};
}
GeoPoint toPoint(const Vec& v) {
  const double h = std::hypot(v.x, v.y);
  return {std::atan2(v.z, h) / kRad, (h == 0 ? 0.0 : std::atan2(v.y, v.x)) / kRad};
}

// The great circle through p at a course: its point at angle s is p cos s + t sin s.
struct Circle {
  Vec p, t;
  Vec at(double s) const { return p * std::cos(s) + t * std::sin(s); }
};
Circle circleFrom(const GeoPoint& p, double courseDeg) {
  const double f = p.lat * kRad, l = p.lon * kRad, c = courseDeg * kRad;
  const Vec east{-std::sin(l), std::cos(l), 0};
  const Vec north{-std::sin(f) * std::cos(l), -std::sin(f) * std::sin(l), std::cos(f)};
  return {toVec(p), north * std::cos(c) + east * std::sin(c)};
}

double wrapAngle(double s) {
  s = std::fmod(s, 2 * kPi);
  return s < 0 ? s + 2 * kPi : s;
}

// Angles where a cos s + b sin s = v.
void solve(double a, double b, double v, std::vector<double>& out) {
  const double r = std::hypot(a, b);
  if (r < 1e-15 || std::fabs(v) > r) return;
  const double base = std::atan2(b, a);
  const double half = std::acos(std::clamp(v / r, -1.0, 1.0));
  out.push_back(wrapAngle(base + half));
  out.push_back(wrapAngle(base - half));
}

double wrapDegrees(double d) {
  d = std::fmod(d + 180.0, 360.0);
  return (d < 0 ? d + 360.0 : d) - 180.0;
}

}  // namespace

GridCell CellAt(const GeoPoint& p, SquareLevel level) {
  const int columns = columnCount(level), rows = rowCount(level);
  int column = int(std::floor((p.lon + 180.0) * columnsPerDegree(level))) % columns;
  if (column < 0) column += columns;
  const int row = std::clamp(int(std::floor((p.lat + 90.0) * rowsPerDegree(level))), 0, rows - 1);
  return {level, column, row};
}

QString CellLocator(const GridCell& cell) {
  const auto letter = [](int n) { return QChar(char16_t(u'A' + n)); };
  const auto digit = [](int n) { return QChar(char16_t(u'0' + n)); };
  QString text;
  if (cell.level == SquareLevel::Four) {
    text += letter(cell.column / 10);
    text += letter(cell.row / 10);
    text += digit(cell.column % 10);
    text += digit(cell.row % 10);
    return text;
  }
  text += letter(cell.column / 240);
  text += letter(cell.row / 240);
  text += digit(cell.column / 24 % 10);
  text += digit(cell.row / 24 % 10);
  text += letter(cell.column % 24);
  text += letter(cell.row % 24);
  return text;
}

GeoPoint CellSouthWest(const GridCell& cell) {
  return {cell.row / rowsPerDegree(cell.level) - 90.0,
          cell.column / columnsPerDegree(cell.level) - 180.0};
}

GeoPoint CellNorthEast(const GridCell& cell) {
  return {(cell.row + 1) / rowsPerDegree(cell.level) - 90.0,
          (cell.column + 1) / columnsPerDegree(cell.level) - 180.0};
}

std::optional<BoundaryAhead> BoundaryAlong(const GeoPoint& p, double courseDeg, SquareLevel level) {
  const GridCell here = CellAt(p, level);
  const GeoPoint sw = CellSouthWest(here), ne = CellNorthEast(here);
  const Circle circle = circleFrom(p, courseDeg);

  // Every angle where the circle meets one of the square's parallels or meridians; the first
  // one behind which the circle is outside the square is where it leaves.
  std::vector<double> roots;
  for (double lat : {sw.lat, ne.lat}) solve(circle.p.z, circle.t.z, std::sin(lat * kRad), roots);
  for (double lon : {sw.lon, ne.lon}) {
    const Vec normal{-std::sin(lon * kRad), std::cos(lon * kRad), 0};
    solve(dot(normal, circle.p), dot(normal, circle.t), 0.0, roots);
  }
  std::sort(roots.begin(), roots.end());
  constexpr double kBeyond = 1e-8;  // about 6 cm
  for (double s : roots) {
    if (s > 2 * kPi - 1e-12) s = 0;
    const GridCell behind = CellAt(toPoint(circle.at(s + kBeyond)), level);
    if (behind == here) continue;
    BoundaryAhead ahead;
    ahead.distanceM = s * kRoverEarthRadiusM;
    ahead.bearingDeg = wrapAngle(courseDeg * kRad) / kRad;
    ahead.next = behind;
    // The edge is the line the crossing point lies closest to.
    const GeoPoint x = toPoint(circle.at(s));
    const double cosLat = std::cos(x.lat * kRad);
    const std::array<double, 4> off = {std::fabs(x.lat - sw.lat), std::fabs(x.lat - ne.lat),
                                       std::fabs(wrapDegrees(x.lon - sw.lon)) * cosLat,
                                       std::fabs(wrapDegrees(x.lon - ne.lon)) * cosLat};
    switch (std::min_element(off.begin(), off.end()) - off.begin()) {
      case 0: ahead.edge = {{sw.lat, sw.lon}, {sw.lat, ne.lon}}; break;
      case 1: ahead.edge = {{ne.lat, sw.lon}, {ne.lat, ne.lon}}; break;
      case 2: ahead.edge = {{sw.lat, sw.lon}, {ne.lat, sw.lon}}; break;
      default: ahead.edge = {{sw.lat, ne.lon}, {ne.lat, ne.lon}}; break;
    }
    return ahead;
  }
  return std::nullopt;
}

std::optional<BoundaryAhead> NearestBoundary(const GeoPoint& p, SquareLevel level) {
  // The distance to the boundary as a function of the course is smooth near its least value:
  // a coarse sweep finds it, a narrowing search pins it down.
  const auto distance = [&](double course) {
    const auto ahead = BoundaryAlong(p, course, level);
    return ahead ? ahead->distanceM : INFINITY;
  };
  double best = 0, bestDistance = INFINITY;
  for (int step = 0; step < 360; ++step) {
    const double d = distance(step);
    if (d < bestDistance) bestDistance = d, best = step;
  }
  double lo = best - 1, hi = best + 1;
  for (int i = 0; i < 60; ++i) {
    const double a = lo + (hi - lo) / 3, b = hi - (hi - lo) / 3;
    if (distance(a) < distance(b)) {
      hi = b;
    } else {
      lo = a;
    }
  }
  const double course = (lo + hi) / 2;
  if (distance(course) > bestDistance) return BoundaryAlong(p, best, level);
  return BoundaryAlong(p, course, level);
}

double DepthInside(const GeoPoint& p, SquareLevel level) {
  const GridCell here = CellAt(p, level);
  const GeoPoint sw = CellSouthWest(here), ne = CellNorthEast(here);
  const double cosLat = std::cos(p.lat * kRad);
  double depth = std::min(std::fabs(p.lat - sw.lat), std::fabs(ne.lat - p.lat)) * kRad;
  for (double lon : {sw.lon, ne.lon}) {
    depth = std::min(depth, std::asin(std::fabs(cosLat * std::sin((p.lon - lon) * kRad))));
  }
  return depth * kRoverEarthRadiusM;
}

double CourseBetween(const GeoPoint& a, const GeoPoint& b) {
  const double f1 = a.lat * kRad, f2 = b.lat * kRad, dl = (b.lon - a.lon) * kRad;
  const double y = std::sin(dl) * std::cos(f2);
  const double x = std::cos(f1) * std::sin(f2) - std::sin(f1) * std::cos(f2) * std::cos(dl);
  return wrapAngle(std::atan2(y, x)) / kRad;
}

double DistanceBetween(const GeoPoint& a, const GeoPoint& b) {
  const double f1 = a.lat * kRad, f2 = b.lat * kRad;
  const double df = f2 - f1, dl = (b.lon - a.lon) * kRad;
  const double h = std::sin(df / 2) * std::sin(df / 2) +
                   std::cos(f1) * std::cos(f2) * std::sin(dl / 2) * std::sin(dl / 2);
  return 2 * std::asin(std::min(1.0, std::sqrt(h))) * kRoverEarthRadiusM;
}

}  // namespace marvento
