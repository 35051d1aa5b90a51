#pragma once

#include "distance/StationPair.h"

namespace marvento {

// Distance and initial bearing on the WGS84 ellipsoid (Karney's geodesic).
struct Wgs84Path {
  double km = 0;
  double bearing = 0;  // degrees, 0 up to 360, from the first point
};

Wgs84Path Wgs84Inverse(const GeoPoint& from, const GeoPoint& to);

}  // namespace marvento
