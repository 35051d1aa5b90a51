#include "app/SettingsStore.h"

#include "platform/CommControl.h"

#include "platform/Settings.h"

#include <QLocale>
#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace marvento {
namespace {

TEST(SettingsStore, BooleansReadWhatTheWriterWroteAndRefuseTheRest) {
  const std::pair<const char*, std::optional<bool>> cases[] = {
      {"True", true},   {"False", false}, {"true", true}, {"FALSE", false}, {" True ", true},
      {"-1", true},     {"0", false},     {"1", true},    {"", std::nullopt}, {"ja", std::nullopt},
      {"Tru", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ReadBoolean(QString::fromLatin1(text)), expected) << text;
  }
  EXPECT_EQ(ReadBoolean(BooleanText(true)), true);
  EXPECT_EQ(ReadBoolean(BooleanText(false)), false);
}

TEST(SettingsStore, IntervalIsRoundedAndLimited) {
  struct Case {
    const char* text;
    std::optional<std::pair<int, int>> expected;  // seconds, milliseconds
  };
  const Case cases[] = {
      {"30", std::pair{30, 30000}},     {"65", std::pair{65, 65000}},
      {"66", std::pair{65, 65000}},     {"30,7", std::pair{30, 30000}},
      {"30.5", std::pair{30, 30000}},   {"31.5", std::pair{32, 32000}},
      {"5", std::pair{5, 5000}},        {"", std::pair{0, 0}},
      {"100000", std::pair{65, 65000}}, {"-5", std::nullopt},
      {"abc", std::nullopt},            {"3000000", std::nullopt},  // milliseconds overflow 32 bits
      {"1e400", std::nullopt},
  };
  for (const auto& c : cases) {
    const auto interval = ReadInterval(QString::fromLatin1(c.text));
    ASSERT_EQ(interval.has_value(), c.expected.has_value()) << c.text;
    if (interval) {
      EXPECT_EQ(interval->seconds, c.expected->first) << c.text;
      EXPECT_EQ(interval->milliseconds, c.expected->second) << c.text;
    }
  }
}

TEST(SettingsStore, PortNumberCountsOnlyThePrefixLength) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"Com1", 1},   {"COM12", 12}, {"Xyz7", 7},          {"Com", 0},
      {"Com1x", 1},  {"Co", std::nullopt}, {"", std::nullopt}, {"Com99999", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    const auto number = ComNumberOf(QString::fromLatin1(text));
    ASSERT_EQ(number.has_value(), expected.has_value()) << text;
    if (number) {
      EXPECT_EQ(*number, *expected) << text;
    }
  }
}

TEST(SettingsStore, RadiusPositionMustBeAListPosition) {
  const std::pair<const char*, std::optional<int>> cases[] = {
      {"2", 2}, {"-1", -1}, {"11", 11}, {"0", 0}, {"12", std::nullopt},
      {"-2", std::nullopt}, {"x", std::nullopt}, {"", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    const auto position = ReadRadiusPosition(QString::fromLatin1(text));
    ASSERT_EQ(position.has_value(), expected.has_value()) << text;
    if (position) {
      EXPECT_EQ(*position, *expected) << text;
    }
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
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QString::fromLocal8Bit(m_saved));
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
  EXPECT_EQ(GetSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("missing")), QStringLiteral("missing"));

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
