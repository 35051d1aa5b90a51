// gpsd's replies as libgps reads them, and the addresses of the gpsd client.
#include "gps/GpsdReply.h"
#include "gps/GpsdClient.h"

#include <gtest/gtest.h>

#include <optional>

namespace marvento {
namespace {

using Kind = GpsdReply::Kind;

// Reports as gpsd 3.22 sends them.
const char* const kTpv3d =
    R"({"class":"TPV","device":"/dev/pts/0","mode":3,"time":"2026-11-23T18:29:17.000Z",)"
    R"("ept":0.005,"lat":48.117300000,"lon":11.516666667,"altHAE":592.3000,"altMSL":545.4000,)"
    R"("alt":545.4000,"track":84.4000,"magtrack":87.7264,"magvar":3.3,"speed":6.431,)"
    R"("geoidSep":46.900,"eph":17.100})";
const char* const kSky =
    R"({"class":"SKY","device":"/dev/pts/0","hdop":1.30,"nSat":3,"uSat":2,"satellites":[)"
    R"({"PRN":4,"el":40.0,"az":83.0,"ss":46.0,"used":true,"gnssid":0,"svid":4},)"
    R"({"PRN":5,"el":17.0,"az":308.0,"ss":41.0,"used":false,"gnssid":0,"svid":5},)"
    R"({"PRN":9,"el":7.0,"az":344.0,"ss":39.0,"used":true,"gnssid":0,"svid":9}]})";

constexpr auto kNone = std::nullopt;

TEST(GpsdReply, FixesAsLibgpsReadsThem) {
  const struct {
    const char* name;
    const char* line;
    double lat;
    std::optional<double> altMSL;
    std::optional<double> speed;
    std::optional<double> course;
  } cases[] = {
      {"3D fix", kTpv3d, 48.1173, 545.4, 6.431, 84.4},
      {"2D fix has no height",
       R"({"class":"TPV","mode":2,"lat":-33.5,"lon":-70.25,"altMSL":100.0,"speed":0.0})", -33.5,
       kNone, 0.0, kNone},
      {"older daemon's alt", R"({"class":"TPV","mode":3,"lat":1.5,"lon":2.5,"alt":12.5})", 1.5,
       12.5, kNone, kNone},
      {"negative speed, course past 360",
       R"({"class":"TPV","mode":2,"lat":9.0,"lon":1.0,"speed":-1.0,"track":361.0})", 9.0, kNone,
       kNone, kNone},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const GpsdReply reply = ReadGpsdReply(QByteArrayView(c.line));
    EXPECT_EQ(reply.kind, Kind::Tpv);
    ASSERT_TRUE(reply.fix.valid);
    EXPECT_NEAR(reply.fix.lat, c.lat, 1e-9);
    EXPECT_EQ(reply.fix.altMSL, c.altMSL);
    EXPECT_EQ(reply.fix.speed, c.speed);
    EXPECT_EQ(reply.fix.course, c.course);
  }
  const GpsdFix fix = ReadGpsdReply(QByteArrayView(kTpv3d)).fix;
  EXPECT_EQ(fix.utc.toString(Qt::ISODateWithMs), QStringLiteral("2026-11-23T18:29:17.000Z"));
  EXPECT_NEAR(fix.lon, 11.516666667, 1e-9);
}

TEST(GpsdReply, RepliesWithoutAFix) {
  const struct {
    const char* name;
    const char* line;
    Kind kind;
    std::optional<int> satellitesUsed;
  } cases[] = {
      {"no fix", R"({"class":"TPV","device":"/dev/pts/0","mode":1})", Kind::Tpv, kNone},
      {"fix without position", R"({"class":"TPV","mode":3,"altMSL":5.0})", Kind::Tpv, kNone},
      {"latitude out of range", R"({"class":"TPV","mode":3,"lat":90.5,"lon":2.0})", Kind::Tpv,
       kNone},
      {"number beyond a double", R"({"class":"TPV","mode":3,"lat":9.0,"lon":1e999})", Kind::Other,
       kNone},
      {"satellites", kSky, Kind::Sky, 2},
      {"satellites not listed", R"({"class":"SKY","hdop":1.01,"uSat":12})", Kind::Sky, kNone},
      {"version", R"({"class":"VERSION","release":"3.22","proto_major":3})", Kind::Other, kNone},
      {"not JSON", "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47", Kind::Other,
       kNone},
      {"cut off", R"({"class":"TPV","mode":3,"lat":48.11)", Kind::Other, kNone},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const GpsdReply reply = ReadGpsdReply(QByteArrayView(c.line));
    EXPECT_EQ(reply.kind, c.kind);
    EXPECT_FALSE(reply.fix.valid);
    EXPECT_EQ(reply.satellitesUsed, c.satellitesUsed);
  }
}

TEST(GpsdReplyReader, LinesAcrossReadsAndTheLatestReports) {
  const QByteArray stream = QByteArray(R"({"class":"VERSION","release":"3.22","proto_major":3})"
                                       "\n") +
                            kTpv3d + "\r\n" + kSky + "\n" + R"({"class":"TPV","mode":1})" + "\n";
  // Whole, and cut into pieces of 1, 3 and 7 bytes.
  for (qsizetype step : {stream.size(), qsizetype(1), qsizetype(3), qsizetype(7)}) {
    SCOPED_TRACE(step);
    GpsdReplyReader reader;
    int reports = 0;
    for (qsizetype at = 0; at < stream.size(); at += step) {
      reports += reader.add(QByteArrayView(stream).sliced(at, std::min(step, stream.size() - at)));
    }
    EXPECT_EQ(reports, 2);
    ASSERT_TRUE(reader.latest());
    EXPECT_FALSE(reader.latest()->valid);
    // The satellite count of the SKY report stays with the reports after it.
    EXPECT_EQ(reader.latest()->satellitesUsed, 2);
    EXPECT_TRUE(reader.skySeen());
  }
}

TEST(GpsdReplyReader, SkyAfterTheFixJoinsIt) {
  GpsdReplyReader reader;
  EXPECT_EQ(reader.add(QByteArray(kTpv3d) + '\n'), 1);
  EXPECT_EQ(reader.latest()->satellitesUsed, std::nullopt);
  EXPECT_EQ(reader.add(QByteArray(kSky) + '\n'), 0);
  EXPECT_EQ(reader.latest()->satellitesUsed, 2);
  EXPECT_TRUE(reader.latest()->valid);
}

TEST(GpsdReplyReader, OverlongLineIsDropped) {
  GpsdReplyReader reader;
  const QByteArray overlong = R"({"class":"TPV","mode":3,"lat":1.0,"lon":2.0,"x":")" +
                              QByteArray(GpsdReplyReader::kMaxLine, 'x') + "\"}\n";
  EXPECT_EQ(reader.add(overlong), 0);
  EXPECT_FALSE(reader.latest());
  // The next line is read as usual.
  EXPECT_EQ(reader.add(QByteArray(kTpv3d) + '\n'), 1);
  EXPECT_TRUE(reader.latest()->valid);
}

TEST(GpsdAddress, ParsedFromTheSetting) {
  struct Case {
    const char* text;
    const char* shown;  // nullptr: refused
  };
  const Case cases[] = {
      {"localhost:2947", "localhost:2947"},
      {" 192.168.1.5:3000 ", "192.168.1.5:3000"},
      {"gps-pi", "gps-pi:2947"},
      {"[::1]:2948", "[::1]:2948"},
      {"[::1]", "[::1]:2947"},
      {"fe80::1", "[fe80::1]:2947"},
      {"", nullptr},
      {"localhost:", nullptr},
      {"localhost:0", nullptr},
      {"localhost:65536", nullptr},
      {"localhost:29x7", nullptr},
      {":2947", nullptr},
      {"a b:2947", nullptr},
      {"[::1]2947", nullptr},
      {"[localhost]:2947", nullptr},
      {"host:1:2", nullptr},
  };
  for (const Case& c : cases) {
    const auto address = ParseGpsdAddress(QString::fromLatin1(c.text));
    ASSERT_EQ(address.has_value(), c.shown != nullptr) << c.text;
    if (!address) continue;
    EXPECT_EQ(address->text(), QString::fromLatin1(c.shown)) << c.text;
  }
  // The host stands without brackets, as the socket takes it.
  EXPECT_EQ(ParseGpsdAddress(u"[::1]:2948")->host, QStringLiteral("::1"));
}

}  // namespace
}  // namespace marvento
