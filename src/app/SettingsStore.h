#pragma once

#include "app/Module1.h"
#include "platform/SettingValues.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <optional>
#include <utility>

namespace marvento {

// Everything Main reads besides the window position.
struct StartupSettings {
  PollInterval interval;
  std::int16_t radiusPosition = 2;
  // Each stored value the program could not use: the key's name and the default taken.
  QList<std::pair<QString, QString>> replaced;
};

// What lbInfo says about the replaced values: "Einstellung Bit-Sek ungültig, 4800 verwendet",
// or for several "Einstellungen ungültig, verwendet: GPS = GPS aus, Bit-Sek = 4800". Empty
// when nothing was replaced.
QString ReplacedSettingsText(const QList<std::pair<QString, QString>>& replaced);

// Fills the state record from the store in the start-up order (keys "GPS" to "Radius", and
// "Gpsd"); the locals that only the window takes come back. A missing key takes its default;
// so does a value the program cannot use, which is then named in `replaced`.
StartupSettings ReadStartupSettings(Module1& state);

// The window data stored at exit besides the state record.
struct ExitSettings {
  int radiusPosition = 2;
  bool minimized = false;
  float leftTwips = 1000;
  float topTwips = 1000;
};

// Stores every key but "MyHomeLoc" and the station programs' addresses in one write of the file;
// the position only when not minimised. Nothing on success, else the German reason why the file
// kept its old values.
std::optional<QString> WriteExitSettings(const Module1& state, const ExitSettings& window);

}  // namespace marvento
