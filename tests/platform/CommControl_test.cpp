#include "platform/CommControl.h"

#include "support/Pty.h"

#include <QElapsedTimer>
#include <QFile>
#include <QScopeGuard>
#include <QSerialPort>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/ioctl.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

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

// Devices that cannot be opened are told in German, with the device, the port and what the
// user can do, never in the system's English words.
TEST_F(CommControlTest, DevicesThatCannotBeOpenedAreToldInGerman) {
  QTemporaryDir dir;
  QFile file(dir.filePath(QStringLiteral("port")));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.close();
  const QString loop = dir.filePath(QStringLiteral("loop"));
  ASSERT_TRUE(QFile::link(dir.filePath(QStringLiteral("loop2")), loop));
  ASSERT_TRUE(QFile::link(loop, dir.filePath(QStringLiteral("loop2"))));
  // Held exclusively (TIOCEXCL), as gpsd holds the receivers it watches.
  const int held = ::open(m_pty.path().toLocal8Bit().constData(), O_RDWR | O_NOCTTY);
  ASSERT_GE(held, 0);
  const auto release = qScopeGuard([held] { ::close(held); });
  ASSERT_EQ(::ioctl(held, TIOCEXCL), 0);

  const struct {
    const char* name;
    QString device;
    int number;
    const char* told;
    int systemError;  // whose English text must not appear
  } cases[] = {
      {"a regular file", file.fileName(), comNotOpen, "ist keine serielle Schnittstelle", ENOTTY},
      {"/dev/null", QStringLiteral("/dev/null"), comNotOpen, "ist keine serielle Schnittstelle",
       ENOTTY},
      {"a folder", dir.path(), comNotOpen, "ist keine serielle Schnittstelle", EISDIR},
      {"a missing path", dir.filePath(QStringLiteral("ttyUSB7")), comInvalidPort,
       "ist nicht vorhanden", ENOENT},
      {"a link loop", loop, comInvalidPort, "zu viele symbolische Verknüpfungen", ELOOP},
      {"a terminal another program holds", m_pty.path(), comPortOpen,
       "wird schon von einem anderen Programm verwendet", EBUSY},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::SetPortDevice(1, c.device);
    const CommResult result = m_control.setPortOpen(true);
    EXPECT_EQ(result.number, c.number);
    EXPECT_FALSE(m_control.portOpen());
    const std::string told = result.description.toStdString();
    EXPECT_NE(told.find(c.device.toStdString() + " (Com1)"), std::string::npos) << told;
    EXPECT_NE(told.find(c.told), std::string::npos) << told;
    EXPECT_EQ(told.find(std::strerror(c.systemError)), std::string::npos) << told;
  }
}

// The failures a root run cannot meet with real files: no right to the device, and the rest.
TEST(DeviceOpenFailure, TellsTheReasonInGerman) {
  const struct {
    int error;
    const char* group;
    int number;
    const char* told;
  } cases[] = {
      {EACCES, "", comPermissionDenied,
       "Keine Berechtigung für /dev/ttyUSB0. Bitte den Benutzer in die Gruppe dialout aufnehmen "
       "und neu anmelden."},
      {EPERM, "uucp", comPermissionDenied,
       "Keine Berechtigung für /dev/ttyUSB0. Bitte den Benutzer in die Gruppe uucp aufnehmen und "
       "neu anmelden."},
      {EBUSY, "", comPortOpen,
       "Das Gerät /dev/ttyUSB0 (Com9) wird schon von einem anderen Programm verwendet."},
      {ENODEV, "", comInvalidPort, "Das Gerät /dev/ttyUSB0 (Com9) ist nicht vorhanden."},
      {ENXIO, "", comInvalidPort, "Das Gerät /dev/ttyUSB0 (Com9) ist nicht vorhanden."},
      {EIO, "", comNotOpen,
       "Das Gerät /dev/ttyUSB0 (Com9) lässt sich nicht öffnen: keine Hardware oder "
       "Ein-/Ausgabefehler."},
      {EPROTO, "", comOpenFailed,
       "Das Gerät /dev/ttyUSB0 (Com9) lässt sich nicht öffnen (Systemfehler EPROTO)."},
  };
  for (const auto& c : cases) {
    const CommResult r = DeviceOpenFailure(c.error, QStringLiteral("/dev/ttyUSB0"),
                                           QStringLiteral("Com9"), QString::fromUtf8(c.group));
    EXPECT_EQ(r.number, c.number) << c.told;
    EXPECT_EQ(r.description.toStdString(), c.told);
  }
}

}  // namespace
}  // namespace marvento
