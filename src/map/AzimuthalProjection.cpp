#include "map/AzimuthalProjection.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marvento {

namespace {

// Closer to a pole than this (about 1 mm) the centre counts as the pole itself.
constexpr double kPoleLatitude = 90.0 - 1e-8;

}  // namespace

double NormalisedLongitude(double lon) {
  double l = std::fmod(lon + 180.0, 360.0);
  if (l < 0) l += 360.0;
  return l - 180.0;
}

AzimuthalProjection::AzimuthalProjection(GeoPoint centre, double radiusKm)
    : m_centre(centre),
      m_radiusKm(std::isfinite(radiusKm) && radiusKm > 0 ? radiusKm : 6371.0),
      m_atPole(std::fabs(centre.lat) >= kPoleLatitude) {
  if (m_atPole) {
    // Seen from the north pole the 0° meridian runs away from the 180° one; from the south
    // pole it runs the other way.
    m_centre.lat = centre.lat > 0 ? 90.0 : -90.0;
    m_lon0 = centre.lat > 0 ? 180.0 : 0.0;
  } else {
    m_lon0 = centre.lon;
  }
  m_sinLat0 = std::sin(m_centre.lat * kDeg);
  m_cosLat0 = m_atPole ? 0.0 : std::cos(m_centre.lat * kDeg);
}

double AzimuthalProjection::antipodeKm() const {
  return std::numbers::pi * m_radiusKm;
}

void AzimuthalProjection::Inverse(double lat, double lon, double& km, double& bearing) const {
  const double phi = lat * kDeg;
  const double dlon = (lon - m_lon0) * kDeg;
  const double sinPhi = std::sin(phi), cosPhi = std::cos(phi);
  const double sinD = std::sin(dlon), cosD = std::cos(dlon);
  // Bearing components and the angle between the two points, both from the same vectors so
  // that the antipode and coincident points stay exact.
  const double east = cosPhi * sinD;
  const double north = m_cosLat0 * sinPhi - m_sinLat0 * cosPhi * cosD;
  const double dot = m_sinLat0 * sinPhi + m_cosLat0 * cosPhi * cosD;
  const double c = std::atan2(std::hypot(east, north), dot);
  km = c * m_radiusKm;
  double b = std::atan2(east, north) / kDeg;
  if (b < 0) b += 360.0;
  if (b >= 360.0) b -= 360.0;
  bearing = b;
}

void AzimuthalProjection::Forward(double lat, double lon, double& x, double& y) const {
  double km = 0, bearing = 0;
  Inverse(lat, lon, km, bearing);
  x = km * std::sin(bearing * kDeg);
  y = km * std::cos(bearing * kDeg);
}

GeoPoint AzimuthalProjection::Direct(double km, double bearing) const {
  const double c = km / m_radiusKm;
  const double az = bearing * kDeg;
  const double sinC = std::sin(c), cosC = std::cos(c);
  const double sinLat = m_sinLat0 * cosC + m_cosLat0 * sinC * std::cos(az);
  const double lat = std::asin(std::clamp(sinLat, -1.0, 1.0));
  const double lon =
      m_lon0 + std::atan2(std::sin(az) * sinC * m_cosLat0, cosC - m_sinLat0 * sinLat) / kDeg;
  // From a pole the bearing is the angle from the 0° meridian.
  const double poleLon = m_centre.lat > 0 ? -bearing : bearing;
  return {lat / kDeg, NormalisedLongitude(m_atPole ? poleLon : lon)};
}

void AzimuthalProjection::Reverse(double x, double y, double& lat, double& lon) const {
  double km = std::hypot(x, y);
  if (km > antipodeKm()) km = antipodeKm();
  const double bearing = km > 0 ? std::atan2(x, y) / kDeg : 0.0;
  const GeoPoint p = Direct(km, bearing);
  lat = p.lat;
  lon = p.lon;
}

}  // namespace marvento
