#include "platform/CommControl.h"

#include "platform/Numbers.h"

#include "platform/Settings.h"

#include <QFileInfo>
#include <QSerialPort>
#include <QStringList>

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace marvento {

namespace {

constexpr int kFirstPort = 1;
constexpr int kLastPort = 29;

// Upper bound of read passes in one take-in, so that a fast stream cannot hold it forever.
constexpr int kMaxReadPasses = 64;

QString defaultDevice(int number) {
  if (number <= 8) return QStringLiteral("/dev/ttyS%1").arg(number - 1);
  if (number <= 18) return QStringLiteral("/dev/ttyUSB%1").arg(number - 9);
  if (number <= 28) return QStringLiteral("/dev/ttyACM%1").arg(number - 19);
  return QStringLiteral("/dev/rfcomm0");
}

// What opening the device by hand tells before the port object tries: the system's error
// number (ENOTTY for a device that is no terminal, such as /dev/null), and whether another
// program holds it exclusively (TIOCEXCL, as gpsd does). Root may open such a device all the
// same, but would then steal the other program's data.
struct DeviceProbe {
  int error = 0;
  bool exclusive = false;
};

DeviceProbe probeDevice(const QByteArray& nativePath) {
  const int fd = ::open(nativePath.constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) return {errno, false};
  DeviceProbe probe;
  int exclusive = 0;
  if (!::isatty(fd)) {
    probe.error = ENOTTY;
  } else {
    probe.exclusive = ::ioctl(fd, TIOCGEXCL, &exclusive) == 0 && exclusive != 0;
  }
  ::close(fd);
  return probe;
}

QString portName(int number) {
  return QStringLiteral("Com%1").arg(number);
}

CommResult failure(int number, const QString& description) {
  return {number, description};
}

// The group a user must join to open the device; "dialout" when the device's own group
// is none a user would be put into.
QString accessGroup(const struct stat& info) {
  if (info.st_gid != 0) {
    if (const struct group* entry = getgrgid(info.st_gid)) {
      return QString::fromLocal8Bit(entry->gr_name);
    }
  }
  return QStringLiteral("dialout");
}

// The error's symbolic name, which reads the same in every language ("ELOOP").
QString errorName(int error) {
  if (const char* name = ::strerrorname_np(error)) return QString::fromLatin1(name);
  return QString::number(error);
}

QSerialPort::Parity toParity(char parity) {
  switch (parity) {
    case 'E': return QSerialPort::EvenParity;
    case 'O': return QSerialPort::OddParity;
    case 'M': return QSerialPort::MarkParity;
    case 'S': return QSerialPort::SpaceParity;
    default: return QSerialPort::NoParity;
  }
}

QSerialPort::StopBits toStopBits(int tenths) {
  switch (tenths) {
    case 15: return QSerialPort::OneAndHalfStop;
    case 20: return QSerialPort::TwoStop;
    default: return QSerialPort::OneStop;
  }
}

}  // namespace

CommResult DeviceOpenFailure(int error, const QString& path, const QString& name,
                             const QString& group) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENODEV:
    case ENXIO:
      return failure(comInvalidPort,
                     QStringLiteral("Das Gerät %1 (%2) ist nicht vorhanden.").arg(path, name));
    case ENOTTY:
    case EISDIR:
      return failure(comNotOpen,
                     QStringLiteral("%1 (%2) ist keine serielle Schnittstelle.").arg(path, name));
    case EACCES:
    case EPERM:
      return failure(
          comPermissionDenied,
          QStringLiteral("Keine Berechtigung für %1. Bitte den Benutzer in die Gruppe %2 "
                         "aufnehmen und neu anmelden.")
              .arg(path, group.isEmpty() ? QStringLiteral("dialout") : group));
    case EBUSY:
      return failure(comPortOpen, QStringLiteral("Das Gerät %1 (%2) wird schon von einem anderen "
                                                 "Programm verwendet.")
                                      .arg(path, name));
    case EIO:
      // A device node without hardware behind it, as the kernel keeps for ttyS ports.
      return failure(comNotOpen,
                     QStringLiteral("Das Gerät %1 (%2) lässt sich nicht öffnen: keine Hardware "
                                    "oder Ein-/Ausgabefehler.")
                         .arg(path, name));
    case ELOOP:
      return failure(comInvalidPort,
                     QStringLiteral("Der Pfad %1 (%2) führt über zu viele symbolische "
                                    "Verknüpfungen.")
                         .arg(path, name));
    case ENAMETOOLONG:
      return failure(comInvalidPort,
                     QStringLiteral("Der Pfad %1 (%2) ist zu lang.").arg(path, name));
    default:
      return failure(comOpenFailed,
                     QStringLiteral("Das Gerät %1 (%2) lässt sich nicht öffnen (Systemfehler %3).")
                         .arg(path, name, errorName(error)));
  }
}

namespace {
constexpr qint64 kReadBufferBytes = 16 * 1024;
}  // namespace

std::optional<std::int16_t> ComNumberOf(const QString& comPort) {
  if (comPort.size() < 3) return std::nullopt;
  return ToInt16(Val(QStringView(comPort).mid(3)));
}

QString PortDevice(int number) {
  if (number < kFirstPort || number > kLastPort) return {};
  const QString path = GetPortDevice(number);
  return path.isEmpty() ? defaultDevice(number) : path;
}

std::optional<std::int16_t> PortForDevice(const QString& path, QString& reason) {
  struct stat info {};
  if (::stat(QFile::encodeName(path).constData(), &info) != 0) {
    reason = QStringLiteral(
                 "Das Gerät %1 ist nicht vorhanden. Bitte Com1 bis Com29 oder den "
                 "Pfad eines angeschlossenen Empfängers angeben, etwa /dev/ttyUSB0.")
                 .arg(path);
    return std::nullopt;
  }
  if (!S_ISCHR(info.st_mode)) {
    reason = QStringLiteral("%1 ist keine serielle Schnittstelle.").arg(path);
    return std::nullopt;
  }
  for (int number = kFirstPort; number <= kLastPort; ++number) {
    if (PortDevice(number) == path) return static_cast<std::int16_t>(number);
  }
  const QString target = QFileInfo(path).canonicalFilePath();
  for (int number = kFirstPort; number <= kLastPort; ++number) {
    if (QFileInfo(PortDevice(number)).canonicalFilePath() == target) {
      SavePortDevice(number, path);
      return static_cast<std::int16_t>(number);
    }
  }
  for (int number = kLastPort; number >= kFirstPort; --number) {
    if (!QFileInfo::exists(PortDevice(number))) {
      SavePortDevice(number, path);
      return static_cast<std::int16_t>(number);
    }
  }
  reason = QStringLiteral("Für %1 ist keine Schnittstellennummer mehr frei.").arg(path);
  return std::nullopt;
}

std::optional<LineSettings> ParseLineSettings(const QString& settings) {
  const QStringList fields = settings.split(u',');
  if (fields.size() > 4) return std::nullopt;

  LineSettings line;
  bool ok = false;
  const QString rate = fields[0].trimmed();
  // Digits only: toInt would also take a sign or blanks inside.
  for (const QChar c : rate) {
    if (!c.isDigit()) return std::nullopt;
  }
  line.rate = rate.toInt(&ok);
  if (!ok || line.rate <= 0) return std::nullopt;

  if (fields.size() > 1) {
    const QString parity = fields[1].trimmed().toUpper();
    if (parity.size() != 1 || !QStringLiteral("NEOMS").contains(parity)) return std::nullopt;
    line.parity = parity[0].toLatin1();
  }
  if (fields.size() > 2) {
    line.dataBits = fields[2].trimmed().toInt(&ok);
    if (!ok || line.dataBits < 5 || line.dataBits > 8) return std::nullopt;
  }
  if (fields.size() > 3) {
    const QString stop = fields[3].trimmed();
    if (stop == u"1") {
      line.stopTenths = 10;
    } else if (stop == u"1.5") {
      line.stopTenths = 15;
    } else if (stop == u"2") {
      line.stopTenths = 20;
    } else {
      return std::nullopt;
    }
  }
  return line;
}

CommControl::CommControl(QObject* parent)
    : QObject(parent), m_port(std::make_unique<QSerialPort>()) {
  // What waits beyond this stays in the system's buffer of the device: a port that delivers
  // faster than it is read cannot fill the memory.
  m_port->setReadBufferSize(kReadBufferBytes);
  connect(m_port.get(), &QSerialPort::readyRead, this, [this] {
    if (!checkHangUp()) emit readyRead();
  });
  // A device that hangs up makes every read fail or return nothing; without closing the
  // port here its notifier would fire without end.
  connect(m_port.get(), &QSerialPort::errorOccurred, this,
          [this](QSerialPort::SerialPortError error) {
            if (error == QSerialPort::ResourceError || error == QSerialPort::ReadError) {
              checkHangUp();
            }
          });
}

CommControl::~CommControl() = default;

CommResult CommControl::setCommPort(std::int16_t port) {
  if (m_port->isOpen()) {
    return failure(comPortOpen, QStringLiteral("Die Schnittstelle %1 (%2) ist bereits geöffnet.")
                                    .arg(portName(m_commPort), device()));
  }
  if (port < kFirstPort || port > kLastPort) {
    return failure(
        comInvalidPort,
        QStringLiteral("Die Schnittstelle %1 gibt es nicht, erlaubt sind Com1 bis Com29.")
            .arg(portName(port)));
  }
  m_commPort = port;
  return {};
}

std::int16_t CommControl::commPort() const {
  return m_commPort;
}

CommResult CommControl::setSettings(const QString& settings) {
  m_settings = settings;
  return {};
}

QString CommControl::settings() const {
  return m_settings;
}

bool CommControl::portOpen() const {
  return m_port->isOpen();
}

CommResult CommControl::setPortOpen(bool open) {
  if (open) return this->open();
  if (m_port->isOpen()) {
    // Drop what the system still holds, so that the next opening starts empty.
    m_port->clear(QSerialPort::Input);
    m_port->close();
  }
  m_buffer.clear();
  return {};
}

CommResult CommControl::open() {
  const QString path = device();
  const QString name = portName(m_commPort);
  if (m_port->isOpen()) {
    return failure(
        comPortOpen,
        QStringLiteral("Die Schnittstelle %1 (%2) ist bereits geöffnet.").arg(name, path));
  }

  const QByteArray nativePath = path.toLocal8Bit();
  struct stat info {};
  if (::stat(nativePath.constData(), &info) != 0) return DeviceOpenFailure(errno, path, name);
  // A regular file or a folder opens or fails with reasons that name no serial port.
  if (!S_ISCHR(info.st_mode)) return DeviceOpenFailure(ENOTTY, path, name);
  // The port's lock reports a busy device as a permission error, so a missing right is
  // told apart here, before the opening.
  if (::faccessat(AT_FDCWD, nativePath.constData(), R_OK | W_OK, AT_EACCESS) != 0 &&
      errno == EACCES) {
    return DeviceOpenFailure(EACCES, path, name, accessGroup(info));
  }
  const DeviceProbe probe = probeDevice(nativePath);
  if (probe.exclusive) return DeviceOpenFailure(EBUSY, path, name);
  if (probe.error != 0) return DeviceOpenFailure(probe.error, path, name, accessGroup(info));

  m_port->setPortName(path);
  if (!m_port->open(QIODevice::ReadWrite)) {
    const QSerialPort::SerialPortError error = m_port->error();
    m_port->clearError();
    switch (error) {
      // The device answered the probe; what fails now is the lock another program holds.
      case QSerialPort::PermissionError:
      case QSerialPort::OpenError: return DeviceOpenFailure(EBUSY, path, name);
      case QSerialPort::DeviceNotFoundError: return DeviceOpenFailure(ENOENT, path, name);
      case QSerialPort::ResourceError: return DeviceOpenFailure(EIO, path, name);
      case QSerialPort::UnsupportedOperationError: return DeviceOpenFailure(ENOTTY, path, name);
      default:
        return failure(comOpenFailed,
                       QStringLiteral("Das Gerät %1 (%2) lässt sich nicht öffnen (Fehler %3 des "
                                      "seriellen Anschlusses).")
                           .arg(path, name)
                           .arg(static_cast<int>(error)));
    }
  }

  // The settings are checked only now, so that a busy or missing device is reported as such
  // whatever the settings text holds.
  const std::optional<LineSettings> line = ParseLineSettings(m_settings);
  if (!line) {
    m_port->close();
    return failure(
        comInvalidSettings,
        QStringLiteral("Ungültige Schnittstellenparameter „%1“ für %2.").arg(m_settings, path));
  }
  const bool applied = m_port->setBaudRate(line->rate) &&
                       m_port->setParity(toParity(line->parity)) &&
                       m_port->setDataBits(static_cast<QSerialPort::DataBits>(line->dataBits)) &&
                       m_port->setStopBits(toStopBits(line->stopTenths)) &&
                       m_port->setFlowControl(m_handshaking == 0 ? QSerialPort::NoFlowControl
                                                                 : QSerialPort::HardwareControl);
  if (!applied) {
    m_port->clearError();
    m_port->close();
    return failure(
        comSetStateFailed,
        QStringLiteral("Das Gerät %1 nimmt die Parameter „%2“ nicht an.").arg(path, m_settings));
  }
  m_buffer.clear();
  return {};
}

bool CommControl::takeIn() {
  if (!m_port->isOpen()) return false;
  // A zero wait polls the descriptor once and reads what is there, without blocking.
  for (int pass = 0; pass < kMaxReadPasses && m_port->waitForReadyRead(0); ++pass) {
  }
  const QByteArray arrived = m_port->isOpen() ? m_port->readAll() : QByteArray();
  m_buffer += arrived;
  if (m_port->isOpen() && m_port->error() != QSerialPort::NoError) {
    m_port->clearError();
    checkHangUp();
  }
  return !arrived.isEmpty();
}

bool CommControl::checkHangUp() {
  if (!m_port->isOpen()) return false;
  const int fd = static_cast<int>(m_port->handle());
  pollfd state{fd, POLLIN, 0};
  const bool hangUp = ::poll(&state, 1, 0) == 1 && (state.revents & (POLLHUP | POLLERR | POLLNVAL));
  struct stat info {};
  const bool gone = ::stat(device().toLocal8Bit().constData(), &info) != 0;
  if (!hangUp && !gone) return false;
  m_port->clearError();
  m_port->close();
  m_buffer.clear();
  emit hungUp();
  return true;
}

int CommControl::inBufferCount() {
  takeIn();
  return static_cast<int>(m_buffer.size());
}

QString CommControl::input() {
  takeIn();
  const qsizetype length =
      m_inputLen > 0 ? std::min<qsizetype>(m_inputLen, m_buffer.size()) : m_buffer.size();
  const QString text = QString::fromLatin1(m_buffer.constData(), length);
  // All taken: the memory of a large burst goes back at once.
  if (length == m_buffer.size()) {
    m_buffer.clear();
  } else {
    m_buffer.remove(0, length);
  }
  return text;
}

bool CommControl::waitForInput(int msecs) {
  if (takeIn()) return true;
  if (!m_port->isOpen()) return false;
  m_port->waitForReadyRead(msecs);
  return takeIn();
}

QString CommControl::device() const {
  return PortDevice(m_commPort);
}

}  // namespace marvento
