#include "platform/Settings.h"

#include "platform/Numbers.h"

#include <QSettings>
#include <QStringList>

#include <cmath>

namespace marvento {

namespace {

QSettings store() {
  return QSettings(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                   QStringLiteral("Marvento"));
}

QString read(const QString& group, const QString& key, const QString& defaultValue) {
  QSettings settings = store();
  settings.beginGroup(group);
  if (!settings.contains(key)) return defaultValue;
  const QVariant value = settings.value(key);
  // The INI reader turns an unquoted text with commas, edited in by hand, into a list.
  if (value.typeId() == QMetaType::QStringList) return value.toStringList().join(u',');
  return value.toString();
}

void write(const QString& group, const QString& key, const QString& value) {
  QSettings settings = store();
  settings.beginGroup(group);
  settings.setValue(key, value);
}

const QString kSettingsGroup = QStringLiteral("Settings");
const QString kPortsGroup = QStringLiteral("Ports");
const QString kMapGroup = QStringLiteral("Karte");

QString mapSettingName(MapSettingKey key) {
  switch (key) {
    case MapSettingKey::Geometry: return QStringLiteral("Geometrie");
    case MapSettingKey::Zoom: return QStringLiteral("Zoom");
    case MapSettingKey::Layers: return QStringLiteral("Ebenen");
  }
  return {};
}

}  // namespace

QString SettingName(SettingKey key) {
  switch (key) {
    case SettingKey::Gps: return QStringLiteral("GPS");
    case SettingKey::GradDezimal: return QStringLiteral("Grad_Dezimal");
    case SettingKey::GpsZeit: return QStringLiteral("GPS-Zeit");
    case SettingKey::GpsInterval: return QStringLiteral("GPS-Interval");
    case SettingKey::BitSek: return QStringLiteral("Bit-Sek");
    case SettingKey::Com: return QStringLiteral("Com");
    case SettingKey::Protokoll: return QStringLiteral("Protokoll");
    case SettingKey::Loc10st: return QStringLiteral("Loc10st");
    case SettingKey::MyHomeLoc: return QStringLiteral("MyHomeLoc");
    case SettingKey::Radius: return QStringLiteral("Radius");
    case SettingKey::MainLeft: return QStringLiteral("MainLeft");
    case SettingKey::MainTop: return QStringLiteral("MainTop");
    case SettingKey::Gpsd: return QStringLiteral("Gpsd");
    case SettingKey::Wsjtx: return QStringLiteral("Wsjtx");
    case SettingKey::Js8Call: return QStringLiteral("Js8Call");
    case SettingKey::Rotor: return QStringLiteral("Rotor");
  }
  return {};
}

QString GetSetting(SettingKey key, const QString& defaultValue) {
  return read(kSettingsGroup, SettingName(key), defaultValue);
}

void SaveSetting(SettingKey key, const QString& value) {
  write(kSettingsGroup, SettingName(key), value);
}

float GetTwipsSetting(SettingKey key) {
  const QString text = GetSetting(key, QStringLiteral("1000")).trimmed();
  if (!IsNumeric(text)) return 1000;
  const double value = Val(ToDotDecimal(text));
  // A position far off any screen is no position a window was closed at.
  return std::fabs(value) <= 1e7 ? static_cast<float>(value) : 1000.0f;
}

QString GetPortDevice(int number) {
  return read(kPortsGroup, QStringLiteral("Com%1").arg(number), {}).trimmed();
}

QString GetMapSetting(MapSettingKey key, const QString& defaultValue) {
  return read(kMapGroup, mapSettingName(key), defaultValue);
}

void SaveMapSetting(MapSettingKey key, const QString& value) {
  write(kMapGroup, mapSettingName(key), value);
}

void SavePortDevice(int number, const QString& path) {
  write(kPortsGroup, QStringLiteral("Com%1").arg(number), path);
}

}  // namespace marvento
