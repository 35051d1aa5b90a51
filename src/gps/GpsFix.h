#pragma once

#include "distance/StationPair.h"

#include <QTime>

#include <optional>

namespace marvento {

// One good position from the receiver, with what the same poll learnt besides. A value the
// receiver did not send, or sent out of its range, is unset.
struct GpsFix {
  GeoPoint position;
  std::optional<QTime> utc;             // time of the fix, UTC
  std::optional<double> speedKnots;     // speed over ground
  std::optional<double> courseDegrees;  // course over ground, 0 to below 360, clockwise from north
  std::optional<double> heightMetres;   // antenna height above mean sea level
};

}  // namespace marvento
