#include "locator/QraToCoords.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

namespace marvento {
namespace {

struct QraCase {
  const char16_t* text;
  double Lg;
  double Br;
};

TEST(QraToCoords, DecodesToTheCentreOfTheSmallField) {
  const QraCase cases[] = {
      {u"EK74H", 8.6333333333333, 50.1041666666667},
      {u"EK74J", 8.7, 50.0625},
      {u"AA10A", 1.9, 40.9791666666667},  // units digit 0: column 10 of the row before
      {u"YM44B", -3.2333333333333, 52.4791666666667},
      {u"ZZ80J", -0.1, 39.0625},
      {u"EK80A", 9.9, 50.1041666666667},  // row 7, column 10
      {u"AA01H", 0.0333333333333, 40.9791666666667},
      {u"VW80D", 43.9666666666667, 62.0208333333333},  // north-east corner of the grid
      {u"WX71F", -7.9666666666667, 37.0208333333333},  // south-west corner
  };
  for (const auto& c : cases) {
    const QString text = QString::fromUtf16(c.text);
    SCOPED_TRACE(text.toStdString());
    double Lg = 0;
    double Br = 0;
    EXPECT_EQ(QraToCoords(text, Lg, Br), QString());
    EXPECT_NEAR(Lg, c.Lg, 1e-9);
    EXPECT_NEAR(Br, c.Br, 1e-9);
  }
}

// Near the zero meridian the last bits show the decimal constant 0.166666666666666 rather
// than 1/6; positions written to the fields and compared later depend on them.
TEST(QraToCoords, KeepsTheLastBitsOfTheLongitude) {
  const QraCase cases[] = {
      {u"ZZ80J", -0.09999999999999933, 39.0625},
      {u"AA10A", 1.9000000000000008, 40.979166666666664},
      {u"YM44B", -3.233333333333333, 52.479166666666664},
  };
  for (const auto& c : cases) {
    const QString text = QString::fromUtf16(c.text);
    SCOPED_TRACE(text.toStdString());
    double Lg = 0;
    double Br = 0;
    ASSERT_EQ(QraToCoords(text, Lg, Br), QString());
    EXPECT_EQ(Lg, c.Lg);
    EXPECT_EQ(Br, c.Br);
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
      SCOPED_TRACE(text.toStdString());
      double Lg = 0;
      double Br = 0;
      ASSERT_TRUE(QraToCoords(text, Lg, Br).isEmpty());
      EXPECT_NEAR((Lg - LgJ) * 15, col - 1, 1e-9);
      EXPECT_NEAR((BrJ - Br) * 24, row - 1, 1e-9);
    }
  }
}

TEST(QraToCoords, RefusesWithTheRightTextAndLeavesThePosition) {
  struct BadCase {
    QString text;
    const char* error;
  };
  const BadCase cases[] = {
      {QStringLiteral("EK81A"), " Falscher Locator !"},  // the pair is above 80
      {QStringLiteral("EK00A"), " Falscher Locator !"},  // cells start at 01
      {QStringLiteral("EK74I"), " KF falsch !"},
      {QStringLiteral("EK74K"), " KF falsch !"},
      {QStringLiteral("EK74Z"), " KF falsch !"},
      {QStringLiteral("1K74A"), " Falscher Locator !"},
      {QStringLiteral("E174A"), " Falscher Locator !"},
      {QStringLiteral("EK7AA"), " Falscher Locator !"},
      {QStringLiteral("EK741"), " Falscher Locator !"},  // a digit in place of the field
      {QStringLiteral("1K74K"), " Falscher Locator !"},  // two faults: the head wins
      {QStringLiteral("EK74h"), " Falscher Locator !"},
      {QStringLiteral("ek74H"), " Falscher Locator !"},
      {QStringLiteral("[K74A"), " Falscher Locator !"},
      {QStringLiteral("E@74A"), " Falscher Locator !"},
      {QString(), " Falscher Locator !"},
      {QStringLiteral("EK74"), " Falscher Locator !"},
      {QStringLiteral("EK74HH"), " Falscher Locator !"},
      {QString(10000, QChar(u'A')), " Falscher Locator !"},
      {QString::fromUtf16(u"EK74\0", 5), " Falscher Locator !"},
      {QString::fromUtf16(u"\u00C4K74A"), " Falscher Locator !"},
      {QString::fromUtf16(u"EK7\u00B94A").left(5), " Falscher Locator !"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.left(12).toStdString());
    double Lg = 7;
    double Br = 8;
    EXPECT_EQ(QraToCoords(c.text, Lg, Br), QLatin1String(c.error));
    EXPECT_EQ(Lg, 7);
    EXPECT_EQ(Br, 8);
  }
}

// Every accepted locator lies in the grid from 8 degrees west to 44 east and from 37 to 63
// north, and no two name the same small field.
TEST(QraToCoords, KeepsEveryFieldInsideTheGrid) {
  const QString kf = QStringLiteral("ABCDEFGHJ");
  std::set<std::pair<qint64, qint64>> seen;
  int accepted = 0;
  for (char16_t a = u'A'; a <= u'Z'; ++a) {
    for (char16_t b = u'A'; b <= u'Z'; ++b) {
      for (int cell = 1; cell <= 80; ++cell) {
        for (QChar k : kf) {
          const QString text =
              QString(QChar(a)) + QChar(b) + QString::number(cell).rightJustified(2, u'0') + k;
          double Lg = 0;
          double Br = 0;
          if (!QraToCoords(text, Lg, Br).isEmpty()) {
            ADD_FAILURE() << text.toStdString();
            continue;
          }
          ++accepted;
          EXPECT_TRUE(Lg > -8 && Lg < 44 && Br > 37 && Br < 63) << text.toStdString();
          seen.insert({qRound64(Lg * 30 * 1000), qRound64(Br * 48 * 1000)});
        }
      }
    }
  }
  EXPECT_EQ(accepted, 26 * 26 * 80 * 9);
  EXPECT_EQ(seen.size(), static_cast<std::size_t>(accepted));
}

}  // namespace
}  // namespace marvento
