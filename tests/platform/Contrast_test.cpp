#include "platform/Contrast.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

// Reference figures from the WCAG 2 definition, to two decimals.
TEST(Contrast, RatiosOfKnownPairs) {
  struct Case {
    std::uint32_t a, b;
    double ratio;
  };
  const Case cases[] = {
      {0x000000, 0xFFFFFF, 21.0},
      {0xFFFFFF, 0x000000, 21.0},
      {0x777777, 0xFFFFFF, 4.48},
      {0x767676, 0xFFFFFF, 4.54},
      {0xFF0000, 0xFFFFFF, 4.00},
      {0x0000FF, 0x000000, 2.44},
      {0x353535, 0xFFFFFF, 12.27},
      {0x123456, 0x123456, 1.0},
      // Bits above the colour (an alpha byte) change nothing.
      {0xFF000000, 0x00FFFFFF, 21.0},
  };
  for (const Case& c : cases) {
    EXPECT_NEAR(ContrastRatio(c.a, c.b), c.ratio, 0.01) << std::hex << c.a << " " << c.b;
  }
}

TEST(Contrast, ReadableTextKeepsAGoodChoiceAndReplacesAPoorOne) {
  struct Case {
    std::uint32_t background, preferred, chosen;
  };
  const Case cases[] = {
      {0xFFFFFF, 0x000000, 0x000000},  // black on white stays
      {0x353535, 0xFFFFFF, 0xFFFFFF},  // white on a dark window stays
      {0x353535, 0x000000, 0xFFFFFF},  // black on a dark window becomes white
      {0xFFFFDC, 0xFFFFFF, 0x000000},  // white on a light tool tip becomes black
      {0x777777, 0x808080, 0x000000},  // mid grey: black stands out more than white
      {0x2A82DA, 0x2A82DA, 0x000000},
  };
  for (const Case& c : cases) {
    const std::uint32_t chosen = ReadableTextOn(c.background, c.preferred);
    EXPECT_EQ(chosen, c.chosen) << std::hex << c.background << " " << c.preferred;
    EXPECT_GE(ContrastRatio(c.background, chosen), kTextContrast) << std::hex << c.background;
  }
}

}  // namespace
}  // namespace marvento
