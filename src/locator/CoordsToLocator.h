#pragma once

#include <QString>

namespace marvento {

// Maidenhead locator of a position. Lg is the longitude and Br the latitude in decimal
// degrees, east and north positive, |Lg| < 180 and |Br| < 90 (what coordinate entry lets
// through). Both forms name the cell the position lies in, from its full value: the
// 6-character locator is the first six characters of the 10-character one. Capitals
// throughout.
// Outside that range a coordinate is held at the grid's edge (180 and more gives the
// easternmost cell, -180 and less the westernmost; likewise for latitude) and NaN counts as
// 0, so the result is always a valid locator.
QString CoordsToLocator6(double Lg, double Br);
QString CoordsToLocator10(double Lg, double Br);

// 10 characters when loc10st is set, else 6.
QString CoordsToLocator(double Lg, double Br, bool loc10st);

}  // namespace marvento
