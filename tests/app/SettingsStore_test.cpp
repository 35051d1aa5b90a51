#include "app/SettingsStore.h"

#include "platform/Settings.h"
#include "support/IsolatedUser.h"

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>

#include <cstdio>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace marvento {
namespace {

class SettingsStoreFile : public ::testing::Test {
 protected:
  QString stored(const char* key) const {
    return m_user.stored(QString::fromLatin1(key)).value_or(QStringLiteral("missing"));
  }

  const test::IsolatedUser m_user;
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

// Regression: with a limit on the file size the process was ended by SIGXFSZ in the middle
// of the exit, and the settings were lost without a word.
TEST_F(SettingsStoreFile, FileSizeLimitKeepsTheOldFileAndTellsWhy) {
  Module1 state;
  state.GpsStatus = QStringLiteral("GPS aus");
  state.ComSettings = QStringLiteral("4800,N,8,1");
  state.ComPort = QStringLiteral("Com1");
  ASSERT_EQ(WriteExitSettings(state, ExitSettings{}), std::nullopt);
  QFile file(m_user.configFile());
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QByteArray old = file.readAll();
  file.close();

  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    // Files may grow to half the old one's size: the new one, as long, cannot be written.
    const rlimit limit{rlim_t(old.size() / 2), rlim_t(old.size() / 2)};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    state.GradDezimal = true;
    const std::optional<QString> reason = WriteExitSettings(state, ExitSettings{});
    const bool told = reason == QStringLiteral("Die Datei überschreitet die erlaubte Größe.");
    if (!told) std::fprintf(stderr, "reason: %s\n", reason ? qPrintable(*reason) : "none");
    ::_exit(told ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "ended by signal or wrong reason";
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), old);
  EXPECT_EQ(QDir(m_user.path() + QStringLiteral("/Marvento")).entryList(QDir::Files | QDir::Hidden),
            QStringList{QStringLiteral("Marvento.conf")});
}

}  // namespace
}  // namespace marvento
