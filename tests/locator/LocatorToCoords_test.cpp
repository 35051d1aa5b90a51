#include "locator/LocatorToCoords.h"

#include "platform/MsgBoxRecorder.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

using Status = LocatorDecode::Status;

struct DecodeCase {
  QString text;
  Status status;
  double Lg;  // for BadHead not looked at
  double Br;
};

// Positions to 1e-9; the last bits have a test of their own below.
TEST(DecodeLocator, DecodesCentresAndCorners) {
  const DecodeCase cases[] = {
      {QStringLiteral("JO62QM"), LocatorDecode::Ok, 13.375, 52.520833333333},
      {QStringLiteral("JO62QM84AT"), LocatorDecode::Ok, 13.4, 52.519965277778},
      {QStringLiteral("AA00AA"), LocatorDecode::Ok, -179.958333333333, -89.979166666667},
      {QStringLiteral("AA00AA00AA"), LocatorDecode::Ok, -180, -90},
      // A missing position in 7 to 10 adds nothing.
      {QStringLiteral("JO62QM5"), LocatorDecode::Ok, 13.375, 52.5},
      {QStringLiteral("JO62QM5Z"), LocatorDecode::BadTail, 13.375, 52.520833333333},
      {QStringLiteral("JO62QM50AY"), LocatorDecode::BadTail, 13.375, 52.520833333333},
      {QStringLiteral("SA00AA"), LocatorDecode::BadHead, 0, 0},
      {QStringLiteral("JO62YA"), LocatorDecode::BadHead, 0, 0},
      {QStringLiteral("JOA2QM"), LocatorDecode::BadHead, 0, 0},
      // Small letters are the caller's to raise; here they are refused.
      {QStringLiteral("jo62qm"), LocatorDecode::BadHead, 0, 0},
      // Positions behind the end count as empty and fail in 1 to 6.
      {QStringLiteral("JO62Q"), LocatorDecode::BadHead, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.left(12).toStdString());
    const LocatorDecode d = DecodeLocator(c.text);
    EXPECT_EQ(d.status, c.status);
    EXPECT_EQ(d.shown, c.text.left(10));
    if (c.status != LocatorDecode::BadHead) {
      EXPECT_NEAR(d.Lg, c.Lg, 1e-9);
      EXPECT_NEAR(d.Br, c.Br, 1e-9);
    }
  }
}

// The decimal half-cell constants and the order of the sums decide the last bits, on which
// the encoder's choice of cell at an edge depends.
TEST(DecodeLocator, KeepsTheLastBitsOfTheSums) {
  struct Exact {
    const char* text;
    double Lg;
    double Br;
  };
  const Exact cases[] = {
      {"JJ00AA", 0.0416666666666667, 0.0208333333333334},
      {"AA00AA00AA", -180.0, -90.0},
      {"JO62QM84AT", 13.4, 52.519965277777779},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const LocatorDecode d = DecodeLocator(QString::fromLatin1(c.text));
    ASSERT_EQ(d.status, LocatorDecode::Ok);
    EXPECT_EQ(d.Lg, c.Lg);
    EXPECT_EQ(d.Br, c.Br);
  }
}

TEST(LocatorToCoords, TellsTheUserOnceAndKeepsOrSetsThePosition) {
  struct WrapperCase {
    QString text;
    bool accepted;
    double Lg;  // what the variables hold afterwards; they start at 7 / 8
    double Br;
  };
  const WrapperCase cases[] = {
      {QStringLiteral("JO62QM84AT"), true, 13.4, 52.519965277777779},
      {QStringLiteral("JO62YA"), false, 7, 8},
      {QStringLiteral("JO62QM50AY"), false, 13.375, 52.520833333333336},
      {QStringLiteral("JO62QM84AYTRAILING"), false, 13.375, 52.520833333333336},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.toStdString());
    MsgBoxRecorder rec;
    double Lg = 7;
    double Br = 8;
    EXPECT_EQ(LocatorToCoords(c.text, Lg, Br), c.accepted);
    EXPECT_EQ(Lg, c.Lg);
    EXPECT_EQ(Br, c.Br);
    if (c.accepted) {
      EXPECT_EQ(rec.count(), 0);
      EXPECT_EQ(rec.beeps(), 0);
      continue;
    }
    ASSERT_EQ(rec.count(), 1);
    EXPECT_EQ(rec.entries()[0].beepsBefore, 1);
    EXPECT_EQ(rec.last().prompt, c.text.left(10));
    EXPECT_EQ(rec.last().title, QStringLiteral(" Falscher Locator !"));
    EXPECT_EQ(rec.last().style, 48);
  }
}

}  // namespace
}  // namespace marvento
