#include "platform/SettingValues.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

TEST(SettingValues, BooleansReadWhatTheWriterWroteAndRefuseTheRest) {
  const std::pair<const char*, std::optional<bool>> cases[] = {
      {"True", true}, {"FALSE", false},   {" True ", true},      {"-1", true},
      {"0", false},   {"", std::nullopt}, {"Tru", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ReadBoolean(QString::fromLatin1(text)), expected) << text;
  }
}

// Seconds, half to even, at most 65; nothing for a refused text.
TEST(SettingValues, IntervalIsRoundedAndLimited) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"66", 65}, {"30,7", 30}, {"30.5", 30},  {"31.5", 32},    {"", 0},
      {"-5", {}}, {"abc", {}},  {"1e400", {}}, {"3000000", {}},  // milliseconds overflow 32 bits
  };
  for (const auto& [text, seconds] : cases) {
    const auto interval = ReadInterval(QString::fromLatin1(text));
    EXPECT_EQ(interval ? std::optional(interval->seconds) : std::nullopt, seconds) << text;
  }
}

}  // namespace
}  // namespace marvento
