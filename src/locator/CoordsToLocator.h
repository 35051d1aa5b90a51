#pragma once

#include <QString>

namespace marvento {

// Maidenhead locator of a position. Lg is the longitude and Br the latitude in decimal
// degrees, east and north positive, |Lg| < 180 and |Br| < 90 (what coordinate entry lets
// through). The 6-character form first truncates the position to hundredths of a degree
// toward zero; the 10-character form works on the full value. Capitals throughout.
// Outside that range a coordinate is held at the grid's edge (180 and more gives the
// easternmost cell, -180 and less the westernmost; likewise for latitude) and NaN counts as
// 0, so the result is always a valid locator.
QString CoordsToLocator6(double Lg, double Br);
QString CoordsToLocator10(double Lg, double Br);

// 10 characters when loc10st is set, else 6.
QString CoordsToLocator(double Lg, double Br, bool loc10st);

}  // namespace marvento
