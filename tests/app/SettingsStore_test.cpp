#include "app/SettingsStore.h"

#include "platform/CommControl.h"
#include "platform/Settings.h"

#include <gtest/gtest.h>
#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>

namespace marvento {
namespace {

TEST(SettingsStore, BooleansReadWhatTheWriterWroteAndRefuseTheRest) {
  const std::pair<const char*, std::optional<bool>> cases[] = {
      {"True", true},     {"False", false},     {"true", true},        {"FALSE", false},
      {" True ", true},   {"-1", true},         {"0", false},          {"1", true},
      {"", std::nullopt}, {"ja", std::nullopt}, {"Tru", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ReadBoolean(QString::fromLatin1(text)), expected) << text;
  }
  EXPECT_EQ(ReadBoolean(BooleanText(true)), true);
  EXPECT_EQ(ReadBoolean(BooleanText(false)), false);
}

// Seconds; the milliseconds must be a thousand times as many. Nothing for a refused text.
TEST(SettingsStore, IntervalIsRoundedAndLimited) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"30", 30},   {"65", 65},    {"66", 65},      {"30,7", 30},   {"30.5", 30},
      {"31.5", 32}, {"5", 5},      {"", 0},         {"100000", 65}, {"-5", {}},
      {"abc", {}},  {"1e400", {}}, {"3000000", {}},  // milliseconds overflow 32 bits
  };
  for (const auto& [text, seconds] : cases) {
    const auto interval = ReadInterval(QString::fromLatin1(text));
    EXPECT_EQ(interval ? std::optional(interval->seconds) : std::nullopt, seconds) << text;
    if (interval) {
      EXPECT_EQ(interval->milliseconds, interval->seconds * 1000) << text;
    }
  }
}

TEST(SettingsStore, PortNumberCountsOnlyThePrefixLength) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"Com1", 1},  {"COM12", 12},        {"Xyz7", 7},        {"Com", 0},
      {"Com1x", 1}, {"Co", std::nullopt}, {"", std::nullopt}, {"Com99999", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ComNumberOf(QString::fromLatin1(text)), expected) << text;
  }
}

TEST(SettingsStore, RadiusPositionMustBeAListPosition) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"2", 2},
      {"-1", -1},
      {"11", 11},
      {"0", 0},
      {"12", std::nullopt},
      {"-2", std::nullopt},
      {"x", std::nullopt},
      {"", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ReadRadiusPosition(QString::fromLatin1(text)), expected) << text;
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

TEST_F(SettingsStoreFile, FirstRunTakesTheDefaults) {
  Module1 state;
  const StartupSettings settings = ReadStartupSettings(state);
  EXPECT_EQ(state.GpsStatus, QStringLiteral("GPS aus"));
  EXPECT_FALSE(state.GradDezimal);
  EXPECT_FALSE(state.GpsZeit);
  EXPECT_FALSE(state.Loc10st);
  EXPECT_FALSE(state.ProtokollOn);
  EXPECT_EQ(state.GpsIntervalSeconds, 30);
  EXPECT_EQ(settings.interval.milliseconds, 30000);
  EXPECT_EQ(state.ComPort, QStringLiteral("Com1"));
  EXPECT_EQ(state.ComNumber, 1);
  EXPECT_EQ(state.ComSettings, QStringLiteral("4800,N,8,1"));
  EXPECT_TRUE(state.MyHomeLoc.isEmpty());
  EXPECT_EQ(settings.radiusPosition, 2);
}

TEST_F(SettingsStoreFile, ExitWritesEveryKeyButTheHomeLocatorInItsTextForm) {
  Module1 state;
  state.GpsStatus = QStringLiteral("GPS an");
  state.GradDezimal = true;
  state.GpsIntervalSeconds = 65;
  state.ComSettings = QStringLiteral("115200,N,8,1");
  state.ComPort = QStringLiteral("COM12");
  state.ProtokollOn = true;
  WriteExitSettings(state, ExitSettings{-1, false, 1234.5f, 987});

  EXPECT_EQ(stored("GPS"), QStringLiteral("GPS an"));
  EXPECT_EQ(stored("Grad_Dezimal"), QStringLiteral("True"));
  EXPECT_EQ(stored("GPS-Zeit"), QStringLiteral("False"));
  EXPECT_EQ(stored("GPS-Interval"), QStringLiteral("65"));
  EXPECT_EQ(stored("Bit-Sek"), QStringLiteral("115200"));
  EXPECT_EQ(stored("Com"), QStringLiteral("COM12"));
  EXPECT_EQ(stored("Radius"), QStringLiteral("-1"));
  EXPECT_EQ(GetSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("missing")),
            QStringLiteral("missing"));

  Module1 next;
  const StartupSettings settings = ReadStartupSettings(next);
  EXPECT_EQ(next.GpsStatus, state.GpsStatus);
  EXPECT_TRUE(next.GradDezimal);
  EXPECT_EQ(next.GpsIntervalSeconds, 65);
  EXPECT_EQ(next.ComSettings, QStringLiteral("115200,N,8,1"));
  EXPECT_EQ(next.ComNumber, 12);
  EXPECT_TRUE(next.ProtokollOn);
  EXPECT_EQ(settings.radiusPosition, -1);
  EXPECT_EQ(GetTwipsSetting(QStringLiteral("MainLeft")), 1234.5f);
}

TEST_F(SettingsStoreFile, IntervalZeroAndBaudWithoutNumberWriteEmptyTexts) {
  Module1 state;
  state.GpsStatus = QStringLiteral("GPS aus");
  state.GpsIntervalSeconds = 0;
  state.ComSettings = QStringLiteral(",N,8,1");
  state.ComPort = QStringLiteral("Com1");
  WriteExitSettings(state, ExitSettings{});
  EXPECT_EQ(stored("GPS-Interval"), QString());
  EXPECT_EQ(stored("Bit-Sek"), QString());
  Module1 next;
  const StartupSettings settings = ReadStartupSettings(next);
  EXPECT_EQ(settings.interval.seconds, 0);
  EXPECT_EQ(next.ComSettings, QStringLiteral(",N,8,1"));
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
  SaveSetting(QStringLiteral("Grad_Dezimal"), QStringLiteral("vielleicht"));
  SaveSetting(QStringLiteral("GPS-Interval"), QStringLiteral("-30"));
  SaveSetting(QStringLiteral("Com"), QStringLiteral("C"));
  SaveSetting(QStringLiteral("Radius"), QStringLiteral("40"));
  SaveSetting(QStringLiteral("Loc10st"), QStringLiteral("True"));
  Module1 state;
  const StartupSettings settings = ReadStartupSettings(state);
  EXPECT_FALSE(state.GradDezimal);
  EXPECT_EQ(state.GpsIntervalSeconds, 30);
  EXPECT_EQ(state.ComPort, QStringLiteral("Com1"));
  EXPECT_EQ(state.ComNumber, 1);
  EXPECT_EQ(settings.radiusPosition, 2);
  EXPECT_TRUE(state.Loc10st);  // the valid keys around them still count
}

}  // namespace
}  // namespace marvento
