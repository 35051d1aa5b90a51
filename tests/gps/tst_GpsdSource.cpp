// gpsd as the position source of the window, against a real gpsd fed by a multi-system
// receiver on a pseudo-terminal: the same fields, panels and height average as with a port.

#include "app/frmMain.h"
#include "height/HeightTable.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "support/GpsdDaemon.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"
#include "support/RealBoxes.h"

#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QTimer>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace marvento;
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
    m_gpsd.reset();
    m_pty.reset();
    m_user.reset();
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
    // The GGA's own line: the height and the satellites used.
    QVERIFY2(w->lbInfo->text().contains(QStringLiteral("545") + QLocale().decimalPoint() +
                                        QStringLiteral("4 m")) &&
                 w->lbInfo->text().contains(QStringLiteral("(5)")),
             qPrintable(w->lbInfo->text()));
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
    QStringList texts;
    Program program;
    frmMain* w = program.window();
    for (int attempt = 1; attempt <= 3; ++attempt) {
      w->Timer1_Timer();
      QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 5000);
      if (attempt < 3) {
        QVERIFY2(w->lbInfo->text().startsWith(QStringLiteral("%1. Versuch/3 : ").arg(attempt)),
                 qPrintable(w->lbInfo->text()));
        QVERIFY(w->lbInfo->text().contains(address));
      }
    }
    QCOMPARE(boxes.titles(), QStringList{QStringLiteral(" Fehler")});
    QCOMPARE(program.state().GpsStatus, QStringLiteral("GPS aus"));
    QVERIFY(!w->Timer1->isActive());
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS aus (gpsd)"));
  }

 private:
  void startGpsd(QByteArray (*cycle)(int)) {
    if (!QFileInfo(test::kGpsd).isExecutable()) {
      QSKIP("gpsd is not installed (apt-get install gpsd)");
    }
    m_pty = std::make_unique<test::Pty>();
    QVERIFY(m_pty->ok());
    m_gpsd = std::make_unique<GpsdDaemon>();
    QVERIFY2(m_gpsd->start(m_pty->path()), "gpsd did not start listening");
    SaveSetting(SettingKey::Gpsd, m_gpsd->address());
    connect(&m_feeder, &QTimer::timeout, this, [this, cycle] { m_pty->write(cycle(m_second++)); });
    m_feeder.start(200);
  }

  std::unique_ptr<IsolatedUser> m_user;
  std::unique_ptr<test::Pty> m_pty;
  std::unique_ptr<GpsdDaemon> m_gpsd;
  QTimer m_feeder;
  int m_second = 0;
};

QTEST_MAIN(tst_GpsdSource)
#include "tst_GpsdSource.moc"
