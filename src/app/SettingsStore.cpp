#include "app/SettingsStore.h"

#include "gps/GpsExchange.h"
#include "platform/CommControl.h"
#include "platform/Format.h"
#include "platform/Numbers.h"
#include "platform/Settings.h"

#include <QRegularExpression>

#include <cmath>

namespace marvento {

namespace {

// Whether Val finds a number at the start of the text at all.
bool startsWithNumber(const QString& text) {
  static const QRegularExpression number(
      QStringLiteral("^[ \\t\\r\\n]*[+-]?[ \\t\\r\\n]*\\.?[0-9]"));
  return number.match(text).hasMatch();
}

}  // namespace

std::optional<bool> ReadBoolean(const QString& text) {
  const QString word = text.trimmed();
  if (word.compare(u"True", Qt::CaseInsensitive) == 0) return true;
  if (word.compare(u"False", Qt::CaseInsensitive) == 0) return false;
  if (IsNumeric(word)) return Val(ToDotDecimal(word)) != 0;
  return std::nullopt;
}

std::optional<PollInterval> ReadInterval(const QString& text) {
  // The empty text is what an interval of 0 is written as; it reads back as 0.
  if (!text.trimmed().isEmpty() && !startsWithNumber(text)) return std::nullopt;
  const std::optional<std::int32_t> seconds = ToInt32(Val(text));
  if (!seconds || *seconds < 0) return std::nullopt;
  const std::int64_t milliseconds = std::int64_t{*seconds} * 1000;
  if (milliseconds > INT32_MAX) return std::nullopt;
  if (milliseconds > 65534) return PollInterval{65, 65000};
  return PollInterval{*seconds, static_cast<std::int32_t>(milliseconds)};
}

std::optional<std::int16_t> ReadRadiusPosition(const QString& text) {
  if (!IsNumeric(text)) return std::nullopt;
  const std::optional<std::int16_t> position = ToInt16(Val(ToDotDecimal(text.trimmed())));
  if (!position || *position < -1 || *position > 11) return std::nullopt;
  return position;
}

QString BooleanText(bool value) {
  return value ? QStringLiteral("True") : QStringLiteral("False");
}

QString TwipsText(float twips) {
  // Seven digits read back as another single for some values; nine always suffice, and the
  // fewest that do keep the usual positions as short as they look.
  QString text;
  for (int digits = 7; digits <= 9; ++digits) {
    text = QString::number(twips, 'g', digits);
    if (static_cast<float>(Val(text)) == twips) break;
  }
  return text;
}

StartupSettings ReadStartupSettings(Module1& state) {
  StartupSettings result;
  auto boolean = [](const QString& key) {
    return ReadBoolean(GetSetting(key, QStringLiteral("False"))).value_or(false);
  };

  state.GpsStatus = GetSetting(QStringLiteral("GPS"), kGpsAus);
  state.GradDezimal = boolean(QStringLiteral("Grad_Dezimal"));
  state.GpsZeit = boolean(QStringLiteral("GPS-Zeit"));
  const QString intervalText = GetSetting(QStringLiteral("GPS-Interval"), QStringLiteral("30"));
  state.Loc10st = boolean(QStringLiteral("Loc10st"));
  result.interval = ReadInterval(intervalText).value_or(PollInterval{});
  state.GpsIntervalSeconds = result.interval.seconds;
  const QString baudText = GetSetting(QStringLiteral("Bit-Sek"), QStringLiteral("4800"));
  state.ComPort = GetSetting(QStringLiteral("Com"), QStringLiteral("Com1"));
  state.ProtokollOn = boolean(QStringLiteral("Protokoll"));
  state.MyHomeLoc = GetSetting(QStringLiteral("MyHomeLoc"), QString());
  result.radiusPosition =
      ReadRadiusPosition(GetSetting(QStringLiteral("Radius"), QStringLiteral("2"))).value_or(2);
  state.GpsDataSeen = false;
  state.GpsdAddress = GetSetting(QStringLiteral("Gpsd"), kDefaultGpsdAddress);
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
  SaveSetting(QStringLiteral("GPS"), state.GpsStatus);
  SaveSetting(QStringLiteral("Grad_Dezimal"), BooleanText(state.GradDezimal));
  SaveSetting(QStringLiteral("GPS-Zeit"), BooleanText(state.GpsZeit));
  SaveSetting(QStringLiteral("GPS-Interval"), Format(state.GpsIntervalSeconds, u"###"));
  SaveSetting(QStringLiteral("Bit-Sek"), Format(Val(state.ComSettings), u"######"));
  SaveSetting(QStringLiteral("Com"), state.ComPort);
  SaveSetting(QStringLiteral("Protokoll"), BooleanText(state.ProtokollOn));
  SaveSetting(QStringLiteral("Loc10st"), BooleanText(state.Loc10st));
  SaveSetting(QStringLiteral("Radius"), QString::number(window.radiusPosition));
  if (!window.minimized) {
    SaveSetting(QStringLiteral("MainLeft"), TwipsText(window.leftTwips));
    SaveSetting(QStringLiteral("MainTop"), TwipsText(window.topTwips));
  }
}

}  // namespace marvento
