#pragma once

#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace marvento {

// Every key of the per-user store. The store is QSettings in native format, organisation and
// application "Marvento" ($XDG_CONFIG_HOME/Marvento/Marvento.conf); these keys sit in its
// group "Settings", each value a text.
enum class SettingKey {
  Gps,            // "GPS": "GPS an" or "GPS aus"
  GradDezimal,    // "Grad_Dezimal"
  GpsZeit,        // "GPS-Zeit"
  GpsInterval,    // "GPS-Interval", seconds
  BitSek,         // "Bit-Sek", the baud rate
  Com,            // "Com": "Com1" to "Com29", or "gpsd"
  Protokoll,      // "Protokoll"
  Loc10st,        // "Loc10st"
  MyHomeLoc,      // "MyHomeLoc"
  Radius,         // "Radius": the position in the radius list
  MainLeft,       // "MainLeft", twips
  MainTop,        // "MainTop", twips
  Gpsd,           // "Gpsd": host:port of gpsd
  Wsjtx,          // "Wsjtx": host:port, empty when off
  Js8Call,        // "Js8Call"
  Rotor,          // "Rotor"
  Ansagen,        // "Ansagen": "True" speaks crossings, boundaries ahead and reception
  Buchstabieren,  // "Buchstabieren": "ICAO" or "Buchstaben"
  FeldStufe,      // "FeldStufe": 4 or 6 characters
  Feldrand,       // "Feldrand": metres inside a new square before a crossing counts
};

// The key's name in the store.
QString SettingName(SettingKey key);

// A missing key gives the default; an existing empty value gives the empty text.
QString GetSetting(SettingKey key, const QString& defaultValue);
// The stored text, or nothing when the key is missing.
std::optional<QString> StoredSetting(SettingKey key);
void SaveSetting(SettingKey key, const QString& value);

// Stores all the values in one write of the file, which replaces the old one only when it
// is whole: a failed write leaves the old file as it was. Nothing on success, else the
// German reason, such as "Der Datenträger ist voll."
std::optional<QString> SaveSettings(const std::vector<std::pair<SettingKey, QString>>& values);

// The full name of the settings file.
QString SettingsFilePath();

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
