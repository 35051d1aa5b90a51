#include "gps/SentenceDecoding.h"

#include "gps/GpsTime.h"
#include "platform/Format.h"
#include "platform/Numbers.h"

#include <algorithm>
#include <cmath>
#include <variant>

namespace marvento {

namespace {

// What a receiver can really report; a value outside counts as if its field were empty.
constexpr double kMostKnots = 1000;      // speed over ground, below this
constexpr double kFullCircle = 360;      // course, from 0 to below this
constexpr double kLowestMetres = -1000;  // antenna height, both ends included
constexpr double kHighestMetres = 100000;
constexpr double kMostSatellites = 99;
constexpr double kMetresPerFoot = 0.3048;

// Speed over ground of an RMC sentence (field 7, knots): nothing when empty or impossible.
std::optional<double> speedOf(const RmcSentence& rmc) {
  if (rmc.speed.trimmed().isEmpty()) return std::nullopt;
  const double knots = Val(ToDotDecimal(rmc.speed));
  if (!(knots >= 0 && knots < kMostKnots)) return std::nullopt;
  return knots;
}

// Course over ground (field 8, degrees): nothing when missing, empty or impossible.
std::optional<double> courseOf(const RmcSentence& rmc) {
  if (!rmc.course || rmc.course->trimmed().isEmpty()) return std::nullopt;
  const double degrees = Val(ToDotDecimal(*rmc.course));
  if (!(degrees >= 0 && degrees < kFullCircle)) return std::nullopt;
  return degrees;
}

// The course line of an RMC sentence. Without a speed the line is cleared, as for a
// standing receiver; without a course it tells the speed alone.
QString speedAndCourse(const RmcSentence& rmc) {
  const std::optional<double> knots = speedOf(rmc);
  const float speedKn = static_cast<float>(knots.value_or(0));
  if (speedKn == 0.0f) return QStringLiteral(" ");
  QString line = QStringLiteral("GPS - Geschwindigkeit: ") + Format(speedKn, u"###0.0##") +
                 QStringLiteral(" Kn");
  if (const std::optional<double> course = courseOf(rmc)) {
    line += QStringLiteral("  Kurs: ") + Format(*course, u"##0.0#") + QStringLiteral(" °");
  }
  return line;
}

// Speed and course as numbers, for the windows that follow the position.
void speedAndCourseValues(const RmcSentence& rmc, DecodedSentence& d) {
  d.speedKnots = speedOf(rmc);
  d.courseDegrees = courseOf(rmc);
}

// The antenna height of a GGA sentence in metres (feet converted, any other unit read as
// metres): nothing when empty or impossible.
std::optional<double> heightOf(const GgaSentence& gga) {
  if (gga.alt.trimmed().isEmpty()) return std::nullopt;
  const double value = Val(gga.alt);
  const bool feet = gga.altUnit.compare(u"F", Qt::CaseInsensitive) == 0;
  const double metres = feet ? value * kMetresPerFoot : value;
  if (!(metres >= kLowestMetres && metres <= kHighestMetres)) return std::nullopt;
  return metres;
}

// The satellite count: a whole number from 0 to 99; an empty field counts as 0.
bool satellitesPossible(const QString& sats) {
  const double count = Val(sats);
  return count >= 0 && count <= kMostSatellites && count == std::floor(count);
}

// Good is strictly inside (1E-07, 180) and (1E-07, 90) on the magnitudes, with minutes below
// 60; a NaN is bad too. The magnitude carries no sign of its own: a negative one is garbage.
bool axisGood(const AxisParts& axis, double limit) {
  return axis.deg > 1e-7 && axis.deg < limit && Val(axis.minText) < 60;
}

bool inRange(const AxisParts& lon, const AxisParts& lat) {
  return axisGood(lon, 180.0) && axisGood(lat, 90.0);
}

QString formatSats(const QString& sats) {
  return Format(Val(sats), u"#0");
}

}  // namespace

QString FindRmcLine(const QString& rawBuffer) {
  const SentenceSearch rmc = FindKnownSentence(rawBuffer, SentenceKind::Rmc);
  if (rmc.result != SentenceSearch::Result::Found) return {};
  return rawBuffer.mid(rmc.start, rmc.length);
}

namespace {

// The position fields of the ruling sentence, as they stand.
struct PositionFields {
  QString lat;
  QString ns;
  QString lon;
  QString ew;
};

// Each type's own steps. They fill in what the type yields and return its position fields
// when decoding goes on to time and position.
std::optional<PositionFields> typeSteps(const GgaSentence& gga, DecodedSentence& d) {
  const bool satsKnown = satellitesPossible(gga.sats);
  const QString sats = formatSats(gga.sats);
  if (Val(gga.quality) <= 0) {
    if (!satsKnown) {
      d.info = QStringLiteral("Schlechter Empfang!");
    } else if (Val(sats) < 3) {
      d.info = QStringLiteral("Zu geringe Anzahl an Satelliten! (") + sats + u')';
    } else {
      // The field's own text, not the formatted count: "(07)".
      d.info = QStringLiteral("Schlechter Empfang! (") + gga.sats + u')';
    }
    return std::nullopt;
  }
  d.utcText = gga.utc;
  d.heightMetres = heightOf(gga);
  // A height or count that no receiver can report is neither shown nor averaged.
  if (d.heightMetres && satsKnown) d.heightSample = HeightSampleTexts{gga.alt, gga.altUnit, sats};
  if (d.heightMetres) {
    const QString altText = Format(Val(gga.alt)) + u' ' + gga.altUnit.toLower();
    d.info = satsKnown
                 ? HeightLine(altText, sats)
                 : QStringLiteral("GPS - Antennenhöhe: ") + altText + QStringLiteral(" ü. NN");
  } else {
    d.info = QString();
  }
  // The windows that follow the position take no height in a unit of unknown size.
  const bool known = gga.altUnit.compare(u"M", Qt::CaseInsensitive) == 0 ||
                     gga.altUnit.compare(u"F", Qt::CaseInsensitive) == 0;
  if (!known) d.heightMetres.reset();
  return PositionFields{gga.lat, gga.ns, gga.lon, gga.ew};
}

std::optional<PositionFields> typeSteps(const RmcSentence& rmc, DecodedSentence& d) {
  if (!RmcValid(rmc)) return std::nullopt;
  d.utcText = rmc.utc;
  d.kursText = speedAndCourse(rmc);
  speedAndCourseValues(rmc, d);
  return PositionFields{rmc.lat, rmc.ns, rmc.lon, rmc.ew};
}

std::optional<PositionFields> typeSteps(const GllSentence& gll, DecodedSentence& d) {
  d.info = QString();
  if (!GllValid(gll)) return std::nullopt;
  d.utcText = gll.utc;
  return PositionFields{gll.lat, gll.ns, gll.lon, gll.ew};
}

}  // namespace

DecodedSentence DecodeSentence(const QString& sentence, const QString& rawBuffer) {
  DecodedSentence d;
  const NmeaFields fields(sentence);
  QString address;
  fields.read(0, address);
  d.rmcLine = FindRmcLine(rawBuffer);

  const SentenceType* type = TypeOfAddress(address);
  if (type == nullptr || !ChecksumRight(sentence)) {
    d.info = QString();
    return d;
  }
  d.kind = type->kind;
  const std::optional<PositionFields> position =
      std::visit([&d](const auto& parsed) { return typeSteps(parsed, d); }, type->parse(fields));
  if (!position) return d;

  d.timeAndPosition = true;
  d.lat = DecodeLatitude(position->lat);
  d.latSign = position->ns == u"N" ? QStringLiteral(" ") : QStringLiteral("-");
  d.lon = DecodeLongitude(position->lon);
  d.lonSign = position->ew == u"E" ? QStringLiteral(" ") : QStringLiteral("-");
  d.positionGood = inRange(d.lon, d.lat);
  if (!d.positionGood) {
    // A sentence whose position cannot be true is not trusted for its speed and course
    // either: the course line keeps its last value and time.
    d.kursText.clear();
    d.speedKnots.reset();
    d.courseDegrees.reset();
    return d;
  }

  if (d.kind != SentenceKind::Rmc && !d.rmcLine.isEmpty()) {
    const RmcSentence rmc = ParseRmc(NmeaFields(d.rmcLine));
    d.kursText = RmcValid(rmc) ? speedAndCourse(rmc) : QString();
    if (RmcValid(rmc)) speedAndCourseValues(rmc, d);
  }
  return d;
}

bool DecodedSentence::hasTime() const {
  return timeAndPosition && positionGood && !utcText.isEmpty() && IsNumeric(utcText) &&
         SplitUtc(utcText).inRange;
}

std::optional<QString> DecodedSentence::finalInfo() const {
  if (timeAndPosition && !positionGood) return kBadPositionText;
  return info;
}

QString DecodedSentence::lgText(bool gradDezimal) const {
  if (gradDezimal) return lonSign + FormatPlain(lon.deg);
  return lonSign + lon.degText + QStringLiteral("° ") + lon.minText + QStringLiteral("' ") +
         lon.secText + u'"';
}

QString DecodedSentence::brText(bool gradDezimal) const {
  if (gradDezimal) return latSign + FormatPlain(lat.deg);
  return latSign + lat.degText + QStringLiteral("° ") + lat.minText + QStringLiteral("' ") +
         lat.secText + u'"';
}

std::optional<GpsFix> DecodedSentence::fix() const {
  if (!timeAndPosition || !positionGood) return std::nullopt;
  GpsFix f;
  f.position.lat = latSign == u"-" ? -lat.deg : lat.deg;
  f.position.lon = lonSign == u"-" ? -lon.deg : lon.deg;
  if (hasTime()) {
    const UtcTimeParts parts = SplitUtc(utcText);
    // A time of day has no 60th second: the leap second counts as the one before it.
    const int second = std::min(59, static_cast<int>(std::floor(Val(ToDotDecimal(parts.secRaw)))));
    const QTime t(static_cast<int>(Val(parts.hourText)), static_cast<int>(Val(parts.minText)),
                  second);
    if (t.isValid()) f.utc = t;
  }
  f.speedKnots = speedKnots;
  f.courseDegrees = courseDegrees;
  f.heightMetres = heightMetres;
  return f;
}

Placeholders RemotePlaceholders(bool gradDezimal) {
  if (gradDezimal) return {QStringLiteral("AA00AA"), Format(-179.999999), Format(-89.999999)};
  const QString seconds = Format(59.999, u"#0.0##") + u'"';
  return {QStringLiteral("AA00AA"), QStringLiteral("-179° 59' ") + seconds,
          QStringLiteral("-89° 59' ") + seconds};
}

QString HeightLine(const QString& altText, const QString& satText) {
  return QStringLiteral("GPS - Antennenhöhe: ") + altText + QStringLiteral(" ü. NN (") + satText +
         u')';
}

std::optional<QString> CourseLine(const QString& kursText, const QString& panelTime) {
  if (kursText == u" ") return QString();
  if (kursText.isEmpty()) return std::nullopt;
  return kursText + QStringLiteral(" (Stand: ") + panelTime + u')';
}

}  // namespace marvento
