#include "distance/ReverseBearing.h"

#include "distance/GermanLocale.h"

namespace marvento {
namespace {

using ReverseBearingTest = GermanLocaleTest;

TEST_F(ReverseBearingTest, PromptFromCaption) {
  struct Case {
    const char* caption;
    const char* prompt;  // nullptr: no box
  } cases[] = {
      {"", nullptr},           {"-", nullptr},           {"69,74 °", "249,74 °"},
      {"253,602 °", "73,6 °"}, {"79,677 °", "259,68 °"}, {"180,0 °", "360,0 °"},
      {"180,5 °", "0,5 °"},    {"0,0 °", "180,0 °"},     {"360,0 °", "180,0 °"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.caption);
    const auto prompt = ReverseBearingPrompt(QString::fromUtf8(c.caption));
    if (!c.prompt) {
      EXPECT_FALSE(prompt.has_value());
    } else {
      ASSERT_TRUE(prompt.has_value());
      EXPECT_EQ(prompt->toStdString(), c.prompt);
    }
  }
}

}  // namespace
}  // namespace marvento
