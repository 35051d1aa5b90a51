#include "gps/SentenceDecoding.h"

#include "support/GermanLocale.h"

#include <optional>

namespace marvento {
namespace {

QString q(const char* text) {
  return QString::fromUtf8(text);
}

std::optional<QString> opt(const char* text) {
  if (text == nullptr) return std::nullopt;
  return QString::fromUtf8(text);
}

const char* const kNoChange = nullptr;
const char* const kBad = "Schlechter Empfang oder zu geringe Anzahl an Satteliten !";

using SK = SentenceKind;

struct InfoCase {
  const char* name;
  const char* sentence;
  const char* rawBuffer;
  SentenceKind kind;
  const char* finalInfo;  // kNoChange: lbInfo stays as the exchange left it
  bool timeAndPosition;
  bool positionGood;
  const char* kursText;
};

// What lbInfo and lbKurs get, and how far decoding goes, for each kind of sentence.
TEST(SentenceDecoding, InfoLineCourseAndHowFarDecodingGoes) {
  const InfoCase cases[] = {
      {"good GGA", "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47\r\n", "",
       SK::Gga, "GPS - Antennenhöhe: 545,4 m ü. NN (8)", true, true, ""},
      {"GGA no fix, two sats formatted", "$GPGGA,123519,,,,,0,02,,,,,,,*47\r\n", "", SK::Gga,
       "Zu geringe Anzahl an Satteliten! (2)", false, false, ""},
      {"GGA no fix, three sats are enough, field text kept", "$GPGGA,123519,,,,,0,03,,,,,,,*47\r\n",
       "", SK::Gga, "Schlechter Empfang! (03)", false, false, ""},
      {"GGA fix, empty position", "$GPGGA,123519,,,,,1,05,,12.0,M,,,,*47\r\n", "", SK::Gga, kBad,
       true, false, ""},
      {"GGA no fix skips the RMC line", "$GPGGA,123519,,,,,0,07,,,,,,,*47\r\n",
       "$GPGGA,123519,,,,,0,07,,,,,,,*47\r\n$GPRMC,123519,A,4807.038,N,01131.000,E,12.5,84.4,,,*6A"
       "\r\n$GPGLL",
       SK::Gga, "Schlechter Empfang! (07)", false, false, ""},
      {"RMC status V", "$GPRMC,123519,V,4807.038,N,01131.000,E,022.4,084.4,230394,,*6A\r\n", "",
       SK::Rmc, kNoChange, false, false, ""},
      {"RMC valid", "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n", "",
       SK::Rmc, kNoChange, true, true, "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 °"},
      {"RMC speed 0 clears the course line",
       "$GPRMC,123519,A,4807.038,N,01131.000,E,0.0,084.4,230394,003.1,W*6A\r\n", "", SK::Rmc,
       kNoChange, true, true, " "},
      {"RMC without status field passes the test", "$GPRMC,123519", "", SK::Rmc, kBad, true, false,
       " "},
      {"GLL status with checksum", "$GPGLL,4916.45,N,12311.12,W,225444,A*1D\r\n", "", SK::Gll, "",
       true, true, ""},
      {"GLL with an RMC behind it", "$GPGLL,4916.45,N,12311.12,W,225444,A*1D\r\n",
       "$GPGLL,4916.45,N,12311.12,W,225444,A*1D\r\n$GPRMC,225444,A,4916.45,N,12311.12,W,"
       "1234.125,359.99,,,*00\r\n$GPGSA",
       SK::Gll, "", true, true, "GPS - Geschwindigkeit: 1234,125 Kn  Kurs: 359,99 °"},
      {"longitude 0 is refused", "$GPGLL,4916.45,N,00000.0000,E,225444,A*1D\r\n", "", SK::Gll, kBad,
       true, false, ""},
      {"other talker", "$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M*47", "", SK::Other,
       "", false, false, ""},
  };
  for (const InfoCase& c : cases) {
    SCOPED_TRACE(c.name);
    const DecodedSentence d = DecodeSentence(q(c.sentence), q(c.rawBuffer));
    EXPECT_EQ(d.kind, c.kind);
    EXPECT_EQ(d.finalInfo(), opt(c.finalInfo));
    EXPECT_EQ(d.timeAndPosition, c.timeAndPosition);
    EXPECT_EQ(d.positionGood, c.positionGood);
    EXPECT_EQ(d.kursText, q(c.kursText));
  }
}

struct PositionCase {
  const char* name;
  const char* sentence;
  const char* brDms;
  const char* lgDms;
  const char* brDecimal;
  const char* lgDecimal;
};

TEST(SentenceDecoding, PositionTextsInBothForms) {
  const PositionCase cases[] = {
      {"leading zeros", "$GPGLL,0807.038,N,00807.038,E,225444,A*1D", " 08° 07' 2,28\"",
       " 8° 07' 2,28\"", " 8,1173", " 8,1173"},
      {"south and west", "$GPGLL,4916.45,S,12311.12,W,225444,A*1D", "-49° 16' 27,0\"",
       "-123° 11' 7,2\"", "-49,2741666666667", "-123,185333333333"},
      {"lower-case hemisphere counts as south", "$GPGLL,4916.45,n,12311.12,e,225444,A*1D",
       "-49° 16' 27,0\"", "-123° 11' 7,2\"", "-49,2741666666667", "-123,185333333333"},
      {"seconds round up to 60 without carrying", "$GPGLL,4807.999992,N,01131.5,E,225444,A",
       " 48° 07' 60,0\"", " 11° 31' 30,0\"", " 48,1333333333333", " 11,525"},
  };
  for (const PositionCase& c : cases) {
    SCOPED_TRACE(c.name);
    const DecodedSentence d = DecodeSentence(q(c.sentence), {});
    ASSERT_TRUE(d.positionGood);
    EXPECT_EQ(d.brText(false), q(c.brDms));
    EXPECT_EQ(d.lgText(false), q(c.lgDms));
    EXPECT_EQ(d.brText(true), q(c.brDecimal));
    EXPECT_EQ(d.lgText(true), q(c.lgDecimal));
  }
}

TEST(SentenceDecoding, TimeStepNeedsANumericField) {
  const std::pair<const char*, bool> cases[] = {
      {"$GPGLL,4916.45,N,12311.12,W,225444.00,A", true},
      {"$GPGLL,4916.45,N,12311.12,W,12:35,A", false},
      {"$GPGLL,4916.45,N,12311.12,W,225444,V", false},
      {"$GPGLL,,,,,225444,A", true},  // a bad position still shows its time
  };
  for (const auto& [sentence, hasTime] : cases) {
    EXPECT_EQ(DecodeSentence(q(sentence), {}).hasTime(), hasTime) << sentence;
  }
}

}  // namespace
}  // namespace marvento
