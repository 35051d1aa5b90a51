// The gpsd client against a real gpsd (/usr/sbin/gpsd), fed through a pseudo-terminal by a
// receiver that sends "$GN" sentences, as multi-system receivers do.

#include "gps/GpsdClient.h"
#include "support/GpsdDaemon.h"
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

using test::fixCycle;
using test::freePort;
using test::kGpsd;
using test::noFixCycle;
using Gpsd = test::GpsdDaemon;

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
