#include "Receiver.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "NmeaText.h"

namespace marvento::nmeasim {

namespace {

constexpr int kPrns[12] = {2, 5, 6, 9, 12, 14, 17, 19, 22, 24, 25, 29};

std::string Fmt1(double v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.1f", v);
  return buf;
}

// A course that rounds up to 360.0 is written as 0.0, the way receivers do.
std::string CourseText(double deg) {
  const double tenths = std::round(deg * 10.0);
  return Fmt1(tenths >= 3600.0 ? 0.0 : tenths / 10.0);
}

std::string Two(int v) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%02d", v);
  return buf;
}

// Satellites drift slowly across the sky so the view looks alive without any orbit model.
std::vector<std::string> SatelliteView(int count, long elapsed, bool weak) {
  std::vector<std::string> out;
  const int messages = std::max(1, (count + 3) / 4);
  for (int m = 0; m < messages; ++m) {
    std::string body =
        "GPGSV," + std::to_string(messages) + "," + std::to_string(m + 1) + "," + Two(count);
    for (int i = m * 4; i < std::min(count, m * 4 + 4); ++i) {
      const int prn = kPrns[i];
      const int elev = 10 + static_cast<int>((prn * 37 + elapsed / 120) % 75);
      const int az = static_cast<int>((prn * 53 + elapsed / 60) % 360);
      const int snr = 22 + (prn * 7) % 24;
      char sat[64];
      std::snprintf(sat, sizeof sat, ",%02d,%02d,%03d,", prn, elev, az);
      body += sat;
      if (!weak) body += Two(snr);
    }
    out.push_back(Frame(body));
  }
  return out;
}

}  // namespace

Receiver::Receiver(const TrackConfig& cfg, std::string talker, unsigned seed)
    : m_cfg(cfg), m_talker(std::move(talker)), m_rng(seed) {}

double Receiver::NextHeight() {
  if (m_cfg.heightNoise <= 0) return m_cfg.height;
  std::uniform_real_distribution<double> noise(-m_cfg.heightNoise, m_cfg.heightNoise);
  return m_cfg.height + noise(m_rng);
}

std::vector<std::string> Receiver::Burst(std::time_t utc, long elapsed) {
  const std::string time = UtcTimeText(utc);
  const std::string date = UtcDateText(utc);
  const bool fix = !InDropout(m_cfg, elapsed);
  const int used = fix ? m_cfg.satellites : std::min(m_cfg.dropoutSatellites, m_cfg.satellites);
  const double hdop = used > 0 ? std::max(0.6, 6.0 / used) : 99.9;
  std::vector<std::string> out;

  if (!fix) {
    out.push_back(
        Frame(m_talker + "GGA," + time + ",,,,,0," + Two(used) + "," + Fmt1(hdop) + ",,M,,M,,"));
    out.push_back(Frame(m_talker + "GSA,A,1,,,,,,,,,,,,,99.9,99.9,99.9"));
    for (auto& s : SatelliteView(m_cfg.satellites, elapsed, true)) out.push_back(std::move(s));
    out.push_back(Frame(m_talker + "RMC," + time + ",V,,,,,,," + date + ",,,N"));
    out.push_back(Frame(m_talker + "GLL,,,,," + time + ",V,N"));
    return out;
  }

  const Position p = PositionAfter(m_cfg, static_cast<double>(elapsed));
  const CoordText lat = LatitudeText(p.lat);
  const CoordText lon = LongitudeText(p.lon);
  const std::string where =
      lat.value + "," + lat.hemisphere + "," + lon.value + "," + lon.hemisphere;

  out.push_back(Frame(m_talker + "GGA," + time + "," + where + ",1," + Two(used) + "," +
                      Fmt1(hdop) + "," + Fmt1(NextHeight()) + ",M,0.0,M,,"));
  std::string gsa = m_talker + "GSA,A,3";
  for (int i = 0; i < 12; ++i) gsa += i < used ? "," + Two(kPrns[i]) : std::string(",");
  gsa += "," + Fmt1(hdop * 1.6) + "," + Fmt1(hdop) + "," + Fmt1(hdop * 1.3);
  out.push_back(Frame(gsa));
  for (auto& s : SatelliteView(m_cfg.satellites, elapsed, false)) out.push_back(std::move(s));
  out.push_back(Frame(m_talker + "RMC," + time + ",A," + where + "," + Fmt1(m_cfg.speedKn) + "," +
                      CourseText(p.courseDeg) + "," + date + ",,,A"));
  out.push_back(Frame(m_talker + "GLL," + where + "," + time + ",A,A"));
  return out;
}

}  // namespace marvento::nmeasim
