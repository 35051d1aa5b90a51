#pragma once

#include "rover/GridSquare.h"

#include <QString>

#include <optional>

namespace marvento {

// "1,2 km" or "350 m", as the window and the voice give a distance.
QString DistanceText(double metres);
// "2 min", "45 s", "1 h 5 min"; rounded to what a driver can use.
QString DurationText(double seconds);
// The compass point of a course in German: "Norden", "Nordosten", ...
QString CompassName(double courseDeg);

// The line under the fields: the boundary ahead on the move ("Nächstes Feld JO62RM in
// 1,2 km (2 min)"), the nearest edge standing still ("Feldrand 350 m nach Nordosten,
// dahinter JO62RN"). speedMs below a walking pace counts as standing.
QString BoundaryLine(const BoundaryAhead& ahead, std::optional<double> speedMs, bool moving);

// Tells when to announce the boundary ahead: once at 1 km and once at 200 m for each
// approach. An approach ends when another square lies ahead, or the rover has turned away
// (the distance grew well beyond the mark).
class ApproachWatch {
 public:
  static constexpr double kFarM = 1000;
  static constexpr double kNearM = 200;

  // The mark passed with this fix (kFarM or kNearM), if any.
  std::optional<double> next(const GridCell& ahead, double distanceM);
  void reset();

 private:
  std::optional<GridCell> m_ahead;
  bool m_farSaid = false;
  bool m_nearSaid = false;
};

}  // namespace marvento
