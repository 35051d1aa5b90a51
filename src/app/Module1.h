#pragma once

#include "options/Preferences.h"

#include <QString>

#include <cstdint>

namespace marvento {

class frmMain;

// The one global state record of the program. Field names are those used throughout;
// Main() fills it from the settings store before the window is loaded.
struct Module1 : BasicSettings {
  QString GpsStatus;  // "GPS an" or "GPS aus", compared as exact text
  std::int16_t BusyPort = 0;
  bool ProtokollOn = false;
};

inline const QString kGpsAn = QStringLiteral("GPS an");
inline const QString kGpsAus = QStringLiteral("GPS aus");

// Reception is on only for the exact text "GPS an"; it is off only for "GPS aus". A third
// text (a settings file edited by hand) is neither: the timer starts, but no tick polls.
inline bool GpsOn(const Module1& state) {
  return state.GpsStatus == kGpsAn;
}
inline bool GpsOff(const Module1& state) {
  return state.GpsStatus == kGpsAus;
}
inline void SetGpsOn(Module1& state, bool on) {
  state.GpsStatus = on ? kGpsAn : kGpsAus;
}

// The single instance.
Module1& State();

// The start-up procedure: reads the settings, loads and shows the main window, which it
// returns; the window lives until the program ends.
frmMain* Main();

}  // namespace marvento
