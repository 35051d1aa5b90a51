#include "app/frmMain.h"

#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "support/ProgramFixture.h"

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QLockFile>
#include <QLocale>
#include <QTimer>
#include <QtTest>

using namespace marvento;
using marvento::test::IsolatedUser;
using marvento::test::Program;

class tst_frmMain : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

  // Any stored status but "GPS aus" starts the reception timer.
  void storedValuesReachTheWindow() {
    IsolatedUser user;
    SaveSetting(QStringLiteral("GPS-Interval"), QStringLiteral("66"));
    SaveSetting(QStringLiteral("Radius"), QStringLiteral("-1"));
    SaveSetting(QStringLiteral("GPS"), QStringLiteral("GPS irgendwas"));
    Program program;
    frmMain* w = program.window();
    QCOMPARE(w->Timer1->interval(), 65000);
    QVERIFY(w->Combo1->currentText().isEmpty());
    QVERIFY(w->Timer1->isActive());
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS irgendwas (Com1)"));
  }

  void newClearsTheFieldsButTheHomeLocator() {
    IsolatedUser user;
    SaveSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("JO62QM"));
    Program program;
    frmMain* w = program.window();
    for (QLineEdit* f : {w->tbMyLoc, w->tbFremdLoc, w->tbMyLg, w->tbFremdBr}) {
      f->setText(QStringLiteral("x"));
    }
    w->mnuNeu->trigger();
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62QM"));
    for (QLineEdit* f : {w->tbFremdLoc, w->tbMyLg, w->tbFremdBr}) QVERIFY(f->text().isEmpty());
    QCOMPARE(w->windowTitle(), QStringLiteral("Marvento "));
  }

  void closingAsksFirst_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("minimised");
    QTest::newRow("cancel") << int(vbCancel) << false;
    QTest::newRow("ok when minimised") << int(vbOK) << true;
  }
  // With reception on: a cancelled close leaves the timer running.
  void closingAsksFirst() {
    QFETCH(int, answer);
    QFETCH(bool, minimised);
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    program.state().GpsStatus = QStringLiteral("GPS an");
    w->Timer1->start();
    if (minimised) {
      w->showMinimized();
      QCoreApplication::processEvents();
    }
    MsgBoxRecorder boxes;
    boxes.answer(answer);
    w->mnuBeenden->trigger();
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().prompt, QStringLiteral("Programm wirklich beenden ?"));
    QCOMPARE(boxes.last().style, 33);
    QCOMPARE(boxes.last().title, QStringLiteral(" ") + w->windowTitle() + QStringLiteral(": Programmende"));
    if (answer == vbCancel) {
      QVERIFY(w->isVisible());
      QVERIFY(w->Timer1->isActive());
      QVERIFY(!user.stored(QStringLiteral("GPS")));
      return;
    }
    QVERIFY(!w->isVisible());
    QCOMPARE(user.stored(QStringLiteral("GPS")), QStringLiteral("GPS an"));
    QCOMPARE(user.stored(QStringLiteral("MainLeft")).has_value(), !minimised);
  }

  void secondInstanceEndsWithoutSaving() {
    IsolatedUser user;
    QLockFile other(user.path() + QStringLiteral("/marvento.lock"));
    QVERIFY(other.tryLock(0));
    bool ended = false;
    auto saved = frmMain::exitProcess();
    frmMain::exitProcess() = [&] { ended = true; };
    MsgBoxRecorder boxes;
    {
      Program program;
      QVERIFY(ended);
      QCOMPARE(boxes.count(), 1);
      QCOMPARE(boxes.last().title, QStringLiteral("Marvento läuft bereits "));
      QVERIFY(boxes.last().prompt.startsWith(QStringLiteral("Das Programm zweimal zu aktivieren ist nicht ratsam. Wenn Sie diese möglichkeit")));
    }
    frmMain::exitProcess() = saved;
    QVERIFY(!QFile::exists(user.configFile()));
  }

  void staleLockOfACrashedInstanceDoesNotLockOut() {
    IsolatedUser user;
    QFile stale(user.path() + QStringLiteral("/marvento.lock"));
    QVERIFY(stale.open(QIODevice::WriteOnly));
    // The lock of a process that no longer runs, on this machine.
    stale.write("999999\nmarvento\n" + QSysInfo::machineHostName().toUtf8() + "\n");
    stale.close();
    MsgBoxRecorder boxes;
    Program program;
    QCOMPARE(boxes.count(), 0);
    QVERIFY(program.window()->isVisible());
  }

  // Typed signs replace the character under the cursor; degree sign and quotes step over it.
  void overwriteMode_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("result");
    QTest::newRow("digit replaces") << "JO31" << 2 << "4" << "JO41";
    QTest::newRow("small letter replaces") << "jo31" << 0 << "k" << "ko31";
    QTest::newRow("degree sign steps over") << "52 30" << 1 << "°" << "52°30";
    QTest::newRow("comma deletes nothing, as any other sign") << "52 30" << 2 << "," << "52, 30";
  }
  void overwriteMode() {
    QFETCH(QString, text);
    QFETCH(int, cursor);
    QFETCH(QString, typed);
    QFETCH(QString, result);
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    w->tbMyLg->setFocus();
    QTest::keyClick(w->tbMyLg, Qt::Key_Insert);
    QVERIFY(!w->Panel3->isEnabled());
    w->tbMyLg->setText(text);
    w->tbMyLg->setCursorPosition(cursor);
    QTest::keyClicks(w->tbMyLg, typed);
    QCOMPARE(w->tbMyLg->text(), result);
  }

  void enterComputesAndReverseBearingFollows() {
    IsolatedUser user;
    SaveSetting(QStringLiteral("Grad_Dezimal"), QStringLiteral("True"));
    SaveSetting(QStringLiteral("Radius"), QStringLiteral("3"));
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    MsgBoxRecorder boxes;
    w->tbMyLoc->setText(QStringLiteral("jo62qm"));
    w->tbFremdLoc->setFocus();
    QTest::keyClicks(w->tbFremdLoc, QStringLiteral(" jo31nk "));
    QTest::keyClick(w->tbFremdLoc, Qt::Key_Enter);
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(w->tbFremdLoc->text(), QStringLiteral("JO31NK"));
    QCOMPARE(w->lblEntfernung->text(), QStringLiteral(" 444,53 km"));
    QCOMPARE(w->lblRichtung->text(), QStringLiteral("256,761 °"));

    QTest::keyClick(w, Qt::Key_F3);
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().prompt, QStringLiteral("76,76 °"));
  }

  void toolBarIsIgnoredWhileThePollHoldsTheFields() {
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    MsgBoxRecorder boxes;
    w->tbMyLoc->setEnabled(false);
    w->findChild<QAction*>(QStringLiteral("Rechnen"))->trigger();
    w->findChild<QAction*>(QStringLiteral("Neu"))->trigger();
    QCOMPARE(boxes.count(), 0);  // a compute would have asked for the missing locators
    QCOMPARE(w->windowTitle(), QStringLiteral("Marvento"));
    w->tbMyLoc->setEnabled(true);
    w->findChild<QAction*>(QStringLiteral("Rechnen"))->trigger();
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral(" Unvollständige Eingabe !"));
  }

  void tickStartsNoPollWhileEntryIsLocked() {
    IsolatedUser user;
    QSettings(user.configFile(), QSettings::IniFormat)
        .setValue("Ports/Com1", user.path() + QStringLiteral("/no-such-device"));
    Program program;
    frmMain* w = program.window();
    program.state().GpsStatus = QStringLiteral("GPS an");
    MsgBoxRecorder boxes;
    w->lbInfo->setText(QStringLiteral("vorher"));
    w->tbMyLoc->setEnabled(false);
    w->Timer1_Timer();
    QCOMPARE(w->lbInfo->text(), QStringLiteral("vorher"));
    w->tbMyLoc->setEnabled(true);
    w->Timer1_Timer();
    QVERIFY2(w->lbInfo->text().startsWith(QStringLiteral("1. Versuch/3 : ")), qPrintable(w->lbInfo->text()));
    QVERIFY(w->tbMyLoc->isEnabled());  // the poll unlocked the entry again
    QCOMPARE(boxes.count(), 0);
  }

  void closingInsideAPollEndsIt() {
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    Module1& s = program.state();
    s.GpsStatus = QStringLiteral("GPS an");
    s.BusyPort = s.ComNumber;  // the poll asks before it opens the port
    QStringList order;
    bool pollRanAtQuestion = false;
    auto previous = SetMsgBoxHandler([&](const MsgBoxCall& call) {
      order << call.prompt.section(u'\n', 0, 0);
      if (call.title == QStringLiteral(" Achtung")) {
        pollRanAtQuestion = w->isPolling();
        w->close();  // the user closes the window while the poll waits for an answer
      }
      return int(vbCancel);  // and keeps it at the closing question
    });
    w->Timer1_Timer();
    QCoreApplication::processEvents();
    SetMsgBoxHandler(previous);
    QVERIFY(pollRanAtQuestion);
    QCOMPARE(order, QStringList({QStringLiteral("Schnittstelle wird schon verwendet ( Mouse ? )"),
                                 QStringLiteral("Programm wirklich beenden ?")}));
    QVERIFY(w->isVisible());
    // The poll was ended before the question: nothing counted, the entry open again.
    QVERIFY(!w->isPolling());
    QVERIFY(w->tbMyLoc->isEnabled());
    QCOMPARE(w->lbInfo->text(), QString());
  }

  void settingsCancelledKeepReceptionTicking() {
    IsolatedUser user;
    QSettings(user.configFile(), QSettings::IniFormat)
        .setValue("Ports/Com1", user.path() + QStringLiteral("/no-such-device"));
    Program program;
    frmMain* w = program.window();
    program.state().GpsStatus = QStringLiteral("GPS an");
    w->Timer1->start();
    MsgBoxRecorder boxes;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, w, [w] {
      auto* dialog = w->findChild<QDialog*>(QStringLiteral("frmOptions"));
      if (dialog && dialog->isVisible()) dialog->reject();
    });
    closer.start(20);
    w->mnuGrundeinstellungen->trigger();
    QVERIFY(w->Timer1->isActive());
    // The command and then the activation each polled the missing device once.
    QTRY_COMPARE(w->lbInfo->text().left(12), QStringLiteral("2. Versuch/3"));
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS an (Com1)"));
  }

  void gpsHeightWithReceptionOffOnlyTells() {
    IsolatedUser user;
    Program program;
    MsgBoxRecorder boxes;
    program.window()->mnuGPS_Höhe->trigger();
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().prompt, QStringLiteral("Kein GPS aktiv!        "));
    QCOMPARE(boxes.last().title, QStringLiteral(" GPS-Höhe "));
  }

  void ctrlAWritesTheHeightReportOnlyWithReceptionOn() {
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    MsgBoxRecorder boxes;
    w->tbFremdLoc->setFocus();
    QTest::keyClick(w->tbFremdLoc, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(boxes.count(), 0);
    program.state().GpsStatus = QStringLiteral("GPS an");
    QTest::keyClick(w->tbFremdLoc, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(boxes.count(), 0);
    QTest::keyClick(w->tbFremdLoc, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(boxes.count(), 1);
    const QString prompt = boxes.last().prompt;
    QVERIFY2(prompt.endsWith(QStringLiteral("HoeheAusw.txt\nerfolgreich erstellt.")), qPrintable(prompt));
    const QString path = prompt.mid(6, prompt.indexOf(u'\n') - 6);
    QVERIFY(QFile::remove(path));
  }

  void logMenuCarriesTheFlag() {
    IsolatedUser user;
    SaveSetting(QStringLiteral("Protokoll"), QStringLiteral("True"));
    Program program;
    frmMain* w = program.window();
    QVERIFY(w->mnuProtokoll->isChecked());
    w->mnuProtokoll->trigger();
    QVERIFY(!w->mnuProtokoll->isChecked());
    QCOMPARE(program.state().ProtokollOn, false);
    w->mnuProtokoll->trigger();
    QCOMPARE(program.state().ProtokollOn, true);
  }
};

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
