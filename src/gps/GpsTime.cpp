#include "gps/GpsTime.h"

#include "platform/Clock.h"
#include "platform/Format.h"
#include "platform/Numbers.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

namespace marvento {

namespace {

// Digits only, at least one and at most `most`.
bool digits(const QString& text, qsizetype most) {
  return !text.isEmpty() && text.size() <= most &&
         std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

bool timeOfDay(const UtcTimeParts& parts) {
  if (!digits(parts.hourText, 2) || !digits(parts.minText, 2)) return false;
  const double hour = Val(parts.hourText);
  const double minute = Val(parts.minText);
  const double second = Val(parts.secRaw);
  if (hour > 23 || minute > 59 || !(second >= 0)) return false;
  const bool leapSecond = hour == 23 && minute == 59;
  return second < (leapSecond ? 61 : 60);
}

}  // namespace

UtcTimeParts SplitUtc(const QString& utcText) {
  UtcTimeParts parts;
  const qsizetype length = utcText.size();
  // 1-based position of the first point; a field without one ("123519") is read as if it
  // ended in one, as receivers that send no fraction mean it.
  qsizetype dot = utcText.indexOf(u'.') + 1;
  if (dot == 0) dot = length + 1;
  const qsizetype secLength = length - dot + 3;
  parts.secRaw = secLength >= length ? utcText : utcText.right(secLength);
  // Whole seconds begun, as a clock shows them: 59.6 is still second 59, never a 60th.
  parts.secText = Format(std::floor(Val(parts.secRaw)), u"00");
  // A start before the first character, or a negative length, is a skipped step.
  if (dot - 4 >= 1) parts.minText = utcText.mid(dot - 5, 2);
  if (dot - 5 >= 0) parts.hourText = utcText.left(dot - 5);
  parts.shown = parts.hourText + u':' + parts.minText + u':' + parts.secText;
  parts.inRange = timeOfDay(parts);
  return parts;
}

std::optional<QTime> CorrectedTime(const UtcTimeParts& utc, QTime pcTime) {
  const QString pcHourText = pcTime.toString(QStringLiteral("hh"));
  const QString pcSecText = pcTime.toString(QStringLiteral("ss"));
  const float pcSec = static_cast<float>(Val(pcSecText));
  float secDiff = 0.0f;
  if (pcSec > 0) secDiff = static_cast<float>(Val(ToDotDecimal(utc.secRaw)) - pcSec);
  const auto hour = ToInt16(Val(pcHourText));
  if (!(std::fabs(secDiff) >= 0.5f) || !hour || *hour <= 0) return std::nullopt;

  const double pcSecAgain = Val(ToDotDecimal(Format(pcSec)));
  const float newSec = static_cast<float>(pcSecAgain + secDiff + 0.2);
  if (!(newSec >= 0.0f && newSec < 60.0f)) return std::nullopt;

  const auto minute = ToInt16(Val(utc.minText));
  const auto second = ToInt16(Val(Format(newSec, u"00")));
  if (!minute || !second) return std::nullopt;
  // Carry over as a time serial does, and keep the time of day only.
  int total = (*hour * 3600 + *minute * 60 + *second) % 86400;
  if (total < 0) total += 86400;
  return QTime(0, 0).addSecs(total);
}

GpsTimeStep ApplyGpsTime(const QString& utcText, bool gpsZeit, Clock& clock) {
  const UtcTimeParts utc = SplitUtc(utcText);
  GpsTimeStep step{utc.shown};
  if (gpsZeit) {
    if (const auto target = CorrectedTime(utc, clock.time())) {
      step.clockError = clock.setTimeOfDay(*target);
    }
  }
  return step;
}

QString ClockRefusedText(int error) {
  const QString why = error == EPERM || error == EACCES
                          ? QStringLiteral("keine Berechtigung zum Stellen der Systemuhr")
                          : QString::fromLocal8Bit(std::strerror(error));
  return QStringLiteral("Uhr nicht nach GPS gestellt: ") + why +
         QStringLiteral(" (Hilfe: Uhrzeit mit gpsd und chrony)");
}

}  // namespace marvento
