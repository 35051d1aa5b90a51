#include "station/StationLinks.h"

#include <gtest/gtest.h>

#include <optional>

namespace marvento {
namespace {

// The bearing the rotor is sent comes from the caption the user sees; whatever stands there
// that is no bearing must not turn the antenna to north.
TEST(StationLinks, BearingOfTheCaption) {
  const struct {
    const char* caption;
    std::optional<double> bearing;
  } cases[] = {
      {"69,74 °", 69.74},         {"0 °", 0.0},         {" 359,99 °", 359.99},
      {"360 °", 360.0},           {"", std::nullopt},   {"-", std::nullopt},
      {"Richtung", std::nullopt}, {" °", std::nullopt}, {"-12,5 °", std::nullopt},
      {"361 °", std::nullopt},
  };
  for (const auto& c : cases) {
    const std::optional<double> got = BearingOfCaption(QString::fromUtf8(c.caption));
    ASSERT_EQ(got.has_value(), c.bearing.has_value()) << c.caption;
    if (got) {
      EXPECT_NEAR(*got, *c.bearing, 1e-9) << c.caption;
    }
  }
}

}  // namespace
}  // namespace marvento
