#include "locator/LocatorToCoords.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

using Status = LocatorDecode::Status;

// Positions to 1e-9, or to the last bit where the encoder's choice of cell at an edge depends
// on it: the decimal half-cell constants and the order of the sums decide those bits.
TEST(DecodeLocator, DecodesCentresAndCorners) {
  const struct {
    const char* text;
    Status status;
    double Lg, Br;  // for BadHead not looked at
    bool exact;
  } cases[] = {
      {"JJ00AA", LocatorDecode::Ok, 0.0416666666666667, 0.0208333333333334, true},
      {"JO62QM84AT", LocatorDecode::Ok, 13.4, 52.519965277777779, true},
      {"AA00AA", LocatorDecode::Ok, -179.958333333333, -89.979166666667, false},
      {"AA00AA00AA", LocatorDecode::Ok, -180, -90, true},
      // A missing position in 7 to 10 adds nothing.
      {"JO62QM5", LocatorDecode::Ok, 13.375, 52.5, false},
      {"JO62QM5Z", LocatorDecode::BadTail, 13.375, 52.520833333333, false},
      {"SA00AA", LocatorDecode::BadHead, 0, 0, false},
      {"JO62YA", LocatorDecode::BadHead, 0, 0, false},
      // Small letters are the caller's to raise; here they are refused.
      {"jo62qm", LocatorDecode::BadHead, 0, 0, false},
      // Positions behind the end count as empty and fail in 1 to 6.
      {"JO62Q", LocatorDecode::BadHead, 0, 0, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const LocatorDecode d = DecodeLocator(QString::fromLatin1(c.text));
    EXPECT_EQ(d.status, c.status);
    EXPECT_EQ(d.shown, QLatin1String(c.text));
    if (c.status != LocatorDecode::BadHead) {
      EXPECT_NEAR(d.Lg, c.Lg, c.exact ? 0 : 1e-9);
      EXPECT_NEAR(d.Br, c.Br, c.exact ? 0 : 1e-9);
    }
  }
}

}  // namespace
}  // namespace marvento
