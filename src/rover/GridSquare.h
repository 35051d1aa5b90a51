#pragma once

#include "distance/StationPair.h"

#include <QString>

#include <optional>
#include <utility>

namespace marvento {

// The squares a rover scores by: 4 characters (2° by 1°) or 6 characters (5' by 2.5').
enum class SquareLevel { Four = 4, Six = 6 };

// One square of the grid, counted from the south-west corner of the world (180° W, 90° S).
struct GridCell {
  SquareLevel level = SquareLevel::Six;
  int column = 0;  // west to east
  int row = 0;     // south to north
  bool operator==(const GridCell&) const = default;
};

// The square a position lies in, from the exact position (a point on a line belongs to the
// square east and north of it). Longitudes wrap; latitude 90 belongs to the northernmost row.
GridCell CellAt(const GeoPoint& p, SquareLevel level);

// The locator of the square, capitals, 4 or 6 characters.
QString CellLocator(const GridCell& cell);

// South-west and north-east corners of the square, degrees.
GeoPoint CellSouthWest(const GridCell& cell);
GeoPoint CellNorthEast(const GridCell& cell);

// The earth as the rover's figures take it: a sphere of the mean radius.
constexpr double kRoverEarthRadiusM = 6371008.8;

// The square boundary that lies ahead along the great circle of a course.
struct BoundaryAhead {
  double distanceM = 0;                // along the course from the position to the edge
  double bearingDeg = 0;               // the course that leads there
  GridCell next;                       // the square entered behind the edge
  std::pair<GeoPoint, GeoPoint> edge;  // the edge's ends, for the map
};

// Where the great circle from p at course courseDeg (clockwise from north) leaves p's square;
// nothing only if no edge is found (not for any real position).
std::optional<BoundaryAhead> BoundaryAlong(const GeoPoint& p, double courseDeg, SquareLevel level);

// The nearest edge of p's square and the course towards it, for a rover that stands still.
std::optional<BoundaryAhead> NearestBoundary(const GeoPoint& p, SquareLevel level);

// How far p lies inside the square it is in: the distance to the nearest of its four edges
// (taken as whole meridians and parallels, which is never more than the true distance).
double DepthInside(const GeoPoint& p, SquareLevel level);

// The initial course from a to b on the sphere, 0 to below 360.
double CourseBetween(const GeoPoint& a, const GeoPoint& b);
// The distance from a to b on the sphere, metres.
double DistanceBetween(const GeoPoint& a, const GeoPoint& b);

}  // namespace marvento
