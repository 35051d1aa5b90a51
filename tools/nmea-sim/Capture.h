#pragma once

#include <istream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace marvento::nmeasim {

// What a receiver sent in one second: lines without their line end.
using Burst = std::vector<std::string>;

// The whole-second UTC time (hhmmss) of a GGA or RMC sentence of any talker, if it has one.
// These two decide where a second begins; GLL is left out because some receivers stamp it
// a second apart from the others.
std::optional<std::string> BurstTime(std::string_view line);

// Reads a capture: raw receiver lines, "#" comment lines and empty lines skipped, CR and LF
// stripped. Lines are grouped into one-second bursts: a new burst starts at a GGA or RMC whose
// whole-second time differs from the one of the burst so far. Without times a burst ends when
// its first sentence comes round again (GSV, which comes in parts, excepted), and no burst grows
// beyond kMaxBurstLines.
std::vector<Burst> ReadCapture(std::istream& in);

inline constexpr std::size_t kMaxBurstLines = 64;

}  // namespace marvento::nmeasim
