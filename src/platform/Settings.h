#pragma once

#include <QString>

namespace marvento {

// Every key of the per-user store. The store is QSettings in native format, organisation and
// application "Marvento" ($XDG_CONFIG_HOME/Marvento/Marvento.conf); these keys sit in its
// group "Settings", each value a text.
enum class SettingKey {
  Gps,          // "GPS": "GPS an" or "GPS aus"
  GradDezimal,  // "Grad_Dezimal"
  GpsZeit,      // "GPS-Zeit"
  GpsInterval,  // "GPS-Interval", seconds
  BitSek,       // "Bit-Sek", the baud rate
  Com,          // "Com": "Com1" to "Com29", or "gpsd"
  Protokoll,    // "Protokoll"
  Loc10st,      // "Loc10st"
  MyHomeLoc,    // "MyHomeLoc"
  Radius,       // "Radius": the position in the radius list
  MainLeft,     // "MainLeft", twips
  MainTop,      // "MainTop", twips
  Gpsd,         // "Gpsd": host:port of gpsd
  Wsjtx,        // "Wsjtx": host:port, empty when off
  Js8Call,      // "Js8Call"
  Rotor,        // "Rotor"
};

// The key's name in the store.
QString SettingName(SettingKey key);

// A missing key gives the default; an existing empty value gives the empty text.
QString GetSetting(SettingKey key, const QString& defaultValue);
void SaveSetting(SettingKey key, const QString& value);

// A window position in twips as stored under key; 1000 when missing or no number.
float GetTwipsSetting(SettingKey key);

// The map window's keys, in the group "Karte".
enum class MapSettingKey {
  Geometry,  // "Geometrie": x, y, width, height of the window, pixels
  Zoom,      // "Zoom": 1 is the whole earth
  Layers,    // "Ebenen": the layers shown, as a number of bits
};
QString GetMapSetting(MapSettingKey key, const QString& defaultValue);
void SaveMapSetting(MapSettingKey key, const QString& value);

// The device path stored for port number (key "ComN" in the group "Ports"), trimmed; empty
// when none is stored.
QString GetPortDevice(int number);
void SavePortDevice(int number, const QString& path);

}  // namespace marvento
