#include "Pacing.h"

#include <cmath>

namespace marvento::nmeasim {

long CharsPerSecond(long baud) {
  return baud > 0 ? baud / 10 : 0;
}

std::size_t FitBurst(const std::vector<std::string>& sentences, long cps) {
  std::size_t used = 0;
  std::size_t n = 0;
  for (const auto& s : sentences) {
    if (used + s.size() > static_cast<std::size_t>(cps < 0 ? 0 : cps)) break;
    used += s.size();
    ++n;
  }
  return n;
}

std::size_t CharsDue(double elapsed, long cps, std::size_t total) {
  if (!(elapsed > 0) || cps <= 0) return 0;
  const double due = std::floor(elapsed * static_cast<double>(cps));
  return due >= static_cast<double>(total) ? total : static_cast<std::size_t>(due);
}

}  // namespace marvento::nmeasim
