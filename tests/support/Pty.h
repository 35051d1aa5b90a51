#pragma once

// A pseudo-terminal standing in for a serial device: the program opens the slave path as
// its port, and the test writes to and reads from the master side.

#include <QByteArray>
#include <QSettings>
#include <QString>

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

namespace marvento::test {

class Pty {
 public:
  // flags may add O_NONBLOCK for a master that is written faster than it is read.
  explicit Pty(int flags = 0) {
    m_master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | flags);
    if (m_master < 0 || ::grantpt(m_master) != 0 || ::unlockpt(m_master) != 0) return;
    const char* name = ::ptsname(m_master);
    if (name == nullptr) return;
    m_path = QString::fromLocal8Bit(name);
    // Raw from the start: no echo back to the master and no line-end translation.
    const int slave = ::open(name, O_RDWR | O_NOCTTY);
    if (slave >= 0) {
      termios mode{};
      if (::tcgetattr(slave, &mode) == 0) {
        ::cfmakeraw(&mode);
        ::tcsetattr(slave, TCSANOW, &mode);
      }
      ::close(slave);
    }
  }
  ~Pty() { close(); }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;

  bool ok() const { return m_master >= 0 && !m_path.isEmpty(); }
  // The device path a port is pointed at, such as /dev/pts/3.
  const QString& path() const { return m_path; }
  int master() const { return m_master; }

  bool write(const QByteArray& data) const {
    return ::write(m_master, data.constData(), static_cast<size_t>(data.size())) == data.size();
  }
  void close() {
    if (m_master >= 0) ::close(m_master);
    m_master = -1;
  }

 private:
  int m_master = -1;
  QString m_path;
};

// Points port number N at a device path through the settings group "Ports".
inline void SetPortDevice(int number, const QString& path) {
  QSettings store(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                  QStringLiteral("Marvento"));
  store.setValue(QStringLiteral("Ports/Com%1").arg(number), path);
}

// Points all 29 port numbers at paths that do not exist, so that the machine's own serial
// devices play no part in a test.
inline void SetNoPortDevices() {
  QSettings store(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                  QStringLiteral("Marvento"));
  for (int number = 1; number <= 29; ++number) {
    store.setValue(QStringLiteral("Ports/Com%1").arg(number),
                   QStringLiteral("/nonexistent/marvento-test/tty%1").arg(number));
  }
}

inline void ClearPortDevices() {
  QSettings store(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                  QStringLiteral("Marvento"));
  store.remove(QStringLiteral("Ports"));
}

}  // namespace marvento::test
