#pragma once

#include "app/Module1.h"
#include "platform/SettingValues.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace marvento {

// Everything Main reads besides the window position.
struct StartupSettings {
  PollInterval interval;
  std::int16_t radiusPosition = 2;
};

// Fills the state record from the store in the start-up order (keys "GPS" to "Radius");
// the locals that only the window takes come back.
StartupSettings ReadStartupSettings(Module1& state);

// The window data stored at exit besides the state record.
struct ExitSettings {
  int radiusPosition = 2;
  bool minimized = false;
  float leftTwips = 1000;
  float topTwips = 1000;
};

// Stores every key but "MyHomeLoc" in the exit order; the position only when not minimised.
void WriteExitSettings(const Module1& state, const ExitSettings& window);

}  // namespace marvento
