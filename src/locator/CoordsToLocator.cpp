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

// Hundredths of a degree, truncated toward zero and held in a 32-bit float. Outside the
// grid the value is held at its lowest or highest hundredth before the float conversion
// (a double beyond the float range would have no defined conversion).
float truncatedHundredths(double degrees, double limit) {
  double value = Fix(degrees * 100) / 100;
  if (std::isnan(value)) value = 0;
  value = std::clamp(value, -limit, limit - 0.01);
  return static_cast<float>(value);
}

}  // namespace

QString CoordsToLocator6(double Lg, double Br) {
  const float L = truncatedHundredths(Lg, 180);
  const double Li = Int(L);
  const double a = Int(Li / 20);
  const double b = Int((Li - 20 * a) / 2);
  const double r = Int((L - Li) * 60 / 5);
  // The first term is 12 for an odd degree inside the 2-degree square.
  const double c = ((Li - 20 * a) / 2 - b) * 24 + r;

  const float M = truncatedHundredths(Br, 90);
  const double Mi = Int(M);
  const double e = Int(Mi / 10);
  const double f = Mi - 10 * e;
  const double g = Int((M - Mi) * 60 / 2.5);

  // Field letters start at code 74 ("J") for the signed field index, so that the zero
  // meridian and the equator fall between fields I and J.
  QString loc(6, QChar(u' '));
  loc[0] = chr(74 + toIndex(a));
  loc[1] = chr(74 + toIndex(e));
  loc[2] = chr(48 + toIndex(b));
  loc[3] = chr(48 + toIndex(f));
  loc[4] = chr(65 + toIndex(c));
  loc[5] = chr(65 + toIndex(g));
  return loc;
}

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

QString CoordsToLocator(double Lg, double Br, bool loc10st) {
  return loc10st ? CoordsToLocator10(Lg, Br) : CoordsToLocator6(Lg, Br);
}

}  // namespace marvento
