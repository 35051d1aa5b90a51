#include "station/RotctldReply.h"

#include <gtest/gtest.h>
#include <QByteArray>

namespace marvento {
namespace {

struct ReplyCase {
  RotctldCommand command;
  const char* bytes;
  RotctldReply::Kind kind;
  qsizetype consumed;
  int code;
  double azimuth;
  double elevation;
};

TEST(RotctldReply, ReadsReportsAndPositionsAndRefusesTheRest) {
  constexpr auto Set = RotctldCommand::SetPosition;
  constexpr auto Get = RotctldCommand::GetPosition;
  using R = RotctldReply;
  const ReplyCase cases[] = {
      {Set, "RPRT 0\n", R::Done, 7, 0, 0, 0},
      {Set, "RPRT 0\r\n", R::Done, 8, 0, 0, 0},
      {Set, "RPRT -9\np\n", R::Error, 8, -9, 0, 0},
      {Set, "RPRT 0", R::Incomplete, 0, 0, 0, 0},
      {Set, "123.40\n", R::Malformed, 0, 0, 0, 0},
      {Set, "RPRT\n", R::Malformed, 0, 0, 0, 0},
      {Set, "RPRT 99999999999\n", R::Malformed, 0, 0, 0, 0},
      {Set, "rprt 0\n", R::Malformed, 0, 0, 0, 0},
      {Get, "123.40\n0.00\n", R::Position, 12, 0, 123.4, 0},
      {Get, "-12.5\r\n45.25\r\n", R::Position, 14, 0, -12.5, 45.25},
      {Get, "359.99\n90.00\nRPRT 0\n", R::Position, 13, 0, 359.99, 90},
      {Get, "RPRT -5\n", R::Error, 8, -5, 0, 0},
      {Get, "123.40\n0.0", R::Incomplete, 0, 0, 0, 0},
      // A successful p answers with two lines, never with a report of success.
      {Get, "RPRT 0\n", R::Malformed, 0, 0, 0, 0},
      {Get, "nan\n0.00\n", R::Malformed, 0, 0, 0, 0},
      {Get, "1e999\n0.00\n", R::Malformed, 0, 0, 0, 0},
      {Get, "123,40\n0.00\n", R::Malformed, 0, 0, 0, 0},
      {Get, "\n0.00\n", R::Malformed, 0, 0, 0, 0},
      {Get, "721\n0\n", R::Malformed, 0, 0, 0, 0},
      {Get, "100\n-91\n", R::Malformed, 0, 0, 0, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.bytes);
    const RotctldReply reply = ReadRotctldReply(c.command, QByteArrayView(c.bytes));
    EXPECT_EQ(reply.kind, c.kind);
    // Regression: "RPRT 0" answering p was Malformed but claimed its line as consumed.
    if (reply.kind == RotctldReply::Incomplete || reply.kind == RotctldReply::Malformed) {
      EXPECT_EQ(reply.consumed, 0);
      continue;
    }
    EXPECT_EQ(reply.consumed, c.consumed);
    EXPECT_EQ(reply.code, c.code);
    EXPECT_DOUBLE_EQ(reply.azimuth, c.azimuth);
    EXPECT_DOUBLE_EQ(reply.elevation, c.elevation);
  }
}

// A peer that never ends its line must not make the buffer grow without end.
TEST(RotctldReply, AnEndlessLineIsMalformedOnceItPassesTheLimit) {
  for (const RotctldCommand command : {RotctldCommand::SetPosition, RotctldCommand::GetPosition}) {
    EXPECT_EQ(ReadRotctldReply(command, QByteArray(kRotctldMaxLine, '1')).kind,
              RotctldReply::Incomplete);
    EXPECT_EQ(ReadRotctldReply(command, QByteArray(kRotctldMaxLine + 1, '1')).kind,
              RotctldReply::Malformed);
  }
  const QByteArray second = "10.0\n" + QByteArray(kRotctldMaxLine + 1, '2');
  EXPECT_EQ(ReadRotctldReply(RotctldCommand::GetPosition, second).kind, RotctldReply::Malformed);
}

}  // namespace
}  // namespace marvento
