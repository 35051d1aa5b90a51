#pragma once

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

class QSerialPort;

namespace marvento {

// Error numbers of the serial control. Any other non-zero number is a failure of another
// kind, whose description says in German what went wrong and on which device.
enum CommError : int {
  comNoError = 0,
  comInvalidPort = 8002,  // no such port number or no such device
  comPortOpen = 8005,     // the port is open already, here or in another program
  comNotOpen = 8012,      // the device could not be opened
  // Numbers of the other failures, all counted as "opened" by the port scan.
  comPermissionDenied = 70,  // no right to open the device (not in its group)
  comInvalidSettings = 380,  // the settings text cannot be read, e.g. "abc,N,8,1"
  comOpenFailed = 8010,      // the device refused to open for another reason
  comSetStateFailed = 8015,  // the device refused the rate or the line settings
};

struct CommResult {
  int number = comNoError;
  QString description;
  bool ok() const { return number == comNoError; }
};

// What a user is told when the device of a port cannot be opened, for the system's error
// number: no such device (8002), no serial port (8012), no right to it (naming `group`, or
// dialout when empty), held by another program (8005), no hardware behind it (8012); any
// other error names its symbolic name in a German sentence.
CommResult DeviceOpenFailure(int error, const QString& path, const QString& name,
                             const QString& group = {});

// The device behind a port number 1 to 29: Com1-Com8 are /dev/ttyS0-7, Com9-Com18
// /dev/ttyUSB0-9, Com19-Com28 /dev/ttyACM0-9, Com29 /dev/rfcomm0. A key "ComN" in the
// settings group "Ports" overrides the path. Empty for a number outside 1 to 29.
QString PortDevice(int number);

// Makes a device path typed by the user the device of a port number and returns that
// number: the number whose device it is or resolves to (a udev link such as
// /dev/serial/by-id/... is stored as that port's path, so it survives a renumbering),
// else the highest number whose own device is absent. Nothing, with a German reason,
// for a path that does not exist or is no character device, or when no number is free.
std::optional<std::int16_t> PortForDevice(const QString& path, QString& reason);

// The number behind the first three characters of a port name, rounded half to even:
// "Com1" 1, "COM12" 12, "Xyz7" 7, "Com" 0, "Com1x" 1. Nothing for a text shorter than three
// characters or a number outside 16 bits.
std::optional<std::int16_t> ComNumberOf(const QString& comPort);

// The serial parameters of a settings text "rate,parity,data bits,stop bits", such as
// "4800,N,8,1". Parity is one of N, E, O, M, S (any case); data bits 5 to 8; stop bits 1,
// 1.5 or 2. Missing fields after the rate take N, 8 and 1. Nothing when the rate is no whole
// number above 0 or another field cannot be read.
struct LineSettings {
  std::int32_t rate = 4800;
  char parity = 'N';
  int dataBits = 8;
  int stopTenths = 10;  // 10, 15 or 20
  bool operator==(const LineSettings&) const = default;
};
std::optional<LineSettings> ParseLineSettings(const QString& settings);

// The one serial port object of the program (MSComm1): a port chosen by number, opened
// and closed on request, read when it says that something arrived.
class CommControl : public QObject {
  Q_OBJECT

 public:
  explicit CommControl(QObject* parent = nullptr);
  ~CommControl() override;

  // 8005 while the port is open; 8002 for a number outside 1 to 29.
  CommResult setCommPort(std::int16_t port);
  std::int16_t commPort() const;

  // "4800,N,8,1" and the like; applied at the next opening. A rate that is no number
  // makes that opening fail (not this call).
  CommResult setSettings(const QString& settings);
  QString settings() const;

  // Kept for completeness: 0 = read all that waits, text mode, no handshake.
  void setInputLen(int length) { m_inputLen = length; }
  void setInputMode(int mode) { m_inputMode = mode; }
  void setHandshaking(int handshaking) { m_handshaking = handshaking; }

  bool portOpen() const;
  // Opening: 8005 when open already or held by another program (portOpen() tells the two
  // apart; a device another program opened exclusively counts as held, also for root),
  // 8002 when the device does not exist, another number (with a German description naming the
  // device, and the dialout group when the right to open it is missing) for every other failure.
  // Closing drops whatever still waits.
  CommResult setPortOpen(bool open);

  // Characters waiting to be read, after taking in what the system has for the port.
  int inBufferCount();
  // All waiting characters as text (one character per byte), removed from the buffer.
  QString input();
  // Blocks without spinning until new data arrives or msecs pass; true when data came.
  bool waitForInput(int msecs);

  // The device path that the current port number resolves to.
  QString device() const;

 signals:
  // New characters can be taken in (from the event loop, while the port is open).
  void readyRead();
  // The device went away under the open port (unplugged, pty closed): the port is closed
  // already when this comes.
  void hungUp();

 private:
  CommResult open();
  // Moves what the system holds for the port into m_buffer; true when something came.
  bool takeIn();
  // Closes the port and says so when the device behind it has hung up.
  bool checkHangUp();

  std::unique_ptr<QSerialPort> m_port;
  QByteArray m_buffer;
  std::int16_t m_commPort = 1;
  QString m_settings = QStringLiteral("4800,N,8,1");
  int m_inputLen = 0;
  int m_inputMode = 0;
  int m_handshaking = 0;
};

}  // namespace marvento
