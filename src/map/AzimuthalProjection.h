#pragma once

#include "distance/StationPair.h"

#include <numbers>

namespace marvento {

// Radians per degree, for the map's own arithmetic.
inline constexpr double kDeg = std::numbers::pi / 180.0;

// The azimuthal equidistant projection on a sphere, centred on one station: every straight
// line through the centre is a great circle, its angle from up the initial bearing, and the
// distance from the centre the distance along the sphere. North is up at the centre; with the
// centre at a pole, where north has no direction, the 0° meridian is up.
class AzimuthalProjection {
 public:
  // centre in degrees; radiusKm the sphere's radius in kilometres (a value that is no
  // positive finite number gives 6371 km).
  explicit AzimuthalProjection(GeoPoint centre = {}, double radiusKm = 6371.0);

  GeoPoint centre() const { return m_centre; }
  double radiusKm() const { return m_radiusKm; }
  bool centreAtPole() const { return m_atPole; }
  // The longitude that turns the view: the centre's, or at a pole the one that puts the 0°
  // meridian up.
  double orientingLon() const { return m_lon0; }
  // The distance of the antipode from the centre, kilometres: the outer circle.
  double antipodeKm() const;

  // lat, lon in degrees in; x (east) and y (north) in kilometres out. The antipode maps to
  // the top of the outer circle.
  void Forward(double lat, double lon, double& x, double& y) const;
  // x, y in kilometres in (beyond the outer circle the point is taken on it); lat, lon in
  // degrees out, lon in [-180, 180).
  void Reverse(double x, double y, double& lat, double& lon) const;

  // Distance (kilometres) and initial bearing (degrees clockwise from up, [0, 360)) from the
  // centre to a point: the same quantities Forward gives in polar form.
  void Inverse(double lat, double lon, double& km, double& bearing) const;
  // The point at km kilometres along bearing degrees from the centre (km may exceed half the
  // circumference: the great circle goes on round the earth).
  GeoPoint Direct(double km, double bearing) const;

 private:
  GeoPoint m_centre;
  double m_radiusKm;
  bool m_atPole;
  double m_lon0;  // the longitude that orients the view (0° meridian up at a pole)
  double m_sinLat0, m_cosLat0;
};

// Longitude brought to [-180, 180).
double NormalisedLongitude(double lon);

}  // namespace marvento
