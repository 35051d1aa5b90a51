// A gpsd fix is handed to the decoder as the sentences a receiver would have sent: they must
// carry the fix unchanged through the decoder's own reading.

#include "gps/GpsdExchange.h"
#include "gps/SentenceDecoding.h"

#include <gtest/gtest.h>
#include <QTimeZone>

namespace marvento {
namespace {

TEST(SentencesOfFix, DecoderReadsTheFixBack) {
  const struct {
    const char* name;
    double lat;
    double lon;
    std::optional<double> alt;  // none: a 2D fix, so no GGA and the RMC rules
    std::optional<int> sats;
  } rows[] = {
      {"south-west 2D", -33.8567844, -151.2152967, std::nullopt, std::nullopt},
      {"just below whole degrees", 52.99999999999, 13.9999999999, 34.0, 12},
      {"below sea level", 31.5, 35.5, -412.5, 4},
      {"grid edge", -89.9999, 179.9999, 2.0, 7},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
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
    if (!row.alt) continue;
    ASSERT_TRUE(d.heightSample.has_value());
    EXPECT_NEAR(d.heightSample->alt.toDouble(), *row.alt, 0.05);
    EXPECT_EQ(d.heightSample->sats.toInt(), *row.sats);
  }
}

}  // namespace
}  // namespace marvento
