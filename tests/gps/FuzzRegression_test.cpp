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

}  // namespace
}  // namespace marvento
