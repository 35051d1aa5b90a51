#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>
#include <optional>
#include <variant>

namespace marvento {

enum class SentenceKind { Other, Gga, Rmc, Gll };

// A sentence split at every comma, fields numbered from 0 (field 0 is the address, such as
// "$GPGGA" or "$GNGGA"). The checksum and the line end stay on the last field. A field past the end
// is absent: reading it leaves the target as it was, the rule the poll lives by.
class NmeaFields {
 public:
  explicit NmeaFields(QStringView sentence);

  int size() const { return static_cast<int>(m_fields.size()); }
  bool has(int index) const { return index >= 0 && index < size(); }
  std::optional<QString> at(int index) const;
  // Copies field `index` into `target` if it exists.
  void read(int index, QString& target) const;

 private:
  QStringList m_fields;
};

// $GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47
struct GgaSentence {
  QString utc;
  QString lat;
  QString ns;
  QString lon;
  QString ew;
  QString quality;
  QString sats;
  QString alt;
  QString altUnit;
};
GgaSentence ParseGga(const NmeaFields& fields);

// $GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A
// A missing status or course differs from an empty one, so they stay optional.
struct RmcSentence {
  QString utc;
  std::optional<QString> status;
  QString lat;
  QString ns;
  QString lon;
  QString ew;
  QString speed;
  std::optional<QString> course;
};
RmcSentence ParseRmc(const NmeaFields& fields);

// $GPGLL,4916.45,N,12311.12,W,225444,A*31
// The status field may carry the checksum ("A*31"); only its first character counts.
struct GllSentence {
  QString lat;
  QString ns;
  QString lon;
  QString ew;
  QString utc;
  std::optional<QString> status;
};
GllSentence ParseGll(const NmeaFields& fields);

using ParsedSentence = std::variant<GgaSentence, RmcSentence, GllSentence>;

// A known sentence type. Its name stands without "$" and talker, so that "GGA" serves
// "$GPGGA", "$GNGGA" and "$BDGGA" alike: receivers of every satellite system send the same
// fields under their own talker.
struct SentenceType {
  SentenceKind kind;
  QStringView name;
  // Fields, the address included, up to the position (for GGA up to its fix quality). A
  // shorter sentence has been cut off and cannot carry a position.
  int leastFields;
  ParsedSentence (*parse)(const NmeaFields& fields);
};

// The one table of known types; the exchange's scanner and the decoder both read it.
extern const std::array<SentenceType, 3> kSentenceTypes;

// The type an address field names: "$", a talker of two capital letters (GP, GN, GL, GA, GB,
// BD, GQ, QZ, GI, IN or any other), and a type name of the table, nothing more. nullptr for
// any other text.
const SentenceType* TypeOfAddress(QStringView address);

// False only for a sentence that carries a checksum ("*" and two hexadecimal digits) which
// is not the XOR of the characters between "$" and "*". A "*" without two hexadecimal digits
// behind it is a damaged checksum and counts as wrong; a sentence without "*" is unchecked
// and passes.
bool ChecksumRight(QStringView sentence);

// A sentence of a receive text runs from its "$" up to the next "$", which ends it; it is
// whole once that next "$" has arrived.
struct SentenceSearch {
  enum class Result {
    None,        // no sentence of a known type has begun, or all whole ones were refused
    Incomplete,  // the first acceptable one has begun, its successor has not
    Found,
  };
  Result result = Result::None;
  qsizetype start = -1;
  qsizetype length = 0;
};

// Finds the first whole sentence of a known type (of `only`, unless that is Other) in a
// receive text that is intact: enough fields for its type and a right checksum. A refused
// sentence counts as if it had not arrived, and the search goes on behind it.
SentenceSearch FindKnownSentence(QStringView text, SentenceKind only = SentenceKind::Other);

// Validity tests of the three types. A missing status field counts as valid: the test
// cannot be made, and the poll then carries on as if it had passed.
bool RmcValid(const RmcSentence& rmc);
bool GllValid(const GllSentence& gll);

// One axis of a position, ddmm.mmmm (latitude) or dddmm.mmmm (longitude), as the display
// shows it: degrees, the two minute characters of the sentence, seconds in "#0.0##". `deg`
// is the magnitude in decimal degrees made from those three texts, so its seconds are
// rounded to 0.001". Text with fewer than two characters before its first point yields
// empty texts and deg 0. Latitude degrees keep their text ("08"), longitude degrees lose
// their leading zeros ("011" -> "11").
struct AxisParts {
  QString degText;
  QString minText;
  QString secText;
  double deg = 0.0;
};
AxisParts DecodeLatitude(const QString& text);
AxisParts DecodeLongitude(const QString& text);

}  // namespace marvento
