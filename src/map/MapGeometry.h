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

// The short path from the centre to a point and the long path on round the earth back to
// the centre, as the map shows them: great circles through the centre are straight lines, so
// the short path runs straight to the point, and the long path on from it to the outer circle
// (the antipode) and back from the opposite side of the circle to the centre.
struct PathLines {
  KmLine shortPath;
  std::vector<KmLine> longPath;
};
PathLines GreatCirclePaths(const AzimuthalProjection& projection, GeoPoint remote);

// The lines of the Maidenhead grid at level 0 (fields, 20° x 10°), 1 (squares, 2° x 1°) or
// 2 (subsquares, 5' x 2.5'), inside the box south..north, west..east (degrees; west > east
// means the box crosses 180°). Each line is sampled at most stepDeg apart.
std::vector<UnitLine> GridLines(int level, double south, double north, double west, double east,
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
  // Stretches beyond the reach were drawn along the reach's circle (see RingReach).
  bool cut = false;
  // How often the ring as drawn turns round the centre, anticlockwise counted positive.
  int windingAtCentre = 0;
  // Whether the ring's area (on its right, or on its left for a hole) holds the centre: the
  // ring turns round the centre and the area is inside, or it does not and the area reaches
  // round the antipode. Not for a cut ring, whose turning sense says nothing.
  bool areaHoldsCentre(bool areaOnRight) const {
    return (windingAtCentre != 0) != (anticlockwise == areaOnRight);
  }
};
KmRing ProjectRing(const AzimuthalProjection& projection, const GeoLine& ring, double stepDeg);

// The smallest cap round some points, as the direction of its middle and its radius in
// radians; pi where no cap smaller than a hemisphere holds them. A cap smaller than a
// hemisphere holds the great-circle segments between its points too.
struct SphereCap {
  UnitVector mid;
  double radius = 0;
};
SphereCap CapOf(const UnitVector* points, std::size_t count);

// A ring larger than a hemisphere (a continent) is never all in a zoomed view. Its points go
// in runs of kRingRun, each with its cap (RingRunCaps); a run whose cap lies wholly beyond the
// reach, and away from the antipode, is drawn as an arc of the reach's circle between the
// bearings of its ends instead of point by point. Inside the reach the drawing turns round
// every place as often as the whole ring; the turning sense no longer tells which side holds
// the antipode, so the caller decides that with AreaSideChanges.
inline constexpr std::size_t kRingRun = 128;
std::vector<SphereCap> RingRunCaps(const UnitLine& ring);
struct RingReach {
  double km = 0;
  const std::vector<SphereCap>* runCaps = nullptr;
};

// pieces, if given, receives the ring as lines split at the antipode, as ProjectLine gives
// them for the closed ring: the coastline without a second projection (without the runs
// beyond the reach).
KmRing ProjectRing(const AzimuthalProjection& projection, const UnitLine& ring, double stepDeg,
                   std::vector<KmLine>* pieces = nullptr, const RingReach* reach = nullptr);

// Whether the closed ring separates two places: it crosses the short great-circle arc between
// them an odd number of times. One place lies then on the ring's other side than the other.
bool AreaSideChanges(const UnitLine& ring, UnitVector from, UnitVector to);

}  // namespace marvento
