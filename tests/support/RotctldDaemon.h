#pragma once

// A real rotctld (hamlib's network rotator daemon) with the dummy rotator (-m 1), which
// starts at north and turns 6° a second; ready once it accepts connections.

#include "support/GpsdDaemon.h"

#include <QDeadlineTimer>
#include <QProcess>
#include <QString>
#include <QTcpSocket>
#include <QtTest>

#include <optional>

namespace marvento::test {

inline const QString kRotctld = QStringLiteral("/usr/bin/rotctld");
inline const QString kLoopback = QStringLiteral("127.0.0.1");

class RotctldDaemon {
 public:
  bool start(quint16 port) {
    m_process.setProgram(kRotctld);
    m_process.setArguments({QStringLiteral("-m"), QStringLiteral("1"), QStringLiteral("-T"),
                            kLoopback, QStringLiteral("-t"), QString::number(port)});
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_process.start();
    if (!m_process.waitForStarted(5000)) return false;
    const QDeadlineTimer deadline(5000);
    while (!deadline.hasExpired()) {
      QTcpSocket socket;
      socket.connectToHost(kLoopback, port);
      if (socket.waitForConnected(200)) return true;
      QTest::qWait(50);
    }
    return false;
  }
  void stop() { StopProcess(m_process); }
  ~RotctldDaemon() { stop(); }

 private:
  QProcess m_process;
};

// Asks the daemon itself, on a connection of its own, where the rotator points.
inline std::optional<double> DaemonAzimuth(quint16 port) {
  QTcpSocket socket;
  socket.connectToHost(kLoopback, port);
  if (!socket.waitForConnected(1000)) return std::nullopt;
  socket.write("p\n");
  QByteArray reply;
  while (reply.count('\n') < 2 && socket.waitForReadyRead(1000)) reply += socket.readAll();
  bool ok = false;
  const double azimuth = reply.split('\n').value(0).trimmed().toDouble(&ok);
  return ok ? std::optional<double>(azimuth) : std::nullopt;
}

}  // namespace marvento::test
