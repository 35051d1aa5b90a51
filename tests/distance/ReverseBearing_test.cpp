#include "distance/ReverseBearing.h"

#include "support/GermanLocale.h"

namespace marvento {
namespace {

TEST(ReverseBearing, PromptFromCaption) {
  const std::pair<const char*, const char*> cases[] = {
      {"", nullptr},           {"-", nullptr},           {"69,74 °", "249,74 °"},
      {"253,602 °", "73,6 °"}, {"79,677 °", "259,68 °"}, {"180,0 °", "360,0 °"},
      {"180,5 °", "0,5 °"},    {"0,0 °", "180,0 °"},     {"360,0 °", "180,0 °"},
  };
  for (const auto& [caption, prompt] : cases) {
    EXPECT_EQ(ReverseBearingPrompt(QString::fromUtf8(caption)).value_or("<none>").toStdString(),
              prompt ? prompt : "<none>")
        << caption;
  }
}

}  // namespace
}  // namespace marvento
