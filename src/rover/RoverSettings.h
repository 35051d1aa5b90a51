#pragma once

#include "rover/GridSquare.h"
#include "rover/Spelling.h"

namespace marvento {

// The settings of the group "Unterwegs".
struct RoverSettings {
  bool announce = false;  // speak crossings, boundaries ahead and reception
  Spelling spelling = Spelling::Icao;
  SquareLevel level = SquareLevel::Six;
  int marginM = 25;  // how far inside a new square a crossing counts
  bool operator==(const RoverSettings&) const = default;
};

// The margin the dialog and the store accept, metres.
constexpr int kMaxMarginM = 500;

RoverSettings LoadRoverSettings();
void SaveRoverSettings(const RoverSettings& settings);

}  // namespace marvento
