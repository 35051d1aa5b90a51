#include "platform/Format.h"

#include "support/GermanLocale.h"

#include <cmath>
#include <limits>

namespace marvento {
namespace {

TEST(Format, PatternsOfTheProgram) {
  const struct {
    double value;
    const char* pattern;
    const char* expected;
  } cases[] = {
      {2.675, "0.00", "2,68"},  // rounded on the decimal value, not the binary one
      {5, "00", "05"},
      {0, "#0", "0"},
      {0, "###", ""},
      {73.602, "##0.0#", "73,6"},
      {253.6024, "##0.0##", "253,602"},
      {359.99999, "##0.0##", "360,0"},
      {1.414213562, "######0.00###", "1,41421"},
      {-2.5, "0", "-3"},         // half away from zero
      {-0.004, "0.00", "0,00"},  // no minus sign in front of a zero
      {0.995, "0.00", "1,00"},   // the carry runs into the whole part
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Format(c.value, QString::fromLatin1(c.pattern)), QString::fromUtf8(c.expected))
        << c.value << " with " << c.pattern;
  }
  // Single precision rounds on seven significant digits.
  EXPECT_EQ(Format(1.41421354f, u"######0.00###"), QStringLiteral("1,41421"));
  EXPECT_EQ(Format(59.99964f), QStringLiteral("59,99964"));
}

TEST(Format, GeneralFormWithoutPattern) {
  const std::pair<double, const char*> cases[] = {
      {52.520833333333336, "52,5208333333333"},
      {0, "0"},
      {13.99999999999, "13,99999999999"},
      {0.0001, "0,0001"},
      {0.00001, "1E-05"},
      {1e15, "1E+15"},
      {123456789012345.0, "123456789012345"},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(Format(value), QString::fromLatin1(expected)) << value;
  }
}

// Coordinates are never written in the exponent form.
TEST(Format, PlainAndUpToDecimals) {
  const struct {
    double value;
    const char* plain;
    const char* fourPlaces;
  } cases[] = {
      {0.00001, "0,00001", "0"},
      {-0.0000123456789012345, "-0,0000123456789012345", "0"},
      {1.278977e-12, "0,000000000001278977", "0"},
      {0.0001, "0,0001", "0,0001"},
      {52.520833333333336, "52,5208333333333", "52,5208"},
      {59.99996, "59,99996", "60"},
      {2.5, "2,5", "2,5"},
      {-0.00005, "-0,00005", "-0,0001"},  // half away from zero
  };
  for (const auto& c : cases) {
    EXPECT_EQ(FormatPlain(c.value), QString::fromLatin1(c.plain)) << c.value;
    EXPECT_EQ(FormatDecimals(c.value, 4), QString::fromLatin1(c.fourPlaces)) << c.value;
  }
  // Single precision rounds on seven significant digits first: 59,99964 as a float.
  EXPECT_EQ(FormatDecimals(59.99964f, 4), QStringLiteral("59,9996"));
  EXPECT_EQ(FormatDecimals(1.278977e-12f, 4), QStringLiteral("0"));
}

TEST(Format, DecimalSignFollowsTheLocale) {
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  EXPECT_EQ(Format(353.3149, u"0.00"), QStringLiteral("353.31"));
  EXPECT_EQ(Format(13.375), QStringLiteral("13.375"));
  EXPECT_EQ(FormatPlain(0.000013), QStringLiteral("0.000013"));
  EXPECT_EQ(FormatDecimals(24.5f, 4), QStringLiteral("24.5"));
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

}  // namespace
}  // namespace marvento
