// The gpsd client against a real gpsd (/usr/sbin/gpsd), fed through a pseudo-terminal by a
// receiver that sends "$GN" sentences, as multi-system receivers do.

#include "gps/GpsdClient.h"
#include "support/Pty.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QtTest>

#include <chrono>
#include <memory>
#include <optional>

using namespace marvento;
using namespace std::chrono_literals;

namespace {

const QString kGpsd = QStringLiteral("/usr/sbin/gpsd");

// A loopback port that nothing listens on at the moment.
quint16 freePort() {
  QTcpServer server;
  server.listen(QHostAddress::LocalHost, 0);
  return server.serverPort();
}

QByteArray sentence(const QByteArray& body) {
  char sum = 0;
  for (const char c : body) sum ^= c;
  return '$' + body + '*' +
         QByteArray::number(static_cast<unsigned char>(sum), 16).rightJustified(2, '0').toUpper() +
         "\r\n";
}

// One second of a multi-system receiver with a fix at 48°07.038' N 11°31.000' E, 545.4 m
// above sea level, 5 satellites used, 12.5 knots on course 84.4°.
QByteArray fixCycle(int second) {
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
QByteArray noFixCycle(int second) {
  const QByteArray utc =
      QByteArray("1200") + QByteArray::number(second % 60).rightJustified(2, '0');
  return sentence("GNRMC," + utc + ".00,V,,,,,,,231126,,,N") +
         sentence("GNGGA," + utc + ".00,,,,,0,00,99.99,,,,,,") +
         sentence("GNGSA,A,1,,,,,,,,,,,,,99.99,99.99,99.99");
}

// gpsd in the foreground on a free loopback port, reading the pseudo-terminal only.
class Gpsd {
 public:
  ~Gpsd() { stop(); }

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
  void stop() {
    if (m_process.state() == QProcess::NotRunning) return;
    m_process.terminate();
    if (!m_process.waitForFinished(3000)) {
      m_process.kill();
      m_process.waitForFinished(3000);
    }
  }
  QString address() const { return QStringLiteral("127.0.0.1:%1").arg(m_port); }

 private:
  QProcess m_process;
  quint16 m_port = 0;
};

}  // namespace

class TestGpsdClient : public QObject {
  Q_OBJECT

 private slots:
  void init();
  void cleanup();
  void fixFromAMultiSystemReceiver();
  void noFixYet();
  void silentReceiver();
  void daemonStoppedDuringARequest();
  void cancelledRequestNeverAnswers();
  void noDaemon_data();
  void noDaemon();

 private:
  void startGpsd();
  // Feeds the receiver's cycles, one every 200 ms, until cleanup.
  void feed(QByteArray (*cycle)(int));
  GpsdResult ask(const QString& address, std::chrono::milliseconds wait);

  std::unique_ptr<test::Pty> m_pty;
  std::unique_ptr<Gpsd> m_gpsd;
  std::unique_ptr<GpsdClient> m_client;
  QTimer m_feeder;
  int m_second = 0;
};

void TestGpsdClient::init() {
  m_pty = std::make_unique<test::Pty>();
  QVERIFY(m_pty->ok());
  m_client = std::make_unique<GpsdClient>();
}

void TestGpsdClient::cleanup() {
  m_feeder.stop();
  m_feeder.disconnect();
  m_client.reset();
  m_gpsd.reset();
  m_pty.reset();
}

void TestGpsdClient::startGpsd() {
  if (!QFileInfo(kGpsd).isExecutable()) QSKIP("gpsd is not installed (apt-get install gpsd)");
  m_gpsd = std::make_unique<Gpsd>();
  QVERIFY2(m_gpsd->start(m_pty->path()), "gpsd did not start listening");
}

void TestGpsdClient::feed(QByteArray (*cycle)(int)) {
  m_second = 0;
  connect(&m_feeder, &QTimer::timeout, this, [this, cycle] { m_pty->write(cycle(m_second++)); });
  m_feeder.start(200);
}

GpsdResult TestGpsdClient::ask(const QString& address, std::chrono::milliseconds wait) {
  std::optional<GpsdResult> result;
  int calls = 0;
  m_client->request(address, wait, [&](const GpsdResult& r) {
    result = r;
    ++calls;
  });
  QTest::qVerify(calls == 0, "calls == 0", "answered from inside request()", __FILE__, __LINE__);
  QElapsedTimer waited;
  waited.start();
  while (!result && waited.elapsed() < wait.count() + 3000) QTest::qWait(20);
  QTest::qWait(50);
  QTest::qVerify(calls == 1, "calls == 1", "one answer per request", __FILE__, __LINE__);
  return result.value_or(GpsdResult{GpsdOutcome::SocketError, {}, QStringLiteral("no answer")});
}

void TestGpsdClient::fixFromAMultiSystemReceiver() {
  startGpsd();
  feed(&fixCycle);
  for (int round = 0; round < 2; ++round) {
    const GpsdResult r = ask(m_gpsd->address(), 5s);
    QCOMPARE(r.outcome, GpsdOutcome::Fix);
    QVERIFY(r.message.isEmpty());
    QVERIFY(r.fix.valid);
    QVERIFY(qAbs(r.fix.lat - (48 + 7.038 / 60)) < 1e-7);
    QVERIFY(qAbs(r.fix.lon - (11 + 31.0 / 60)) < 1e-7);
    QCOMPARE(r.fix.satellitesUsed, std::optional<int>(5));
    QVERIFY(r.fix.speed && qAbs(*r.fix.speed - 12.5 * 1852.0 / 3600.0) < 1e-3);
    QVERIFY(r.fix.course && qAbs(*r.fix.course - 84.4) < 1e-6);
    QCOMPARE(r.fix.utc.date(), QDate(2026, 11, 23));
    QCOMPARE(r.fix.utc.time().hour(), 12);
    // The first report of a cycle may come from the RMC sentence, before the height.
    if (round == 1) QVERIFY(r.fix.altMSL && qAbs(*r.fix.altMSL - 545.4) < 1e-6);
    QTest::qWait(1200);
  }
}

void TestGpsdClient::noFixYet() {
  startGpsd();
  feed(&noFixCycle);
  const GpsdResult r = ask(m_gpsd->address(), 5s);
  QCOMPARE(r.outcome, GpsdOutcome::NoFix);
  QVERIFY(!r.fix.valid);
  QVERIFY(r.message.contains(m_gpsd->address()));
}

void TestGpsdClient::silentReceiver() {
  startGpsd();
  const GpsdResult r = ask(m_gpsd->address(), 1500ms);
  QCOMPARE(r.outcome, GpsdOutcome::Silent);
  QCOMPARE(r.message,
           QStringLiteral("Zur Zeit kein GPS-Empfang über gpsd (%1)").arg(m_gpsd->address()));
}

void TestGpsdClient::daemonStoppedDuringARequest() {
  startGpsd();
  QTimer::singleShot(700, this, [this] { m_gpsd->stop(); });
  const GpsdResult r = ask(m_gpsd->address(), 10s);
  QCOMPARE(r.outcome, GpsdOutcome::Closed);
  QVERIFY(r.message.contains(m_gpsd->address()));
  QVERIFY(r.message.contains(u"sudo systemctl start gpsd"));
  // The next request finds nobody listening.
  QCOMPARE(ask(m_gpsd->address(), 2s).outcome, GpsdOutcome::Refused);
}

void TestGpsdClient::cancelledRequestNeverAnswers() {
  startGpsd();
  int calls = 0;
  m_client->request(m_gpsd->address(), 300ms, [&](const GpsdResult&) { ++calls; });
  QVERIFY(m_client->busy());
  m_client->cancel();
  QVERIFY(!m_client->busy());
  QTest::qWait(800);
  QCOMPARE(calls, 0);
}

void TestGpsdClient::noDaemon_data() {
  QTest::addColumn<QString>("address");
  QTest::addColumn<GpsdOutcome>("outcome");
  QTest::addColumn<bool>("startHint");
  const QString refused = QStringLiteral("127.0.0.1:%1").arg(freePort());
  QTest::newRow("nothing listens") << refused << GpsdOutcome::Refused << true;
  QTest::newRow("no port number") << QStringLiteral("127.0.0.1:gpsd") << GpsdOutcome::BadAddress
                                  << false;
}

void TestGpsdClient::noDaemon() {
  QFETCH(QString, address);
  QFETCH(GpsdOutcome, outcome);
  QFETCH(bool, startHint);
  const GpsdResult r = ask(address, 2s);
  QCOMPARE(r.outcome, outcome);
  QVERIFY2(r.message.contains(address), qPrintable(r.message));
  QCOMPARE(r.message.contains(u"sudo systemctl start gpsd"), startHint);
}

QTEST_MAIN(TestGpsdClient)
#include "tst_GpsdClient.moc"
