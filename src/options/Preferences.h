#pragma once

#include "gps/GpsExchange.h"
#include "rover/RoverSettings.h"
#include "station/StationAddress.h"

#include <QString>

#include <array>
#include <cstdint>

namespace marvento {

// The settings of "Grundeinstellungen" that the window also keeps in its state record, under
// the same names.
struct BasicSettings {
  bool GpsZeit = false;
  bool GradDezimal = false;
  bool Loc10st = false;
  std::int32_t GpsIntervalSeconds = 30;
  QString ComPort = QStringLiteral("Com1");  // "Com1" to "Com29", or "gpsd"
  std::int16_t ComNumber = 1;
  QString ComSettings = QStringLiteral("4800,N,8,1");
  QString MyHomeLoc;
  QString GpsdAddress = kDefaultGpsdAddress;  // used when ComPort is "gpsd"
};

// All that the dialog "Grundeinstellungen" shows and returns; the window applies it.
struct Preferences : BasicSettings {
  bool receptionOn = false;                  // "GPS an"
  std::array<StationAddress, 3> stations{};  // in StationProgram order; Off when not used
  RoverSettings rover;                       // the group "Unterwegs"
};

}  // namespace marvento
