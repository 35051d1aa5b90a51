#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace marvento {

// Column (entry K, 0 west to 2 east) and row (entry K + 10, 0 north to 2 south) of the
// small field K of an old QRA locator, lettered in a spiral H A B / G J C / F E D.
inline constexpr std::array<std::int16_t, 21> kKfOffsets = {0, 1, 2, 2, 2, 1, 0, 0, 0, 0, 1,
                                                            0, 0, 1, 2, 2, 2, 1, 0, 0, 1};

// The old five-character QRA locator (such as "EK74H", capitals) to the centre of its
// small field, in decimal degrees east and north. Shows nothing: returns the empty text on
// success, else the error text for the caller's message title (" Falscher Locator !" or
// " KF falsch !"). Lg and Br are written only on success. Large cells are numbered 01 to
// 80; the pair "00" is refused as " Falscher Locator !".
QString QraToCoords(const QString& text, double& Lg, double& Br);

}  // namespace marvento
