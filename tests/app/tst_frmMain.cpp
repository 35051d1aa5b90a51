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

  void firstRunShowsTheDefaults() {
    IsolatedUser user;
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    QCOMPARE(w->Timer1->interval(), 30000);
    QVERIFY(!w->Timer1->isActive());
    QCOMPARE(w->Combo1->currentText(), QStringLiteral("6367,6539915"));
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS aus (Com1)"));
    QCOMPARE(w->windowTitle(), QStringLiteral("Marvento"));
    QVERIFY(w->lbInfo->text().isEmpty());
    QVERIFY(!w->mnuProtokoll->isChecked());
    QCOMPARE(boxes.count(), 0);
  }

  void storedValuesReachTheWindow_data() {
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("value");
    QTest::addColumn<int>("interval");
    QTest::addColumn<QString>("radius");
    QTest::addColumn<bool>("timerOn");
    QTest::addColumn<QString>("status");
    QTest::newRow("interval 66") << "GPS-Interval" << "66" << 65000 << "6367,6539915" << false << "Status: GPS aus (Com1)";
    QTest::newRow("interval 31.5") << "GPS-Interval" << "31.5" << 32000 << "6367,6539915" << false << "Status: GPS aus (Com1)";
    QTest::newRow("typed radius") << "Radius" << "-1" << 30000 << "" << false << "Status: GPS aus (Com1)";
    QTest::newRow("radius 4") << "Radius" << "4" << 30000 << "6371,299" << false << "Status: GPS aus (Com1)";
    QTest::newRow("port prefix only") << "Com" << "Com" << 30000 << "6367,6539915" << false << "Status: GPS aus (Com)";
    QTest::newRow("odd status") << "GPS" << "GPS irgendwas" << 30000 << "6367,6539915" << true << "Status: GPS irgendwas (Com1)";
  }
  void storedValuesReachTheWindow() {
    QFETCH(QString, key);
    QFETCH(QString, value);
    IsolatedUser user;
    SaveSetting(key, value);
    Program program;
    frmMain* w = program.window();
    QFETCH(int, interval);
    QFETCH(QString, radius);
    QFETCH(bool, timerOn);
    QFETCH(QString, status);
    QCOMPARE(w->Timer1->interval(), interval);
    QCOMPARE(w->Combo1->currentText(), radius);
    QCOMPARE(w->Timer1->isActive(), timerOn);
    QCOMPARE(w->Panel1->text(), status);
  }

  void homeLocatorAtStart_data() {
    QTest::addColumn<QString>("gps");
    QTest::addColumn<QString>("expected");
    QTest::newRow("reception off keeps the text as stored") << "GPS aus" << "  JO31AB ";
    QTest::newRow("reception on takes it trimmed") << "GPS an" << "JO31AB";
  }
  void homeLocatorAtStart() {
    QFETCH(QString, gps);
    IsolatedUser user;
    SaveSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("  JO31AB "));
    SaveSetting(QStringLiteral("GPS"), gps);
    SaveSetting(QStringLiteral("Com"), QStringLiteral("Com3"));
    QSettings(user.configFile(), QSettings::IniFormat).setValue("Ports/Com3", user.path() + "/none");
    MsgBoxRecorder boxes;
    Program program;
    QFETCH(QString, expected);
    QCOMPARE(program.window()->tbMyLoc->text(), expected);
  }

  void newClearsTheFields_data() {
    QTest::addColumn<QString>("home");
    QTest::addColumn<QString>("myLoc");
    QTest::addColumn<bool>("focusOnMyLoc");
    QTest::newRow("with home locator") << "JO62QM" << "JO62QM" << false;
    QTest::newRow("without home locator") << "" << "" << true;
  }
  void newClearsTheFields() {
    QFETCH(QString, home);
    IsolatedUser user;
    SaveSetting(QStringLiteral("MyHomeLoc"), home);
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    w->tbFremdLoc->setFocus();
    for (QLineEdit* f : {w->tbMyLoc, w->tbFremdLoc, w->tbMyLg, w->tbMyBr, w->tbFremdLg, w->tbFremdBr}) {
      f->setText(QStringLiteral("x"));
    }
    w->lblEntfernung->setText(QStringLiteral("1 km"));
    w->lbInfo->setText(QStringLiteral("bleibt"));
    w->mnuNeu->trigger();
    QFETCH(QString, myLoc);
    QFETCH(bool, focusOnMyLoc);
    QCOMPARE(w->tbMyLoc->text(), myLoc);
    for (QLineEdit* f : {w->tbFremdLoc, w->tbMyLg, w->tbMyBr, w->tbFremdLg, w->tbFremdBr}) {
      QVERIFY(f->text().isEmpty());
    }
    QVERIFY(w->lblEntfernung->text().isEmpty());
    QCOMPARE(w->lbInfo->text(), QStringLiteral("bleibt"));
    QCOMPARE(w->windowTitle(), QStringLiteral("Marvento "));
    QCOMPARE(w->tbMyLoc->hasFocus(), focusOnMyLoc);
  }

  void closingAsksFirst_data() {
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("minimised");
    QTest::newRow("cancel") << int(vbCancel) << false;
    QTest::newRow("ok") << int(vbOK) << false;
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
    w->tbFremdLoc->setText(QStringLiteral("JN58TD"));
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
      QCOMPARE(w->tbFremdLoc->text(), QStringLiteral("JN58TD"));
      QVERIFY(!user.stored(QStringLiteral("GPS")));
      return;
    }
    QVERIFY(!w->isVisible());
    QCOMPARE(user.stored(QStringLiteral("GPS")), QStringLiteral("GPS an"));
    QCOMPARE(user.stored(QStringLiteral("Radius")), QStringLiteral("2"));
    QCOMPARE(user.stored(QStringLiteral("GPS-Interval")), QStringLiteral("30"));
    QCOMPARE(user.stored(QStringLiteral("Bit-Sek")), QStringLiteral("4800"));
    QVERIFY(!user.stored(QStringLiteral("MyHomeLoc")));
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
      QCOMPARE(boxes.last().style, 48);
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

  void overwriteMode_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("cursor");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("insertResult");
    QTest::addColumn<QString>("overwriteResult");
    QTest::newRow("digit replaces") << "JO31" << 2 << "4" << "JO431" << "JO41";
    QTest::newRow("at the end appends") << "JO31" << 4 << "5" << "JO315" << "JO315";
    QTest::newRow("small letter replaces") << "jo31" << 0 << "k" << "kjo31" << "ko31";
    QTest::newRow("degree sign steps over") << "52 30" << 1 << "°" << "5°2 30" << "52°30";
    QTest::newRow("quote steps over") << "52 30" << 1 << "'" << "5'2 30" << "52'30";
    QTest::newRow("comma deletes nothing, as any other sign") << "52 30" << 2 << "," << "52, 30" << "52, 30";
  }
  void overwriteMode() {
    QFETCH(QString, text);
    QFETCH(int, cursor);
    QFETCH(QString, typed);
    QFETCH(QString, insertResult);
    QFETCH(QString, overwriteResult);
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    for (bool overwrite : {false, true}) {
      if (overwrite != !w->insertMode()) QTest::keyClick(w->tbMyLg, Qt::Key_Insert);
      QCOMPARE(w->Panel3->isEnabled(), !overwrite);
      w->tbMyLg->setFocus();
      w->tbMyLg->setText(text);
      w->tbMyLg->setCursorPosition(cursor);
      QTest::keyClicks(w->tbMyLg, typed);
      QCOMPARE(w->tbMyLg->text(), overwrite ? overwriteResult : insertResult);
    }
  }

  void enterComputesAndReverseBearingFollows() {
    IsolatedUser user;
    SaveSetting(QStringLiteral("Grad_Dezimal"), QStringLiteral("True"));
    SaveSetting(QStringLiteral("Radius"), QStringLiteral("3"));
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QCOMPARE(w->Combo1->currentText(), QStringLiteral("6371,00079"));
    MsgBoxRecorder boxes;
    w->tbMyLoc->setText(QStringLiteral("jo62qm"));
    w->tbFremdLoc->setFocus();
    QTest::keyClicks(w->tbFremdLoc, QStringLiteral(" jo31nk "));
    QTest::keyClick(w->tbFremdLoc, Qt::Key_Enter);
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(w->tbFremdLoc->text(), QStringLiteral("JO31NK"));
    QCOMPARE(w->tbMyLg->text(), QStringLiteral("13,375"));
    QCOMPARE(w->lblEntfernung->text(), QStringLiteral(" 444,53 km"));
    QCOMPARE(w->lblRichtung->text(), QStringLiteral("256,761 °"));
    QVERIFY(w->tbFremdLoc->hasFocus());

    QTest::keyClick(w, Qt::Key_F3);
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().prompt, QStringLiteral("76,76 °"));
    QCOMPARE(boxes.last().title, QStringLiteral(" Gegenrichtung"));
    QCOMPARE(boxes.last().style, 64);

    // Enter in the radius box trims its text too, and adds nothing to the list.
    w->Combo1->setFocus();
    w->Combo1->setEditText(QStringLiteral(" 6371 "));
    QTest::keyClick(w->Combo1, Qt::Key_Return);
    QCOMPARE(w->Combo1->currentText(), QStringLiteral("6371"));
    QCOMPARE(w->Combo1->count(), 12);
    QCOMPARE(boxes.count(), 1);
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

  void closingInsideAPollWaitsForItsEnd() {
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
    QCOMPARE(program.state().GpsStatus, QStringLiteral("GPS an"));
    // The activation and the command itself each polled the missing device once.
    QCOMPARE(w->lbInfo->text().left(12), QStringLiteral("2. Versuch/3"));
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS an (Com1)"));
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

  void gpsHeightWithReceptionOffOnlyTells() {
    IsolatedUser user;
    Program program;
    MsgBoxRecorder boxes;
    program.window()->mnuGPS_Höhe->trigger();
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().prompt, QStringLiteral("Kein GPS aktiv!        "));
    QCOMPARE(boxes.last().title, QStringLiteral(" GPS-Höhe "));
    QCOMPARE(boxes.last().style, 64);
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
