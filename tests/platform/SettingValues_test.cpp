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

// The edges of the range, and texts that Val would have read as a number.
TEST(SettingValues, BaudRateIsAWholeNumberAPortCanBeSetTo) {
  const std::pair<const char*, std::optional<std::int32_t>> cases[] = {
      {"4800", 4800}, {" 9600 ", 9600}, {"50", 50}, {"4000000", 4000000},
      {"49", {}},     {"4000001", {}},  {"0", {}},  {"+9600", {}},
      {"9600.0", {}}, {"96 00", {}},    {"", {}},   {"12345678901234567890", {}},
  };
  for (const auto& [text, rate] : cases) {
    EXPECT_EQ(ReadBaudRate(QString::fromLatin1(text)), rate) << text;
  }
}

TEST(SettingValues, PortNamesComOneToTwentyNine) {
  const std::pair<const char*, std::optional<std::int16_t>> cases[] = {
      {"Com1", 1},   {"COM29", 29}, {"com07", 7}, {"Com0", {}}, {"Com30", {}},
      {"Com-5", {}}, {"Com 5", {}}, {"Xyz7", {}}, {"Com", {}},  {"Com5x", {}},
  };
  for (const auto& [text, number] : cases) {
    EXPECT_EQ(ReadPortNumber(QString::fromLatin1(text)), number) << text;
  }
}

}  // namespace
}  // namespace marvento
