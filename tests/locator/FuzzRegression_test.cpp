// Faults found by fuzzing the locator conversions.
#include "locator/CoordsToLocator.h"
#include "locator/LocatorToCoords.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

// The decoded corner of a 7- to 9-character locator lies a hair below its cell edges; the
// 10-character form took some characters from above the edge and some from below it, and
// named a cell a whole row or column away ("JO62QM84A" gave "JO62QM84AX").
TEST(LocatorFuzzRegression, CornerBelowAnEdgeStaysInOneCell) {
  const struct {
    const char* text;
    const char* expected;
  } cases[] = {
      {"JO62QM84A", "JO62QM83AX"},
      {"BB35LF84OR", "BB35LF84NQ"},
      {"JO62QM8", "JO62QM80AA"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const LocatorDecode d = DecodeLocator(QString::fromLatin1(c.text));
    ASSERT_EQ(d.status, LocatorDecode::Ok);
    EXPECT_EQ(CoordsToLocator10(d.Lg, d.Br), QLatin1String(c.expected));
  }
}

}  // namespace
}  // namespace marvento
