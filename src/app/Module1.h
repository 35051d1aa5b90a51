#pragma once

#include <QString>

#include <array>
#include <cstdint>

namespace marvento {

class frmMain;

// The one global state record of the program. Field names are those used throughout;
// Main() fills it from the settings store before the window is loaded.
struct Module1 {
  frmMain* MainForm = nullptr;
  // Column (index K) and row (index K + 10) of the small field K of an old QRA locator.
  std::array<std::int16_t, 21> KfOffsets{};
  QString CrLf;
  QString ComPort;
  QString GpsStatus;  // "GPS an" or "GPS aus", compared as exact text
  QString ComSettings;  // baud rate followed by ",N,8,1"
  QString MyHomeLoc;
  QString GpsdAddress;  // "host:port" of gpsd, used when ComPort is "gpsd"
  std::int16_t BusyPort = 0;
  std::int32_t GpsIntervalSeconds = 0;
  std::int16_t ComNumber = 0;
  bool ProtokollOn = false;
  bool GpsDataSeen = false;
  bool GradDezimal = false;
  bool GpsZeit = false;
  bool Loc10st = false;
};

inline const QString kGpsAn = QStringLiteral("GPS an");
inline const QString kGpsAus = QStringLiteral("GPS aus");

// The single instance.
Module1& State();

// The start-up procedure: reads the settings, loads and shows the main window.
void Main();

}  // namespace marvento
