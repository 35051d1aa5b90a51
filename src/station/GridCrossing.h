#pragma once

#include <QString>

namespace marvento {

// Follows the own locator from fix to fix and tells when it enters another 6-character
// square (subsquare). The first valid locator only sets the start; the same square again,
// in a 6- or 10-character form, is no crossing. A text that is no valid locator (empty, too
// short, a field or square out of range) is passed over and leaves the square as it was.
class GridCrossing {
 public:
  struct Step {
    bool crossed = false;
    QString from;  // the square left, 6 characters
    QString to;    // the square entered
  };

  // Takes the next own locator, as tbMyLoc shows it (capitals, 6 or 10 characters).
  Step next(const QString& locator);

  // The square of the last valid locator; empty before the first.
  QString square() const { return m_square; }

  // Forgets the square, as when reception starts anew.
  void reset() { m_square.clear(); }

 private:
  QString m_square;
};

}  // namespace marvento
