#include "options/frmOptions.h"

#include "platform/CommControl.h"
#include "platform/Settings.h"
#include "support/Pty.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <cmath>

using marvento::CommControl;
using marvento::frmOptions;
using marvento::Module1;
using marvento::OptionsTargets;

namespace {

// The main window's parts that the dialog writes, standing alone.
struct MainParts {
  QWidget window;
  QTimer timer;
  CommControl comm;
  QLabel info{QStringLiteral("2 Versuche")};
  QLineEdit myLg{QStringLiteral("13° 24' 36\"")}, myBr{QStringLiteral("52° 31' 12\"")};
  QLineEdit fremdLg{QStringLiteral("2° 21' 0\"")}, fremdBr{QStringLiteral("48° 51' 0\"")};

  MainParts() {
    window.setWindowTitle(QStringLiteral("Marvento JO62QM"));
    timer.setInterval(30000);
  }
  OptionsTargets targets() {
    return {&timer, &comm, &info, &window, &myLg, &myBr, &fremdLg, &fremdBr};
  }
  bool fieldsEmpty() const {
    return myLg.text().isEmpty() && myBr.text().isEmpty() && fremdLg.text().isEmpty() &&
           fremdBr.text().isEmpty();
  }
  bool fieldsKept() const { return !myLg.text().isEmpty() && !fremdBr.text().isEmpty(); }
};

Module1 firstRunState() {
  Module1 state;
  state.ComPort = QStringLiteral("Com1");
  state.ComNumber = 1;
  state.ComSettings = QStringLiteral("4800,N,8,1");
  state.GpsStatus = marvento::kGpsAus;
  state.GpsIntervalSeconds = 30;
  return state;
}

template <typename T>
T* child(QWidget& dialog, const char* name) {
  return dialog.findChild<T*>(QString::fromLatin1(name));
}

// The fields of the state record that the dialog may change, as texts.
QStringList dialogFields(const Module1& s) {
  return {s.ComPort,
          QString::number(s.ComNumber),
          s.ComSettings,
          s.GpsStatus,
          QString::number(s.GpsIntervalSeconds),
          s.MyHomeLoc,
          QString::number(s.GradDezimal) + QString::number(s.GpsZeit) + QString::number(s.Loc10st),
          QString::number(s.BusyPort)};
}

}  // namespace

class tst_frmOptions : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY(m_config.isValid());
    qputenv("XDG_CONFIG_HOME", m_config.path().toLocal8Bit());
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  }
  void init() { marvento::test::SetNoPortDevices(); }
  void cleanup() {
    QSettings store(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("Marvento"),
                    QStringLiteral("Marvento"));
    store.clear();
  }

  void controls();
  void placement();
  void load();
  void portListAndStoredName();
  void ok();
  void receptionOffClosesAndClears();
  void enterAtOpeningCancels();
  void receptionOnStartsTimer();
  void formatChangeEmptiesCoordinates();
  void cancelChangesNothing_data();
  void cancelChangesNothing();

 private:
  QTemporaryDir m_config;
};

// The access keys of the labels lead to their fields; OK is the default button.
void tst_frmOptions::controls() {
  const std::pair<const char*, const char*> buddies[] = {
      {"Label4", "Combo3"}, {"Label2", "Combo1"}, {"Label3", "Combo2"}, {"Label6", "Text1"}};
  Module1 state = firstRunState();
  MainParts main;
  frmOptions dialog(state, main.targets());
  QCOMPARE(dialog.windowTitle(), QStringLiteral("Grundeinstellungen Marvento"));
  QVERIFY(child<QPushButton>(dialog, "Command1")->isDefault());
  QCOMPARE(child<QLineEdit>(dialog, "Text1")->maxLength(), 10);
  for (const auto& [label, field] : buddies) {
    QVERIFY2(child<QLabel>(dialog, label)->text().contains(u'&'), label);
    QCOMPARE(child<QLabel>(dialog, label)->buddy(), child<QWidget>(dialog, field));
  }
}

void tst_frmOptions::placement() {
  const struct {
    const char *left, *top;  // nullptr: nothing stored
    double leftTwips, topTwips;
  } cases[] = {
      {nullptr, nullptr, 1700, 1600},
      {"2880,5", "720", 3580.5, 1320},
      {"links", "oben", 1700, 1600},
  };
  for (const auto& c : cases) {
    if (c.left) marvento::SaveSetting(QStringLiteral("MainLeft"), c.left);
    if (c.top) marvento::SaveSetting(QStringLiteral("MainTop"), c.top);
    Module1 state = firstRunState();
    MainParts main;
    frmOptions dialog(state, main.targets());
    QCOMPARE(dialog.pos(), QPoint(int(std::lround(c.leftTwips * dialog.logicalDpiX() / 1440)),
                                  int(std::lround(c.topTwips * dialog.logicalDpiY() / 1440))));
  }
}

void tst_frmOptions::load() {
  const struct {
    const char* comSettings;
    int interval, rateIndexAtLoad;
    const char* rateShown;
    int intervalCount;  // an interval not in the list is added to it
  } cases[] = {
      {"4800,N,8,1", 30, 2, "4800", 10}, {"115200,N,8,1", 60, 7, "115200", 10},
      {"300,N,8,1", 50, 2, "300", 10},   {",N,8,1", 33, 2, "0", 11},
      {"9600,N,8,1", 55, 3, "9600", 11},
  };
  for (const auto& c : cases) {
    Module1 state = firstRunState();
    state.ComSettings = c.comSettings;
    state.GpsIntervalSeconds = c.interval;
    MainParts main;
    frmOptions dialog(state, main.targets());
    auto* rate = child<QComboBox>(dialog, "Combo2");
    auto* seconds = child<QComboBox>(dialog, "Combo3");
    QCOMPARE(rate->currentIndex(), c.rateIndexAtLoad);
    QCOMPARE(seconds->count(), c.intervalCount);
    QCOMPARE(seconds->currentText(), QString::number(c.interval));
    dialog.show();
    QCOMPARE(rate->currentText(), QString(c.rateShown));
  }
}

void tst_frmOptions::portListAndStoredName() {
  marvento::test::Pty com2;
  QVERIFY(com2.ok());
  marvento::test::SetPortDevice(2, com2.path());
  Module1 state = firstRunState();
  state.ComPort = QStringLiteral("Com5");
  state.ComNumber = 5;
  state.GpsStatus = QStringLiteral("GPS AN");
  state.GradDezimal = true;
  state.GpsZeit = true;
  state.Loc10st = true;
  state.MyHomeLoc = QStringLiteral("jo31ab");
  MainParts main;
  frmOptions dialog(state, main.targets());

  auto* port = child<QComboBox>(dialog, "Combo1");
  QCOMPARE(port->count(), 1);
  QCOMPARE(port->itemText(0), QStringLiteral("Com2"));
  QCOMPARE(port->itemData(0, Qt::ToolTipRole).toString(), com2.path());
  QCOMPARE(state.ComNumber, 2);  // beyond the highest free port
  dialog.show();
  QCOMPARE(port->currentText(), QStringLiteral("Com5"));

  QVERIFY(child<QRadioButton>(dialog, "Option1_1")->isChecked());  // "GPS an" only, exactly
  QVERIFY(child<QRadioButton>(dialog, "Option4")->isChecked());
  QVERIFY(child<QCheckBox>(dialog, "Check1")->isChecked());
  QVERIFY(child<QRadioButton>(dialog, "Option2_1")->isChecked());
  QCOMPARE(child<QLineEdit>(dialog, "Text1")->text(), QStringLiteral("jo31ab"));
}

// Typed into the dialog of a first run (Com1, 4800, 30 s), then OK.
void tst_frmOptions::ok() {
  const struct {
    const char *port, *rate, *interval, *home, *comPort;
    int comNumber;
    const char* comSettings;
    int seconds;
  } cases[] = {
      {"Com1", "4800", "5", "", "Com1", 1, "4800,N,8,1", 10},
      {"Com1", "4800", "66", "", "Com1", 1, "4800,N,8,1", 65},
      {"Com1", "4800", "12,5", "", "Com1", 1, "4800,N,8,1", 12},
      {"Com1", "4800", "12.5", "", "Com1", 1, "4800,N,8,1", 12},  // half to even
      {"Com1", "4800", "9e99", "", "Com1", 1, "4800,N,8,1", 65},
      {"Com1", "", "30", "", "Com1", 1, ",N,8,1", 30},
      {"COM12", "9600", "30", "", "COM12", 12, "9600,N,8,1", 30},
      {"Com40000", "4800", "30", "", "Com1", 1, "4800,N,8,1", 30},  // beyond 16 bits
      {"Com1", "4800", "30", "jo62qm", "Com1", 1, "4800,N,8,1", 30},
  };
  for (const auto& c : cases) {
    Module1 state = firstRunState();
    state.MyHomeLoc = QStringLiteral("JO31AB");
    MainParts main;
    frmOptions dialog(state, main.targets());
    dialog.show();
    child<QComboBox>(dialog, "Combo1")->setEditText(c.port);
    child<QComboBox>(dialog, "Combo2")->setEditText(c.rate);
    child<QComboBox>(dialog, "Combo3")->setEditText(c.interval);
    child<QLineEdit>(dialog, "Text1")->setText(c.home);
    QTest::mouseClick(child<QPushButton>(dialog, "Command1"), Qt::LeftButton);

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(state.ComPort, QString(c.comPort));
    QCOMPARE(state.ComNumber, c.comNumber);
    QCOMPARE(state.ComSettings, QString(c.comSettings));
    QCOMPARE(state.GpsIntervalSeconds, c.seconds);
    QCOMPARE(main.timer.interval(), c.seconds * 1000);
    QCOMPARE(state.MyHomeLoc, QString(c.home).toUpper());
    // Stored at once, whatever happens to the program later; nothing else before the exit.
    QCOMPARE(marvento::GetSetting("MyHomeLoc", "missing"), QString(c.home).toUpper());
    QCOMPARE(marvento::GetSetting("Com", "missing"), QStringLiteral("missing"));
  }
}

void tst_frmOptions::receptionOffClosesAndClears() {
  marvento::test::Pty pty;
  QVERIFY(pty.ok());
  marvento::test::SetPortDevice(3, pty.path());
  Module1 state = firstRunState();
  state.GpsStatus = marvento::kGpsAn;
  MainParts main;
  main.timer.start();
  frmOptions dialog(state, main.targets());
  // A poll that failed half-way leaves the port open behind the scan.
  QVERIFY(main.comm.setCommPort(3).ok());
  QVERIFY(main.comm.setPortOpen(true).ok());
  dialog.show();
  child<QRadioButton>(dialog, "Option1_1")->setChecked(true);
  // Enter in a field takes the default button.
  QApplication::setActiveWindow(&dialog);
  auto* home = child<QLineEdit>(dialog, "Text1");
  home->setFocus();
  QVERIFY(home->hasFocus());
  QTest::keyClick(home, Qt::Key_Return);

  QCOMPARE(dialog.result(), int(QDialog::Accepted));
  QCOMPARE(state.GpsStatus, marvento::kGpsAus);
  QVERIFY(!main.timer.isActive());
  QVERIFY(!main.comm.portOpen());
  QCOMPARE(main.info.text(), QString());
  QCOMPARE(main.window.windowTitle(), QStringLiteral("Marvento "));
}

// The first control of the tab order has the focus at opening, and a focused button takes
// Enter: so Enter straight away cancels.
void tst_frmOptions::enterAtOpeningCancels() {
  Module1 state = firstRunState();
  const Module1 before = state;
  MainParts main;
  frmOptions dialog(state, main.targets());
  dialog.show();
  QApplication::setActiveWindow(&dialog);
  QVERIFY(QTest::qWaitForWindowActive(&dialog));
  QCOMPARE(QApplication::focusWidget(), child<QWidget>(dialog, "Command2"));
  child<QRadioButton>(dialog, "Option1_0")->setChecked(true);
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  QCOMPARE(dialog.result(), int(QDialog::Rejected));
  QCOMPARE(state.GpsStatus, before.GpsStatus);
}

void tst_frmOptions::receptionOnStartsTimer() {
  Module1 state = firstRunState();
  MainParts main;
  frmOptions dialog(state, main.targets());
  dialog.show();
  child<QRadioButton>(dialog, "Option1_0")->setChecked(true);
  child<QComboBox>(dialog, "Combo3")->setCurrentIndex(1);
  child<QPushButton>(dialog, "Command1")->click();

  QCOMPARE(state.GpsStatus, marvento::kGpsAn);
  QVERIFY(main.timer.isActive());
  QCOMPARE(main.timer.interval(), 15000);
  QCOMPARE(main.info.text(), QStringLiteral("2 Versuche"));
  QCOMPARE(main.window.windowTitle(), QStringLiteral("Marvento JO62QM"));
}

void tst_frmOptions::formatChangeEmptiesCoordinates() {
  const std::pair<const char*, bool> cases[] = {
      {"Option4", true}, {"Option2_1", true}, {"Option3", false}, {"Check1", false}};
  for (const auto& [option, emptied] : cases) {
    Module1 state = firstRunState();
    MainParts main;
    frmOptions dialog(state, main.targets());
    dialog.show();
    child<QAbstractButton>(dialog, option)->click();
    child<QPushButton>(dialog, "Command1")->click();
    QCOMPARE(main.fieldsEmpty(), emptied);
    QCOMPARE(main.fieldsKept(), !emptied);
    QCOMPARE(state.GradDezimal, option == QStringLiteral("Option4"));
    QCOMPARE(state.Loc10st, option == QStringLiteral("Option2_1"));
    QCOMPARE(state.GpsZeit, option == QStringLiteral("Check1"));
  }
}

void tst_frmOptions::cancelChangesNothing_data() {
  QTest::addColumn<QString>("way");
  QTest::newRow("Abbrechen") << "button";
  QTest::newRow("Esc") << "escape";
  QTest::newRow("close box") << "close";
}

void tst_frmOptions::cancelChangesNothing() {
  QFETCH(QString, way);
  Module1 state = firstRunState();
  state.GpsStatus = marvento::kGpsAn;
  state.MyHomeLoc = QStringLiteral("JO31AB");
  MainParts main;
  main.timer.stop();  // as the menu command leaves it with reception on
  frmOptions dialog(state, main.targets());
  const Module1 before = state;
  dialog.show();
  child<QComboBox>(dialog, "Combo1")->setEditText(QStringLiteral("Com7"));
  child<QComboBox>(dialog, "Combo2")->setEditText(QStringLiteral("9600"));
  child<QComboBox>(dialog, "Combo3")->setEditText(QStringLiteral("45"));
  child<QLineEdit>(dialog, "Text1")->setText(QStringLiteral("jo62qm"));
  child<QRadioButton>(dialog, "Option1_1")->setChecked(true);
  child<QRadioButton>(dialog, "Option4")->setChecked(true);
  child<QRadioButton>(dialog, "Option2_1")->setChecked(true);
  child<QCheckBox>(dialog, "Check1")->setChecked(true);

  if (way == QStringLiteral("button")) {
    QTest::mouseClick(child<QPushButton>(dialog, "Command2"), Qt::LeftButton);
  } else if (way == QStringLiteral("escape")) {
    QTest::keyClick(&dialog, Qt::Key_Escape);
  } else {
    dialog.close();
  }

  QCOMPARE(dialog.result(), int(QDialog::Rejected));
  QCOMPARE(dialogFields(state), dialogFields(before));
  QVERIFY(!main.timer.isActive());
  QCOMPARE(main.timer.interval(), 30000);
  QVERIFY(main.fieldsKept());
  QCOMPARE(main.window.windowTitle(), QStringLiteral("Marvento JO62QM"));
  QCOMPARE(marvento::GetSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("missing")),
           QStringLiteral("missing"));
}

QTEST_MAIN(tst_frmOptions)
#include "tst_frmOptions.moc"
