#include "app/SettingsStore.h"

#include "gps/GpsExchange.h"
#include "gps/GpsdClient.h"
#include "platform/CommControl.h"
#include "platform/Format.h"
#include "platform/Numbers.h"
#include "platform/Settings.h"

#include <QStringList>

namespace marvento {

namespace {

const QString kDefaultBaud = QStringLiteral("4800");

// Whether a port name is one the next start takes as it is.
bool usablePort(const QString& comPort) {
  return IsGpsdSource(comPort) || ReadPortNumber(comPort).has_value();
}

// The texts written at exit are ones the next start reads back unchanged: a rate or a port
// name that the dialog let through but no start would take is stored as the key's default.
QString baudText(const QString& comSettings) {
  const QString text = Format(Val(comSettings), u"######");
  return ReadBaudRate(text) ? text : kDefaultBaud;
}

QString portText(const Module1& state) {
  if (usablePort(state.ComPort)) return state.ComPort;
  if (state.ComNumber >= 1 && state.ComNumber <= 29)
    return QStringLiteral("Com%1").arg(state.ComNumber);
  return QStringLiteral("Com1");
}

}  // namespace

QString ReplacedSettingsText(const QList<std::pair<QString, QString>>& replaced) {
  if (replaced.isEmpty()) return {};
  if (replaced.size() == 1) {
    return QStringLiteral("Einstellung %1 ungültig, %2 verwendet")
        .arg(replaced[0].first, replaced[0].second);
  }
  QStringList items;
  for (const auto& [key, used] : replaced) items << key + QStringLiteral(" = ") + used;
  return QStringLiteral("Einstellungen ungültig, verwendet: ") + items.join(QStringLiteral(", "));
}

StartupSettings ReadStartupSettings(Module1& state) {
  StartupSettings result;
  // The stored value converted by parse; the default when missing, and also, named in
  // `replaced`, when parse finds nothing it can use.
  auto read = [&result](SettingKey key, const QString& defaultText, auto defaultValue,
                        auto parse) -> decltype(defaultValue) {
    const std::optional<QString> stored = StoredSetting(key);
    if (!stored) return defaultValue;
    if (const auto value = parse(*stored)) return *value;
    result.replaced.append({SettingName(key), defaultText});
    return defaultValue;
  };
  auto boolean = [&read](SettingKey key) {
    return read(key, BooleanText(false), false, ReadBoolean);
  };

  state.GpsStatus = read(SettingKey::Gps, kGpsAus, kGpsAus, [](const QString& text) {
    return text == kGpsAn || text == kGpsAus ? std::optional<QString>(text) : std::nullopt;
  });
  state.GradDezimal = boolean(SettingKey::GradDezimal);
  state.GpsZeit = boolean(SettingKey::GpsZeit);
  result.interval =
      read(SettingKey::GpsInterval, QStringLiteral("30"), PollInterval{}, ReadInterval);
  state.Loc10st = boolean(SettingKey::Loc10st);
  state.GpsIntervalSeconds = result.interval.seconds;
  const std::int32_t baud = read(SettingKey::BitSek, kDefaultBaud, 4800, ReadBaudRate);
  state.ComPort = read(SettingKey::Com, QStringLiteral("Com1"), QStringLiteral("Com1"),
                       [](const QString& text) {
                         return usablePort(text) ? std::optional<QString>(text) : std::nullopt;
                       });
  state.ProtokollOn = boolean(SettingKey::Protokoll);
  state.MyHomeLoc = GetSetting(SettingKey::MyHomeLoc, QString());
  result.radiusPosition =
      read(SettingKey::Radius, QStringLiteral("2"), std::int16_t{2}, ReadRadiusPosition);
  state.GpsdAddress =
      read(SettingKey::Gpsd, kDefaultGpsdAddress, kDefaultGpsdAddress, [](const QString& text) {
        return ParseGpsdAddress(text) ? std::optional<QString>(text) : std::nullopt;
      });
  if (IsGpsdSource(state.ComPort)) {
    // gpsd has no port of its own; the first port stands ready for a switch back.
    state.ComPort = kGpsdSource;
    state.ComNumber = 1;
  } else {
    state.ComNumber = ReadPortNumber(state.ComPort).value_or(1);
  }
  state.ComSettings = QString::number(baud) + QStringLiteral(",N,8,1");
  return result;
}

std::optional<QString> WriteExitSettings(const Module1& state, const ExitSettings& window) {
  std::vector<std::pair<SettingKey, QString>> values = {
      {SettingKey::Gps, state.GpsStatus},
      {SettingKey::GradDezimal, BooleanText(state.GradDezimal)},
      {SettingKey::GpsZeit, BooleanText(state.GpsZeit)},
      {SettingKey::GpsInterval, Format(state.GpsIntervalSeconds, u"###")},
      {SettingKey::BitSek, baudText(state.ComSettings)},
      {SettingKey::Com, portText(state)},
      {SettingKey::Protokoll, BooleanText(state.ProtokollOn)},
      {SettingKey::Loc10st, BooleanText(state.Loc10st)},
      {SettingKey::Radius, QString::number(window.radiusPosition)},
      // Also stored at the dialog's OK; here too, so that a value replaced at start-up is
      // repaired in the file.
      {SettingKey::Gpsd, state.GpsdAddress},
  };
  if (!window.minimized) {
    values.emplace_back(SettingKey::MainLeft, TwipsText(window.leftTwips));
    values.emplace_back(SettingKey::MainTop, TwipsText(window.topTwips));
  }
  return SaveSettings(values);
}

}  // namespace marvento
