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

// It never returned either on well-formed objects that name their class twice or have a field
// without a name; the rest of such a report still counts.
TEST(GpsdFuzzRegression, OddFieldNamesNeverReachLibgps) {
  const QByteArray repeated =
      R"({"class":"TPV","mode":4,"class":"VERSION","release":"3.22","proto_major":3})";
  EXPECT_EQ(ReadGpsdReply(QByteArrayView(repeated)).kind, GpsdReply::Kind::Other);
  const QByteArray unnamed = R"({"class":"SKY","":[{"PRN":4,"el":40.0,"az":5}]})";
  const GpsdReply sky = ReadGpsdReply(QByteArrayView(unnamed));
  EXPECT_EQ(sky.kind, GpsdReply::Kind::Sky);
  EXPECT_FALSE(sky.satellitesUsed.has_value());
  const QByteArray nested =
      R"({"class":"TPV","mode":2,"lat":48.1173,"lon":11.5167,"x":[{"":1,"a b":{"":[]}}]})";
  const GpsdReply tpv = ReadGpsdReply(QByteArrayView(nested));
  EXPECT_EQ(tpv.kind, GpsdReply::Kind::Tpv);
  EXPECT_TRUE(tpv.fix.valid);
}

}  // namespace
}  // namespace marvento
