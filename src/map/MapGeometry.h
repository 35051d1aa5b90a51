#pragma once

#include "distance/StationPair.h"
#include "map/AzimuthalProjection.h"

#include <QDateTime>
#include <QPointF>

#include <vector>

namespace marvento {

using GeoLine = std::vector<GeoPoint>;
// A place as a unit vector from the earth's centre (x towards 0° 0°, z towards the north
// pole): map data kept in this form is projected without trigonometry per point.
struct UnitVector {
  double x = 0, y = 0, z = 0;
};
using UnitLine = std::vector<UnitVector>;
UnitLine ToUnitLine(const GeoLine& line);
// A projected line in kilometres, x east and y north of the centre.
using KmLine = std::vector<QPointF>;

// The short path from the centre to a point (first) and the long path on round the earth
// back to the centre (second), each as points no more than stepKm apart.
struct PathLines {
  GeoLine shortPath;
  GeoLine longPath;
};
PathLines GreatCirclePaths(const AzimuthalProjection& projection, GeoPoint remote, double stepKm);

// The lines of the Maidenhead grid at level 0 (fields, 20° x 10°), 1 (squares, 2° x 1°) or
// 2 (subsquares, 5' x 2.5'), inside the box south..north, west..east (degrees; west > east
// means the box crosses 180°). Each line is sampled at most stepDeg apart.
std::vector<GeoLine> GridLines(int level, double south, double north, double west, double east,
                               double stepDeg);

// Where the sun stands in the zenith at a UTC time (accurate to a few hundredths of a degree).
GeoPoint SubsolarPoint(const QDateTime& utc);
// The day and night boundary: the circle 90° from the subsolar point, run clockwise round
// the night side, closed, as seen with north up.
GeoLine Terminator(const QDateTime& utc, int points = 360);

// A round spacing for range rings (1, 2 or 5 times a power of ten, kilometres) that puts
// about four rings between the centre and spanKm.
double RingSpacingKm(double spanKm);

// A line projected, its segments divided along the great circle so that no piece is longer
// than stepDeg, and split where it passes the antipode so that no piece jumps across the
// map.
std::vector<KmLine> ProjectLine(const AzimuthalProjection& projection, const GeoLine& line,
                                double stepDeg);
std::vector<KmLine> ProjectLine(const AzimuthalProjection& projection, const UnitLine& line,
                                double stepDeg);

// A closed ring projected for filling: divided like ProjectLine; where it passes the
// antipode it follows the outer circle instead of cutting across. The projection keeps the
// turning sense, so a ring with its area on the right that turns anticlockwise on the map
// has the antipode in that area: its area is then the rest of the disc outside the ring.
struct KmRing {
  KmLine points;
  bool anticlockwise = false;
};
KmRing ProjectRing(const AzimuthalProjection& projection, const GeoLine& ring, double stepDeg);
// pieces, if given, receives the ring as lines split at the antipode, as ProjectLine gives
// them for the closed ring: the coastline without a second projection.
KmRing ProjectRing(const AzimuthalProjection& projection, const UnitLine& ring, double stepDeg,
                   std::vector<KmLine>* pieces = nullptr);

}  // namespace marvento
