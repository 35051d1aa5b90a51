#include "gps/SentenceDecoding.h"

#include "support/GermanLocale.h"

#include <QStringList>

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
constexpr double kNone = -1;  // the fix has no such value
const char* const kBad = "Schlechter Empfang oder zu geringe Anzahl an Satelliten !";

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
       "Zu geringe Anzahl an Satelliten! (2)", false, false, ""},
      {"GGA no fix, three sats are enough, field text kept", "$GPGGA,123519,,,,,0,03,,,,,,,*68\r\n",
       "", SK::Gga, "Schlechter Empfang! (03)", false, false, ""},
      {"GGA no fix skips the RMC line", "$GPGGA,123519,,,,,0,07,,,,,,,*6C\r\n",
       "$GPGGA,123519,,,,,0,07,,,,,,,*6C\r\n$GPRMC,123519,A,4807.038,N,01131.000,E,12.5,84.4,,,*1C"
       "\r\n$GPGLL",
       SK::Gga, "Schlechter Empfang! (07)", false, false, ""},
      {"RMC speed 0 clears the course line",
       "$GPRMC,123519,A,4807.038,N,01131.000,E,0.0,084.4,230394,003.1,W*6E\r\n", "", SK::Rmc,
       kNoChange, true, true, " "},
      // Its position is refused, so the sentence gives no course either: lbKurs stays.
      {"RMC without status field passes the test", "$GPRMC,123519", "", SK::Rmc, kBad, true, false,
       ""},
      {"GLL with an RMC behind it", "$GPGLL,4916.45,N,12311.12,W,225444,A*31\r\n",
       "$GPGLL,4916.45,N,12311.12,W,225444,A*31\r\n$GPRMC,225444,A,4916.45,N,12311.12,W,"
       "999.125,359.99,,,*36\r\n$GPGSA",
       SK::Gll, "", true, true, "GPS - Geschwindigkeit: 999,125 Kn  Kurs: 359,99 °"},
      {"longitude 0 is refused", "$GPGLL,4916.45,N,00000.0000,E,225444,A*20\r\n", "", SK::Gll, kBad,
       true, false, ""},
      {"GGA of another talker with an RMC behind it",
       "$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n",
       "$GNGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*59\r\n"
       "$GNRMC,225444,A,4916.45,N,12311.12,W,999.125,359.99,,,*28\r\n$GNGLL",
       SK::Gga, "GPS - Antennenhöhe: 545,4 m ü. NN (8)", true, true,
       "GPS - Geschwindigkeit: 999,125 Kn  Kurs: 359,99 °"},
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

// Fields with a right checksum and a value no receiver can have measured count as absent:
// nothing of them is shown, sampled or handed on, and a refused position takes the time,
// speed and course of its sentence with it.
TEST(SentenceDecoding, ImpossibleValuesCountAsAbsent) {
  const struct {
    const char* name;
    const char* sentence;
    bool hasTime;
    bool positionGood;
    const char* finalInfo;
    const char* kursText;
    bool heightSample;
    double speed, course, height;
  } cases[] = {
      {"hour 25, minute 61",
       "$GPRMC,256161.00,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*4E", false, true,
       kNoChange, "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 °", false, 22.4, 84.4, kNone},
      {"second 60 outside the leap second",
       "$GPRMC,123560.00,A,4807.038,N,01131.000,E,022.4,360.0,230394,003.1,W*47", false, true,
       kNoChange, "GPS - Geschwindigkeit: 22,4 Kn", false, 22.4, kNone, kNone},
      {"the leap second, highest possible speed",
       "$GPRMC,235960.50,A,4807.038,N,01131.000,E,999.9,0.0,230394,003.1,W*4B", true, true,
       kNoChange, "GPS - Geschwindigkeit: 999,9 Kn  Kurs: 0,0 °", false, 999.9, 0, kNone},
      {"speed 99999.9 clears the course line",
       "$GPRMC,123519.00,A,4807.038,N,01131.000,E,99999.9,084.4,230394,003.1,W*40", true, true,
       kNoChange, " ", false, kNone, 84.4, kNone},
      {"negative speed", "$GPRMC,123519.00,A,4807.038,N,01131.000,E,-5.0,084.4,230394,003.1,W*68",
       true, true, kNoChange, " ", false, kNone, 84.4, kNone},
      {"course 720", "$GPRMC,123519.00,A,4807.038,N,01131.000,E,022.4,720.0,230394,003.1,W*49",
       true, true, kNoChange, "GPS - Geschwindigkeit: 22,4 Kn", false, 22.4, kNone, kNone},
      {"latitude 95 takes time, speed and course with it",
       "$GPRMC,123519.00,A,9500.000,N,01131.000,E,022.4,084.4,230394,003.1,W*48", false, false,
       kBad, "", false, kNone, kNone, kNone},
      {"the date is not read",
       "$GPRMC,123519.00,A,4807.038,N,01131.000,E,022.4,084.4,321399,003.1,W*48", true, true,
       kNoChange, "GPS - Geschwindigkeit: 22,4 Kn  Kurs: 84,4 °", false, 22.4, 84.4, kNone},
      {"75 minutes of latitude", "$GPGLL,4875.000,N,01131.000,E,123519.00,A*05", false, false, kBad,
       "", false, kNone, kNone, kNone},
      {"a negative magnitude of longitude", "$GPGLL,4807.038,N,-0131.000,E,123519.00,A*17", false,
       false, kBad, "", false, kNone, kNone, kNone},
      {"a time with its point too far left", "$GPGLL,4807.038,N,01131.000,E,1.5,A*02", false, true,
       "", "", false, kNone, kNone, kNone},
      {"a time with colons", "$GPGLL,4916.45,N,12311.12,W,12:35,A", false, true, "", "", false,
       kNone, kNone, kNone},
      {"a time without fraction",
       "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47", true, true,
       "GPS - Antennenhöhe: 545,4 m ü. NN (8)", "", true, kNone, kNone, 545.4},
      {"height 150 km", "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,150000.0,M,46.9,M,,*5D",
       true, true, "", "", false, kNone, kNone, kNone},
      {"height below -1000 m",
       "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,-1000.1,M,46.9,M,,*74", true, true, "", "",
       false, kNone, kNone, kNone},
      // Feet are heights too: 1000 ft are 304.8 m, 350000 ft more than 100 km.
      {"height in feet", "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,1000.0,F,46.9,M,,*53",
       true, true, "GPS - Antennenhöhe: 1000 f ü. NN (8)", "", true, kNone, kNone, 304.8},
      {"350000 feet", "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,350000.0,F,46.9,M,,*54",
       true, true, "", "", false, kNone, kNone, kNone},
      {"no height", "$GPGGA,123519.00,4807.038,N,01131.000,E,1,08,0.9,,M,46.9,M,,*47", true, true,
       "", "", false, kNone, kNone, kNone},
      {"150 satellites: the height without a count",
       "$GPGGA,123519.00,4807.038,N,01131.000,E,1,150,0.9,545.4,M,46.9,M,,*55", true, true,
       "GPS - Antennenhöhe: 545,4 m ü. NN", "", false, kNone, kNone, 545.4},
      {"150 satellites without a fix", "$GPGGA,123519.00,,,,,0,150,,,,,,,*71", false, false,
       "Schlechter Empfang!", "", false, kNone, kNone, kNone},
  };
  auto value = [](std::optional<double> v) { return v.value_or(kNone); };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const DecodedSentence d = DecodeSentence(q(c.sentence), {});
    EXPECT_EQ(d.hasTime(), c.hasTime);
    EXPECT_EQ(d.positionGood, c.positionGood);
    EXPECT_EQ(d.finalInfo(), opt(c.finalInfo));
    EXPECT_EQ(d.kursText, q(c.kursText));
    EXPECT_EQ(d.heightSample.has_value(), c.heightSample);
    const std::optional<GpsFix> fix = d.fix();
    ASSERT_EQ(fix.has_value(), c.positionGood);
    if (!fix) continue;
    EXPECT_EQ(fix->utc.has_value(), c.hasTime);
    EXPECT_DOUBLE_EQ(value(fix->speedKnots), c.speed);
    EXPECT_DOUBLE_EQ(value(fix->courseDegrees), c.course);
    EXPECT_DOUBLE_EQ(value(fix->heightMetres), c.height);
  }
}

// The dummy remote station and the GPS position are written in the decimal sign of the
// locale, like every other coordinate.
TEST(SentenceDecoding, PlaceholdersAndPositionInTheDecimalSignOfTheLocale) {
  const struct {
    QLocale::Language language;
    QLocale::Country country;
    const char* texts;  // placeholders decimal | degrees, then the position in both forms
  } cases[] = {
      {QLocale::German, QLocale::Germany,
       "-179,999999|-89,999999|-179° 59' 59,999\"|-89° 59' 59,999\"| 11,5166666666667| 11° 31' "
       "0,0\"| 0,00001| 00° 00' 0,036\""},
      {QLocale::English, QLocale::UnitedStates,
       "-179.999999|-89.999999|-179° 59' 59.999\"|-89° 59' 59.999\"| 11.5166666666667| 11° 31' "
       "0.0\"| 0.00001| 00° 00' 0.036\""},
  };
  for (const auto& c : cases) {
    QLocale::setDefault(QLocale(c.language, c.country));
    const Placeholders decimal = RemotePlaceholders(true);
    const Placeholders degrees = RemotePlaceholders(false);
    EXPECT_EQ(decimal.loc, q("AA00AA"));
    const DecodedSentence d = DecodeSentence(q("$GPGLL,0000.0006,N,01131.000,E,225444,A"), {});
    ASSERT_TRUE(d.positionGood);
    const QStringList texts{decimal.lg,     decimal.br,      degrees.lg,     degrees.br,
                            d.lgText(true), d.lgText(false), d.brText(true), d.brText(false)};
    EXPECT_EQ(texts.join(u'|').toStdString(), c.texts);
  }
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

// A damaged sentence moved the station: checksums were never compared. Sentences of no known
// type, or whose checksum is wrong, count for nothing.
TEST(SentenceDecoding, ChecksumsAndAddressesDecideWhetherASentenceCounts) {
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
      {"$gpGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", SK::Other},  // lower case
      {"$G1GGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", SK::Other},  // digit
      {"$GPGGAX,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", SK::Other},
      {"$GGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", SK::Other},   // no talker
      {"GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,", SK::Other},  // no "$"
      {"$GNGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1", SK::Other},
  };
  for (const auto& [sentence, kind] : cases) {
    const DecodedSentence d = DecodeSentence(q(sentence), {});
    EXPECT_EQ(d.kind, kind) << sentence;
    EXPECT_EQ(d.positionGood, kind != SK::Other) << sentence;
    EXPECT_EQ(d.timeAndPosition, kind != SK::Other) << sentence;
    if (kind == SK::Other) {
      EXPECT_EQ(d.finalInfo(), q("")) << sentence;
    }
  }
}

}  // namespace
}  // namespace marvento
