#include "station/GridCrossing.h"

#include "locator/LocatorToCoords.h"

namespace marvento {

GridCrossing::Step GridCrossing::next(const QString& locator) {
  Step step;
  const QString square = locator.trimmed().left(6).toUpper();
  if (square.size() != 6 || DecodeLocator(square).status != LocatorDecode::Ok) return step;
  if (!m_square.isEmpty() && square != m_square) {
    step.crossed = true;
    step.from = m_square;
    step.to = square;
  }
  m_square = square;
  return step;
}

}  // namespace marvento
