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
      // Seconds keep at most four decimals: 59,99964 as a float, a tenth of a millimetre less.
      {13.9999999, "13,9999999", " 13° 59' 59,9996\""},
      // Seconds reach 60 in single precision and carry into minutes and degrees.
      {13.99999999999, "13,99999999999", " 14° 0' 0\""},
      // 59,99996 seconds show as 60 with four decimals and carry as well.
      {13.999999988889, "13,999999988889", " 14° 0' 0\""},
      // The corner of a 10-character locator: 1,278977E-12 seconds of noise read as 0.
      {13.4, "13,4", " 13° 24' 0\""},
      {0.000013, "0,000013", " 0° 0' 0,0468\""},
      {-0.0000001, "-0,0000001", "- 0° 0' 0,0004\""},
      {-180, "-180", "- 180° 0' 0\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(CoordinateText(c.value, true).value_or("<none>").toStdString(), c.decimal);
    EXPECT_EQ(CoordinateText(c.value, false).value_or("<none>").toStdString(), c.degrees);
  }
  EXPECT_FALSE(CoordinateText(1e6, false).has_value());
  // Every written text reads back as its value, to a tenth of a millimetre.
  for (const auto& c : cases) {
    if (std::fabs(c.value) >= 180) continue;  // beyond what the entry takes
    const CoordinateRead r =
        ParseCoordinates(CoordinateText(c.value, false).value().trimmed(), u"0°0'0\"", false);
    ASSERT_TRUE(r.ok) << c.value;
    EXPECT_NEAR(r.Lg, c.value, 0.00005 / 3600) << c.value;
  }
  EXPECT_FALSE(SplitDegrees(std::nan("")).has_value());
}

// An English machine writes a point wherever a German one writes a comma: in the fields
// and in the limit messages, which show coordinates too.
TEST(CoordinateText, DecimalSignOfTheLocale) {
  const struct {
    QLocale::Language language;
    QLocale::Country country;
    const char* decimal;
    const char* degrees;
    const char* limit;
  } cases[] = {
      {QLocale::German, QLocale::Germany, "-13,9999999", "- 13° 59' 59,9996\"",
       "1°1'60\" ( max ±179° 59' 59,99999\" ) "},
      {QLocale::English, QLocale::UnitedStates, "-13.9999999", "- 13° 59' 59.9996\"",
       "1°1'60\" ( max ±179° 59' 59.99999\" ) "},
  };
  for (const auto& c : cases) {
    QLocale::setDefault(QLocale(c.language, c.country));
    EXPECT_EQ(CoordinateText(-13.9999999, true).value_or("<none>").toStdString(), c.decimal);
    EXPECT_EQ(CoordinateText(-13.9999999, false).value_or("<none>").toStdString(), c.degrees);
    EXPECT_EQ(ParseCoordinates(u"1°1'60\"", u"0°0'0\"", false).prompt.toStdString(), c.limit);
    const CoordinateRead back = ParseCoordinates(QString::fromUtf8(c.degrees), u"0°0'0\"", false);
    EXPECT_TRUE(back.ok) << c.degrees;
  }
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

}  // namespace
}  // namespace marvento
