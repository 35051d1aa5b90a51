#include "app/SettingsStore.h"

#include "platform/Settings.h"

#include <gtest/gtest.h>
#include <QSettings>
#include <QTemporaryDir>

namespace marvento {
namespace {

// A settings store of its own; QSettings keeps the folder it found first, so it is told.
class SettingsStoreFile : public ::testing::Test {
 protected:
  SettingsStoreFile() { setPath(m_dir.path()); }
  ~SettingsStoreFile() override { setPath(qEnvironmentVariable("XDG_CONFIG_HOME")); }
  static void setPath(const QString& path) {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path);
  }
  QString stored(const char* key) const {
    QSettings file(m_dir.path() + QStringLiteral("/Marvento/Marvento.conf"), QSettings::IniFormat);
    return file.value(QStringLiteral("Settings/") + QString::fromLatin1(key)).toString();
  }

  QTemporaryDir m_dir;
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
  EXPECT_EQ(GetSetting(SettingKey::MyHomeLoc, QStringLiteral("missing")),
            QStringLiteral("missing"));
}

TEST_F(SettingsStoreFile, HandEditedValuesOutsideTheLimitsFallBackPerKey) {
  SaveSetting(SettingKey::GpsInterval, QStringLiteral("-30"));
  SaveSetting(SettingKey::Radius, QStringLiteral("40"));
  SaveSetting(SettingKey::Loc10st, QStringLiteral("True"));
  Module1 state;
  const StartupSettings settings = ReadStartupSettings(state);
  EXPECT_EQ(state.GpsIntervalSeconds, 30);
  EXPECT_EQ(settings.radiusPosition, 2);
  EXPECT_TRUE(state.Loc10st);  // the valid keys around them still count
}

}  // namespace
}  // namespace marvento
