#include "app/SettingsStore.h"

#include "gps/GpsExchange.h"
#include "platform/CommControl.h"
#include "platform/Format.h"
#include "platform/Numbers.h"
#include "platform/Settings.h"

namespace marvento {

StartupSettings ReadStartupSettings(Module1& state) {
  StartupSettings result;
  auto boolean = [](SettingKey key) {
    return ReadBoolean(GetSetting(key, QStringLiteral("False"))).value_or(false);
  };

  state.GpsStatus = GetSetting(SettingKey::Gps, kGpsAus);
  state.GradDezimal = boolean(SettingKey::GradDezimal);
  state.GpsZeit = boolean(SettingKey::GpsZeit);
  const QString intervalText = GetSetting(SettingKey::GpsInterval, QStringLiteral("30"));
  state.Loc10st = boolean(SettingKey::Loc10st);
  result.interval = ReadInterval(intervalText).value_or(PollInterval{});
  state.GpsIntervalSeconds = result.interval.seconds;
  const QString baudText = GetSetting(SettingKey::BitSek, QStringLiteral("4800"));
  state.ComPort = GetSetting(SettingKey::Com, QStringLiteral("Com1"));
  state.ProtokollOn = boolean(SettingKey::Protokoll);
  state.MyHomeLoc = GetSetting(SettingKey::MyHomeLoc, QString());
  result.radiusPosition =
      ReadRadiusPosition(GetSetting(SettingKey::Radius, QStringLiteral("2"))).value_or(2);
  state.GpsdAddress = GetSetting(SettingKey::Gpsd, kDefaultGpsdAddress);
  std::optional<std::int16_t> number = ComNumberOf(state.ComPort);
  if (IsGpsdSource(state.ComPort)) {
    // gpsd has no port of its own; the first port stands ready for a switch back.
    state.ComPort = kGpsdSource;
    number = 1;
  } else if (!number) {
    state.ComPort = QStringLiteral("Com1");
    number = 1;
  }
  state.ComNumber = *number;
  state.ComSettings = baudText + QStringLiteral(",N,8,1");
  return result;
}

void WriteExitSettings(const Module1& state, const ExitSettings& window) {
  SaveSetting(SettingKey::Gps, state.GpsStatus);
  SaveSetting(SettingKey::GradDezimal, BooleanText(state.GradDezimal));
  SaveSetting(SettingKey::GpsZeit, BooleanText(state.GpsZeit));
  SaveSetting(SettingKey::GpsInterval, Format(state.GpsIntervalSeconds, u"###"));
  SaveSetting(SettingKey::BitSek, Format(Val(state.ComSettings), u"######"));
  SaveSetting(SettingKey::Com, state.ComPort);
  SaveSetting(SettingKey::Protokoll, BooleanText(state.ProtokollOn));
  SaveSetting(SettingKey::Loc10st, BooleanText(state.Loc10st));
  SaveSetting(SettingKey::Radius, QString::number(window.radiusPosition));
  if (!window.minimized) {
    SaveSetting(SettingKey::MainLeft, TwipsText(window.leftTwips));
    SaveSetting(SettingKey::MainTop, TwipsText(window.topTwips));
  }
}

}  // namespace marvento
