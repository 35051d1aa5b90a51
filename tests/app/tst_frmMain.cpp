#include "app/frmMain.h"

#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"
#include "support/RealBoxes.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QLockFile>
#include <QMenu>
#include <QPushButton>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTimer>
#include <QtTest>

#include <cmath>

#include <functional>
#include <optional>

using namespace marvento;
using marvento::test::RealBoxes;

namespace {

// What of the field's text Qt's drawing hides, first character included; empty when nothing.
QString hiddenPart(QLineEdit* field) {
  field->grab();  // painting settles the field's scroll offset
  QStyleOptionFrame option;
  option.initFrom(field);
  option.lineWidth = field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, field);
  const QRect line = field->style()
                         ->subElementRect(QStyle::SE_LineEditContents, &option, field)
                         .marginsRemoved(field->textMargins())
                         .adjusted(2, 0, -2, 0);
  const int first = field->cursorPositionAt(QPoint(line.left(), line.center().y()));
  const int last = field->cursorPositionAt(QPoint(line.right(), line.center().y()));
  if (first == 0 && last == field->text().size()) return {};
  return QStringLiteral("%1 \"%2\": only %3 to %4 shown")
      .arg(field->objectName(), field->text())
      .arg(first)
      .arg(last);
}

// Sets the application font until the guard goes; 0 keeps the default.
auto appFont(int points) {
  const QFont saved = QApplication::font();
  QFont font = saved;
  if (points > 0) font.setPointSize(points);
  QApplication::setFont(font);
  return qScopeGuard([saved] { QApplication::setFont(saved); });
}

}  // namespace

class tst_frmMain : public test::ProgramTest {
  Q_OBJECT

  Module1& state() { return m_program->state(); }
  // Opens the settings dialog from the menu and lets `act` close it once it shows.
  static void inSettings(frmMain* w, const std::function<void(QDialog*)>& act) {
    QTimer driver;
    QObject::connect(&driver, &QTimer::timeout, w, [&] {
      auto* dialog = w->findChild<QDialog*>(QStringLiteral("frmOptions"));
      if (!dialog || !dialog->isVisible()) return;
      driver.stop();
      act(dialog);
    });
    driver.start(20);
    w->mnuGrundeinstellungen->trigger();
  }

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
  void init() { QVERIFY(begin()); }
  void cleanup() { end(); }

  // The stored values reach the window; the status "GPS an" starts reception.
  void storedValuesReachTheWindow() {
    test::SetNoPortDevices();
    SaveSetting(SettingKey::GpsInterval, QStringLiteral("66"));
    SaveSetting(SettingKey::Radius, QStringLiteral("-1"));
    SaveSetting(SettingKey::Gps, QStringLiteral("GPS an"));
    SaveSetting(SettingKey::Protokoll, QStringLiteral("True"));
    frmMain* w = start();
    QCOMPARE(w->Timer1->interval(), 65000);
    QVERIFY(w->Combo1->currentText().isEmpty());
    QVERIFY(w->Timer1->isActive());
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS an (Com1)"));
    QVERIFY(w->mnuProtokoll->isChecked());
    w->mnuProtokoll->trigger();
    QCOMPARE(state().ProtokollOn, false);
    // A device path chosen as the port is named by its port.
    test::ClearPortDevices();
    state().ComPort = QStringLiteral("/dev/ttyUSB0");
    w->Form_Resize();
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS an (Com9)"));
  }

  void oneEnterShowsOneBox_data() {
    QTest::addColumn<QString>("home");     // the stored home locator
    QTest::addColumn<QString>("entries");  // own locator, Lg, Br, remote locator, Lg, Br
    QTest::addColumn<QString>("title");
    QTest::newRow("own station empty")
        << QString() << "|||JO31NK||" << QStringLiteral(" Unvollständige Eingabe !");
    QTest::newRow("bad locator") << QString() << "JO62QM|||JO62YM||"
                                 << QStringLiteral(" Falscher Locator !");
    // Regression: the field's length limit cut a longer stored home locator to 10 characters,
    // which was then computed as if valid.
    QTest::newRow("overlong home locator") << "JO62QM84AT12" << QStringLiteral("|||JO31NK12AB34||")
                                           << QStringLiteral(" Falsche Eingabe !");
  }
  // Regression: the Enter that the field ignored reached the window again after the box
  // closed (no widget had the focus then) and computed, and refused, a second time.
  void oneEnterShowsOneBox() {
    QFETCH(QString, home);
    QFETCH(QString, entries);
    QFETCH(QString, title);
    SaveSetting(SettingKey::MyHomeLoc, home);
    frmMain* w = start();
    QVERIFY(QTest::qWaitForWindowActive(w));
    const QList<QLineEdit*> fields{w->tbMyLoc,    w->tbMyLg,    w->tbMyBr,
                                   w->tbFremdLoc, w->tbFremdLg, w->tbFremdBr};
    const QStringList texts = entries.split(u'|');
    for (int i = 0; i < fields.size(); ++i) {
      if (!texts[i].isEmpty()) fields[i]->setText(texts[i]);  // the window's own texts stay
    }
    w->tbFremdLoc->setFocus();
    RealBoxes boxes;
    QTest::keyClick(w->tbFremdLoc, Qt::Key_Return);
    QTest::qWait(150);  // a second box would come up within this
    QCOMPARE(boxes.titles(), QStringList{title});
  }

  void programTextsShowWhole_data() {
    QTest::addColumn<bool>("decimal");
    QTest::addColumn<bool>("tenCharacters");
    QTest::addColumn<int>("points");  // 0: the default font
    for (int points : {0, 11}) {
      for (bool decimal : {true, false}) {
        for (bool ten : {false, true}) {
          QTest::addRow("%s, %d characters, %s", decimal ? "decimal" : "degrees", ten ? 10 : 6,
                        points ? "11 pt" : "default font")
              << decimal << ten << points;
        }
      }
    }
  }
  // Regression: the fields showed the end of long coordinates ("2,5199652777778") and not
  // their degrees, and were narrower than the texts written into them; the info line cut
  // both ends of a GPS message.
  void programTextsShowWhole() {
    QFETCH(bool, decimal);
    QFETCH(bool, tenCharacters);
    QFETCH(int, points);
    const auto font = appFont(points);
    SaveSetting(SettingKey::GradDezimal,
                decimal ? QStringLiteral("True") : QStringLiteral("False"));
    SaveSetting(SettingKey::Loc10st,
                tenCharacters ? QStringLiteral("True") : QStringLiteral("False"));
    frmMain* w = start();
    MsgBoxRecorder boxes;
    // Typed coordinates come back through a locator: long fractions on both sides, and
    // negative ones in the west and south.
    const QStringList typed =
        decimal ? QStringList{"13,4", "52,52", "-123,4567", "-45,6789"}
                : QStringList{"13°24'0\"", "52°31'12,5\"", "-123°27'24,1\"", "-45°40'44,1\""};
    const QList<QLineEdit*> coordinates{w->tbMyLg, w->tbMyBr, w->tbFremdLg, w->tbFremdBr};
    for (int i = 0; i < 4; ++i) coordinates[i]->setText(typed[i]);
    w->tbMyLoc->clear();
    w->tbFremdLoc->clear();
    w->Compute();  // the typed coordinates fill both locators
    w->tbMyLg->clear();
    w->Compute();  // both locators rule and write all four coordinates
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(w->tbMyLoc->text().size(), tenCharacters ? 10 : 6);
    QStringList hidden;
    for (QLineEdit* field : coordinates + QList<QLineEdit*>{w->tbMyLoc, w->tbFremdLoc}) {
      if (const QString part = hiddenPart(field); !part.isEmpty()) hidden << part;
    }
    QVERIFY2(hidden.isEmpty(), qPrintable(hidden.join(QStringLiteral("; "))));
    // The window has grown with the fields.
    QVERIFY(w->width() >= w->tbFremdBr->geometry().right() + 1);

    const QString message =
        QStringLiteral("1. Versuch/6 : Das Gerät /dev/ttyUSB0 (Com9) ist nicht vorhanden.");
    w->lbInfo->setText(message);
    const QRect room = w->lbInfo->contentsRect();
    const int flags = int(w->lbInfo->alignment()) | (w->lbInfo->wordWrap() ? Qt::TextWordWrap : 0);
    const QRect used = w->lbInfo->fontMetrics().boundingRect(room, flags, message);
    QVERIFY2(room.contains(used),
             qPrintable(QStringLiteral("%1 px in %2").arg(used.width()).arg(room.width())));
    QHelpEvent tip(QEvent::ToolTip, QPoint(2, 2), w->lbInfo->mapToGlobal(QPoint(2, 2)));
    QCoreApplication::sendEvent(w->lbInfo, &tip);
    QCOMPARE(w->lbInfo->toolTip(), message);
  }

  void minimisedCaptionFollowsTheFix() {
    frmMain* w = start();
    state().GpsStatus = QStringLiteral("GPS an");
    w->showMinimized();
    QCoreApplication::processEvents();
    w->tbMyLoc->setText(QStringLiteral("JO62QN"));
    QCOMPARE(w->windowTitle(), QStringLiteral("JO62QN"));
    state().GpsStatus = QStringLiteral("GPS aus");
    w->tbMyLoc->setText(QStringLiteral("JO62QO"));
    QCOMPARE(w->windowTitle(), QStringLiteral("JO62QN"));
  }

  void qtTextsAreGerman() {
    frmMain* w = start();
    QCOMPARE(QKeySequence(Qt::CTRL | Qt::Key_N).toString(QKeySequence::NativeText),
             QStringLiteral("Strg+N"));
    std::unique_ptr<QMenu> menu(w->tbFremdLoc->createStandardContextMenu());
    QStringList items;
    for (QAction* a : menu->actions()) items << a->text().remove(u'&').section(u'\t', 0, 0);
    QVERIFY2(items.contains(QStringLiteral("Rückgängig")), qPrintable(items.join(u',')));
  }

  // With reception on: a cancelled close leaves the timer running; OK, here when minimised,
  // stores the settings, but not the position of the minimised window.
  void closingAsksFirst() {
    frmMain* w = start();
    state().GpsStatus = QStringLiteral("GPS an");
    w->Timer1->start();
    MsgBoxRecorder boxes;
    boxes.answer(vbCancel);
    w->mnuBeenden->trigger();
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().prompt, QStringLiteral("Programm wirklich beenden ?"));
    QCOMPARE(boxes.last().style, 33);
    QCOMPARE(boxes.last().title, QStringLiteral(" Marvento: Programmende"));
    QVERIFY(w->isVisible());
    QVERIFY(w->Timer1->isActive());
    QVERIFY(!m_user->stored(QStringLiteral("GPS")));

    w->showMinimized();
    QCoreApplication::processEvents();
    w->mnuBeenden->trigger();
    QCOMPARE(boxes.count(), 2);
    QVERIFY(!w->isVisible());
    QCOMPARE(m_user->stored(QStringLiteral("GPS")), QStringLiteral("GPS an"));
    QVERIFY(!m_user->stored(QStringLiteral("MainLeft")));
  }

  void secondInstanceEndsWithoutSaving() {
    QLockFile other(m_user->path() + QStringLiteral("/marvento.lock"));
    QVERIFY(other.tryLock(0));
    bool ended = false;
    auto saved = frmMain::exitProcess();
    frmMain::exitProcess() = [&] { ended = true; };
    MsgBoxRecorder boxes;
    start();
    m_program.reset();
    frmMain::exitProcess() = saved;
    QVERIFY(ended);
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral("Marvento läuft bereits "));
    QVERIFY(!QFile::exists(m_user->configFile()));
  }

  void staleLockOfACrashedInstanceDoesNotLockOut() {
    QFile stale(m_user->path() + QStringLiteral("/marvento.lock"));
    QVERIFY(stale.open(QIODevice::WriteOnly));
    // The lock of a process that no longer runs, on this machine.
    stale.write("999999\nmarvento\n" + QSysInfo::machineHostName().toUtf8() + "\n");
    stale.close();
    MsgBoxRecorder boxes;
    QVERIFY(start()->isVisible());
    QCOMPARE(boxes.count(), 0);
  }

  // Typed signs replace the character under the cursor; degree sign and quotes step over it,
  // any other sign deletes nothing.
  void overwriteMode() {
    frmMain* w = start();
    QVERIFY(QTest::qWaitForWindowActive(w));
    w->tbMyLg->setFocus();
    QTest::keyClick(w->tbMyLg, Qt::Key_Insert);
    QVERIFY(!w->Panel3->isEnabled());
    const struct {
      const char* text;
      int cursor;
      const char *typed, *result;
    } cases[] = {{"JO31", 2, "4", "JO41"},
                 {"jo31", 0, "k", "ko31"},
                 {"52 30", 1, "°", "52°30"},
                 {"52 30", 2, ",", "52, 30"}};
    for (const auto& c : cases) {
      w->tbMyLg->setText(QString::fromUtf8(c.text));
      w->tbMyLg->setCursorPosition(c.cursor);
      QTest::keyClicks(w->tbMyLg, QString::fromUtf8(c.typed));
      QCOMPARE(w->tbMyLg->text(), QString::fromUtf8(c.result));
    }
  }

  void enterComputesAndReverseBearingFollows() {
    SaveSetting(SettingKey::GradDezimal, QStringLiteral("True"));
    SaveSetting(SettingKey::Radius, QStringLiteral("3"));
    frmMain* w = start();
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

  // The windows that follow the main window learn each computation, F3 and New from one signal.
  void computationsAreReported() {
    frmMain* w = start();
    MsgBoxRecorder boxes;
    QSignalSpy spy(w, &frmMain::computed);
    w->tbMyLoc->setText(QStringLiteral("JO62QM"));
    w->tbFremdLoc->setText(QStringLiteral("JN58TD"));
    w->Compute();
    QCOMPARE(spy.count(), 1);
    auto pair = spy.last().at(0).value<StationPair>();
    QVERIFY(pair.own && pair.remote && pair.solved && !pair.reverse);
    // Square centres: JO62QM is 52.521 N 13.375 E, JN58TD 48.146 N 11.625 E.
    QVERIFY(std::abs(pair.own->lat - 52.5208) < 1e-3 && std::abs(pair.own->lon - 13.375) < 1e-3);
    QVERIFY(std::abs(pair.remote->lat - 48.1458) < 1e-3 &&
            std::abs(pair.remote->lon - 11.625) < 1e-3);
    QCOMPARE(pair.remoteLocator, QStringLiteral("JN58TD"));
    QVERIFY(pair.radiusKm && *pair.radiusKm > 6000 && *pair.radiusKm < 6500);

    w->mnuGegenRichtung_Click();
    QVERIFY(spy.last().at(0).value<StationPair>().reverse);
    w->mnuNeu_Click();
    QVERIFY(!spy.last().at(0).value<StationPair>().solved);
    QCOMPARE(boxes.count(), 1);  // F3's box, nothing else
  }

  // While a poll holds the fields, the tool bar and the timer do nothing; afterwards they work.
  void lockedEntryIgnoresToolBarAndTimer() {
    test::SetNoPortDevices();
    frmMain* w = start();
    state().GpsStatus = QStringLiteral("GPS an");
    MsgBoxRecorder boxes;
    w->lbInfo->setText(QStringLiteral("vorher"));
    w->tbMyLoc->setEnabled(false);
    w->findChild<QAction*>(QStringLiteral("Rechnen"))->trigger();
    w->findChild<QAction*>(QStringLiteral("Neu"))->trigger();
    w->Timer1_Timer();
    QCOMPARE(boxes.count(), 0);  // a compute would have asked for the missing locators
    QCOMPARE(w->windowTitle(), QStringLiteral("Marvento"));
    QCOMPARE(w->lbInfo->text(), QStringLiteral("vorher"));
    w->tbMyLoc->setEnabled(true);
    w->findChild<QAction*>(QStringLiteral("Rechnen"))->trigger();
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral(" Unvollständige Eingabe !"));
    w->Timer1_Timer();
    QVERIFY2(w->lbInfo->text().startsWith(QStringLiteral("1. Versuch/3 : ")),
             qPrintable(w->lbInfo->text()));
    QVERIFY(w->tbMyLoc->isEnabled());  // the poll unlocked the entry again
    w->findChild<QAction*>(QStringLiteral("Neu"))->trigger();
    QCOMPARE(w->windowTitle(), QStringLiteral("Marvento "));
  }

  void closingInsideAPollEndsIt() {
    frmMain* w = start();
    state().GpsStatus = QStringLiteral("GPS an");
    state().BusyPort = state().ComNumber;  // the poll asks before it opens the port
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

  // Abbrechen leaves reception as it was, ticking on the port panel 1 names. Regression: the
  // scan lowered the port number below a port that is not there (an unplugged USB receiver),
  // and Abbrechen left reception on that lower port under the old name.
  void settingsCancelKeepsReception() {
    test::Pty pty;
    QVERIFY(pty.ok());
    test::SetNoPortDevices();
    test::SetPortDevice(3, pty.path());
    SaveSetting(SettingKey::Com, QStringLiteral("Com9"));
    frmMain* w = start();
    state().GpsStatus = QStringLiteral("GPS an");
    w->Timer1->start();
    MsgBoxRecorder boxes;
    inSettings(w, [](QDialog* dialog) { dialog->reject(); });
    QVERIFY(w->Timer1->isActive());
    QCOMPARE(state().ComNumber, 9);
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS an (Com9)"));
    // The command and then the activation each polled the missing device once.
    QTRY_COMPARE(w->lbInfo->text().left(12), QStringLiteral("2. Versuch/3"));
  }

  // OK in the settings dialog changes the window: timer, caption, coordinate fields; the home
  // locator and the addresses are stored at once.
  void settingsOkAppliesToTheWindow_data() {
    QTest::addColumn<QString>("button");      // clicked in the dialog
    QTest::addColumn<bool>("fieldsEmptied");  // the four coordinate fields
    QTest::addRow("reception off") << "Option1_1" << false;
    QTest::addRow("reception on, every 15 s") << "Option1_0" << false;
    QTest::addRow("decimal degrees") << "Option4" << true;
    QTest::addRow("ten-character locators") << "Option2_1" << true;
    QTest::addRow("GPS time only") << "Check1" << false;
  }
  void settingsOkAppliesToTheWindow() {
    QFETCH(QString, button);
    QFETCH(bool, fieldsEmptied);
    const bool on = button == u"Option1_0";
    test::SetNoPortDevices();
    SaveSetting(SettingKey::Gps,
                button == u"Option1_1" ? QStringLiteral("GPS an") : QStringLiteral("GPS aus"));
    frmMain* w = start();
    w->setWindowTitle(QStringLiteral("Marvento JO62QM"));
    for (QLineEdit* f : {w->tbMyLg, w->tbMyBr, w->tbFremdLg, w->tbFremdBr}) f->setText("1");
    MsgBoxRecorder boxes;
    inSettings(w, [&](QDialog* dialog) {
      dialog->findChild<QAbstractButton*>(button)->click();
      if (on) dialog->findChild<QComboBox*>("Combo3")->setCurrentIndex(1);
      dialog->findChild<QLineEdit*>("Text1")->setText(QStringLiteral("jo62qm"));
      dialog->findChild<QCheckBox*>("chkRotor")->setChecked(true);
      dialog->findChild<QPushButton*>("Command1")->click();
    });
    QCOMPARE(w->Timer1->isActive(), on);
    QCOMPARE(w->Timer1->interval(), on ? 15000 : 30000);
    // The caption is reset whenever reception stays off.
    QCOMPARE(w->windowTitle(),
             on ? QStringLiteral("Marvento JO62QM") : QStringLiteral("Marvento "));
    QCOMPARE(w->tbMyLg->text().isEmpty(), fieldsEmptied);
    QCOMPARE(w->tbFremdBr->text().isEmpty(), fieldsEmptied);
    QCOMPARE(w->Panel1->text(), on ? QStringLiteral("Status: GPS an (Com1)")
                                   : QStringLiteral("Status: GPS aus (Com1)"));
    QCOMPARE(state().MyHomeLoc, QStringLiteral("JO62QM"));
    QCOMPARE(GetSetting(SettingKey::MyHomeLoc, "missing"), QStringLiteral("JO62QM"));
    QCOMPARE(GetSetting(SettingKey::Gpsd, "missing"), QStringLiteral("localhost:2947"));
    QCOMPARE(GetSetting(SettingKey::Rotor, "missing"), QStringLiteral("127.0.0.1:4533"));
    // The rest waits for the exit.
    QCOMPARE(GetSetting(SettingKey::Com, "missing"), QStringLiteral("missing"));
  }

  // The height needs reception: without it the menu says so and Ctrl+A does nothing; with it
  // Ctrl+A, and not Ctrl+Shift+A, writes the report.
  void heightNeedsReception() {
    frmMain* w = start();
    QVERIFY(QTest::qWaitForWindowActive(w));
    MsgBoxRecorder boxes;
    w->tbFremdLoc->setFocus();
    QTest::keyClick(w->tbFremdLoc, Qt::Key_A, Qt::ControlModifier);
    w->mnuGPS_Höhe->trigger();
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral(" GPS-Höhe "));
    state().GpsStatus = QStringLiteral("GPS an");
    QTest::keyClick(w->tbFremdLoc, Qt::Key_A, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(boxes.count(), 1);
    QTest::keyClick(w->tbFremdLoc, Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(boxes.count(), 2);
    const QString prompt = boxes.last().prompt;
    QVERIFY2(prompt.endsWith(QStringLiteral("HoeheAusw.txt\nerfolgreich erstellt.")),
             qPrintable(prompt));
    QVERIFY(QFile::remove(prompt.mid(6, prompt.indexOf(u'\n') - 6)));
  }
};

QTEST_MAIN(tst_frmMain)
#include "tst_frmMain.moc"
