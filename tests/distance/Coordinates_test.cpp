#include "distance/Coordinates.h"

#include "distance/GermanLocale.h"

#include <cmath>

namespace marvento {
namespace {

constexpr const char* kHint = " ( wie x°x'x\" ) ";
constexpr const char* kLgLimit = " ( max ±179° 59' 59,99999\" ) ";
constexpr const char* kBrLimit = " ( max ±89° 59' 59,99999\" ) ";

struct ReadCase {
  const char* text;
  bool ok;
  double value;        // when ok
  const char* suffix;  // when refused: the prompt is the text followed by this
};

// Each text is read as a longitude, with a good latitude beside it.
void checkLongitudes(const std::vector<ReadCase>& cases, bool gradDezimal) {
  for (const ReadCase& c : cases) {
    SCOPED_TRACE(c.text);
    const QString text = QString::fromUtf8(c.text);
    const QString latitude = gradDezimal ? QStringLiteral("0") : QStringLiteral("0°0'0\"");
    const CoordinateRead r = ParseCoordinates(text, latitude, gradDezimal);
    ASSERT_EQ(r.ok, c.ok) << r.prompt.toStdString();
    if (c.ok) {
      EXPECT_NEAR(r.Lg, c.value, 1e-12);
    } else {
      const QString expected =
          gradDezimal ? QString::fromUtf8(c.suffix) : text + QString::fromUtf8(c.suffix);
      EXPECT_EQ(r.prompt.toStdString(), expected.toStdString());
    }
  }
}

TEST(ParseCoordinates, DegreesMinutesSecondsAsLongitude) {
  const std::vector<ReadCase> cases = {
      {"13°22'30\"", true, 13.375, nullptr},
      {"-13° 22' 30,5\"", true, -13.3751388888889, nullptr},
      {"+13°22'30\"", true, 13.375, nullptr},
      {"- 8° 30' 0\"", true, -8.5, nullptr},
      {"-0°30'0\"", true, -0.5, nullptr},
      {"13°22'\"", true, 13.3666666666667, nullptr},
      {"13°'30\"", true, 13.0083333333333, nullptr},
      {"13°'\"", true, 13, nullptr},
      {"13° 22,5' 30\"", true, 13.375, nullptr},
      {"13° 22.5' 30\"", true, 13.3833333333333, nullptr},
      {"8-3°0'0\"", true, 8, nullptr},
      {"179° 59' 59,99999\"", true, 179.999999997222, nullptr},
      {" 13° 22' 1,3E-12\"", true, 13.3666666666667, nullptr},
      {"13°-5'0\"", true, 12.9166666666667, nullptr},
      {"179° 59.999' 59.99999\"", false, 0, kLgLimit},
      {"180°0'0\"", false, 0, kLgLimit},
      {"-180°0'0\"", false, 0, kLgLimit},
      {"13°60'0\"", false, 0, kLgLimit},
      {"13°59.9995'0\"", false, 0, kLgLimit},
      {"13°59.999'0\"", true, 13.9999833333333, nullptr},
      {"13°22'60\"", false, 0, kLgLimit},
      {"13°22'59,99999\"", true, 13.3833333305556, nullptr},
      {"1E999°0'0\"", false, 0, kLgLimit},
      {"13°-99999'0\"", false, 0, kLgLimit},
      {"13°0'-1E999\"", false, 0, kLgLimit},
      {"13", false, 0, kHint},
      {"°22'30\"", false, 0, kHint},
      {"13°22", false, 0, kHint},
      {"13°22'30", false, 0, kHint},
      {"13°22'30\" x", false, 0, kHint},
      {"'13°22\"", false, 0, kHint},
      // The minute mark in front of the degree mark: told as a format fault.
      {"13'22°30\"", false, 0, kHint},
      {"", false, 0, kHint},
  };
  checkLongitudes(cases, false);
}

TEST(ParseCoordinates, DecimalAsLongitude) {
  const std::vector<ReadCase> cases = {
      {"13,4", true, 13.4, nullptr},
      {"13.4", true, 13.4, nullptr},
      {"+13,4", true, 13.4, nullptr},
      {"-13,4", true, -13.4, nullptr},
      {"13,4°", true, 13.4, nullptr},
      {"13° 24' 0\"", true, 13, nullptr},
      {"abc", true, 0, nullptr},
      {"", true, 0, nullptr},
      {"179,9999999", true, 179.9999999, nullptr},
      {"-179,999999", true, -179.999999, nullptr},
      {"180", false, 0, " ( max ±179,9999999°\" ) "},
      {"-180", false, 0, " ( max ±179,9999999°\" ) "},
      {"1E999", false, 0, " ( max ±179,9999999°\" ) "},
  };
  checkLongitudes(cases, true);
}

TEST(ParseCoordinates, LatitudeLimitsAndOrder) {
  struct Case {
    const char* lg;
    const char* br;
    bool gradDezimal;
    bool ok;
    double br_value;
    const char* prompt;
  } cases[] = {
      {"13°0'0\"", "13°59.9995'0\"", false, true, 13.9999916666667, nullptr},
      {"13°0'0\"", "89° 59' 59,99999\"", false, true, 89.9999999972222, nullptr},
      {"13°0'0\"", "90°0'0\"", false, false, 0, "90°0'0\" ( max ±89° 59' 59,99999\" ) "},
      {"13°0'0\"", "89° 59.99999' 59.99999\"", false, false, 0,
       "89° 59.99999' 59.99999\" ( max ±89° 59' 59,99999\" ) "},
      {"13°0'0\"", "52,5", false, false, 0, "52,5 ( wie x°x'x\" ) "},
      {"13,4", "90", true, false, 0, " ( max ±89,9999999°\" ) "},
      {"13,4", "-89,99", true, true, -89.99, nullptr},
      // Both bad: only the longitude is reported.
      {"200", "100", true, false, 0, " ( max ±179,9999999°\" ) "},
      {"x", "y", false, false, 0, "x ( wie x°x'x\" ) "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.lg) + " / " + c.br);
    const CoordinateRead r =
        ParseCoordinates(QString::fromUtf8(c.lg), QString::fromUtf8(c.br), c.gradDezimal);
    ASSERT_EQ(r.ok, c.ok);
    if (c.ok) {
      EXPECT_NEAR(r.Br, c.br_value, 1e-12);
    } else {
      EXPECT_EQ(r.prompt.toStdString(), c.prompt);
    }
  }
}

using CoordinateTextTest = GermanLocaleTest;

TEST_F(CoordinateTextTest, WrittenInBothForms) {
  struct Case {
    double value;
    const char* decimal;
    const char* degrees;
  } cases[] = {
      {13.375, "13,375", " 13° 22' 30\""},
      {52.520833333333336, "52,5208333333333", " 52° 31' 15\""},
      {-13.375, "-13,375", "- 13° 22' 30\""},
      {0.5, "0,5", " 0° 30' 0\""},
      {-0.5, "-0,5", "- 0° 30' 0\""},
      {13.9999999, "13,9999999", " 13° 59' 59,99964\""},
      // Seconds reach 60 in single precision and carry into minutes and degrees.
      {13.99999999999, "13,99999999999", " 14° 0' 0\""},
      {0, "0", " 0° 0' 0\""},
      {-180, "-180", "- 180° 0' 0\""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(CoordinateText(c.value, true).value_or("<none>").toStdString(), c.decimal);
    EXPECT_EQ(CoordinateText(c.value, false).value_or("<none>").toStdString(), c.degrees);
  }
}

TEST_F(CoordinateTextTest, TinySecondsUseTheExponentAndReadBack) {
  // A 10-character locator's 13.4 lies a hair above the whole minute.
  const double lg = 12 + 16.0 / 12 + 8.0 / 120;
  const QString text = CoordinateText(lg, false).value();
  EXPECT_TRUE(text.startsWith(QStringLiteral(" 13° 2")));
  EXPECT_TRUE(text.contains(u'E')) << text.toStdString();
  const CoordinateRead back = ParseCoordinates(text.trimmed(), u"0° 0' 0\"", false);
  ASSERT_TRUE(back.ok) << back.prompt.toStdString();
  EXPECT_NEAR(back.Lg, lg, 1e-9);
}

TEST(SplitDegrees, PartsAndCarries) {
  struct Case {
    double a;
    int degrees;
    int minutes;
    float seconds;
  } cases[] = {
      {13.375, 13, 22, 30.0f},
      {179.999999997, 179, 59, 59.99999f},
      {13.99999999999, 14, 0, 0.0f},
      {59.999999999999, 60, 0, 0.0f},
      {0, 0, 0, 0.0f},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.a);
    const auto dms = SplitDegrees(c.a);
    ASSERT_TRUE(dms.has_value());
    EXPECT_EQ(dms->degrees, c.degrees);
    EXPECT_EQ(dms->minutes, c.minutes);
    EXPECT_NEAR(dms->seconds, c.seconds, 2e-5f);
  }
  EXPECT_FALSE(SplitDegrees(40000).has_value());
  EXPECT_FALSE(SplitDegrees(std::nan("")).has_value());
  EXPECT_FALSE(CoordinateText(1e6, false).has_value());
}

}  // namespace
}  // namespace marvento
