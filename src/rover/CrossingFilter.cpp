#include "rover/CrossingFilter.h"

namespace marvento {

CrossingFilter::CrossingFilter(SquareLevel level, double marginM)
    : m_level(level), m_margin(marginM) {}

CrossingFilter::Step CrossingFilter::next(const GeoPoint& position) {
  Step step;
  const GridCell cell = CellAt(position, m_level);
  if (!m_square) {
    m_square = cell;
    step.started = true;
    step.to = cell;
    return step;
  }
  if (cell == *m_square || DepthInside(position, m_level) < m_margin) return step;
  step.crossed = true;
  step.from = *m_square;
  step.to = cell;
  m_square = cell;
  return step;
}

}  // namespace marvento
