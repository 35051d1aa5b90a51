// Faults found by fuzzing the settings store.
#include "app/SettingsStore.h"
#include "platform/Settings.h"

#include <gtest/gtest.h>

namespace marvento {
namespace {

// A window position written with seven digits came back as another single: -1000.5811 was
// stored as "-1000.581", so the window crept by a fraction of a twip at every exit.
TEST(SettingsFuzzRegression, WindowPositionReadsBackUnchanged) {
  for (const float twips : {-1000.5811f, 0.1f, 1234.5f, 3210.123f, 9999999.0f, -0.000123456f}) {
    SaveSetting(SettingKey::MainLeft, TwipsText(twips));
    EXPECT_EQ(GetTwipsSetting(SettingKey::MainLeft), twips)
        << TwipsText(twips).toStdString();
  }
  // The usual positions, whole multiples of a pixel's twips, keep their short form.
  EXPECT_EQ(TwipsText(1500.0f), QStringLiteral("1500"));
}

}  // namespace
}  // namespace marvento
