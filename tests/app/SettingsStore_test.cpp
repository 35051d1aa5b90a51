#include "app/SettingsStore.h"

#include "platform/Settings.h"

#include <gtest/gtest.h>
#include <QSettings>
#include <QTemporaryDir>

namespace marvento {
namespace {

TEST(SettingsStore, BooleansReadWhatTheWriterWroteAndRefuseTheRest) {
  const std::pair<const char*, std::optional<bool>> cases[] = {
      {"True", true}, {"FALSE", false},     {" True ", true},      {"-1", true},
      {"0", false},   {"", std::nullopt}, {"Tru", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ReadBoolean(QString::fromLatin1(text)), expected) << text;
  }
}

// Seconds, half to even, at most 65; nothing for a refused text.
TEST(SettingsStore, IntervalIsRoundedAndLimited) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"66", 65}, {"30,7", 30}, {"30.5", 30},  {"31.5", 32},      {"", 0},
      {"-5", {}}, {"abc", {}},  {"1e400", {}}, {"3000000", {}},  // milliseconds overflow 32 bits
  };
  for (const auto& [text, seconds] : cases) {
    const auto interval = ReadInterval(QString::fromLatin1(text));
    EXPECT_EQ(interval ? std::optional(interval->seconds) : std::nullopt, seconds) << text;
  }
}

class SettingsStoreFile : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(m_dir.isValid());
    m_saved = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", m_dir.path().toLocal8Bit());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
  }
  void TearDown() override {
    qputenv("XDG_CONFIG_HOME", m_saved);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QString::fromLocal8Bit(m_saved));
  }
  QString stored(const char* key) const {
    QSettings file(m_dir.path() + QStringLiteral("/Marvento/Marvento.conf"), QSettings::IniFormat);
    return file.value(QStringLiteral("Settings/") + QString::fromLatin1(key)).toString();
  }

  QTemporaryDir m_dir;
  QByteArray m_saved;
};

TEST_F(SettingsStoreFile, ExitWritesEveryKeyButTheHomeLocatorInItsTextForm) {
  Module1 state;
  state.GradDezimal = true;
  state.GpsIntervalSeconds = 65;
  state.ComSettings = QStringLiteral("115200,N,8,1");
  state.ComPort = QStringLiteral("COM12");
  WriteExitSettings(state, ExitSettings{-1, false, 1234.5f, 987});

  EXPECT_EQ(stored("Grad_Dezimal"), QStringLiteral("True"));
  EXPECT_EQ(stored("GPS-Zeit"), QStringLiteral("False"));
  EXPECT_EQ(stored("GPS-Interval"), QStringLiteral("65"));
  EXPECT_EQ(stored("Bit-Sek"), QStringLiteral("115200"));
  EXPECT_EQ(stored("Radius"), QStringLiteral("-1"));
  EXPECT_EQ(GetSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("missing")),
            QStringLiteral("missing"));
}

TEST_F(SettingsStoreFile, MinimisedExitKeepsTheOldPosition) {
  SaveSetting(QStringLiteral("MainLeft"), QStringLiteral("2000"));
  Module1 state;
  state.ComSettings = QStringLiteral("4800,N,8,1");
  WriteExitSettings(state, ExitSettings{2, true, 5, 5});
  EXPECT_EQ(stored("MainLeft"), QStringLiteral("2000"));
  EXPECT_EQ(stored("MainTop"), QString());
}

TEST_F(SettingsStoreFile, HandEditedValuesOutsideTheLimitsFallBackPerKey) {
  SaveSetting(QStringLiteral("GPS-Interval"), QStringLiteral("-30"));
  SaveSetting(QStringLiteral("Radius"), QStringLiteral("40"));
  SaveSetting(QStringLiteral("Loc10st"), QStringLiteral("True"));
  Module1 state;
  const StartupSettings settings = ReadStartupSettings(state);
  EXPECT_EQ(state.GpsIntervalSeconds, 30);
  EXPECT_EQ(settings.radiusPosition, 2);
  EXPECT_TRUE(state.Loc10st);  // the valid keys around them still count
}

}  // namespace
}  // namespace marvento
