#include "platform/Contrast.h"

#include <algorithm>
#include <cmath>

namespace marvento {

namespace {

double linear(std::uint32_t channel) {
  const double c = static_cast<double>(channel & 0xFFu) / 255.0;
  return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

}  // namespace

double RelativeLuminance(std::uint32_t rgb) {
  return 0.2126 * linear(rgb >> 16) + 0.7152 * linear(rgb >> 8) + 0.0722 * linear(rgb);
}

double ContrastRatio(std::uint32_t a, std::uint32_t b) {
  const double la = RelativeLuminance(a);
  const double lb = RelativeLuminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

std::uint32_t ReadableTextOn(std::uint32_t background, std::uint32_t preferred) {
  if (ContrastRatio(background, preferred) >= kTextContrast) return preferred & 0xFFFFFFu;
  constexpr std::uint32_t black = 0x000000u;
  constexpr std::uint32_t white = 0xFFFFFFu;
  return ContrastRatio(background, black) >= ContrastRatio(background, white) ? black : white;
}

}  // namespace marvento
