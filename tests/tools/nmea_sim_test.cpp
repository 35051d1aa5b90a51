#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "Capture.h"
#include "NmeaText.h"
#include "Options.h"
#include "Pacing.h"
#include "Receiver.h"
#include "Track.h"

namespace marvento::nmeasim {
namespace {

std::vector<std::string> Fields(const std::string& sentence) {
  std::vector<std::string> out;
  std::istringstream in(sentence + ",");
  for (std::string f; std::getline(in, f, ',');) out.push_back(f);
  return out;
}

// "ddmm.mmmm" and a hemisphere back to signed degrees.
double FromText(const std::string& value, char hemisphere) {
  const auto point = value.find('.');
  const double mag =
      std::stod(value.substr(0, point - 2)) + std::stod(value.substr(point - 2)) / 60;
  return (hemisphere == 'S' || hemisphere == 'W') ? -mag : mag;
}

TEST(NmeaSimChecksum, KnownSentencesFrameAndVerify) {
  for (const std::string s : {
           "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47",
           "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A",
           "$GPGLL,4916.45,N,12311.12,W,225444,A,*1D",
       }) {
    SCOPED_TRACE(s);
    EXPECT_EQ(Frame(s.substr(1, s.find('*') - 1)), s + "\r\n");
    EXPECT_TRUE(HasValidChecksum(s + "\r\n"));
    std::string damaged = s;
    damaged[8] = damaged[8] == '1' ? '2' : '1';
    EXPECT_FALSE(HasValidChecksum(damaged));
  }
  EXPECT_TRUE(HasValidChecksum("$GPGLL,4916.45,N,12311.12,W,225444,A,*1d"));  // lower-case hex
  EXPECT_FALSE(HasValidChecksum("$GPGLL,4916.45,N,12311.12,W,225444,A,*1Dxx"));
}

TEST(NmeaSimText, LatitudeAndLongitudeForms) {
  const struct {
    double deg;
    bool isLat;
    const char* value;
    char hemisphere;
  } cases[] = {
      {-33.865, true, "3351.9000", 'S'},    {-0.0000001, true, "0000.0000", 'N'},    // no "S" zero
      {-0.000001, true, "0000.0001", 'S'},  {89.999999999, true, "9000.0000", 'N'},  // 60' carry
      {-77.4408, false, "07726.4480", 'W'}, {179.999999999, false, "18000.0000", 'E'},
  };
  for (const auto& c : cases) {
    const CoordText t = c.isLat ? LatitudeText(c.deg) : LongitudeText(c.deg);
    EXPECT_EQ(t.value, c.value) << c.deg;
    EXPECT_EQ(t.hemisphere, c.hemisphere) << c.deg;
  }
  // Every value reads back to within half a unit of the last place.
  for (double deg = -180.0; deg <= 180.0; deg += 0.987654321) {
    const CoordText lon = LongitudeText(deg);
    ASSERT_EQ(lon.value.size(), 10u) << deg;
    EXPECT_NEAR(FromText(lon.value, lon.hemisphere), deg, 0.00005 / 60 + 1e-12);
    if (std::fabs(deg) > 90) continue;
    const CoordText lat = LatitudeText(deg);
    ASSERT_EQ(lat.value.size(), 9u) << deg;
    EXPECT_NEAR(FromText(lat.value, lat.hemisphere), deg, 0.00005 / 60 + 1e-12);
  }
}

TEST(NmeaSimText, UtcTimeAndDate) {
  EXPECT_EQ(UtcTimeText(0) + UtcDateText(0), "000000.00010170");
  EXPECT_EQ(UtcTimeText(1700000000) + UtcDateText(1700000000), "221320.00141123");
  EXPECT_EQ(UtcTimeText(951782399) + UtcDateText(951782400), "235959.00290200");  // leap day
}

TEST(NmeaSimTrack, PositionsAfterAGivenTime) {
  const struct {
    double lat, lon, speed, course, seconds, wantLat, wantLon, wantCourse;
  } cases[] = {
      {0, 0, 60, 270, 7200, 0, -2, 270},
      {0, 179.5, 60, 90, 3600, 0, -179.5, 90},        // across the date line
      {89.5, 0, 60, 0, 3600, 89.5, 180, 180},         // over the pole
      {52.52, 13.4, 0, 123, 1000, 52.52, 13.4, 123},  // standing still keeps the course
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.lat << "," << c.lon << " " << c.course);
    const Position p = PositionAfter(
        {.lat = c.lat, .lon = c.lon, .speedKn = c.speed, .courseDeg = c.course}, c.seconds);
    EXPECT_NEAR(p.lat, c.wantLat, 1e-9);
    EXPECT_NEAR(p.lon, c.wantLon, 1e-9);
    EXPECT_NEAR(std::fmod(p.courseDeg - c.wantCourse + 540.0, 360.0) - 180.0, 0, 1e-6);
  }
}

TEST(NmeaSimTrack, DropoutSpellsLieAtTheEndOfEachPeriod) {
  TrackConfig cfg{.dropout = 5, .dropoutEvery = 20};
  for (long s : {0L, 14L, 20L, 34L}) EXPECT_FALSE(InDropout(cfg, s)) << s;
  for (long s : {15L, 19L, 35L, 20017L}) EXPECT_TRUE(InDropout(cfg, s)) << s;
  cfg.dropout = 0;
  for (long s = 0; s < 200; ++s) ASSERT_FALSE(InDropout(cfg, s)) << s;
}

TEST(NmeaSimReceiver, BurstOrderChecksumsAndFixState) {
  Receiver rx({.dropout = 3, .dropoutEvery = 10, .dropoutSatellites = 2}, "GP", 7);
  const std::vector<std::string> order = {"$GPGGA", "$GPGSA", "$GPGSV",
                                          "$GPGSV", "$GPRMC", "$GPGLL"};
  for (long s = 0; s < 20; ++s) {
    SCOPED_TRACE(s);
    const bool lost = s % 10 >= 7;
    const auto burst = rx.Burst(1700000000 + s, s);
    ASSERT_EQ(burst.size(), order.size());
    for (std::size_t i = 0; i < burst.size(); ++i) {
      EXPECT_EQ(Fields(burst[i])[0], order[i]);
      EXPECT_TRUE(burst[i].ends_with("\r\n") && HasValidChecksum(burst[i])) << burst[i];
    }
    const auto gga = Fields(burst[0]), rmc = Fields(burst[4]), gll = Fields(burst[5]);
    EXPECT_EQ(gga[1], UtcTimeText(1700000000 + s));
    EXPECT_EQ(rmc[9], UtcDateText(1700000000 + s));
    EXPECT_EQ(gga[6] + gga[7] + rmc[2] + gll[6], lost ? "002VV" : "108AA");
    EXPECT_EQ(gga[2].empty(), lost);  // no position without a fix
  }
}

TEST(NmeaSimReceiver, SentencesCarryTheTrackPosition) {
  const TrackConfig cfg{.lat = -37.8, .lon = -175.3, .speedKn = 40, .courseDeg = 300};
  const auto burst = Receiver(cfg, "GP", 1).Burst(1700000000, 900);
  const Position want = PositionAfter(cfg, 900);
  const auto gga = Fields(burst[0]), rmc = Fields(burst[4]), gll = Fields(burst[5]);
  EXPECT_NEAR(FromText(gga[2], gga[3][0]), want.lat, 0.00005 / 60);
  EXPECT_NEAR(FromText(gga[4], gga[5][0]), want.lon, 0.00005 / 60);
  EXPECT_EQ(rmc[3] + rmc[4] + rmc[5] + rmc[6], gga[2] + gga[3] + gga[4] + gga[5]);
  EXPECT_EQ(gll[1] + gll[2] + gll[3] + gll[4], gga[2] + gga[3] + gga[4] + gga[5]);
  EXPECT_EQ(rmc[7], "40.0");
  EXPECT_NEAR(std::stod(rmc[8]), want.courseDeg, 0.05);
}

TEST(NmeaSimPacing, RatesFitAndCharactersDue) {
  EXPECT_EQ(CharsPerSecond(1200), 120);
  EXPECT_EQ(CharsPerSecond(115200), 11520);

  const std::vector<std::string> five(5, std::string(100, 'x'));
  for (auto [cps, fit] : {std::pair{0L, 0u}, {99L, 0u}, {100L, 1u}, {480L, 4u}, {500L, 5u}})
    EXPECT_EQ(FitBurst(five, cps), fit) << cps;
  // A long sentence is not skipped in favour of a shorter one behind it.
  EXPECT_EQ(FitBurst({std::string(50, 'a'), std::string(500, 'b'), "c"}, 480), 1u);

  // The usual 4800 baud must carry a full burst of a crowded sky, or RMC and GLL get lost.
  const auto crowded = Receiver({.lat = -89.99,
                                 .lon = -179.99,
                                 .speedKn = 999,
                                 .courseDeg = 359,
                                 .height = 12345.6,
                                 .satellites = 12},
                                "GP", 5)
                           .Burst(1700000000, 3);
  EXPECT_EQ(FitBurst(crowded, CharsPerSecond(4800)), crowded.size());

  const struct {
    double elapsed;
    long cps;
    std::size_t due;
  } due[] = {{-0.5, 480, 0}, {0.1, 480, 48}, {0.83, 480, 398}, {5.0, 480, 400}, {0.001, 11520, 11}};
  for (const auto& c : due) EXPECT_EQ(CharsDue(c.elapsed, c.cps, 400), c.due) << c.elapsed;
}

TEST(NmeaSimCapture, BurstTimeOfASentence) {
  const std::pair<const char*, const char*> cases[] = {
      {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47", "123519"},
      {"$$GPGGA,030719.10,", "030719"},  // a doubled "$"
      {"$GPGLL,4916.45,N,12311.12,W,225444,A,*1D", ""},
      {"$GPGGA,12a519,", ""},
      {"$GPGGAX,123519,", ""},
  };
  for (const auto& [line, time] : cases) EXPECT_EQ(BurstTime(line).value_or(""), time) << line;
}

std::vector<std::size_t> Sizes(const std::string& capture) {
  std::istringstream in(capture);
  std::vector<std::size_t> out;
  for (const auto& b : ReadCapture(in)) {
    out.push_back(b.size());
    for (const auto& line : b) EXPECT_FALSE(line.ends_with('\r') || line.starts_with('#'));
  }
  return out;
}

TEST(NmeaSimCapture, GroupsLinesIntoSeconds) {
  using V = std::vector<std::size_t>;
  // RMC first, GLL stamped a second behind, fractions of the same second, CR LF.
  EXPECT_EQ(Sizes("# Name: test receiver\r\n"
                  "$GPRMC,225308,A,4527.458,S,16709.165,E,000.0,094.5,060601,024.1,E*6D\r\n"
                  "$GPGGA,225308,4527.458,S,16709.165,E,1,05,2.1,14.7,M,1.1,M,,*53\r\n"
                  "$GPGLL,4527.458,S,16709.165,E,225307,A*3F\r\n"
                  "$GPRMC,225309,A,4527.458,S,16709.165,E,000.0,094.5,060601,024.1,E*6C\r\n"
                  "$GPGSA,A,3,01,,,,13,20,22,,,,28,,3.1,2.1,2.0*3A\r\n"
                  "$GPGGA,225309.50,4527.458,S,16709.165,E,1,05,2.1,14.7,M,1.1,M,,*53\r\n"
                  "\r\n"
                  "$GPRMC,225310,A,4527.458,S,16709.165,E,000.0,094.5,060601,024.1,E*64\r\n"),
            (V{3, 3, 1}));
  // GGA first with GSV between, LF only.
  EXPECT_EQ(Sizes("$GPGGA,030719.000,3747.0873,S,17518.8938,E,1,08,1.1,59.9,M,23.7,M,,0000*7D\n"
                  "$GPGSV,3,1,12,17,72,207,32*7B\n$GPGSV,3,2,12,30,23,011,29*7C\n"
                  "$GPRMC,030719.000,A,3747.0873,S,17518.8938,E,0.69,181.39,311214,,,A*7D\n"
                  "$GPGGA,030720.000,3747.0875,S,17518.8938,E,1,08,1.1,59.8,M,23.7,M,,0000*70\n"
                  "$GPRMC,030720.000,A,3747.0875,S,17518.8938,E,1.15,181.39,311214,,,A*7B\n"),
            (V{4, 2}));
  // No times: a new second when the first sentence comes round, but not for GSV parts.
  const std::string gll = "$GPGLL,4916.45,N,12311.12,W,,A,*1D\n";
  const std::string gsv = "$GPGSV,1,1,01,17,72,207,32*7B\n";
  EXPECT_EQ(Sizes(gll + gsv + gll + gsv + gsv + gll), (V{2, 3, 1}));
  EXPECT_EQ(Sizes("# nothing\n#\n\n"), V{});
  std::string endless;
  for (int i = 0; i < 100; ++i) endless += gsv;
  EXPECT_EQ(Sizes(endless), (V{kMaxBurstLines, 100 - kMaxBurstLines}));
}

TEST(NmeaSimOptions, GoodCommandLines) {
  const Options d = ParseOptions({}).options;
  EXPECT_EQ(d.baud, 4800);
  EXPECT_EQ(d.talker + std::to_string(d.track.lat), "GP52.520000");

  const ParseResult r =
      ParseOptions({"--lat=-33.5", "--lon", "-70.25", "--course=270", "--baud", "9600", "--talker",
                    "GN", "--dropout", "10", "--dropout-every", "30", "--seed", "17"});
  EXPECT_EQ(r.error, "");
  const Options& o = r.options;
  EXPECT_EQ(o.track.lat + o.track.lon + o.track.courseDeg, -33.5 - 70.25 + 270);
  EXPECT_EQ(o.baud, 9600);
  EXPECT_EQ(o.talker, "GN");
  EXPECT_EQ(o.track.dropout + o.track.dropoutEvery, 40);
  EXPECT_TRUE(o.seedGiven && o.seed == 17u);
}

TEST(NmeaSimOptions, BadCommandLinesSayWhy) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{"--lat", "90.5"}, "--lat"},
      {{"--lat", "52,5"}, "'52,5'"},  // a decimal comma is no number here
      {{"--baud", "1000"}, "standard rate"},
      {{"--talker", "gp"}, "two capital letters"},
      {{"--frobnicate"}, "unknown option '--frobnicate'"},
      {{"extra"}, "unexpected argument 'extra'"},
      {{"--link", "a", "--device", "b"}, "exclude each other"},
      {{"--replay", "f.log", "--speed", "3"}, "--speed has no effect with --replay"},
      {{"--dropout", "60"}, "shorter than"},  // the period defaults to 60 s
      {{"--dropout-every", "20"}, "needs --dropout"},
  };
  for (const auto& [args, error] : cases)
    EXPECT_NE(ParseOptions(args).error.find(error), std::string::npos) << args.front();
}

}  // namespace
}  // namespace marvento::nmeasim
