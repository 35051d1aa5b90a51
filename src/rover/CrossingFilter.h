#pragma once

#include "rover/GridSquare.h"

#include <optional>

namespace marvento {

// Decides when the rover has entered another square. A fix in another square counts only once
// it lies the margin inside that square, however many fixes in a row fall short of it: GPS
// errors along a road drift slowly, so a run of fixes across a line proves nothing. The first
// fix only sets the start.
class CrossingFilter {
 public:
  struct Step {
    bool started = false;  // the first fix: the start square is set
    bool crossed = false;  // the rover has entered `to`
    GridCell from;
    GridCell to;
  };

  CrossingFilter(SquareLevel level = SquareLevel::Six, double marginM = 25.0);

  Step next(const GeoPoint& position);

  // The square the rover counts as in; nothing before the first fix.
  std::optional<GridCell> square() const { return m_square; }
  SquareLevel level() const { return m_level; }
  double margin() const { return m_margin; }

  // Forgets the square, as when reception starts anew.
  void reset() { m_square.reset(); }

 private:
  SquareLevel m_level;
  double m_margin;
  std::optional<GridCell> m_square;
};

}  // namespace marvento
