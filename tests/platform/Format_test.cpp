#include "platform/Format.h"

#include <QLocale>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace marvento {
namespace {

class FormatTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_saved = QLocale();
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  }
  void TearDown() override { QLocale::setDefault(m_saved); }

 private:
  QLocale m_saved;
};

struct PatternCase {
  double value;
  const char* pattern;
  const char* expected;
};

TEST_F(FormatTest, PatternsOfTheProgram) {
  const PatternCase cases[] = {
      {353.3149, "0.00", "353,31"},
      {2.675, "0.00", "2,68"},  // rounded on the decimal value, not the binary one
      {5559.74, "0.0", "5559,7"},
      {555.9749, "0.00", "555,97"},
      {0, "0.00", "0,00"},
      {19.4, "00", "19"},
      {19.6, "00", "20"},
      {5, "00", "05"},
      {59.8, "00", "60"},
      {123519, "00", "123519"},
      {8, "#0", "8"},
      {0, "#0", "0"},
      {11, "##0", "11"},
      {0, "###", ""},
      {65, "###", "65"},
      {1234, "###", "1234"},
      {0, "######", ""},
      {4800, "######", "4800"},
      {115200, "######", "115200"},
      {249.74, "##0.0#", "249,74"},
      {73.602, "##0.0#", "73,6"},
      {259.677, "##0.0#", "259,68"},
      {360, "##0.0#", "360,0"},
      {69.74, "##0.0##", "69,74"},
      {253.6024, "##0.0##", "253,602"},
      {359.99999, "##0.0##", "360,0"},
      {0.0000026, "##0.0##", "0,0"},
      {2.28, "#0.0##", "2,28"},
      {0, "#0.0##", "0,0"},
      {59.9994, "#0.0##", "59,999"},
      {59.9996, "#0.0##", "60,0"},
      {545.4, "###0.0#", "545,4"},
      {-12.3, "###0.0#", "-12,3"},
      {12.5, "###0.0##", "12,5"},
      {1234.125, "###0.0##", "1234,125"},
      {0.3, "###0.0##", "0,3"},
      {545.42, "####0.0#", "545,42"},
      {0, "####0.0#", "0,0"},
      {6367.6539915, "###0.0######", "6367,6539915"},
      {6384, "###0.0######", "6384,0"},
      {6356.7747, "###0.0######", "6356,7747"},
      {1, "######0.00###", "1,00"},
      {7.64575, "######0.00###", "7,64575"},
      {1.414213562, "######0.00###", "1,41421"},
      {-2.5, "0", "-3"},            // half away from zero
      {-0.004, "0.00", "0,00"},     // no minus sign in front of a zero
      {0.995, "0.00", "1,00"},      // the carry runs into the whole part
      {9.9996, "#0.0##", "10,0"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Format(c.value, QString::fromLatin1(c.pattern)), QString::fromUtf8(c.expected))
        << c.value << " with " << c.pattern;
  }
}

TEST_F(FormatTest, FloatsRoundOnSevenSignificantDigits) {
  EXPECT_EQ(Format(545.4f, u"###0.0#"), QStringLiteral("545,4"));
  EXPECT_EQ(Format(1.41421354f, u"######0.00###"), QStringLiteral("1,41421"));
  EXPECT_EQ(Format(0.1f), QStringLiteral("0,1"));
  EXPECT_EQ(Format(59.99964f), QStringLiteral("59,99964"));
  EXPECT_EQ(Format(30.0f), QStringLiteral("30"));
}

TEST_F(FormatTest, GeneralFormWithoutPattern) {
  const std::pair<double, const char*> cases[] = {
      {13.375, "13,375"},
      {52.520833333333336, "52,5208333333333"},
      {11.516666666666667, "11,5166666666667"},
      {-13.4, "-13,4"},
      {0, "0"},
      {4800, "4800"},
      {545.4, "545,4"},
      {13.99999999999, "13,99999999999"},
      {1.3e-12, "1,3E-12"},
      {0.0001, "0,0001"},
      {0.00001, "1E-05"},
      {1e15, "1E+15"},
      {123456789012345.0, "123456789012345"},
  };
  for (const auto& [value, expected] : cases) {
    EXPECT_EQ(Format(value), QString::fromLatin1(expected)) << value;
  }
}

TEST_F(FormatTest, DecimalSignFollowsTheLocale) {
  QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
  EXPECT_EQ(Format(353.3149, u"0.00"), QStringLiteral("353.31"));
  EXPECT_EQ(Format(13.375), QStringLiteral("13.375"));
}

TEST_F(FormatTest, NonFiniteAndHugeValuesGiveAText) {
  const double specials[] = {std::nan(""), std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(), 1e308, -1e308,
                             std::numeric_limits<double>::denorm_min()};
  const char* patterns[] = {"", "0.0", "0.00", "00", "#0", "##0", "###", "######", "##0.0#",
                            "##0.0##", "#0.0##", "###0.0#", "###0.0##", "####0.0#",
                            "###0.0######", "######0.00###"};
  for (double v : specials) {
    for (const char* p : patterns) {
      const QString text = Format(v, QString::fromLatin1(p));
      if (std::isnan(v)) {
        EXPECT_EQ(text, QStringLiteral("NaN"));
      } else if (std::isinf(v)) {
        EXPECT_EQ(text, v > 0 ? QStringLiteral("Inf") : QStringLiteral("-Inf"));
      } else if (std::fabs(v) > 1) {
        EXPECT_GE(text.size(), *p ? 309 : 6) << p;
      }
    }
  }
  EXPECT_EQ(Format(1e308, u"0").size(), 309);
  EXPECT_EQ(Format(std::numeric_limits<double>::denorm_min(), u"0.00"), QStringLiteral("0,00"));
}

}  // namespace
}  // namespace marvento
