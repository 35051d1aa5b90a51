#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numbers>
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

std::vector<std::string> Fields(std::string_view sentence) {
  std::vector<std::string> out;
  std::string cur;
  for (char c : sentence) {
    if (c == ',') {
      out.push_back(cur);
      cur.clear();
    } else {
      cur += c;
    }
  }
  out.push_back(cur);
  return out;
}

// Reads "ddmm.mmmm" + hemisphere back into signed degrees, the way a receiver's user would.
double FromText(const std::string& value, char hemisphere) {
  const auto point = value.find('.');
  const double deg = std::stod(value.substr(0, point - 2));
  const double min = std::stod(value.substr(point - 2));
  const double mag = deg + min / 60.0;
  return (hemisphere == 'S' || hemisphere == 'W') ? -mag : mag;
}

TEST(NmeaSimChecksum, KnownSentencesFrameAndVerify) {
  const char* known[] = {
      "$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47",
      "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A",
      "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39",
      "$GPGLL,4916.45,N,12311.12,W,225444,A,*1D",
      "$GPGGA,030719.000,3747.0873,S,17518.8938,E,1,08,1.1,59.9,M,23.7,M,,0000*7D",
  };
  for (const std::string s : known) {
    SCOPED_TRACE(s);
    const std::string body = s.substr(1, s.find('*') - 1);
    EXPECT_EQ(Frame(body), s + "\r\n");
    EXPECT_TRUE(HasValidChecksum(s));
    EXPECT_TRUE(HasValidChecksum(s + "\r\n"));
    std::string damaged = s;
    damaged[8] = damaged[8] == '1' ? '2' : '1';
    EXPECT_FALSE(HasValidChecksum(damaged));
  }
}

TEST(NmeaSimChecksum, MalformedTailsAreRejected) {
  const struct {
    const char* text;
    bool valid;
  } cases[] = {
      {"$GPGLL,4916.45,N,12311.12,W,225444,A,*1d", true},  // lower-case hex is read too
      {"$GPGLL,4916.45,N,12311.12,W,225444,A,", false},    // no checksum at all
      {"$GPGLL,4916.45,N,12311.12,W,225444,A,*1", false},  // one digit only
      {"$GPGLL,4916.45,N,12311.12,W,225444,A,*1G", false},
      {"$GPGLL,4916.45,N,12311.12,W,225444,A,*1Dxx", false},
      {"GPGLL,4916.45,N,12311.12,W,225444,A,*1D", false},
      {"", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(HasValidChecksum(c.text), c.valid);
  }
}

TEST(NmeaSimText, LatitudeAndLongitudeForms) {
  const struct {
    double deg;
    bool isLat;
    const char* value;
    char hemisphere;
  } cases[] = {
      {52.52, true, "5231.2000", 'N'},
      {48.1173, true, "4807.0380", 'N'},
      {-33.865, true, "3351.9000", 'S'},
      {8.5, true, "0830.0000", 'N'},
      {0.0, true, "0000.0000", 'N'},
      {-0.0000001, true, "0000.0000", 'N'},  // rounds to zero: no "south zero"
      {-0.000001, true, "0000.0001", 'S'},
      {89.999999999, true, "9000.0000", 'N'},  // 60' carry into the degree
      {90.0, true, "9000.0000", 'N'},
      {-90.0, true, "9000.0000", 'S'},
      {13.4, false, "01324.0000", 'E'},
      {-0.5, false, "00030.0000", 'W'},
      {-77.4408, false, "07726.4480", 'W'},
      {179.999999999, false, "18000.0000", 'E'},
      {-179.9999, false, "17959.9940", 'W'},
      {180.0, false, "18000.0000", 'E'},
      {-180.0, false, "18000.0000", 'W'},
      {0.0, false, "00000.0000", 'E'},
      {-0.0, false, "00000.0000", 'E'},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.deg);
    const CoordText t = c.isLat ? LatitudeText(c.deg) : LongitudeText(c.deg);
    EXPECT_EQ(t.value, c.value);
    EXPECT_EQ(t.hemisphere, c.hemisphere);
  }
}

TEST(NmeaSimText, CoordinatesReadBackWithinHalfAUnitOfTheLastPlace) {
  const double tolerance = 0.00005 / 60.0 + 1e-12;
  for (double deg = -180.0; deg <= 180.0; deg += 0.987654321) {
    const CoordText lon = LongitudeText(deg);
    ASSERT_EQ(lon.value.size(), 10u) << deg;
    EXPECT_NEAR(FromText(lon.value, lon.hemisphere), deg, tolerance);
    if (std::fabs(deg) <= 90.0) {
      const CoordText lat = LatitudeText(deg);
      ASSERT_EQ(lat.value.size(), 9u) << deg;
      EXPECT_NEAR(FromText(lat.value, lat.hemisphere), deg, tolerance);
    }
  }
}

TEST(NmeaSimText, UtcTimeAndDate) {
  EXPECT_EQ(UtcTimeText(0), "000000.00");
  EXPECT_EQ(UtcDateText(0), "010170");
  EXPECT_EQ(UtcTimeText(1700000000), "221320.00");
  EXPECT_EQ(UtcDateText(1700000000), "141123");
  EXPECT_EQ(UtcTimeText(951782399), "235959.00");  // 2000-02-28, the day before a leap day
  EXPECT_EQ(UtcDateText(951782400), "290200");
}

// Great-circle distance (degrees of arc) and initial bearing, written independently of the
// track's own direct formula.
void Inverse(double lat1, double lon1, double lat2, double lon2, double& arc, double& bearing) {
  const double r = std::numbers::pi / 180.0;
  const double dLat = (lat2 - lat1) * r, dLon = (lon2 - lon1) * r;
  const double h = std::pow(std::sin(dLat / 2), 2) +
                   std::cos(lat1 * r) * std::cos(lat2 * r) * std::pow(std::sin(dLon / 2), 2);
  arc = 2 * std::asin(std::sqrt(h)) / r;
  bearing = std::atan2(std::sin(dLon) * std::cos(lat2 * r),
                       std::cos(lat1 * r) * std::sin(lat2 * r) -
                           std::sin(lat1 * r) * std::cos(lat2 * r) * std::cos(dLon)) /
            r;
  if (bearing < 0) bearing += 360;
}

TEST(NmeaSimTrack, PositionsAfterAGivenTime) {
  const struct {
    double lat, lon, speed, course, seconds;
    double wantLat, wantLon, wantCourse;
  } cases[] = {
      {0, 0, 60, 0, 3600, 1, 0, 0},
      {0, 0, 60, 90, 3600, 0, 1, 90},
      {0, 0, 60, 180, 3600, -1, 0, 180},
      {0, 0, 60, 270, 7200, 0, -2, 270},
      {0, 179.5, 60, 90, 3600, 0, -179.5, 90},    // across the date line
      {0, -179.5, 60, 270, 3600, 0, 179.5, 270},  // and back the other way
      {89.5, 0, 60, 0, 3600, 89.5, 180, 180},     // over the pole and down the other side
      {-10, 20, 30, 180, 7200, -11, 20, 180},
      {52.52, 13.4, 0, 123, 1000, 52.52, 13.4, 123},  // standing still keeps the course
      {52.52, 13.4, 12, 0, 0, 52.52, 13.4, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.lat << "," << c.lon << " " << c.speed << "kn " << c.course
                                    << "deg " << c.seconds << "s");
    TrackConfig cfg;
    cfg.lat = c.lat;
    cfg.lon = c.lon;
    cfg.speedKn = c.speed;
    cfg.courseDeg = c.course;
    const Position p = PositionAfter(cfg, c.seconds);
    EXPECT_NEAR(p.lat, c.wantLat, 1e-9);
    EXPECT_NEAR(p.lon, c.wantLon, 1e-9);
    EXPECT_NEAR(std::fmod(p.courseDeg - c.wantCourse + 540.0, 360.0) - 180.0, 0, 1e-6);
  }
}

TEST(NmeaSimTrack, DistanceAndBearingFromTheStartMatchSpeedAndCourse) {
  for (double lat : {-60.0, -5.0, 30.0, 52.52}) {
    for (double course : {10.0, 77.0, 135.0, 250.0, 333.0}) {
      TrackConfig cfg;
      cfg.lat = lat;
      cfg.lon = 13.4;
      cfg.speedKn = 25;
      cfg.courseDeg = course;
      const Position p = PositionAfter(cfg, 5400);  // 37.5 nautical miles
      double arc = 0, bearing = 0;
      Inverse(lat, 13.4, p.lat, p.lon, arc, bearing);
      SCOPED_TRACE(testing::Message() << lat << " " << course);
      EXPECT_NEAR(arc * 60.0, 37.5, 1e-6);
      EXPECT_NEAR(bearing, course, 1e-6);
    }
  }
}

TEST(NmeaSimTrack, DropoutSpellsLieAtTheEndOfEachPeriod) {
  TrackConfig cfg;
  cfg.dropout = 5;
  cfg.dropoutEvery = 20;
  const struct {
    long second;
    bool lost;
  } cases[] = {{0, false},  {14, false}, {15, true}, {19, true},
               {20, false}, {34, false}, {35, true}, {1000 * 20 + 17, true}};
  for (const auto& c : cases) EXPECT_EQ(InDropout(cfg, c.second), c.lost) << c.second;

  cfg.dropout = 0;
  for (long s = 0; s < 200; ++s) ASSERT_FALSE(InDropout(cfg, s)) << s;
}

std::string Name(const std::string& sentence) {
  return sentence.substr(0, sentence.find(','));
}

TEST(NmeaSimReceiver, BurstOrderChecksumsAndFixState) {
  TrackConfig cfg;
  cfg.dropout = 3;
  cfg.dropoutEvery = 10;
  cfg.dropoutSatellites = 2;
  Receiver rx(cfg, "GP", 7);
  const std::vector<std::string> order = {"$GPGGA", "$GPGSA", "$GPGSV",
                                          "$GPGSV", "$GPRMC", "$GPGLL"};
  for (long s = 0; s < 20; ++s) {
    SCOPED_TRACE(s);
    const bool lost = s % 10 >= 7;
    const auto burst = rx.Burst(1700000000 + s, s);
    ASSERT_EQ(burst.size(), order.size());
    for (std::size_t i = 0; i < burst.size(); ++i) {
      EXPECT_EQ(Name(burst[i]), order[i]);
      EXPECT_TRUE(burst[i].ends_with("\r\n"));
      EXPECT_TRUE(HasValidChecksum(burst[i])) << burst[i];
    }
    const auto gga = Fields(burst[0]);
    const auto rmc = Fields(burst[4]);
    const auto gll = Fields(burst[5]);
    EXPECT_EQ(gga[1], UtcTimeText(1700000000 + s));
    EXPECT_EQ(rmc[9], UtcDateText(1700000000 + s));
    EXPECT_EQ(gga[6], lost ? "0" : "1");
    EXPECT_EQ(gga[7], lost ? "02" : "08");
    EXPECT_EQ(rmc[2], lost ? "V" : "A");
    EXPECT_EQ(gll[6], lost ? "V" : "A");
    EXPECT_EQ(gga[2].empty(), lost);  // no position without a fix
  }
}

TEST(NmeaSimReceiver, SentencesCarryTheTrackPosition) {
  TrackConfig cfg;
  cfg.lat = -37.8;
  cfg.lon = -175.3;
  cfg.speedKn = 40;
  cfg.courseDeg = 300;
  Receiver rx(cfg, "GP", 1);
  const auto burst = rx.Burst(1700000000, 900);
  const Position want = PositionAfter(cfg, 900);
  const auto gga = Fields(burst[0]);
  const auto rmc = Fields(burst[4]);
  const auto gll = Fields(burst[5]);
  const double tol = 0.00005 / 60.0 + 1e-12;
  EXPECT_NEAR(FromText(gga[2], gga[3][0]), want.lat, tol);
  EXPECT_NEAR(FromText(gga[4], gga[5][0]), want.lon, tol);
  EXPECT_EQ(rmc[3] + rmc[4] + rmc[5] + rmc[6], gga[2] + gga[3] + gga[4] + gga[5]);
  EXPECT_EQ(gll[1] + gll[2] + gll[3] + gll[4], gga[2] + gga[3] + gga[4] + gga[5]);
  EXPECT_EQ(rmc[7], "40.0");
  EXPECT_NEAR(std::stod(rmc[8]), want.courseDeg, 0.05);
}

TEST(NmeaSimReceiver, HeightStaysWithinItsNoise) {
  for (double noise : {0.0, 2.0}) {
    TrackConfig cfg;
    cfg.height = 545.4;
    cfg.heightNoise = noise;
    Receiver rx(cfg, "GP", 42);
    std::set<std::string> seen;
    for (long s = 0; s < 300; ++s) {
      const std::string h = Fields(rx.Burst(s, s)[0])[9];
      seen.insert(h);
      ASSERT_LE(std::fabs(std::stod(h) - 545.4), noise + 0.05) << h;
    }
    if (noise == 0.0) {
      EXPECT_EQ(seen, std::set<std::string>{"545.4"});
    } else {
      EXPECT_GT(seen.size(), 20u);  // the height does wander
    }
  }
}

TEST(NmeaSimReceiver, MultiSystemTalkerHidesTheKnownSentenceNames) {
  Receiver rx(TrackConfig{}, "GN", 3);
  std::string all;
  for (const auto& s : rx.Burst(1700000000, 0)) all += s;
  EXPECT_EQ(all.find("$GPGGA"), std::string::npos);
  EXPECT_EQ(all.find("$GPRMC"), std::string::npos);
  EXPECT_EQ(all.find("$GPGLL"), std::string::npos);
  EXPECT_NE(all.find("$GNGGA"), std::string::npos);
  EXPECT_NE(all.find("$GNRMC"), std::string::npos);
  EXPECT_NE(all.find("$GPGSV"), std::string::npos);
}

TEST(NmeaSimReceiver, AFullBurstFitsIntoOneSecondAt4800Baud) {
  // A receiver at the usual 4800 baud must not lose its RMC and GLL to a crowded sky.
  TrackConfig cfg;
  cfg.satellites = 12;
  cfg.lat = -89.99;
  cfg.lon = -179.99;
  cfg.height = 12345.6;
  cfg.speedKn = 999;
  cfg.courseDeg = 359;
  Receiver rx(cfg, "GP", 5);
  const auto burst = rx.Burst(1700000000, 3);
  EXPECT_EQ(FitBurst(burst, CharsPerSecond(4800)), burst.size());
}

TEST(NmeaSimPacing, CharactersPerSecondAndBurstFit) {
  EXPECT_EQ(CharsPerSecond(1200), 120);
  EXPECT_EQ(CharsPerSecond(4800), 480);
  EXPECT_EQ(CharsPerSecond(115200), 11520);

  const std::vector<std::string> five(5, std::string(100, 'x'));
  const struct {
    long cps;
    std::size_t fit;
  } cases[] = {{0, 0}, {99, 0}, {100, 1}, {480, 4}, {499, 4}, {500, 5}, {11520, 5}};
  for (const auto& c : cases) EXPECT_EQ(FitBurst(five, c.cps), c.fit) << c.cps;
  EXPECT_EQ(FitBurst({}, 480), 0u);
  // A long sentence is not skipped in favour of a shorter one behind it.
  EXPECT_EQ(FitBurst({std::string(50, 'a'), std::string(500, 'b'), std::string(10, 'c')}, 480), 1u);
}

TEST(NmeaSimPacing, CharactersDueAfterElapsedTime) {
  const struct {
    double elapsed;
    long cps;
    std::size_t total, due;
  } cases[] = {
      {0.0, 480, 400, 0},   {-0.5, 480, 400, 0},     {0.1, 480, 400, 48},
      {0.5, 480, 400, 240}, {0.83, 480, 400, 398},   {0.84, 480, 400, 400},
      {5.0, 480, 400, 400}, {0.001, 11520, 400, 11}, {0.5, 0, 400, 0},
  };
  for (const auto& c : cases)
    EXPECT_EQ(CharsDue(c.elapsed, c.cps, c.total), c.due) << c.elapsed << " " << c.cps;
}

TEST(NmeaSimCapture, BurstTimeOfASentence) {
  const struct {
    const char* line;
    const char* time;  // nullptr: none
  } cases[] = {
      {"$GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*47", "123519"},
      {"$GNRMC,030719.000,A,3747.0873,S", "030719"},
      {"$$GPGGA,030719.10,", "030719"},  // junk in front of the sentence
      {"$GPGLL,4916.45,N,12311.12,W,225444,A,*1D", nullptr},
      {"$GPGGA,,,,,,0,00,,,,,,,*66", nullptr},
      {"$GPGGA,12a519,", nullptr},
      {"$GPGGA,1235", nullptr},
      {"$GPGGAX,123519,", nullptr},
      {"$GPZDA,123519.00,14,11,2023,,*60", nullptr},
      {"no sentence here", nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    const auto t = BurstTime(c.line);
    if (c.time) {
      ASSERT_TRUE(t.has_value());
      EXPECT_EQ(*t, c.time);
    } else {
      EXPECT_FALSE(t.has_value());
    }
  }
}

std::vector<std::size_t> Sizes(const std::vector<Burst>& bursts) {
  std::vector<std::size_t> out;
  for (const auto& b : bursts) out.push_back(b.size());
  return out;
}

TEST(NmeaSimCapture, GroupsLinesIntoSeconds) {
  const struct {
    const char* name;
    std::string capture;
    std::vector<std::size_t> sizes;
  } cases[] = {
      {"RMC first, GLL a second behind",
       "# Name: test receiver\r\n"
       "$GPRMC,225308,A,4527.458,S,16709.165,E,000.0,094.5,060601,024.1,E*6D\r\n"
       "$GPGGA,225308,4527.458,S,16709.165,E,1,05,2.1,14.7,M,1.1,M,,*53\r\n"
       "$GPGLL,4527.458,S,16709.165,E,225307,A*3F\r\n"
       "$GPRMC,225309,A,4527.458,S,16709.165,E,000.0,094.5,060601,024.1,E*6C\r\n"
       "$GPGSA,A,3,01,,,,13,20,22,,,,28,,3.1,2.1,2.0*3A\r\n"
       "$GPGGA,225309.50,4527.458,S,16709.165,E,1,05,2.1,14.7,M,1.1,M,,*53\r\n"
       "\r\n"
       "$GPRMC,225310,A,4527.458,S,16709.165,E,000.0,094.5,060601,024.1,E*64\r\n",
       {3, 3, 1}},
      {"GGA first with GSV between, LF only",
       "$GPGGA,030719.000,3747.0873,S,17518.8938,E,1,08,1.1,59.9,M,23.7,M,,0000*7D\n"
       "$GPGSV,3,1,12,17,72,207,32*7B\n"
       "$GPGSV,3,2,12,30,23,011,29*7C\n"
       "$GPRMC,030719.000,A,3747.0873,S,17518.8938,E,0.69,181.39,311214,,,A*7D\n"
       "$GPGGA,030720.000,3747.0875,S,17518.8938,E,1,08,1.1,59.8,M,23.7,M,,0000*70\n"
       "$GPRMC,030720.000,A,3747.0875,S,17518.8938,E,1.15,181.39,311214,,,A*7B\n",
       {4, 2}},
      {"no times: a new second when the first sentence comes round",
       "$GPGLL,4916.45,N,12311.12,W,,A,*1D\n"
       "$GPGSV,1,1,01,17,72,207,32*7B\n"
       "$GPGLL,4916.46,N,12311.12,W,,A,*1D\n"
       "$GPGSV,1,1,01,17,72,207,32*7B\n"
       "$GPGSV,1,1,01,17,72,207,32*7B\n"
       "$GPGLL,4916.47,N,12311.12,W,,A,*1D\n",
       {2, 3, 1}},
      {"only comments", "# nothing\n#\n\n", {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::istringstream in(c.capture);
    const auto bursts = ReadCapture(in);
    EXPECT_EQ(Sizes(bursts), c.sizes);
    for (const auto& b : bursts)
      for (const auto& line : b) {
        EXPECT_FALSE(line.ends_with('\r')) << line;
        EXPECT_FALSE(line.starts_with('#')) << line;
      }
  }
}

TEST(NmeaSimCapture, AnEndlessSecondIsCut) {
  std::string capture;
  for (int i = 0; i < 100; ++i) capture += "$GPGSV,1,1,01,17,72,207,32*7B\r\n";
  std::istringstream in(capture);
  EXPECT_EQ(Sizes(ReadCapture(in)),
            (std::vector<std::size_t>{kMaxBurstLines, 100 - kMaxBurstLines}));
}

TEST(NmeaSimCapture, CorpusLogsKeepEveryLineAndOneTimePerBurst) {
#ifndef MARVENTO_NMEA_CORPUS
  GTEST_SKIP() << "no NMEA corpus configured";
#else
  const std::filesystem::path dir(MARVENTO_NMEA_CORPUS);
  if (!std::filesystem::is_directory(dir)) GTEST_SKIP() << "NMEA corpus not found at " << dir;
  int logs = 0;
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    if (entry.path().extension() != ".log") continue;
    ++logs;
    SCOPED_TRACE(entry.path().filename().string());
    std::vector<std::string> lines;
    {
      std::ifstream in(entry.path(), std::ios::binary);
      std::string line;
      while (std::getline(in, line)) {
        while (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty() && line[0] != '#') lines.push_back(line);
      }
    }
    std::ifstream in(entry.path(), std::ios::binary);
    const auto bursts = ReadCapture(in);
    std::vector<std::string> joined;
    std::optional<std::string> previous;
    for (const auto& b : bursts) {
      ASSERT_FALSE(b.empty());
      ASSERT_LE(b.size(), kMaxBurstLines);
      std::set<std::string> times;
      for (const auto& l : b) {
        joined.push_back(l);
        if (auto t = BurstTime(l)) times.insert(*t);
      }
      EXPECT_LE(times.size(), 1u) << b.front();
      if (times.size() == 1 && previous) {
        EXPECT_NE(*times.begin(), *previous) << b.front();
      }
      if (times.size() == 1 && b.size() < kMaxBurstLines) previous = *times.begin();
    }
    EXPECT_EQ(joined, lines);
  }
  EXPECT_GT(logs, 0);
#endif
}

TEST(NmeaSimOptions, GoodCommandLines) {
  auto parse = [](std::vector<std::string> args) {
    const ParseResult r = ParseOptions(args);
    EXPECT_EQ(r.error, "");
    return r.options;
  };
  const Options d = parse({});
  EXPECT_EQ(d.baud, 4800);
  EXPECT_EQ(d.talker, "GP");
  EXPECT_DOUBLE_EQ(d.track.lat, 52.52);
  EXPECT_DOUBLE_EQ(d.track.lon, 13.4);
  EXPECT_EQ(d.track.dropout, 0);

  const Options o = parse({"--lat=-33.5",
                           "--lon",
                           "-70.25",
                           "--speed",
                           "12.5",
                           "--course=270",
                           "--baud",
                           "9600",
                           "--talker",
                           "GN",
                           "--dropout",
                           "10",
                           "--dropout-every",
                           "30",
                           "--height",
                           "545.4",
                           "--height-noise=0",
                           "--satellites",
                           "12",
                           "--seed",
                           "17",
                           "--link",
                           "/tmp/gps-sim",
                           "--duration",
                           "2.5"});
  EXPECT_DOUBLE_EQ(o.track.lat, -33.5);
  EXPECT_DOUBLE_EQ(o.track.lon, -70.25);
  EXPECT_DOUBLE_EQ(o.track.speedKn, 12.5);
  EXPECT_DOUBLE_EQ(o.track.courseDeg, 270);
  EXPECT_EQ(o.baud, 9600);
  EXPECT_EQ(o.talker, "GN");
  EXPECT_EQ(o.track.dropout, 10);
  EXPECT_EQ(o.track.dropoutEvery, 30);
  EXPECT_DOUBLE_EQ(o.track.height, 545.4);
  EXPECT_DOUBLE_EQ(o.track.heightNoise, 0);
  EXPECT_EQ(o.track.satellites, 12);
  EXPECT_TRUE(o.seedGiven);
  EXPECT_EQ(o.seed, 17u);
  EXPECT_EQ(o.link, "/tmp/gps-sim");
  EXPECT_DOUBLE_EQ(o.duration, 2.5);

  EXPECT_TRUE(parse({"--help"}).help);
}

TEST(NmeaSimOptions, BadCommandLinesSayWhy) {
  const struct {
    std::vector<std::string> args;
    const char* error;
  } cases[] = {
      {{"--lat", "90.5"}, "--lat"},
      {{"--lat", "52,5"}, "'52,5'"},
      {{"--lon", "-180.1"}, "--lon"},
      {{"--course", "361"}, "--course"},
      {{"--speed", "-1"}, "--speed"},
      {{"--baud", "1000"}, "standard rate"},
      {{"--baud", "4800x"}, "--baud"},
      {{"--satellites", "13"}, "--satellites"},
      {{"--talker", "gp"}, "two capital letters"},
      {{"--talker", "GPS"}, "two capital letters"},
      {{"--lat"}, "needs a value"},
      {{"--link="}, "non-empty"},
      {{"--frobnicate"}, "unknown option '--frobnicate'"},
      {{"extra"}, "unexpected argument 'extra'"},
      {{"--link", "a", "--device", "b"}, "exclude each other"},
      {{"--replay", "f.log", "--speed", "3"}, "--speed has no effect with --replay"},
      {{"--replay", "f.log", "--talker", "GN"}, "--talker has no effect with --replay"},
      {{"--dropout", "30", "--dropout-every", "20"}, "shorter than"},
      {{"--dropout", "60"}, "shorter than"},  // the period defaults to 60 s
      {{"--dropout-every", "20"}, "needs --dropout"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args.front());
    const ParseResult r = ParseOptions(c.args);
    EXPECT_NE(r.error.find(c.error), std::string::npos) << r.error;
  }
}

TEST(NmeaSimOptions, UsageNamesEveryOption) {
  const std::string usage = Usage("marvento-nmea-sim");
  for (const char* opt :
       {"--link", "--device", "--baud", "--replay", "--lat", "--lon", "--speed", "--course",
        "--height", "--height-noise", "--satellites", "--dropout", "--dropout-every",
        "--dropout-satellites", "--talker", "--seed", "--duration", "--help"})
    EXPECT_NE(usage.find(opt), std::string::npos) << opt;
}

}  // namespace
}  // namespace marvento::nmeasim
