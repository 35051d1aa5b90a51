#include "distance/Coordinates.h"

#include "support/GermanLocale.h"

#include <cmath>

namespace marvento {
namespace {

constexpr const char* kHint = " ( wie x°x'x\" ) ";
constexpr const char* kLgLimit = " ( max ±179° 59' 59,99999\" ) ";
constexpr const char* kDecLimit = " ( max ±179,9999999°\" ) ";

// Each text is read as a longitude, with a good latitude beside it. `value` when read;
// when refused, the prompt is the text (degrees form only) followed by `suffix`.
TEST(ParseCoordinates, Longitudes) {
  const struct {
    bool gradDezimal;
    const char* text;
    double value;
    const char* suffix;
  } cases[] = {
      {false, "13°22'30\"", 13.375, nullptr},
      {false, "-13° 22' 30,5\"", -13.3751388888889, nullptr},
      {false, "-0°30'0\"", -0.5, nullptr},
      {false, "13°22'\"", 13.3666666666667, nullptr},
      {false, "13° 22,5' 30\"", 13.375, nullptr},
      {false, "13° 22.5' 30\"", 13.3833333333333, nullptr},
      {false, "179° 59' 59,99999\"", 179.999999997222, nullptr},
      {false, "13°-5'0\"", 12.9166666666667, nullptr},
      {false, "-180°0'0\"", 0, kLgLimit},
      {false, "13°59.999'0\"", 13.9999833333333, nullptr},
      {false, "13°59.9995'0\"", 0, kLgLimit},
      {false, "13°22'60\"", 0, kLgLimit},
      {false, "13", 0, kHint},
      {false, "13°22'30", 0, kHint},
      // The minute mark in front of the degree mark: told as a format fault.
      {false, "13'22°30\"", 0, kHint},
      {true, "13,4", 13.4, nullptr},
      {true, "13° 24' 0\"", 13, nullptr},
      {true, "abc", 0, nullptr},
      {true, "179,9999999", 179.9999999, nullptr},
      {true, "-180", 0, kDecLimit},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const QString text = QString::fromUtf8(c.text);
    const CoordinateRead r =
        ParseCoordinates(text, c.gradDezimal ? u"0" : u"0°0'0\"", c.gradDezimal);
    ASSERT_EQ(r.ok, c.suffix == nullptr) << r.prompt.toStdString();
    if (r.ok) {
      EXPECT_NEAR(r.Lg, c.value, 1e-12);
    } else {
      EXPECT_EQ(r.prompt, (c.gradDezimal ? QString() : text) + QString::fromUtf8(c.suffix));
    }
  }
}

TEST(ParseCoordinates, LatitudeLimitsAndOrder) {
  const struct {
    const char* lg;
    const char* br;
    bool gradDezimal;
    double brValue;
    const char* prompt;  // nullptr: read
  } cases[] = {
      {"13°0'0\"", "89° 59' 59,99999\"", false, 89.9999999972222, nullptr},
      {"13°0'0\"", "90°0'0\"", false, 0, "90°0'0\" ( max ±89° 59' 59,99999\" ) "},
      {"13,4", "90", true, 0, " ( max ±89,9999999°\" ) "},
      // Both bad: only the longitude is reported.
      {"200", "100", true, 0, kDecLimit},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.lg) + " / " + c.br);
    const CoordinateRead r =
        ParseCoordinates(QString::fromUtf8(c.lg), QString::fromUtf8(c.br), c.gradDezimal);
    ASSERT_EQ(r.ok, c.prompt == nullptr);
    if (r.ok) {
      EXPECT_NEAR(r.Br, c.brValue, 1e-12);
    } else {
      EXPECT_EQ(r.prompt.toStdString(), c.prompt);
    }
  }
}

TEST(CoordinateText, WrittenInBothForms) {
  const struct {
    double value;
    const char* decimal;
    const char* degrees;
  } cases[] = {
      {13.375, "13,375", " 13° 22' 30\""},
      {52.520833333333336, "52,5208333333333", " 52° 31' 15\""},
      {0, "0", " 0° 0' 0\""},
      {-0.5, "-0,5", "- 0° 30' 0\""},
      {13.9999999, "13,9999999", " 13° 59' 59,99964\""},
      // Seconds reach 60 in single precision and carry into minutes and degrees.
      {13.99999999999, "13,99999999999", " 14° 0' 0\""},
      {-180, "-180", "- 180° 0' 0\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(CoordinateText(c.value, true).value_or("<none>").toStdString(), c.decimal);
    EXPECT_EQ(CoordinateText(c.value, false).value_or("<none>").toStdString(), c.degrees);
  }
  EXPECT_FALSE(CoordinateText(1e6, false).has_value());
  EXPECT_FALSE(SplitDegrees(std::nan("")).has_value());
}

}  // namespace
}  // namespace marvento
