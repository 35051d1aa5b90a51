#include "gps/NmeaSentences.h"

#include "platform/Format.h"
#include "platform/Numbers.h"

namespace marvento {

NmeaFields::NmeaFields(QStringView sentence) : m_fields(sentence.toString().split(u',')) {}

std::optional<QString> NmeaFields::at(int index) const {
  if (!has(index)) return std::nullopt;
  return m_fields[index];
}

void NmeaFields::read(int index, QString& target) const {
  if (has(index)) target = m_fields[index];
}

GgaSentence ParseGga(const NmeaFields& fields) {
  GgaSentence gga;
  fields.read(1, gga.utc);
  fields.read(2, gga.lat);
  fields.read(3, gga.ns);
  fields.read(4, gga.lon);
  fields.read(5, gga.ew);
  fields.read(6, gga.quality);
  fields.read(7, gga.sats);
  fields.read(9, gga.alt);
  fields.read(10, gga.altUnit);
  return gga;
}

RmcSentence ParseRmc(const NmeaFields& fields) {
  RmcSentence rmc;
  fields.read(1, rmc.utc);
  rmc.status = fields.at(2);
  fields.read(3, rmc.lat);
  fields.read(4, rmc.ns);
  fields.read(5, rmc.lon);
  fields.read(6, rmc.ew);
  fields.read(7, rmc.speed);
  rmc.course = fields.at(8);
  return rmc;
}

GllSentence ParseGll(const NmeaFields& fields) {
  GllSentence gll;
  fields.read(1, gll.lat);
  fields.read(2, gll.ns);
  fields.read(3, gll.lon);
  fields.read(4, gll.ew);
  fields.read(5, gll.utc);
  gll.status = fields.at(6);
  return gll;
}

bool RmcValid(const RmcSentence& rmc) {
  return !rmc.status || *rmc.status == u"A";
}

bool GllValid(const GllSentence& gll) {
  return !gll.status || gll.status->startsWith(u'A');
}

namespace {

AxisParts decodeAxis(const QString& text, bool longitude) {
  AxisParts parts;
  // Characters in front of the point; -1 without a point.
  const qsizetype point = text.indexOf(u'.');
  if (point <= 1) return parts;
  const QString fraction = text.mid(point);
  parts.secText = Format(Val(fraction) * 60.0, u"#0.0##");
  parts.minText = text.mid(point - 2, 2);
  const QString degrees = text.left(point - 2);
  parts.degText = longitude ? Format(Val(degrees), u"##0") : degrees;
  parts.deg =
      Val(parts.degText) + Val(parts.minText) / 60.0 + Val(ToDotDecimal(parts.secText)) / 3600.0;
  return parts;
}

}  // namespace

AxisParts DecodeLatitude(const QString& text) {
  return decodeAxis(text, false);
}

AxisParts DecodeLongitude(const QString& text) {
  return decodeAxis(text, true);
}

}  // namespace marvento
