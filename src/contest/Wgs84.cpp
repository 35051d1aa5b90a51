#include "contest/Wgs84.h"

#include <GeographicLib/Geodesic.hpp>

#include <cmath>

namespace marvento {

Wgs84Path Wgs84Inverse(const GeoPoint& from, const GeoPoint& to) {
  double metres = 0, azi1 = 0, azi2 = 0;
  GeographicLib::Geodesic::WGS84().Inverse(from.lat, from.lon, to.lat, to.lon, metres, azi1, azi2);
  Wgs84Path p;
  p.km = metres / 1000.0;
  p.bearing = azi1 < 0 ? azi1 + 360.0 : azi1;
  if (p.bearing >= 360.0) p.bearing -= 360.0;
  return p;
}

}  // namespace marvento
