#include "gps/SentenceDecoding.h"

#include "gps/GpsTime.h"
#include "platform/Format.h"
#include "platform/Numbers.h"

#include <cmath>
#include <variant>

namespace marvento {

namespace {

// Speed over ground (field 7, knots) and course (field 8, degrees) of an RMC sentence.
QString speedAndCourse(const RmcSentence& rmc) {
  const float speedKn = static_cast<float>(Val(ToDotDecimal(rmc.speed)));
  const QString speedText = Format(speedKn, u"###0.0##");
  QString courseText;
  if (rmc.course) courseText = Format(Val(ToDotDecimal(*rmc.course)), u"##0.0#");
  if (speedKn == 0.0f) return QStringLiteral(" ");
  return QStringLiteral("GPS - Geschwindigkeit: ") + speedText + QStringLiteral(" Kn  Kurs: ") +
         courseText + QStringLiteral(" °");
}

// Speed and course as numbers, for the windows that follow the position.
void speedAndCourseValues(const RmcSentence& rmc, DecodedSentence& d) {
  if (!rmc.speed.trimmed().isEmpty()) d.speedKnots = Val(ToDotDecimal(rmc.speed));
  if (rmc.course && !rmc.course->trimmed().isEmpty()) {
    d.courseDegrees = Val(ToDotDecimal(*rmc.course));
  }
}

// Good is strictly inside (1E-07, 180) and (1E-07, 90) on the magnitudes; a NaN is bad too.
bool inRange(double lonDeg, double latDeg) {
  const double lon = std::fabs(lonDeg);
  const double lat = std::fabs(latDeg);
  return lon > 1e-7 && lon < 180.0 && lat > 1e-7 && lat < 90.0;
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
  const QString sats = formatSats(gga.sats);
  if (Val(gga.quality) <= 0) {
    if (Val(sats) < 3) {
      d.info = QStringLiteral("Zu geringe Anzahl an Satteliten! (") + sats + u')';
    } else {
      // The field's own text, not the formatted count: "(07)".
      d.info = QStringLiteral("Schlechter Empfang! (") + gga.sats + u')';
    }
    return std::nullopt;
  }
  d.utcText = gga.utc;
  d.heightSample = HeightSampleTexts{gga.alt, gga.altUnit, sats};
  const QString altText = Format(Val(gga.alt)) + u' ' + gga.altUnit.toLower();
  d.info = HeightLine(altText, sats);
  if (gga.altUnit.compare(u"M", Qt::CaseInsensitive) == 0 && !gga.alt.trimmed().isEmpty()) {
    d.heightMetres = Val(gga.alt);
  }
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
  d.positionGood = inRange(d.lon.deg, d.lat.deg);

  if (d.kind != SentenceKind::Rmc && !d.rmcLine.isEmpty()) {
    const RmcSentence rmc = ParseRmc(NmeaFields(d.rmcLine));
    d.kursText = RmcValid(rmc) ? speedAndCourse(rmc) : QString();
    if (RmcValid(rmc)) speedAndCourseValues(rmc, d);
  }
  return d;
}

bool DecodedSentence::hasTime() const {
  return timeAndPosition && !utcText.isEmpty() && IsNumeric(utcText);
}

std::optional<QString> DecodedSentence::finalInfo() const {
  if (timeAndPosition && !positionGood) return kBadPositionText;
  return info;
}

QString DecodedSentence::lgText(bool gradDezimal) const {
  if (gradDezimal) return lonSign + Format(lon.deg);
  return lonSign + lon.degText + QStringLiteral("° ") + lon.minText + QStringLiteral("' ") +
         lon.secText + u'"';
}

QString DecodedSentence::brText(bool gradDezimal) const {
  if (gradDezimal) return latSign + Format(lat.deg);
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
    const QTime t(static_cast<int>(Val(parts.hourText)), static_cast<int>(Val(parts.minText)),
                  static_cast<int>(std::floor(Val(ToDotDecimal(parts.secRaw)))));
    if (t.isValid()) f.utc = t;
  }
  f.speedKnots = speedKnots;
  f.courseDegrees = courseDegrees;
  f.heightMetres = heightMetres;
  return f;
}

Placeholders RemotePlaceholders(bool gradDezimal) {
  if (gradDezimal) {
    return {QStringLiteral("AA00AA"), QStringLiteral("-179,999999"), QStringLiteral("-89,999999")};
  }
  return {QStringLiteral("AA00AA"), QStringLiteral("-179° 59' 59,999\""),
          QStringLiteral("-89° 59' 59,999\"")};
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
