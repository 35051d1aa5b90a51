#pragma once

#include <cstdint>

namespace marvento {

// Colours here are 0xRRGGBB in sRGB; alpha is ignored, the colour is taken as painted.

// Relative luminance of an sRGB colour, 0 (black) to 1 (white), as WCAG 2 defines it.
double RelativeLuminance(std::uint32_t rgb);

// Contrast ratio of two colours, 1 (none) to 21 (black on white); symmetric.
double ContrastRatio(std::uint32_t a, std::uint32_t b);

// Least contrast that body text needs to stay readable (WCAG 2, level AA).
inline constexpr double kTextContrast = 4.5;

// The text colour to paint on `background`: `preferred` where it reaches kTextContrast,
// otherwise black or white, whichever stands out more.
std::uint32_t ReadableTextOn(std::uint32_t background, std::uint32_t preferred);

}  // namespace marvento
