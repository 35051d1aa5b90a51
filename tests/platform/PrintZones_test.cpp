#include "platform/PrintZones.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

TEST(PrintZones, ItemsStartAtTheNextZone) {
  const std::pair<QStringList, QString> cases[] = {
      {{"a"}, "a"},
      {{"18.11.2026", "12:35:19", "JO31AB"}, "18.11.2026    12:35:19      JO31AB"},
      {{"", "x"}, QString(14, u' ') + "x"},
      {{"1234567890123", "x"}, "1234567890123 x"},
      // A zone filled to its last column leaves no blank, so the next item moves a zone on.
      {{"12345678901234", "x"}, "12345678901234" + QString(14, u' ') + "x"},
      {{"a", "", "c"}, "a" + QString(27, u' ') + "c"},
  };
  for (const auto& [items, line] : cases) {
    EXPECT_EQ(PrintZones(items), line) << items.join('|').toStdString();
  }
}

}  // namespace
}  // namespace marvento
