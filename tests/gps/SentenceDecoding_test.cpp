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

// What lbInfo and lbKurs get, and how far decoding goes, for each kind of sentence.
TEST(SentenceDecoding, InfoLineCourseAndHowFarDecodingGoes) {
  const struct {
    const char* name;
    const char* sentence;
    const char* rawBuffer;
    SentenceKind kind;
    const char* finalInfo;  // kNoChange: lbInfo stays as the exchange left it
    bool timeAndPosition;
    bool positionGood;
    const char* kursText;
  } cases[] = {
      {"GGA no fix, two sats formatted", "$GPGGA,123519,,,,,0,02,,,,,,,*69\r\n", "", SK::Gga,
       "Zu geringe Anzahl an Satteliten! (2)", false, false, ""},
      {"GGA no fix, three sats are enough, field text kept", "$GPGGA,123519,,,,,0,03,,,,,,,*68\r\n",
       "", SK::Gga, "Schlechter Empfang! (03)", false, false, ""},
      {"GGA no fix skips the RMC line", "$GPGGA,123519,,,,,0,07,,,,,,,*6C\r\n",
       "$GPGGA,123519,,,,,0,07,,,,,,,*6C\r\n$GPRMC,123519,A,4807.038,N,01131.000,E,12.5,84.4,,,*1C"
       "\r\n$GPGLL",
       SK::Gga, "Schlechter Empfang! (07)", false, false, ""},
      {"RMC speed 0 clears the course line",
       "$GPRMC,123519,A,4807.038,N,01131.000,E,0.0,084.4,230394,003.1,W*6E\r\n", "", SK::Rmc,
       kNoChange, true, true, " "},
      {"RMC without status field passes the test", "$GPRMC,123519", "", SK::Rmc, kBad, true, false,
       " "},
      {"GLL with an RMC behind it", "$GPGLL,4916.45,N,12311.12,W,225444,A*31\r\n",
       "$GPGLL,4916.45,N,12311.12,W,225444,A*31\r\n$GPRMC,225444,A,4916.45,N,12311.12,W,"
       "1234.125,359.99,,,*0B\r\n$GPGSA",
       SK::Gll, "", true, true, "GPS - Geschwindigkeit: 1234,125 Kn  Kurs: 359,99 °"},
      {"longitude 0 is refused", "$GPGLL,4916.45,N,00000.0000,E,225444,A*20\r\n", "", SK::Gll, kBad,
       true, false, ""},
      {"GGA of another talker with an RMC behind it",
       "$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n",
       "$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n"
       "$GNRMC,225444,A,4916.45,N,12311.12,W,1234.125,359.99,,,*15\r\n$GNGLL",
       SK::Gga, "GPS - Antennenhöhe: 545,4 m ü. NN (8)", true, true,
       "GPS - Geschwindigkeit: 1234,125 Kn  Kurs: 359,99 °"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const DecodedSentence d = DecodeSentence(q(c.sentence), q(c.rawBuffer));
    EXPECT_EQ(d.kind, c.kind);
    EXPECT_EQ(d.finalInfo(), opt(c.finalInfo));
    EXPECT_EQ(d.timeAndPosition, c.timeAndPosition);
    EXPECT_EQ(d.positionGood, c.positionGood);
    EXPECT_EQ(d.kursText, q(c.kursText));
  }
}

TEST(SentenceDecoding, PositionTextsInBothForms) {
  const struct {
    const char* name;
    const char* sentence;
    const char* brDms;
    const char* lgDms;
    const char* brDecimal;
    const char* lgDecimal;
  } cases[] = {
      {"leading zeros", "$GPGLL,0807.038,N,00807.038,E,225444,A*2B", " 08° 07' 2,28\"",
       " 8° 07' 2,28\"", " 8,1173", " 8,1173"},
      {"south and west", "$GPGLL,4916.45,S,12311.12,W,225444,A*2C", "-49° 16' 27,0\"",
       "-123° 11' 7,2\"", "-49,2741666666667", "-123,185333333333"},
      {"lower-case hemisphere counts as south", "$GPGLL,4916.45,n,12311.12,e,225444,A*23",
       "-49° 16' 27,0\"", "-123° 11' 7,2\"", "-49,2741666666667", "-123,185333333333"},
      {"seconds round up to 60 without carrying", "$GPGLL,4807.999992,N,01131.5,E,225444,A",
       " 48° 07' 60,0\"", " 11° 31' 30,0\"", " 48,1333333333333", " 11,525"},
  };
  for (const auto& c : cases) {
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
  };
  for (const auto& [sentence, hasTime] : cases) {
    EXPECT_EQ(DecodeSentence(q(sentence), {}).hasTime(), hasTime) << sentence;
  }
}

TEST(SentenceDecoding, AddressesOfNoKnownType) {
  const char* const sentences[] = {
      "$gpGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",  // talker in lower case
      "$G1GGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",  // a digit as talker
      "$GPGGAX,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",
      "$GGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",   // no talker
      "GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",  // no "$"
      "$GNGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1",
  };
  for (const char* sentence : sentences) {
    const DecodedSentence d = DecodeSentence(q(sentence), {});
    EXPECT_EQ(d.kind, SK::Other) << sentence;
    EXPECT_EQ(d.finalInfo(), q("")) << sentence;
    EXPECT_FALSE(d.timeAndPosition) << sentence;
  }
}

// A damaged sentence moved the station: checksums were never compared.
TEST(SentenceDecoding, ChecksumsDecideWhetherASentenceCounts) {
  const std::pair<const char*, SentenceKind> cases[] = {
      {"$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n", SK::Gga},
      {"$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6a\r\n", SK::Rmc},
      {"$BDGLL,4916.45,N,12311.12,W,225444,A,A\r\n", SK::Gll},  // no checksum: taken
      {"$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*58\r\n", SK::Other},
      // One flipped digit in the latitude, checksum of the original.
      {"$GNGGA,123519,4817.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n", SK::Other},
      {"$GNGLL,4916.45,N,12311.12,W,225444,A,A*4G\r\n", SK::Other},  // damaged digit
      {"$GNGLL,4916.45,N,12311.12,W,225444,A,A*4\r\n", SK::Other},   // cut checksum
      {"$GNGLL,4916.45,N,12311.12,W,225444,A,A*", SK::Other},
  };
  for (const auto& [sentence, kind] : cases) {
    const DecodedSentence d = DecodeSentence(q(sentence), {});
    EXPECT_EQ(d.kind, kind) << sentence;
    EXPECT_EQ(d.positionGood, kind != SK::Other) << sentence;
  }
}

}  // namespace
}  // namespace marvento
