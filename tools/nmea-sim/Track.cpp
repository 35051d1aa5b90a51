#include "Track.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marvento::nmeasim {

namespace {

constexpr double kRad = std::numbers::pi / 180.0;

double Wrap360(double deg) {
  double d = std::fmod(deg, 360.0);
  if (d < 0) d += 360.0;
  return d >= 360.0 ? 0.0 : d;
}

double WrapLon(double deg) {
  double d = std::fmod(deg + 180.0, 360.0);
  if (d <= 0) d += 360.0;
  return d - 180.0;
}

}  // namespace

Position PositionAfter(const TrackConfig& cfg, double seconds) {
  const double arcDeg = cfg.speedKn * seconds / 3600.0 / 60.0;
  if (arcDeg == 0.0) return {cfg.lat, WrapLon(cfg.lon), Wrap360(cfg.courseDeg)};

  const double phi1 = cfg.lat * kRad;
  const double theta = cfg.courseDeg * kRad;
  const double delta = arcDeg * kRad;
  const double sinPhi2 =
      std::sin(phi1) * std::cos(delta) + std::cos(phi1) * std::sin(delta) * std::cos(theta);
  const double phi2 = std::asin(std::clamp(sinPhi2, -1.0, 1.0));
  const double dLambda = std::atan2(std::sin(theta) * std::sin(delta) * std::cos(phi1),
                                    std::cos(delta) - std::sin(phi1) * sinPhi2);
  // The course here is the reverse of the bearing back to the start.
  const double back = std::atan2(
      std::sin(-dLambda) * std::cos(phi1),
      std::cos(phi2) * std::sin(phi1) - std::sin(phi2) * std::cos(phi1) * std::cos(-dLambda));
  return {phi2 / kRad, WrapLon(cfg.lon + dLambda / kRad), Wrap360(back / kRad + 180.0)};
}

bool InDropout(const TrackConfig& cfg, long seconds) {
  if (cfg.dropout <= 0 || cfg.dropoutEvery <= 0 || seconds < 0) return false;
  return seconds % cfg.dropoutEvery >= cfg.dropoutEvery - cfg.dropout;
}

}  // namespace marvento::nmeasim
