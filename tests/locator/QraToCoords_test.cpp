#include "locator/QraToCoords.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

// Near the zero meridian the last bits show the decimal constant 0.166666666666666 rather
// than 1/6; positions written to the fields and compared later depend on them. A refusal
// leaves the position as it was.
TEST(QraToCoords, DecodesToTheCentreOfTheSmallFieldOrRefuses) {
  const char* const wrong = " Falscher Locator !";
  const struct {
    const char16_t* text;
    const char* error;  // nullptr: decoded
    double Lg, Br;
    bool exact;
  } cases[] = {
      {u"EK80A", nullptr, 9.9, 50.1041666666667, false},               // row 7, column 10
      {u"WX71F", nullptr, -7.9666666666667, 37.0208333333333, false},  // south-west corner
      {u"ZZ80J", nullptr, -0.09999999999999933, 39.0625, true},
      // A units digit 0 is column 10 of the row before.
      {u"AA10A", nullptr, 1.9000000000000008, 40.979166666666664, true},
      {u"YM44B", nullptr, -3.233333333333333, 52.479166666666664, true},
      {u"EK81A", wrong, 7, 8, true},  // the pair is above 80
      {u"EK00A", wrong, 7, 8, true},  // cells start at 01
      {u"EK74I", " KF falsch !", 7, 8, true},
      {u"1K74K", wrong, 7, 8, true},  // two faults: the head wins
      {u"[K74A", wrong, 7, 8, true},
      {u"", wrong, 7, 8, true},
  };
  for (const auto& c : cases) {
    const QString text = QString::fromUtf16(c.text);
    SCOPED_TRACE(text.toStdString());
    double Lg = 7;
    double Br = 8;
    EXPECT_EQ(QraToCoords(text, Lg, Br), c.error ? QString::fromLatin1(c.error) : QString());
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

}  // namespace
}  // namespace marvento
