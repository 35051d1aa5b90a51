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
#include <QSettings>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QTimer>
#include <QtTest>

using namespace marvento;
using marvento::test::IsolatedUser;
using marvento::test::Program;
using marvento::test::RealBoxes;

namespace {

// Whether the field shows all of its text, first character included, as Qt draws it.
QString hiddenPart(QLineEdit* field) {
  field->grab();  // painting settles the field's scroll offset
  QStyleOptionFrame option;
  option.initFrom(field);
  option.lineWidth = field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, field);
  const QRect line = field->style()
                         ->subElementRect(QStyle::SE_LineEditContents, &option, field)
                         .marginsRemoved(field->textMargins())
                         .adjusted(2, 0, -2, 0);
  const QString text = field->text();
  const int width = field->fontMetrics().horizontalAdvance(text);
  if (width + 2 > line.width()) {
    return QStringLiteral("%1 px of text in %2 px").arg(width).arg(line.width());
  }
  if (field->cursorPosition() != 0) return QStringLiteral("cursor not at the start");
  const int y = line.center().y();
  const int first = field->cursorPositionAt(QPoint(line.left(), y));
  const int last = field->cursorPositionAt(QPoint(line.right(), y));
  if (first != 0 || last != text.size()) {
    return QStringLiteral("only characters %1 to %2 shown").arg(first).arg(last);
  }
  return {};
}

// Sets the application font for the windows made while it lives.
class AppFont {
 public:
  explicit AppFont(int points) : m_saved(QApplication::font()) {
    if (points <= 0) return;
    QFont font = m_saved;
    font.setPointSize(points);
    QApplication::setFont(font);
  }
  ~AppFont() { QApplication::setFont(m_saved); }
  AppFont(const AppFont&) = delete;
  AppFont& operator=(const AppFont&) = delete;

 private:
  QFont m_saved;
};

}  // namespace

class tst_frmMain : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

  // Any stored status but "GPS aus" starts the reception timer.
  void storedValuesReachTheWindow() {
    IsolatedUser user;
    SaveSetting(SettingKey::GpsInterval, QStringLiteral("66"));
    SaveSetting(SettingKey::Radius, QStringLiteral("-1"));
    SaveSetting(SettingKey::Gps, QStringLiteral("GPS irgendwas"));
    Program program;
    frmMain* w = program.window();
    QCOMPARE(w->Timer1->interval(), 65000);
    QVERIFY(w->Combo1->currentText().isEmpty());
    QVERIFY(w->Timer1->isActive());
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS irgendwas (Com1)"));
  }

  void oneEnterShowsOneBox_data() {
    QTest::addColumn<QStringList>("entries");  // own locator, Lg, Br, remote locator, Lg, Br
    QTest::addColumn<bool>("decimal");
    QTest::addColumn<QString>("title");
    const QString incomplete = QStringLiteral(" Unvollständige Eingabe !");
    const QString degrees = QStringLiteral(" Falsche Gradeingabe !");
    QTest::newRow("own station empty")
        << QStringList{"", "", "", "JO31NK", "", ""} << true << incomplete;
    QTest::newRow("remote station empty")
        << QStringList{"JO62QM", "", "", "", "", ""} << true << incomplete;
    QTest::newRow("locator length") << QStringList{"JO62QM", "", "", "JO6", "", ""} << true
                                    << QStringLiteral(" Falsche Eingabe !");
    QTest::newRow("bad locator") << QStringList{"JO62QM", "", "", "JO62YM", "", ""} << true
                                 << QStringLiteral(" Falscher Locator !");
    QTest::newRow("QRA small field")
        << QStringList{"JO62QM", "", "", "EK74I", "", ""} << true << QStringLiteral(" KF falsch !");
    QTest::newRow("coordinate limit")
        << QStringList{"", "180", "52", "JO31NK", "", ""} << true << degrees;
    QTest::newRow("degree format")
        << QStringList{"", "13", "52°0'0\"", "JO31NK", "", ""} << false << degrees;
  }
  // Regression: the Enter that the field ignored reached the window again after the box
  // closed (no widget had the focus then) and computed, and refused, a second time.
  void oneEnterShowsOneBox() {
    QFETCH(QStringList, entries);
    QFETCH(bool, decimal);
    QFETCH(QString, title);
    IsolatedUser user;
    SaveSetting(SettingKey::GradDezimal,
                decimal ? QStringLiteral("True") : QStringLiteral("False"));
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    const QList<QLineEdit*> fields{w->tbMyLoc,    w->tbMyLg,    w->tbMyBr,
                                   w->tbFremdLoc, w->tbFremdLg, w->tbFremdBr};
    for (int i = 0; i < fields.size(); ++i) fields[i]->setText(entries[i]);
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
  // their degrees, and were narrower than the texts written into them.
  void programTextsShowWhole() {
    QFETCH(bool, decimal);
    QFETCH(bool, tenCharacters);
    QFETCH(int, points);
    AppFont font(points);
    IsolatedUser user;
    SaveSetting(SettingKey::GradDezimal,
                decimal ? QStringLiteral("True") : QStringLiteral("False"));
    SaveSetting(SettingKey::Loc10st,
                tenCharacters ? QStringLiteral("True") : QStringLiteral("False"));
    Program program;
    frmMain* w = program.window();
    MsgBoxRecorder boxes;
    // Typed coordinates come back through a locator: long fractions on both sides, and
    // negative ones in the west and south.
    w->tbMyLg->setText(QStringLiteral("13,4"));
    w->tbMyBr->setText(QStringLiteral("52,52"));
    w->tbFremdLg->setText(QStringLiteral("-123,4567"));
    w->tbFremdBr->setText(QStringLiteral("-45,6789"));
    if (!decimal) {
      w->tbMyLg->setText(QStringLiteral("13°24'0\""));
      w->tbMyBr->setText(QStringLiteral("52°31'12,5\""));
      w->tbFremdLg->setText(QStringLiteral("-123°27'24,1\""));
      w->tbFremdBr->setText(QStringLiteral("-45°40'44,1\""));
    }
    w->tbMyLoc->clear();
    w->tbFremdLoc->clear();
    w->Compute();  // route B fills both locators from the typed coordinates
    w->tbMyLg->clear();
    w->Compute();  // route A: both locators rule and write all four coordinates
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(w->tbMyLoc->text().size(), tenCharacters ? 10 : 6);
    QStringList hidden;
    for (QLineEdit* field :
         {w->tbMyLoc, w->tbFremdLoc, w->tbMyLg, w->tbMyBr, w->tbFremdLg, w->tbFremdBr}) {
      const QString part = hiddenPart(field);
      if (!part.isEmpty())
        hidden << field->objectName() + QStringLiteral(" \"") + field->text() +
                      QStringLiteral("\": ") + part;
    }
    QVERIFY2(hidden.isEmpty(), qPrintable(hidden.join(QStringLiteral("; "))));
    // The window has grown with the fields.
    QVERIFY(w->width() >= w->tbFremdBr->geometry().right() + 1);
  }

  void minimisedCaptionFollowsTheFix() {
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    program.state().GpsStatus = QStringLiteral("GPS an");
    w->showMinimized();
    QCoreApplication::processEvents();
    w->tbMyLoc->setText(QStringLiteral("JO62QN"));
    QCOMPARE(w->windowTitle(), QStringLiteral("JO62QN"));
    program.state().GpsStatus = QStringLiteral("GPS aus");
    w->tbMyLoc->setText(QStringLiteral("JO62QO"));
    QCOMPARE(w->windowTitle(), QStringLiteral("JO62QN"));
  }

  void gpsMessagesAndPortReadWhole_data() {
    QTest::addColumn<int>("points");  // 0: the default font
    QTest::newRow("default font") << 0;
    QTest::newRow("11 pt") << 11;
  }
  // Regression: the info line cut both ends of a GPS message, panel 1 a device path.
  void gpsMessagesAndPortReadWhole() {
    QFETCH(int, points);
    AppFont font(points);
    IsolatedUser user;
    Program program;
    frmMain* w = program.window();
    const QString message =
        QStringLiteral("1. Versuch/6 : Das Gerät /dev/ttyUSB0 (Com9) ist nicht vorhanden.");
    w->lbInfo->setText(message);
    const QRect room = w->lbInfo->contentsRect();
    const int flags = int(w->lbInfo->alignment()) | (w->lbInfo->wordWrap() ? Qt::TextWordWrap : 0);
    const QRect used = w->lbInfo->fontMetrics().boundingRect(room, flags, message);
    QVERIFY2(room.contains(used), qPrintable(QStringLiteral("%1x%2 in %3x%4")
                                                 .arg(used.width())
                                                 .arg(used.height())
                                                 .arg(room.width())
                                                 .arg(room.height())));
    QHelpEvent tip(QEvent::ToolTip, QPoint(2, 2), w->lbInfo->mapToGlobal(QPoint(2, 2)));
    QCoreApplication::sendEvent(w->lbInfo, &tip);
    QCOMPARE(w->lbInfo->toolTip(), message);

    program.state().ComPort = QStringLiteral("/dev/ttyUSB0");
    program.state().GpsStatus = QStringLiteral("GPS an");
    w->Form_Resize();
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS an (Com9)"));
  }

  void qtTextsAreGerman() {
    IsolatedUser user;
    Program program;
    QCOMPARE(QKeySequence(Qt::CTRL | Qt::Key_N).toString(QKeySequence::NativeText),
             QStringLiteral("Strg+N"));
    std::unique_ptr<QMenu> menu(program.window()->tbFremdLoc->createStandardContextMenu());
    QStringList items;
    for (QAction* a : menu->actions()) items << a->text().remove(u'&').section(u'\t', 0, 0);
    QVERIFY2(items.contains(QStringLiteral("Rückgängig")), qPrintable(items.join(u',')));
  }

  // Regression: the field's length limit cut a longer stored home locator to 10 characters,
  // which was then computed as if valid.
  void overlongHomeLocatorIsRefusedWhole() {
    IsolatedUser user;
    SaveSetting(SettingKey::MyHomeLoc, QStringLiteral("JO62QM84AT12"));
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62QM84AT12"));
    MsgBoxRecorder boxes;
    w->tbFremdLoc->setFocus();
    QTest::keyClicks(w->tbFremdLoc, QStringLiteral("JO31NK12AB34"));
    QCOMPARE(w->tbFremdLoc->text(), QStringLiteral("JO31NK12AB"));  // typing stops at 10
    QTest::keyClick(w->tbFremdLoc, Qt::Key_Return);
    QCOMPARE(boxes.count(), 1);
    QCOMPARE(boxes.last().title, QStringLiteral(" Falsche Eingabe !"));
    QCOMPARE(boxes.last().prompt, QStringLiteral("JO62QM84AT12"));
  }

  void newClearsTheFieldsButTheHomeLocator() {
    IsolatedUser user;
    SaveSetting(SettingKey::MyHomeLoc, QStringLiteral("JO62QM"));
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
    QCOMPARE(boxes.last().title,
             QStringLiteral(" ") + w->windowTitle() + QStringLiteral(": Programmende"));
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
      QVERIFY(boxes.last().prompt.startsWith(QStringLiteral(
          "Das Programm zweimal zu aktivieren ist nicht ratsam. Wenn Sie diese möglichkeit")));
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
    QTest::newRow("digit replaces") << "JO31" << 2 << "4"
                                    << "JO41";
    QTest::newRow("small letter replaces") << "jo31" << 0 << "k"
                                           << "ko31";
    QTest::newRow("degree sign steps over") << "52 30" << 1 << "°"
                                            << "52°30";
    QTest::newRow("comma deletes nothing, as any other sign") << "52 30" << 2 << ","
                                                              << "52, 30";
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
    SaveSetting(SettingKey::GradDezimal, QStringLiteral("True"));
    SaveSetting(SettingKey::Radius, QStringLiteral("3"));
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
    QVERIFY2(w->lbInfo->text().startsWith(QStringLiteral("1. Versuch/3 : ")),
             qPrintable(w->lbInfo->text()));
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

  // OK in the settings dialog changes the window: timer, port, caption, coordinate fields;
  // the home locator and the addresses are stored at once.
  void settingsOkAppliesToTheWindow_data() {
    QTest::addColumn<bool>("startOn");
    QTest::addColumn<QString>("button");  // clicked in the dialog; empty: none
    QTest::addColumn<int>("interval");    // index in the interval box, -1: unchanged
    QTest::addColumn<bool>("ticking");
    QTest::addColumn<int>("timerMs");
    QTest::addColumn<QString>("title");       // the caption: reset whenever reception stays off
    QTest::addColumn<bool>("fieldsEmptied");  // the four coordinate fields
    QTest::addColumn<QString>("panel1");
    QTest::addRow("reception off") << true << "Option1_1" << -1 << false << 30000 << "Marvento "
                                   << false << "Status: GPS aus (Com1)";
    QTest::addRow("reception on, every 15 s")
        << false << "Option1_0" << 1 << true << 15000 << "Marvento JO62QM" << false
        << "Status: GPS an (Com1)";
    QTest::addRow("decimal degrees") << false << "Option4" << -1 << false << 30000 << "Marvento "
                                     << true << "Status: GPS aus (Com1)";
    QTest::addRow("ten-character locators") << false << "Option2_1" << -1 << false << 30000
                                            << "Marvento " << true << "Status: GPS aus (Com1)";
    QTest::addRow("GPS time only") << false << "Check1" << -1 << false << 30000 << "Marvento "
                                   << false << "Status: GPS aus (Com1)";
  }
  void settingsOkAppliesToTheWindow() {
    QFETCH(bool, startOn);
    QFETCH(QString, button);
    QFETCH(int, interval);
    QFETCH(bool, ticking);
    QFETCH(int, timerMs);
    QFETCH(QString, title);
    QFETCH(bool, fieldsEmptied);
    QFETCH(QString, panel1);
    IsolatedUser user;
    QSettings(user.configFile(), QSettings::IniFormat)
        .setValue("Ports/Com1", user.path() + QStringLiteral("/no-such-device"));
    SaveSetting(SettingKey::Gps, startOn ? QStringLiteral("GPS an") : QStringLiteral("GPS aus"));
    Program program;
    frmMain* w = program.window();
    w->setWindowTitle(QStringLiteral("Marvento JO62QM"));
    for (QLineEdit* f : {w->tbMyLg, w->tbMyBr, w->tbFremdLg, w->tbFremdBr}) f->setText("1");
    MsgBoxRecorder boxes;
    QTimer driver;
    QObject::connect(&driver, &QTimer::timeout, w, [&] {
      auto* dialog = w->findChild<QDialog*>(QStringLiteral("frmOptions"));
      if (!dialog || !dialog->isVisible()) return;
      driver.stop();
      if (!button.isEmpty()) dialog->findChild<QAbstractButton*>(button)->click();
      if (interval >= 0) dialog->findChild<QComboBox*>("Combo3")->setCurrentIndex(interval);
      dialog->findChild<QLineEdit*>("Text1")->setText(QStringLiteral("jo62qm"));
      dialog->findChild<QCheckBox*>("chkRotor")->setChecked(true);
      dialog->findChild<QPushButton*>("Command1")->click();
    });
    driver.start(20);
    w->mnuGrundeinstellungen->trigger();

    QCOMPARE(w->Timer1->isActive(), ticking);
    QCOMPARE(w->Timer1->interval(), timerMs);
    QCOMPARE(w->windowTitle(), title);
    QCOMPARE(w->tbMyLg->text().isEmpty(), fieldsEmptied);
    QCOMPARE(w->tbFremdBr->text().isEmpty(), fieldsEmptied);
    QCOMPARE(w->Panel1->text(), panel1);
    QCOMPARE(program.state().MyHomeLoc, QStringLiteral("JO62QM"));
    QCOMPARE(GetSetting(SettingKey::MyHomeLoc, "missing"), QStringLiteral("JO62QM"));
    QCOMPARE(GetSetting(SettingKey::Gpsd, "missing"), QStringLiteral("localhost:2947"));
    QCOMPARE(GetSetting(SettingKey::Rotor, "missing"), QStringLiteral("127.0.0.1:4533"));
    QCOMPARE(GetSetting(SettingKey::Wsjtx, "missing"), QString());
    // The rest waits for the exit.
    QCOMPARE(GetSetting(SettingKey::Com, "missing"), QStringLiteral("missing"));
  }

  // Regression: the scan lowered the port number below a port that is not there (an
  // unplugged USB receiver), and Abbrechen left reception on that lower port under the old
  // name.
  void settingsCancelKeepsThePortPanelOneNames() {
    IsolatedUser user;
    marvento::test::Pty pty;
    QVERIFY(pty.ok());
    QSettings(user.configFile(), QSettings::IniFormat).setValue("Ports/Com3", pty.path());
    SaveSetting(SettingKey::Com, QStringLiteral("Com9"));
    Program program;
    frmMain* w = program.window();
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, w, [w] {
      auto* dialog = w->findChild<QDialog*>(QStringLiteral("frmOptions"));
      if (dialog && dialog->isVisible()) dialog->reject();
    });
    closer.start(20);
    w->mnuGrundeinstellungen->trigger();
    QCOMPARE(program.state().ComNumber, 9);
    QCOMPARE(program.state().ComPort, QStringLiteral("Com9"));
    QCOMPARE(w->Panel1->text(), QStringLiteral("Status: GPS aus (Com9)"));
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
    QVERIFY2(prompt.endsWith(QStringLiteral("HoeheAusw.txt\nerfolgreich erstellt.")),
             qPrintable(prompt));
    const QString path = prompt.mid(6, prompt.indexOf(u'\n') - 6);
    QVERIFY(QFile::remove(path));
  }

  void logMenuCarriesTheFlag() {
    IsolatedUser user;
    SaveSetting(SettingKey::Protokoll, QStringLiteral("True"));
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
