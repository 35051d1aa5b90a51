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

namespace {

bool isCapital(QChar c) {
  return c >= u'A' && c <= u'Z';
}

int hexDigit(QChar c) {
  if (c >= u'0' && c <= u'9') return c.unicode() - u'0';
  if (c >= u'A' && c <= u'F') return c.unicode() - u'A' + 10;
  if (c >= u'a' && c <= u'f') return c.unicode() - u'a' + 10;
  return -1;
}

}  // namespace

const std::array<SentenceType, 3> kSentenceTypes = {{
    {SentenceKind::Gga, u"GGA", 7,
     [](const NmeaFields& f) -> ParsedSentence { return ParseGga(f); }},
    {SentenceKind::Rmc, u"RMC", 7,
     [](const NmeaFields& f) -> ParsedSentence { return ParseRmc(f); }},
    {SentenceKind::Gll, u"GLL", 5,
     [](const NmeaFields& f) -> ParsedSentence { return ParseGll(f); }},
}};

const SentenceType* TypeOfAddress(QStringView address) {
  if (address.size() != 6 || address[0] != u'$' || !isCapital(address[1]) ||
      !isCapital(address[2])) {
    return nullptr;
  }
  for (const SentenceType& type : kSentenceTypes) {
    if (address.mid(3) == type.name) return &type;
  }
  return nullptr;
}

bool ChecksumRight(QStringView sentence) {
  const qsizetype star = sentence.indexOf(u'*');
  if (star < 0) return true;
  if (star + 2 >= sentence.size()) return false;
  const int high = hexDigit(sentence[star + 1]);
  const int low = hexDigit(sentence[star + 2]);
  if (high < 0 || low < 0) return false;
  char16_t sum = 0;
  for (const QChar c : sentence.mid(1, star - 1)) sum ^= c.unicode();
  return sum == high * 16 + low;
}

SentenceSearch FindKnownSentence(QStringView text, SentenceKind only) {
  using Result = SentenceSearch::Result;
  for (qsizetype start = text.indexOf(u'$'); start >= 0;) {
    const qsizetype next = text.indexOf(u'$', start + 1);
    const QStringView sentence = next < 0 ? text.mid(start) : text.mid(start, next - start);
    const qsizetype comma = sentence.indexOf(u',');
    const SentenceType* type = comma < 0 ? nullptr : TypeOfAddress(sentence.left(comma));
    if (type && (only == SentenceKind::Other || type->kind == only)) {
      if (next < 0) return {Result::Incomplete, start, 0};
      if (sentence.count(u',') + 1 >= type->leastFields && ChecksumRight(sentence)) {
        return {Result::Found, start, sentence.size()};
      }
    }
    start = next;
  }
  return {};
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
