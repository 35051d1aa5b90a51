#pragma once

#include <QString>

#include <optional>

namespace marvento {

// A place on the earth in decimal degrees: latitude -90 to 90 (north positive), longitude
// -180 to 180 (east positive).
struct GeoPoint {
  double lat = 0.0;
  double lon = 0.0;
  bool operator==(const GeoPoint&) const = default;
};

// The two stations as the last computation left them, for the windows and links that follow
// the main window (map, contest figures). A side the computation did not work out is unset.
struct StationPair {
  std::optional<GeoPoint> own;
  std::optional<GeoPoint> remote;
  QString ownLocator;     // as tbMyLoc shows it
  QString remoteLocator;  // as tbFremdLoc shows it
  // The sphere of Combo1 in kilometres; unset when its text gives no usable radius.
  std::optional<double> radiusKm;
  // Distance and bearing stand in the result labels (the run was not refused).
  bool solved = false;
  // F3 shows the opposite bearing.
  bool reverse = false;
};

}  // namespace marvento
