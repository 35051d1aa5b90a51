#pragma once

// A real gpsd (/usr/sbin/gpsd) for tests, on a free loopback port, reading one
// pseudo-terminal; and the sentences of a multi-system receiver to feed it.

#include <QByteArray>
#include <QHostAddress>
#include <QProcess>
#include <QString>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

namespace marvento::test {

inline const QString kGpsd = QStringLiteral("/usr/sbin/gpsd");

// A loopback port that nothing listens on at the moment.
inline quint16 freePort() {
  QTcpServer server;
  server.listen(QHostAddress::LocalHost, 0);
  return server.serverPort();
}

inline QByteArray sentence(const QByteArray& body) {
  char sum = 0;
  for (const char c : body) sum ^= c;
  return '$' + body + '*' +
         QByteArray::number(static_cast<unsigned char>(sum), 16).rightJustified(2, '0').toUpper() +
         "\r\n";
}

// One second of a multi-system receiver with a fix at 48°07.038' N 11°31.000' E, 545.4 m
// above sea level, 5 satellites used, 12.5 knots on course 84.4°.
inline QByteArray fixCycle(int second) {
  const QByteArray utc =
      QByteArray("1200") + QByteArray::number(second % 60).rightJustified(2, '0');
  return sentence("GNRMC," + utc + ".00,A,4807.0380,N,01131.0000,E,12.5,84.4,231126,,,A") +
         sentence("GNGGA," + utc + ".00,4807.0380,N,01131.0000,E,1,05,1.3,545.4,M,46.9,M,,") +
         sentence("GNGSA,A,3,04,05,09,12,24,,,,,,,,2.5,1.3,2.1") +
         sentence("GPGSV,2,1,05,04,40,083,46,05,17,308,41,09,07,344,39,12,22,228,45") +
         sentence("GPGSV,2,2,05,24,40,083,46") +
         sentence("GNGLL,4807.0380,N,01131.0000,E," + utc + ".00,A,A");
}

// The same receiver before its first fix.
inline QByteArray noFixCycle(int second) {
  const QByteArray utc =
      QByteArray("1200") + QByteArray::number(second % 60).rightJustified(2, '0');
  return sentence("GNRMC," + utc + ".00,V,,,,,,,231126,,,N") +
         sentence("GNGGA," + utc + ".00,,,,,0,00,99.99,,,,,,") +
         sentence("GNGSA,A,1,,,,,,,,,,,,,99.99,99.99,99.99");
}

// Ends a daemon started for a test: politely first, then by force.
inline void StopProcess(QProcess& process) {
  if (process.state() == QProcess::NotRunning) return;
  process.terminate();
  if (!process.waitForFinished(3000)) {
    process.kill();
    process.waitForFinished(3000);
  }
}

// gpsd in the foreground on a free loopback port, reading the pseudo-terminal only.
class GpsdDaemon {
 public:
  ~GpsdDaemon() { stop(); }

  bool start(const QString& device) {
    // Another program may take the port between the look and gpsd's bind; try again then.
    for (int attempt = 0; attempt < 3; ++attempt) {
      m_port = freePort();
      m_process.start(kGpsd, {QStringLiteral("-N"), QStringLiteral("-n"), QStringLiteral("-b"),
                              QStringLiteral("-S"), QString::number(m_port), device});
      if (!m_process.waitForStarted(3000)) return false;
      for (int tries = 0; tries < 50 && m_process.state() == QProcess::Running; ++tries) {
        QTcpSocket probe;
        probe.connectToHost(QHostAddress::LocalHost, m_port);
        if (probe.waitForConnected(100)) return true;
        QTest::qWait(100);
      }
      stop();
    }
    return false;
  }
  void stop() { StopProcess(m_process); }
  QString address() const { return QStringLiteral("127.0.0.1:%1").arg(m_port); }

 private:
  QProcess m_process;
  quint16 m_port = 0;
};

}  // namespace marvento::test
