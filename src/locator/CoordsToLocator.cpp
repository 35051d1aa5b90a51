#include "locator/CoordsToLocator.h"

#include "platform/Numbers.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace marvento {

namespace {

// Every index below is bounded by the clamping before it, so the conversions to int are
// defined; a NaN or an infinity never reaches them.
std::int32_t toIndex(double wholeNumber) {
  return static_cast<std::int32_t>(wholeNumber);
}

QChar chr(std::int32_t code) {
  return QChar(static_cast<char16_t>(code));
}

// Holds a shifted coordinate (0 at the south-west corner) inside the grid. NaN counts as the
// zero meridian or the equator, as an empty coordinate field reads 0. The top limit is the
// largest double below the edge: a sum such as 179.99999999999997 + 180 rounds up to 360,
// which would name a nineteenth field.
double clampShifted(double shifted, double zero, double edge) {
  if (std::isnan(shifted)) return zero;
  return std::clamp(shifted, 0.0, std::nextafter(edge, 0.0));
}

}  // namespace

QString CoordsToLocator10(double Lg, double Br) {
  const double x = clampShifted(Lg + 180, 180, 360);
  const double y = clampShifted(Br + 90, 90, 180);

  // Every character comes from the index of the smallest cell, so that a value a hair below
  // a cell edge stays in the lower cell in all ten characters alike: taken one by one, x * 120
  // may round up onto an edge that x * 2880 stays below, and the locator would mix two rows.
  // The product may round up to the grid's edge itself; the last cell holds it.
  const std::int32_t col = std::min(toIndex(Int(x * 2880)), 360 * 2880 - 1);
  const std::int32_t row = std::min(toIndex(Int(y * 5760)), 180 * 5760 - 1);
  QString loc(10, QChar(u' '));
  loc[0] = chr(65 + col / 57600);
  loc[1] = chr(65 + row / 57600);
  loc[2] = chr(48 + col / 5760 % 10);
  loc[3] = chr(48 + row / 5760 % 10);
  loc[4] = chr(65 + col / 240 % 24);
  loc[5] = chr(65 + row / 240 % 24);
  loc[6] = chr(48 + col / 24 % 10);
  loc[7] = chr(48 + row / 24 % 10);
  loc[8] = chr(65 + col % 24);
  loc[9] = chr(65 + row % 24);
  return loc;
}

// The square the position lies in: the same arithmetic as the ten characters, cut short, so
// that the two forms never name different squares.
QString CoordsToLocator6(double Lg, double Br) {
  return CoordsToLocator10(Lg, Br).left(6);
}

QString CoordsToLocator(double Lg, double Br, bool loc10st) {
  return loc10st ? CoordsToLocator10(Lg, Br) : CoordsToLocator6(Lg, Br);
}

}  // namespace marvento
