// A gpsd fix is handed to the decoder as the sentences a receiver would have sent: they must
// carry the fix unchanged through the decoder's own reading.

#include "gps/GpsdExchange.h"
#include "gps/NmeaSentences.h"
#include "gps/SentenceDecoding.h"

#include <gtest/gtest.h>
#include <QTimeZone>

#include <cmath>

namespace marvento {
namespace {

struct FixRow {
  const char* name;
  double lat;
  double lon;
  std::optional<double> alt;
  std::optional<int> sats;
};

class SentencesOfFixTable : public ::testing::TestWithParam<FixRow> {};

TEST_P(SentencesOfFixTable, DecoderReadsTheFixBack) {
  const FixRow& row = GetParam();
  GpsdFix fix;
  fix.valid = true;
  fix.lat = row.lat;
  fix.lon = row.lon;
  fix.altMSL = row.alt;
  fix.satellitesUsed = row.sats;
  fix.speed = 10.0;
  fix.course = 84.4;
  fix.utc = QDateTime(QDate(2026, 11, 24), QTime(9, 5, 7, 250), QTimeZone::utc());

  const GpsdSentences s = SentencesOfFix(fix);
  EXPECT_TRUE(ChecksumRight(s.rmc)) << s.rmc.toStdString();
  ASSERT_EQ(s.gga.isEmpty(), !row.alt.has_value());

  const QString ruling = s.gga.isEmpty() ? s.rmc : s.gga;
  const DecodedSentence d = DecodeSentence(ruling, RawBufferOfFix(s));
  ASSERT_TRUE(d.timeAndPosition) << ruling.toStdString();
  ASSERT_TRUE(d.positionGood);
  // Seconds are read to a thousandth: the position comes back to about 3 cm.
  EXPECT_NEAR((d.latSign == u"-" ? -1 : 1) * d.lat.deg, row.lat, 1e-6) << ruling.toStdString();
  EXPECT_NEAR((d.lonSign == u"-" ? -1 : 1) * d.lon.deg, row.lon, 1e-6) << ruling.toStdString();
  EXPECT_EQ(d.utcText.left(6), QStringLiteral("090507"));
  // Speed and course reach the course line from the RMC, whichever sentence rules.
  EXPECT_FALSE(d.kursText.trimmed().isEmpty());
  if (row.alt) {
    EXPECT_TRUE(ChecksumRight(s.gga)) << s.gga.toStdString();
    ASSERT_TRUE(d.heightSample.has_value());
    EXPECT_NEAR(d.heightSample->alt.toDouble(), *row.alt, 0.05);
    EXPECT_EQ(d.heightSample->unit, QStringLiteral("M"));
    if (row.sats) {
      EXPECT_EQ(d.heightSample->sats.toInt(), *row.sats);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(
    Fixes, SentencesOfFixTable,
    ::testing::Values(FixRow{"munich", 48.1173, 11.516666666666667, 545.4, 5},
                      FixRow{"southWest2D", -33.8567844, -151.2152967, std::nullopt, std::nullopt},
                      FixRow{"justBelowWholeDegrees", 52.99999999999, 13.9999999999, 34.0, 12},
                      FixRow{"belowSeaLevel", 31.5, 35.5, -412.5, 4},
                      FixRow{"gridEdge", -89.9999, 179.9999, 2.0, 7}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace marvento
