#include "distance/GreatCircle.h"

#include "distance/RunError.h"
#include "support/GermanLocale.h"

#include <limits>

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
      {"way back is not plus 180", 52.5, 13.4, 51.5, 8.5, kRadius, " 353,31 km", "253,602 °"},
      {"three decimals", 48.1, 11.6, -33.9, 151.2, kRadius, " 16329,23 km", "79,677 °"},
      {"below 10 km, due north", 50, 8, 50.05, 8, kRadius, "  5559,7 m", "0,0 °"},
      {"below 1 km, clamped", 50, 8, 50.005, 8, kRadius, "   555,97 m", "0,0 °"},
      {"antipode over the limit", 45, 10, -45, -170, "6378.137", " 20037,51 km", "-"},
      {"limit short of the antipode", 0.1, 0, 0.1, 179.9, "6384", " 20031,01 km", "-"},
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
  const struct {
    double myBr;
    const char* radius;
    int error;
  } cases[] = {
      {50, "1E999", kOverflow},
      {50, "1E308", kOverflow},
      {std::numeric_limits<double>::quiet_NaN(), "6371", kInvalidCall},
  };
  for (const auto& c : cases) {
    const DistanceBearing r = SolveDistanceBearing(c.myBr, 52.5, 8.5, 13.4, c.radius);
    EXPECT_EQ(r.error, c.error) << c.radius;
    EXPECT_FALSE(r.entfernung.has_value() || r.richtung.has_value()) << c.radius;
  }
}

}  // namespace
}  // namespace marvento
