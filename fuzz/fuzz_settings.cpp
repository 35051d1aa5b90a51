// Reading every settings key from texts edited by hand: the conversions one by one, and the
// whole start-up reading from a private store.
#include "FuzzSupport.h"
#include "app/Module1.h"
#include "app/SettingsStore.h"
#include "gps/GpsExchange.h"
#include "platform/CommControl.h"
#include "platform/Settings.h"

#include <QSettings>

#include <cmath>
#include <iterator>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

// The keys in the order the input's lines fill them.
const SettingKey kKeys[] = {SettingKey::Gps,         SettingKey::GradDezimal, SettingKey::GpsZeit,
                            SettingKey::GpsInterval, SettingKey::Loc10st,     SettingKey::BitSek,
                            SettingKey::Com,         SettingKey::Protokoll,   SettingKey::MyHomeLoc,
                            SettingKey::Radius};

void removeSetting(SettingKey key) {
  QSettings store(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                  QStringLiteral("Marvento"));
  store.remove(QStringLiteral("Settings/") + SettingName(key));
}

void checkConversions(const QString& text) {
  (void)ReadBoolean(text);
  if (const auto interval = ReadInterval(text)) {
    Check(interval->seconds >= 0 && interval->seconds <= 65, "the interval is 0 to 65 s", text);
    Check(interval->milliseconds == interval->seconds * 1000, "the timer runs the interval", text);
  }
  if (const auto port = ComNumberOf(text)) (void)*port;
  if (const auto radius = ReadRadiusPosition(text)) {
    Check(*radius >= -1 && *radius <= 11, "the radius position is in the list", text);
  }
  SaveSetting(SettingKey::MainLeft, text);
  const float twips = GetTwipsSetting(SettingKey::MainLeft);
  Check(std::isfinite(twips) && std::fabs(twips) <= 1e7, "a window position is on a screen", text);
  // What is written at exit reads back as the same position.
  SaveSetting(SettingKey::MainLeft, TwipsText(twips));
  Check(GetTwipsSetting(SettingKey::MainLeft) == twips, "the stored window position reads back",
        text);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::UsePrivateSettings();
  fuzz::UseGermanLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QStringList lines = fuzz::Text(data, size).split(u'\n');
  for (const QString& line : lines) checkConversions(line);

  // Lines fill the keys in order; a key without a line is absent and takes its default.
  for (qsizetype i = 0; i < qsizetype(std::size(kKeys)); ++i) {
    if (i < lines.size()) {
      SaveSetting(kKeys[i], lines[i]);
    } else {
      removeSetting(kKeys[i]);
    }
  }
  Module1 state;
  const StartupSettings read = ReadStartupSettings(state);
  const QString shown = lines.join(u'|');
  Check(read.interval.seconds >= 0 && read.interval.seconds <= 65,
        "the start interval is 0 to 65 s", shown);
  Check(read.interval.milliseconds == read.interval.seconds * 1000,
        "the start timer runs the interval", shown);
  Check(state.GpsIntervalSeconds == read.interval.seconds, "the state holds the interval", shown);
  Check(read.radiusPosition >= -1 && read.radiusPosition <= 11, "the start radius is in the list",
        shown);
  Check(state.ComSettings.endsWith(u",N,8,1"), "the line settings end in N,8,1", state.ComSettings);
  const auto number = ComNumberOf(state.ComPort);
  if (IsGpsdSource(state.ComPort)) {
    Check(state.ComPort == kGpsdSource && state.ComNumber == 1,
          "gpsd is named as such, with the first port ready",
          state.ComPort + u' ' + QString::number(state.ComNumber));
  } else {
    Check(number && *number == state.ComNumber, "the port number is the one of the port name",
          state.ComPort + u' ' + QString::number(state.ComNumber));
  }
  return 0;
}
