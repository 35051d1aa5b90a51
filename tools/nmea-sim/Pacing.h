#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace marvento::nmeasim {

// Characters per second on an 8N1 line: a start bit, eight data bits and a stop bit.
long CharsPerSecond(long baud);

// How many leading sentences of a burst (each with its line end) go out in one second at
// `cps` characters per second. A generated receiver whose port is too slow for its output
// drops the sentences that do not fit before the next fix, rather than fall behind.
std::size_t FitBurst(const std::vector<std::string>& sentences, long cps);

// How many of the `total` characters of a burst are on the line `elapsed` seconds after
// the burst began.
std::size_t CharsDue(double elapsed, long cps, std::size_t total);

}  // namespace marvento::nmeasim
