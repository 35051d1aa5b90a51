// gpsd against a real daemon (/usr/sbin/gpsd) fed through a pseudo-terminal by a receiver
// that sends "$GN" sentences, as multi-system receivers do: the client alone, and gpsd as the
// position source of the window, with the same fields, panels and height average as a port.

#include "app/frmMain.h"
#include "gps/GpsdClient.h"
#include "height/HeightTable.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "support/GpsdDaemon.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"
#include "support/RealBoxes.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTimer>
#include <QtTest>

#include <chrono>
#include <cmath>
#include <memory>
#include <optional>

using namespace marvento;
using namespace std::chrono_literals;
using marvento::test::GpsdDaemon;
using marvento::test::IsolatedUser;
using marvento::test::Program;

class tst_GpsdSource : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    m_user = std::make_unique<IsolatedUser>();
    SaveSetting(SettingKey::Gps, QStringLiteral("GPS an"));
    SaveSetting(SettingKey::Com, QStringLiteral("gpsd"));
    SaveSetting(SettingKey::GradDezimal, QStringLiteral("True"));
  }
  void cleanup() {
    m_feeder.stop();
    m_feeder.disconnect();
    m_client.reset();
    m_gpsd.reset();
    m_pty.reset();
    m_user.reset();
  }

  // The client against a daemon whose receiver says nothing, until the daemon stops.
  void clientOutcomesOfASilentReceiver() {
    startGpsd(nullptr);
    const QString address = m_gpsd->address();
    const GpsdResult silent = ask(address, 1500ms);
    QCOMPARE(silent.outcome, GpsdOutcome::Silent);
    QCOMPARE(silent.message,
             QStringLiteral("Zurzeit kein GPS-Empfang über gpsd (%1)").arg(address));

    int calls = 0;
    m_client->request(address, 300ms, [&](const GpsdResult&) { ++calls; });
    QVERIFY(m_client->busy());
    m_client->cancel();
    QVERIFY(!m_client->busy());
    QTest::qWait(800);
    QCOMPARE(calls, 0);

    QTimer::singleShot(700, this, [this] { m_gpsd->stop(); });
    const GpsdResult closed = ask(address, 10s);
    QCOMPARE(closed.outcome, GpsdOutcome::Closed);
    QVERIFY(closed.message.contains(address));
    QVERIFY(closed.message.contains(u"sudo systemctl start gpsd"));
    // The next request finds nobody listening.
    QCOMPARE(ask(address, 2s).outcome, GpsdOutcome::Refused);
  }

  // Answered from the event loop like every other outcome, though known at once.
  void clientRefusesABadAddress() {
    const QString address = QStringLiteral("127.0.0.1:gpsd");
    const GpsdResult r = ask(address, 2s);
    QCOMPARE(r.outcome, GpsdOutcome::BadAddress);
    QVERIFY2(r.message.contains(address), qPrintable(r.message));
    QVERIFY(!r.message.contains(u"sudo systemctl start gpsd"));
  }

  // A fix from gpsd fills the own station like a receiver on a port does.
  void fixFillsTheOwnStation() {
    startGpsd(&test::fixCycle);
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS an (gpsd)"));
    // Polls until the height has come too: the first report of a cycle may precede it.
    const auto pollUntilHeight = [&] {
      if (w->isPolling()) return false;
      if (w->heights().figures().mode != 0.0f) return true;
      w->Timer1_Timer();
      return false;
    };
    QTRY_VERIFY2_WITH_TIMEOUT(pollUntilHeight(), qPrintable(w->lbInfo->text()), 10000);
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JN58SC"));
    QVERIFY(std::fabs(QLocale().toDouble(w->tbMyLg->text().trimmed()) - (11 + 31.0 / 60)) < 1e-6);
    QVERIFY(std::fabs(QLocale().toDouble(w->tbMyBr->text().trimmed()) - (48 + 7.038 / 60)) < 1e-6);
    // The GGA made from the fix reached the height average (545.4 m, 5 satellites).
    QCOMPARE(w->heights().figures().mode, 545.4f);
    // Numbers as the machine's locale writes them.
    const auto local = [](QString text) { return text.replace(u',', QLocale().decimalPoint()); };
    QCOMPARE(w->lbInfo->text(), local(QStringLiteral("GPS - Antennenhöhe: 545,4 m ü. NN (5)")));
    // Speed and course came back from gpsd's metres per second to the receiver's knots.
    QVERIFY(w->Panel2->text().startsWith(u"12:00:"));
    const QString course = QStringLiteral("GPS - Geschwindigkeit: 12,5 Kn  Kurs: 84,4 ° (Stand: ");
    QCOMPARE(w->lbKurs->text(), local(course) + w->Panel2->text() + u')');
    QCOMPARE(program.state().GpsStatus, QStringLiteral("GPS an"));
    QCOMPARE(boxes.count(), 0);
  }

  // Before its first fix gpsd counts as a silent receiver: tries are counted and named.
  void noFixYetIsCounted() {
    startGpsd(&test::noFixCycle);
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    w->Timer1_Timer();
    QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 8000);
    QCOMPARE(w->lbInfo->text(),
             QStringLiteral("1. Versuch/3 : gpsd (%1) meldet noch keine Position")
                 .arg(m_gpsd->address()));
    QCOMPARE(boxes.count(), 0);
  }

  // No daemon at the address: after the tries, a real box names it and says how to start
  // gpsd, and reception is off.
  void missingDaemonSwitchesReceptionOff() {
    const QString address = QStringLiteral("127.0.0.1:%1").arg(test::freePort());
    SaveSetting(SettingKey::Gpsd, address);
    test::RealBoxes boxes(Qt::Key_Return);
    Program program;
    frmMain* w = program.window();
    for (int attempt = 1; attempt <= 3; ++attempt) {
      w->Timer1_Timer();
      QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 5000);
      if (attempt < 3) {
        QVERIFY2(w->lbInfo->text().startsWith(QStringLiteral("%1. Versuch/3 : ").arg(attempt)),
                 qPrintable(w->lbInfo->text()));
        QVERIFY(w->lbInfo->text().contains(address));
        QVERIFY(w->lbInfo->text().contains(u"sudo systemctl start gpsd"));
      }
    }
    QCOMPARE(boxes.titles(), QStringList{QStringLiteral(" Fehler")});
    QCOMPARE(program.state().GpsStatus, QStringLiteral("GPS aus"));
    QVERIFY(!w->Timer1->isActive());
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS aus (gpsd)"));
  }

 private:
  // A daemon on the pseudo-terminal, fed one receiver cycle every 200 ms unless cycle is null.
  void startGpsd(QByteArray (*cycle)(int)) {
    if (!QFileInfo(test::kGpsd).isExecutable()) {
      QSKIP("gpsd is not installed (apt-get install gpsd)");
    }
    m_pty = std::make_unique<test::Pty>();
    QVERIFY(m_pty->ok());
    m_gpsd = std::make_unique<GpsdDaemon>();
    QVERIFY2(m_gpsd->start(m_pty->path()), "gpsd did not start listening");
    SaveSetting(SettingKey::Gpsd, m_gpsd->address());
    if (!cycle) return;
    connect(&m_feeder, &QTimer::timeout, this, [this, cycle] { m_pty->write(cycle(m_second++)); });
    m_feeder.start(200);
  }

  // One request of the client, answered exactly once and never from inside request().
  GpsdResult ask(const QString& address, std::chrono::milliseconds wait) {
    if (!m_client) m_client = std::make_unique<GpsdClient>();
    std::optional<GpsdResult> result;
    int calls = 0;
    m_client->request(address, wait, [&](const GpsdResult& r) {
      result = r;
      ++calls;
    });
    [&] { QCOMPARE(calls, 0); }();
    QElapsedTimer waited;
    waited.start();
    while (!result && waited.elapsed() < wait.count() + 3000) QTest::qWait(20);
    QTest::qWait(50);
    [&] { QCOMPARE(calls, 1); }();
    return result.value_or(GpsdResult{GpsdOutcome::SocketError, {}, QStringLiteral("no answer")});
  }

  std::unique_ptr<IsolatedUser> m_user;
  std::unique_ptr<test::Pty> m_pty;
  std::unique_ptr<GpsdDaemon> m_gpsd;
  std::unique_ptr<GpsdClient> m_client;
  QTimer m_feeder;
  int m_second = 0;
};

QTEST_MAIN(tst_GpsdSource)
#include "tst_GpsdSource.moc"
