#pragma once

#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "Track.h"

namespace marvento::nmeasim {

// A generated receiver: one burst of sentences per second, in the order many receivers use:
// GGA, GSA, GSV..., RMC, GLL. Every sentence is framed with its checksum and CR LF.
class Receiver {
 public:
  // talker: two capital letters, "GP" for a GPS-only receiver, "GN" for a multi-system one.
  // The satellite view (GSV) is always "GP", as multi-system receivers send it per system.
  Receiver(const TrackConfig& cfg, std::string talker, unsigned seed);

  // The burst for the UTC second `utc`, `elapsed` seconds after the start of the track.
  std::vector<std::string> Burst(std::time_t utc, long elapsed);

 private:
  double NextHeight();

  TrackConfig m_cfg;
  std::string m_talker;
  std::mt19937 m_rng;
};

}  // namespace marvento::nmeasim
