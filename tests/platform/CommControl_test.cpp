#include "platform/CommControl.h"

#include "support/Pty.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSerialPort>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <thread>

namespace marvento {
namespace {

using test::Pty;

// Ports need an application object for their notifiers, and the settings a private folder.
class QtEnvironment : public ::testing::Environment {
 public:
  QtEnvironment() {
    if (qEnvironmentVariableIsEmpty("XDG_CONFIG_HOME")) {
      qputenv("XDG_CONFIG_HOME", m_config.path().toLocal8Bit());
    }
  }
  void SetUp() override {
    if (QCoreApplication::instance() == nullptr) {
      m_app = std::make_unique<QCoreApplication>(m_argc, m_argv);
    }
  }

 private:
  QTemporaryDir m_config;
  int m_argc = 1;
  char m_name[16] = "marvento_unit";
  char* m_argv[2] = {m_name, nullptr};
  std::unique_ptr<QCoreApplication> m_app;
};

[[maybe_unused]] const auto* const kEnvironment =
    ::testing::AddGlobalTestEnvironment(new QtEnvironment);

double cpuSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
         static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

struct SettingsCase {
  const char* text;
  std::optional<LineSettings> expected;
};

TEST(ParseLineSettings, ReadsWhatTheDialogCanProduce) {
  const SettingsCase cases[] = {
      {"4800,N,8,1", LineSettings{4800, 'N', 8, 10}},
      {"115200,N,8,1", LineSettings{115200, 'N', 8, 10}},
      {"300,N,8,1", LineSettings{300, 'N', 8, 10}},
      {"4711,e,7,2", LineSettings{4711, 'E', 7, 20}},
      {" 9600 ,O,5,1.5", LineSettings{9600, 'O', 5, 15}},
      {"9600", LineSettings{9600, 'N', 8, 10}},
      {"2400,S", LineSettings{2400, 'S', 8, 10}},
      {",N,8,1", std::nullopt},
      {"abc,N,8,1", std::nullopt},
      {"4800.5,N,8,1", std::nullopt},
      {"48 00,N,8,1", std::nullopt},
      {"-4800,N,8,1", std::nullopt},
      {"+4800,N,8,1", std::nullopt},
      {"0,N,8,1", std::nullopt},
      {"99999999999,N,8,1", std::nullopt},
      {"4800,X,8,1", std::nullopt},
      {"4800,NN,8,1", std::nullopt},
      {"4800,N,9,1", std::nullopt},
      {"4800,N,4,1", std::nullopt},
      {"4800,N,8,3", std::nullopt},
      {"4800,N,8,1,1", std::nullopt},
      {"", std::nullopt},
  };
  for (const SettingsCase& c : cases) {
    EXPECT_EQ(ParseLineSettings(QString::fromUtf8(c.text)), c.expected) << c.text;
  }
}

class CommControlTest : public ::testing::Test {
 protected:
  void SetUp() override { test::SetNoPortDevices(); }
  void TearDown() override { test::ClearPortDevices(); }

  // A control on port 1, pointed at a fresh pseudo-terminal.
  void usePty(CommControl& control, const Pty& pty, int number = 1) {
    ASSERT_TRUE(pty.ok());
    test::SetPortDevice(number, pty.path());
    ASSERT_TRUE(control.setCommPort(static_cast<std::int16_t>(number)).ok());
  }
};

TEST_F(CommControlTest, DefaultPortMapAndOverride) {
  test::ClearPortDevices();
  const std::pair<int, const char*> cases[] = {
      {1, "/dev/ttyS0"},
      {8, "/dev/ttyS7"},
      {9, "/dev/ttyUSB0"},
      {18, "/dev/ttyUSB9"},
      {19, "/dev/ttyACM0"},
      {28, "/dev/ttyACM9"},
      {29, "/dev/rfcomm0"},
      {0, ""},
      {30, ""},
      {-1, ""},
  };
  for (const auto& [number, path] : cases) {
    EXPECT_EQ(PortDevice(number), QString::fromLatin1(path)) << number;
  }
  test::SetPortDevice(9, QStringLiteral("/dev/gps0"));
  EXPECT_EQ(PortDevice(9), QStringLiteral("/dev/gps0"));
  EXPECT_EQ(PortDevice(10), QStringLiteral("/dev/ttyUSB1"));
  // An empty entry leaves the usual device in place.
  test::SetPortDevice(9, QString());
  EXPECT_EQ(PortDevice(9), QStringLiteral("/dev/ttyUSB0"));
}

TEST_F(CommControlTest, PortNumberOutsideRangeIsRefused) {
  CommControl control;
  for (const std::int16_t number : {std::int16_t{0}, std::int16_t{30}, std::int16_t{-5}}) {
    const CommResult result = control.setCommPort(number);
    EXPECT_EQ(result.number, comInvalidPort) << number;
    EXPECT_TRUE(result.description.contains(QStringLiteral("Com%1").arg(number)));
  }
  EXPECT_EQ(control.commPort(), 1);
}

TEST_F(CommControlTest, OpeningAFreePortWithTheRatesOfTheDialog) {
  // Odd rates go through as custom rates; a pseudo-terminal takes any of them.
  for (const char* settings :
       {"4800,N,8,1", "300,N,8,1", "115200,N,8,1", "4711,N,8,1", "1200,N,8,2"}) {
    Pty pty;
    CommControl control;
    usePty(control, pty);
    control.setSettings(QString::fromLatin1(settings));
    const CommResult result = control.setPortOpen(true);
    EXPECT_TRUE(result.ok()) << settings << ": " << result.description.toStdString();
    EXPECT_TRUE(control.portOpen());
    EXPECT_TRUE(control.setPortOpen(false).ok());
    EXPECT_FALSE(control.portOpen());
  }
}

TEST_F(CommControlTest, SettingsThatAreNoRateFailTheOpeningOnly) {
  for (const char* settings : {",N,8,1", "abc,N,8,1", "4800,Q,8,1"}) {
    Pty pty;
    CommControl control;
    usePty(control, pty);
    EXPECT_TRUE(control.setSettings(QString::fromLatin1(settings)).ok());
    const CommResult result = control.setPortOpen(true);
    EXPECT_EQ(result.number, comInvalidSettings) << settings;
    EXPECT_TRUE(result.description.contains(pty.path())) << settings;
    EXPECT_FALSE(control.portOpen());
    // Nothing was left locked by the failed attempt.
    control.setSettings(QStringLiteral("4800,N,8,1"));
    EXPECT_TRUE(control.setPortOpen(true).ok()) << settings;
  }
}

TEST_F(CommControlTest, MissingDeviceGives8002NamingIt) {
  CommControl control;
  ASSERT_TRUE(control.setCommPort(9).ok());
  const CommResult result = control.setPortOpen(true);
  EXPECT_EQ(result.number, comInvalidPort);
  EXPECT_TRUE(result.description.contains(QStringLiteral("/nonexistent/marvento-test/tty9")))
      << result.description.toStdString();
  EXPECT_TRUE(result.description.contains(QStringLiteral("Com9")));
  EXPECT_FALSE(control.portOpen());
}

TEST_F(CommControlTest, BusyPortGives8005) {
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_TRUE(control.setPortOpen(true).ok());

  // Open here already, asked again.
  EXPECT_EQ(control.setPortOpen(true).number, comPortOpen);
  EXPECT_TRUE(control.portOpen());
  // No change of port while open.
  EXPECT_EQ(control.setCommPort(2).number, comPortOpen);
  EXPECT_EQ(control.commPort(), 1);

  // Held by another holder of the port, as a second program would be.
  CommControl second;
  usePty(second, pty);
  const CommResult busy = second.setPortOpen(true);
  EXPECT_EQ(busy.number, comPortOpen);
  EXPECT_TRUE(busy.description.contains(pty.path()));
  EXPECT_FALSE(second.portOpen());

  QSerialPort other;
  control.setPortOpen(false);
  other.setPortName(pty.path());
  ASSERT_TRUE(other.open(QIODevice::ReadWrite));
  EXPECT_EQ(control.setPortOpen(true).number, comPortOpen);
  other.close();
  EXPECT_TRUE(control.setPortOpen(true).ok());
}

TEST_F(CommControlTest, MissingRightNamesTheGroup) {
  if (::geteuid() == 0) GTEST_SKIP() << "root may open any device";
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_EQ(::chmod(pty.path().toLocal8Bit().constData(), 0), 0);
  const CommResult result = control.setPortOpen(true);
  EXPECT_EQ(result.number, comPermissionDenied);
  EXPECT_TRUE(
      result.description.startsWith(QStringLiteral("Keine Berechtigung für ") + pty.path()));
  EXPECT_TRUE(result.description.contains(QStringLiteral("in die Gruppe ")));
}

TEST_F(CommControlTest, InputIsLatin1AndEmptiesTheBuffer) {
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_TRUE(control.setPortOpen(true).ok());
  const QByteArray sent("$GPGGA,1\xb0\xff\r\n", 12);
  ASSERT_TRUE(pty.write(sent));
  QElapsedTimer clock;
  clock.start();
  while (control.inBufferCount() < sent.size() && clock.elapsed() < 2000) {
    control.waitForInput(100);
  }
  EXPECT_EQ(control.inBufferCount(), sent.size());
  const QString text = control.input();
  EXPECT_EQ(text.size(), sent.size());
  EXPECT_EQ(text, QString::fromLatin1(sent));
  EXPECT_EQ(text[8], QChar(0xB0));
  EXPECT_EQ(control.inBufferCount(), 0);
  EXPECT_TRUE(control.input().isEmpty());
}

TEST_F(CommControlTest, InputLenLimitsOneRead) {
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_TRUE(control.setPortOpen(true).ok());
  ASSERT_TRUE(pty.write("abcdef"));
  for (int i = 0; i < 20 && control.inBufferCount() < 6; ++i) control.waitForInput(100);
  control.setInputLen(4);
  EXPECT_EQ(control.input(), QStringLiteral("abcd"));
  EXPECT_EQ(control.input(), QStringLiteral("ef"));
}

TEST_F(CommControlTest, ClosingDropsWhatWaits) {
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_TRUE(control.setPortOpen(true).ok());
  ASSERT_TRUE(pty.write("$GPRMC,stale\r\n"));
  ASSERT_TRUE(control.waitForInput(2000));
  control.setPortOpen(false);
  EXPECT_EQ(control.inBufferCount(), 0);
  EXPECT_TRUE(control.input().isEmpty());
  ASSERT_TRUE(control.setPortOpen(true).ok());
  EXPECT_EQ(control.inBufferCount(), 0);
}

// Test feeders rely on this: what the other side of a pseudo-terminal wrote before the
// opening is read after it.
TEST_F(CommControlTest, DataWrittenBeforeOpeningIsRead) {
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_TRUE(pty.write("$GPGGA,early\r\n"));
  ASSERT_TRUE(control.setPortOpen(true).ok());
  for (int i = 0; i < 20 && control.inBufferCount() < 14; ++i) control.waitForInput(100);
  EXPECT_EQ(control.input(), QStringLiteral("$GPGGA,early\r\n"));
}

TEST_F(CommControlTest, ClosedPortHasNothingAndDoesNotWait) {
  CommControl control;
  QElapsedTimer clock;
  clock.start();
  EXPECT_FALSE(control.waitForInput(2000));
  EXPECT_LT(clock.elapsed(), 500);
  EXPECT_EQ(control.inBufferCount(), 0);
  EXPECT_TRUE(control.input().isEmpty());
  EXPECT_TRUE(control.setPortOpen(false).ok());
}

TEST_F(CommControlTest, WaitingSleepsUntilTimeout) {
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_TRUE(control.setPortOpen(true).ok());
  const double cpuBefore = cpuSeconds();
  QElapsedTimer clock;
  clock.start();
  EXPECT_FALSE(control.waitForInput(400));
  EXPECT_GE(clock.elapsed(), 390);
  // A spinning wait would use about as much processor time as it waited.
  EXPECT_LT(cpuSeconds() - cpuBefore, 0.1);
}

TEST_F(CommControlTest, WaitingEndsWhenDataArrives) {
  Pty pty;
  CommControl control;
  usePty(control, pty);
  ASSERT_TRUE(control.setPortOpen(true).ok());
  std::thread writer([&pty] {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    pty.write("$GPGLL\r\n");
  });
  QElapsedTimer clock;
  clock.start();
  const bool arrived = control.waitForInput(5000);
  const qint64 waited = clock.elapsed();
  writer.join();
  EXPECT_TRUE(arrived);
  EXPECT_LT(waited, 2000);
  EXPECT_GE(control.inBufferCount(), 1);
}

TEST_F(CommControlTest, ProbingAllMissingPortsIsQuick) {
  CommControl control;
  QElapsedTimer clock;
  clock.start();
  for (std::int16_t number = 1; number <= 29; ++number) {
    ASSERT_TRUE(control.setCommPort(number).ok());
    EXPECT_EQ(control.setPortOpen(true).number, comInvalidPort) << number;
  }
  EXPECT_LT(clock.elapsed(), 1000);
}

}  // namespace
}  // namespace marvento
