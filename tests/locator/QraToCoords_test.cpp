#include "locator/QraToCoords.h"

#include <gtest/gtest.h>

#include <utility>

namespace marvento {
namespace {

// Near the zero meridian the last bits show the decimal constant 0.166666666666666 rather
// than 1/6; positions written to the fields and compared later depend on them.
TEST(QraToCoords, DecodesToTheCentreOfTheSmallField) {
  const struct {
    const char16_t* text;
    double Lg, Br;
    bool exact;
  } cases[] = {
      {u"EK74H", 8.6333333333333, 50.1041666666667, false},
      {u"EK80A", 9.9, 50.1041666666667, false},               // row 7, column 10
      {u"WX71F", -7.9666666666667, 37.0208333333333, false},  // south-west corner
      {u"ZZ80J", -0.09999999999999933, 39.0625, true},
      {u"AA10A", 1.9000000000000008, 40.979166666666664, true},  // units digit 0: column 10
      {u"YM44B", -3.233333333333333, 52.479166666666664, true},
  };
  for (const auto& c : cases) {
    const QString text = QString::fromUtf16(c.text);
    SCOPED_TRACE(text.toStdString());
    double Lg = 0;
    double Br = 0;
    ASSERT_EQ(QraToCoords(text, Lg, Br), QString());
    EXPECT_NEAR(Lg, c.Lg, c.exact ? 0 : 1e-9);
    EXPECT_NEAR(Br, c.Br, c.exact ? 0 : 1e-9);
  }
}

// The small fields run in a spiral H A B / G J C / F E D around J.
TEST(QraToCoords, LettersTheSmallFieldsInASpiral) {
  const char16_t* const rows[3] = {u"HAB", u"GJC", u"FED"};
  double LgJ = 0;
  double BrJ = 0;
  ASSERT_TRUE(QraToCoords(QStringLiteral("EK74J"), LgJ, BrJ).isEmpty());
  for (int row = 0; row < 3; ++row) {
    for (int col = 0; col < 3; ++col) {
      const QString text = QStringLiteral("EK74") + QChar(rows[row][col]);
      double Lg = 0;
      double Br = 0;
      ASSERT_TRUE(QraToCoords(text, Lg, Br).isEmpty()) << text.toStdString();
      EXPECT_NEAR((Lg - LgJ) * 15, col - 1, 1e-9) << text.toStdString();
      EXPECT_NEAR((BrJ - Br) * 24, row - 1, 1e-9) << text.toStdString();
    }
  }
}

TEST(QraToCoords, RefusesWithTheRightTextAndLeavesThePosition) {
  const std::pair<QString, const char*> cases[] = {
      {QStringLiteral("EK81A"), " Falscher Locator !"},  // the pair is above 80
      {QStringLiteral("EK00A"), " Falscher Locator !"},  // cells start at 01
      {QStringLiteral("EK74I"), " KF falsch !"},
      {QStringLiteral("1K74K"), " Falscher Locator !"},  // two faults: the head wins
      {QStringLiteral("ek74H"), " Falscher Locator !"},
      {QStringLiteral("[K74A"), " Falscher Locator !"},
      {QString(), " Falscher Locator !"},
      {QStringLiteral("EK74HH"), " Falscher Locator !"},
  };
  for (const auto& [text, error] : cases) {
    double Lg = 7;
    double Br = 8;
    EXPECT_EQ(QraToCoords(text, Lg, Br), QLatin1String(error)) << text.left(12).toStdString();
    EXPECT_TRUE(Lg == 7 && Br == 8) << text.left(12).toStdString();
  }
}

}  // namespace
}  // namespace marvento
