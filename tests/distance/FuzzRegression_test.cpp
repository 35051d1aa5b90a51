// Faults found by fuzzing the coordinate entry and display.
#include "distance/Coordinates.h"
#include "support/GermanLocale.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

// Seconds just below 60 in single precision were shown as "60": the field held
// " 1° 59' 60"", which the coordinate entry then refused.
TEST(CoordinatesFuzzRegression, SecondsShownAsSixtyCarryIntoTheMinutes) {
  const struct {
    double value;
    const char16_t* text;
  } cases[] = {
      {1.99999999945, u" 2° 0' 0\""},
      {52.4999999989, u" 52° 30' 0\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    const std::optional<QString> text = CoordinateText(c.value, false);
    ASSERT_TRUE(text);
    EXPECT_EQ(*text, QString::fromUtf16(c.text));
    const CoordinateRead back = ParseCoordinates(text->trimmed(), text->trimmed(), false);
    EXPECT_TRUE(back.ok) << back.prompt.toStdString();
    EXPECT_NEAR(back.Lg, c.value, 1e-6);
  }
}

}  // namespace
}  // namespace marvento
