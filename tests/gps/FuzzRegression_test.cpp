// Faults found by fuzzing what reads the receiver and gpsd.
#include "gps/GpsdReply.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

// libgps 3.22's gps_unpack never returned on malformed replies like these: one line from a
// broken or foreign peer froze the window.
TEST(GpsdFuzzRegression, MalformedReplyNeverReachesLibgps) {
  const char* const lines[] = {
      R"({"a":"""class":"WATCH"})",
      R"({"""""class":"WATCH"})",
  };
  for (const char* line : lines) {
    EXPECT_EQ(ReadGpsdReply(QByteArrayView(line)).kind, GpsdReply::Kind::Other) << line;
    GpsdReplyReader reader;
    EXPECT_EQ(reader.add(QByteArray(line) + '\n'), 0) << line;
  }
}

// It never returned either on a well-formed object that names its class twice.
TEST(GpsdFuzzRegression, RepeatedClassKeyNeverReachesLibgps) {
  const QByteArray line =
      R"({"class":"TPV","mode":4,"class":"VERSION","release":"3.22","proto_major":3})";
  EXPECT_EQ(ReadGpsdReply(QByteArrayView(line)).kind, GpsdReply::Kind::Other);
  // The same report without the repetition is still a fix.
  const QByteArray once = R"({"class":"TPV","mode":2,"lat":48.1173,"lon":11.5167})";
  const GpsdReply reply = ReadGpsdReply(QByteArrayView(once));
  ASSERT_EQ(reply.kind, GpsdReply::Kind::Tpv);
  EXPECT_TRUE(reply.fix.valid);
  EXPECT_DOUBLE_EQ(reply.fix.lat, 48.1173);
  EXPECT_DOUBLE_EQ(reply.fix.lon, 11.5167);
}

}  // namespace
}  // namespace marvento
