#pragma once

namespace marvento::nmeasim {

// The simulated vehicle: where it starts, how it moves, and when reception fails.
struct TrackConfig {
  double lat = 52.52;         // start latitude, decimal degrees, north positive
  double lon = 13.4;          // start longitude, decimal degrees, east positive
  double speedKn = 0.0;       // speed over ground, knots
  double courseDeg = 0.0;     // initial course over ground, degrees from true north
  double height = 35.0;       // antenna height above mean sea level, metres
  double heightNoise = 1.5;   // heights vary at random within +-heightNoise metres
  int satellites = 8;         // satellites used while there is a fix (0..12)
  int dropout = 0;            // seconds without fix in every period, 0 = never
  int dropoutEvery = 60;      // length of that period in seconds
  int dropoutSatellites = 0;  // satellites reported while the fix is lost
};

struct Position {
  double lat;        // decimal degrees, north positive
  double lon;        // decimal degrees, east positive, in (-180, 180]
  double courseDeg;  // course over ground here, [0, 360)
};

// Where the vehicle is after `seconds` at steady speed along the great circle of its initial
// course. The earth is a sphere on which one nautical mile is one minute of arc, so 60 knots
// due north for an hour is exactly one degree of latitude.
Position PositionAfter(const TrackConfig& cfg, double seconds);

// Whether the fix is lost at `seconds` after the start. The spell lies at the end of each
// period, so reception starts with a fix.
bool InDropout(const TrackConfig& cfg, long seconds);

}  // namespace marvento::nmeasim
