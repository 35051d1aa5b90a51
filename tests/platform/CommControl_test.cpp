#include "platform/CommControl.h"

#include "support/Pty.h"

#include <QElapsedTimer>
#include <QSerialPort>

#include <gtest/gtest.h>

namespace marvento {
namespace {

using test::Pty;

TEST(ParseLineSettings, ReadsWhatTheDialogCanProduce) {
  const std::pair<const char*, std::optional<LineSettings>> cases[] = {
      {"4800,N,8,1", LineSettings{4800, 'N', 8, 10}},
      {" 9600 ,O,5,1.5", LineSettings{9600, 'O', 5, 15}},
      {"9600", LineSettings{9600, 'N', 8, 10}},
      {",N,8,1", std::nullopt},
      {"0,N,8,1", std::nullopt},
      {"99999999999,N,8,1", std::nullopt},
      {"4800,X,8,1", std::nullopt},
      {"4800,N,9,1", std::nullopt},
      {"4800,N,8,1,1", std::nullopt},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(ParseLineSettings(QString::fromUtf8(text)), expected) << text;
  }
}

class CommControlTest : public ::testing::Test {
 protected:
  void SetUp() override {
    test::SetNoPortDevices();
    ASSERT_TRUE(m_pty.ok());
    test::SetPortDevice(1, m_pty.path());
    ASSERT_TRUE(m_control.setCommPort(1).ok());
  }
  void TearDown() override { test::ClearPortDevices(); }

  Pty m_pty;
  CommControl m_control;
};

TEST_F(CommControlTest, DefaultPortMapAndOverride) {
  test::ClearPortDevices();
  const std::pair<int, const char*> cases[] = {
      {1, "/dev/ttyS0"}, {9, "/dev/ttyUSB0"}, {19, "/dev/ttyACM0"}, {29, "/dev/rfcomm0"}, {30, ""},
  };
  for (const auto& [number, path] : cases) {
    EXPECT_EQ(PortDevice(number), QString::fromLatin1(path)) << number;
  }
  test::SetPortDevice(9, QStringLiteral("/dev/gps0"));
  EXPECT_EQ(PortDevice(9), QStringLiteral("/dev/gps0"));
  // An empty entry leaves the usual device in place.
  test::SetPortDevice(9, QString());
  EXPECT_EQ(PortDevice(9), QStringLiteral("/dev/ttyUSB0"));
  EXPECT_EQ(m_control.setCommPort(30).number, comInvalidPort);
  EXPECT_EQ(m_control.commPort(), 1);
}

TEST_F(CommControlTest, OddRatesOpenAndBadSettingsFailTheOpeningOnly) {
  // ParseLineSettings above holds the texts that do not read; one of them is enough here.
  const std::pair<const char*, int> cases[] = {
      {"4711,N,8,1", 0}, {"1200,N,8,2", 0}, {"abc,N,8,1", comInvalidSettings}};
  for (const auto& [settings, error] : cases) {
    EXPECT_TRUE(m_control.setSettings(QString::fromLatin1(settings)).ok());
    const CommResult result = m_control.setPortOpen(true);
    EXPECT_EQ(result.number, error) << settings;
    EXPECT_EQ(m_control.portOpen(), error == 0) << settings;
    if (error) {
      EXPECT_TRUE(result.description.contains(m_pty.path())) << settings;
    }
    EXPECT_TRUE(m_control.setPortOpen(false).ok());
  }
}

TEST_F(CommControlTest, BusyPortGives8005) {
  ASSERT_TRUE(m_control.setPortOpen(true).ok());
  EXPECT_EQ(m_control.setPortOpen(true).number, comPortOpen);
  EXPECT_EQ(m_control.setCommPort(2).number, comPortOpen);  // no change of port while open
  EXPECT_EQ(m_control.commPort(), 1);
  m_control.setPortOpen(false);

  // Held by another program.
  QSerialPort other(m_pty.path());
  ASSERT_TRUE(other.open(QIODevice::ReadWrite));
  const CommResult busy = m_control.setPortOpen(true);
  EXPECT_EQ(busy.number, comPortOpen);
  EXPECT_TRUE(busy.description.contains(m_pty.path()));
  EXPECT_FALSE(m_control.portOpen());
  other.close();
  EXPECT_TRUE(m_control.setPortOpen(true).ok());
}

TEST_F(CommControlTest, InputIsLatin1AndEmptiesTheBuffer) {
  ASSERT_TRUE(m_control.setPortOpen(true).ok());
  const QByteArray sent("$GPGGA,1\xb0\xff\r\n", 12);
  ASSERT_TRUE(m_pty.write(sent));
  for (int i = 0; i < 20 && m_control.inBufferCount() < sent.size(); ++i) {
    m_control.waitForInput(100);
  }
  EXPECT_EQ(m_control.inBufferCount(), sent.size());
  EXPECT_EQ(m_control.input(), QString::fromLatin1(sent));
  EXPECT_EQ(m_control.inBufferCount(), 0);

  // Closing drops what waits.
  ASSERT_TRUE(m_pty.write("$GPRMC,stale\r\n"));
  ASSERT_TRUE(m_control.waitForInput(2000));
  m_control.setPortOpen(false);
  EXPECT_EQ(m_control.inBufferCount(), 0);
  ASSERT_TRUE(m_control.setPortOpen(true).ok());
  EXPECT_TRUE(m_control.input().isEmpty());
}

// Missing devices are told at once, naming device and port, and never stall a scan.
TEST_F(CommControlTest, MissingDevicesGive8002Quickly) {
  QElapsedTimer clock;
  clock.start();
  for (std::int16_t number = 2; number <= 29; ++number) {
    ASSERT_TRUE(m_control.setCommPort(number).ok());
    const CommResult result = m_control.setPortOpen(true);
    EXPECT_EQ(result.number, comInvalidPort) << number;
    EXPECT_TRUE(result.description.contains(PortDevice(number))) << number;
    EXPECT_TRUE(result.description.contains(QStringLiteral("Com%1").arg(number))) << number;
  }
  EXPECT_LT(clock.elapsed(), 1000);
}

}  // namespace
}  // namespace marvento
