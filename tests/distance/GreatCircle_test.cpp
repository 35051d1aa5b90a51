#include "distance/GreatCircle.h"

#include "distance/RunError.h"
#include "support/GermanLocale.h"

#include <cmath>

namespace marvento {
namespace {

constexpr const char* kRadius = "6371,00079";

TEST(GreatCircle, CaptionsOfKnownPairs) {
  const struct {
    const char* name;
    double myBr, myLg, fremdBr, fremdLg;
    const char* radius;
    const char* entfernung;
    const char* richtung;
  } cases[] = {
      {"east", 51.5, 8.5, 52.5, 13.4, kRadius, " 353,31 km", "69,74 °"},
      {"antipode over the limit", 45, 10, -45, -170, "6378.137", " 20037,51 km", "-"},
      // Regression: the western side of north must round up to 360, not wrap to 0.
      {"hair west of north", 50, 8, 60, 7.99999, kRadius, " 1111,95 km", "360,0 °"},
      {"shortest distance", 50, 8, 50, 8, kRadius, "   0,28 m", "90,0 °"},
      {"unreadable radius", 51.5, 8.5, 52.5, 13.4, "Erde", "   0,00 m", "-"},
      {"negative radius", 51.5, 8.5, 52.5, 13.4, "-6371,00079", "   -353311,61 m", "-"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const DistanceBearing r =
        SolveDistanceBearing(c.myBr, c.fremdBr, c.myLg, c.fremdLg, QString::fromUtf8(c.radius));
    EXPECT_EQ(r.error, kNoError);
    EXPECT_EQ(r.entfernung.value_or("<none>").toStdString(), c.entfernung);
    EXPECT_EQ(r.richtung.value_or("<none>").toStdString(), c.richtung);
  }
}

TEST(GreatCircle, RunTimeErrorsLeaveCaptionsUnreached) {
  const DistanceBearing huge = SolveDistanceBearing(50, 52.5, 8.5, 13.4, "1E308");
  EXPECT_EQ(huge.error, kOverflow);
  EXPECT_FALSE(huge.entfernung || huge.richtung);
  const DistanceBearing nan = SolveDistanceBearing(std::nan(""), 52.5, 8.5, 13.4, "6371");
  EXPECT_EQ(nan.error, kInvalidCall);
  EXPECT_FALSE(nan.entfernung || nan.richtung);
}

// Reference values from the haversine form and atan2 at full precision, an independent way
// to the same sphere; the rounded constants may move the last digits only.
TEST(GreatCircle, NumbersAgreeWithReferenceTable) {
  constexpr double kKmTolerance = 1e-3;
  constexpr double kDegTolerance = 1e-3;
  const struct {
    double myBr, myLg, fremdBr, fremdLg;
    double km, bearing;
  } cases[] = {
      {51.5, 8.5, 52.5, 13.4, 353.3116, 69.7400},
      {52.5, 13.4, 51.5, 8.5, 353.3116, 253.6023},
      {48.1, 11.6, -33.9, 151.2, 16329.2333, 79.6766},
      {0, 0, 0, 90, 10007.5446, 90.0},
      {0, 0, 45, 0, 5003.7723, 0.0},
      {-33.9, 151.2, 40.7, -74.0, 15991.3761, 65.6642},
      {64.1, -21.9, -54.8, -68.3, 13805.3957, 210.2942},
      {89.9, 0, -89.9, 0.5, 19992.8505, 179.7500},
      // Across the date line both ways: the plain longitude difference must not matter.
      {10, -179.5, 10, 179.5, 109.5056, 270.0868},
      {-10, 179.5, -10, -179.5, 109.5056, 90.0868},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << c.myBr << "," << c.myLg << " -> " << c.fremdBr << "," << c.fremdLg);
    const GreatCircle r = SolveGreatCircle(c.myBr, c.fremdBr, c.myLg, c.fremdLg, 6371.00079);
    ASSERT_EQ(r.error, kNoError);
    ASSERT_TRUE(r.km && r.bearing);
    EXPECT_NEAR(*r.km, c.km, kKmTolerance);
    EXPECT_NEAR(*r.bearing, c.bearing, kDegTolerance);
  }
}

TEST(GreatCircle, CaptionsOfNumbers) {
  const struct {
    double km;
    const char* caption;
  } distances[] = {{0.999994, "   999,99 m"},
                   {1.0, "  1000,0 m"},
                   {9.99994, "  9999,9 m"},
                   {10.0, " 10,00 km"},
                   {-0.5, "   -500,00 m"}};
  for (const auto& d : distances) EXPECT_EQ(DistanceCaption(d.km).toStdString(), d.caption);
  EXPECT_EQ(BearingCaption(std::nullopt).toStdString(), "-");
  EXPECT_EQ(BearingCaption(359.99995).toStdString(), "360,0 °");
  EXPECT_EQ(BearingCaption(12.34567).toStdString(), "12,346 °");
}

}  // namespace
}  // namespace marvento
