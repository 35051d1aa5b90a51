#include "platform/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace marvento {
namespace {

struct ValCase {
  const char16_t* text;
  double expected;
};

TEST(Val, ReadsTheNumberAtTheStartOfAText) {
  const ValCase cases[] = {
      {u"", 0},
      {u"4800,N,8,1", 4800},
      {u"  - 8", -8},       // blanks between sign and digits
      {u"\t12\r\n3", 123},  // tabs and line ends count as blanks, also inside the digits
      {u".5", 0.5},
      {u"8-3", 8},  // a sign after the digits ends the number
      {u"1.5E-12", 1.5e-12},
      {u"1e", 1},       // an exponent without digits is no exponent
      {u"1.2.3", 1.2},  // the second point ends the number
      {u"1E-400", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(QString::fromUtf16(c.text).toStdString());
    EXPECT_DOUBLE_EQ(Val(QString::fromUtf16(c.text)), c.expected);
  }
}

TEST(IsNumeric, AcceptsNumbersOnly) {
  const std::pair<const char*, bool> cases[] = {
      {"123519.00", true}, {"123519", true}, {" 12 ", true},   {"-1,5", true}, {"1e5", true},
      {"", false},         {"  ", false},    {"12:35", false}, {"abc", false}, {"1e", false},
      {".", false},        {"1.2.3", false}, {"+", false},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(IsNumeric(QString::fromLatin1(text)), expected) << text;
  }
}

TEST(Rounding, IntegerConversionsReportOverflow) {
  EXPECT_EQ(ToInt16(32767.4), 32767);
  EXPECT_FALSE(ToInt16(32767.5).has_value());
  EXPECT_FALSE(ToInt16(-32769).has_value());
  EXPECT_EQ(ToInt32(2147483647.0), 2147483647);
  EXPECT_FALSE(ToInt32(2147483648.0).has_value());
  EXPECT_FALSE(ToInt32(std::nan("")).has_value());
  EXPECT_FALSE(ToInt16(std::numeric_limits<double>::infinity()).has_value());
}

}  // namespace
}  // namespace marvento
