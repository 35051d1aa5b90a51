#include "gps/SentenceDecoding.h"

#include "platform/Format.h"
#include "platform/Numbers.h"

#include <cmath>

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
  const qsizetype start = rawBuffer.indexOf(u"$GPRMC");
  if (start < 0) return {};
  const qsizetype next = rawBuffer.indexOf(u"$G", start + 1);
  if (next < 0) return {};
  return rawBuffer.mid(start, next - start);
}

DecodedSentence DecodeSentence(const QString& sentence, const QString& rawBuffer) {
  DecodedSentence d;
  const NmeaFields fields(sentence);
  QString name;
  fields.read(0, name);
  d.rmcLine = FindRmcLine(rawBuffer);

  QString latText, nsText, lonText, ewText;
  if (name == u"$GPGGA") {
    d.kind = SentenceKind::Gga;
    const GgaSentence gga = ParseGga(fields);
    if (Val(gga.quality) > 0) {
      d.utcText = gga.utc;
      latText = gga.lat;
      nsText = gga.ns;
      lonText = gga.lon;
      ewText = gga.ew;
      const QString sats = formatSats(gga.sats);
      d.heightSample = HeightSampleTexts{gga.alt, gga.altUnit, sats};
      const QString altText = Format(Val(gga.alt)) + u' ' + gga.altUnit.toLower();
      d.info = HeightLine(altText, sats);
    } else {
      const QString sats = formatSats(gga.sats);
      if (Val(sats) < 3) {
        d.info = QStringLiteral("Zu geringe Anzahl an Satteliten! (") + sats + u')';
      } else {
        // The field's own text, not the formatted count: "(07)".
        d.info = QStringLiteral("Schlechter Empfang! (") + gga.sats + u')';
      }
      return d;
    }
  } else if (name == u"$GPRMC") {
    d.kind = SentenceKind::Rmc;
    const RmcSentence rmc = ParseRmc(fields);
    if (!RmcValid(rmc)) return d;
    d.utcText = rmc.utc;
    latText = rmc.lat;
    nsText = rmc.ns;
    lonText = rmc.lon;
    ewText = rmc.ew;
    d.kursText = speedAndCourse(rmc);
  } else if (name == u"$GPGLL") {
    d.kind = SentenceKind::Gll;
    const GllSentence gll = ParseGll(fields);
    d.info = QString();
    if (!GllValid(gll)) return d;
    latText = gll.lat;
    nsText = gll.ns;
    lonText = gll.lon;
    ewText = gll.ew;
    d.utcText = gll.utc;
  } else {
    d.info = QString();
    return d;
  }

  d.timeAndPosition = true;
  d.lat = DecodeLatitude(latText);
  d.latSign = nsText == u"N" ? QStringLiteral(" ") : QStringLiteral("-");
  d.lon = DecodeLongitude(lonText);
  d.lonSign = ewText == u"E" ? QStringLiteral(" ") : QStringLiteral("-");
  d.positionGood = inRange(d.lon.deg, d.lat.deg);

  if (d.kind != SentenceKind::Rmc && !d.rmcLine.isEmpty()) {
    const RmcSentence rmc = ParseRmc(NmeaFields(d.rmcLine));
    d.kursText = RmcValid(rmc) ? speedAndCourse(rmc) : QString();
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
