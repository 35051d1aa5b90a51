#include "options/frmOptions.h"

#include "platform/CommControl.h"
#include "platform/Settings.h"
#include "support/Pty.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
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

void expectSameState(const Module1& a, const Module1& b) {
  QCOMPARE(a.ComPort, b.ComPort);
  QCOMPARE(a.ComNumber, b.ComNumber);
  QCOMPARE(a.ComSettings, b.ComSettings);
  QCOMPARE(a.GpsStatus, b.GpsStatus);
  QCOMPARE(a.GpsIntervalSeconds, b.GpsIntervalSeconds);
  QCOMPARE(a.MyHomeLoc, b.MyHomeLoc);
  QCOMPARE(a.GradDezimal, b.GradDezimal);
  QCOMPARE(a.GpsZeit, b.GpsZeit);
  QCOMPARE(a.Loc10st, b.Loc10st);
  QCOMPARE(a.BusyPort, b.BusyPort);
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

  void controls_data();
  void controls();
  void placement_data();
  void placement();
  void load_data();
  void load();
  void portListAndStoredName();
  void ok_data();
  void ok();
  void receptionOffClosesAndClears();
  void enterAtOpeningCancels();
  void receptionOnStartsTimer();
  void formatChangeEmptiesCoordinates_data();
  void formatChangeEmptiesCoordinates();
  void cancelChangesNothing_data();
  void cancelChangesNothing();

 private:
  QTemporaryDir m_config;
};

void tst_frmOptions::controls_data() {
  QTest::addColumn<QString>("name");
  QTest::addColumn<QString>("className");
  QTest::addColumn<QString>("caption");
  QTest::addColumn<QString>("toolTip");
  QTest::addColumn<QString>("parentName");
  QTest::addColumn<QString>("buddy");  // the control a label's access key leads to

  auto row = [](const char* name, const char* cls, const char* caption, const char* tip,
                const char* parent = "frmOptions", const char* buddy = "") {
    QTest::newRow(name) << QString::fromLatin1(name) << QString::fromLatin1(cls)
                        << QString::fromUtf8(caption) << QString::fromUtf8(tip)
                        << QString::fromLatin1(parent) << QString::fromLatin1(buddy);
  };
  row("Command2", "QPushButton", "&Abbrechen", " Einstellungen bleiben unverändert ");
  row("Command1", "QPushButton", "&OK", " Änderungen werden übernommen ");
  row("Label1", "QLabel", "Daten vom GPS-Empfänger im NMEA 0183-Protokoll", "");
  row("Label4", "QLabel", "all&e", "", "frmOptions", "Combo3");
  row("Combo3", "QComboBox", "", " GPS-Dateninterval ");
  row("Label5", "QLabel", "Sekunden", "");
  row("Label2", "QLabel", "&Schnittstelle:", "", "frmOptions", "Combo1");
  row("Combo1", "QComboBox", "", " Com1...Com29 ");
  row("Label3", "QLabel", "&Baudrate:", "", "frmOptions", "Combo2");
  row("Combo2", "QComboBox", "", " Bit pro Sekunde ");
  row("Frame1", "QGroupBox", "GPS-Empfang", "");
  row("Option1_0", "QRadioButton", "&Ein", " GPS-Empfänger übermittelt Daten ", "Frame1");
  row("Option1_1", "QRadioButton", "A&us", " GPS-Empfänger nicht aktiv ", "Frame1");
  row("Check1", "QCheckBox", "GPS-&Zeit", " GPS-Zeit (Min/Sek) übernehmen ", "Frame1");
  row("Frame2", "QGroupBox", "Graddarstellung", "");
  row("Option3", "QRadioButton", "&Grd/Min/Sek", " in Grad, Minuten u. Sekunden ", "Frame2");
  row("Option4", "QRadioButton", "&Dezimal", " Dezimal mit Komma ", "Frame2");
  row("Frame3", "QGroupBox", "Locatordarstellung", "");
  row("Option2_0", "QRadioButton", "&6 st.", " normal ", "Frame3");
  row("Option2_1", "QRadioButton", "&10 st.", " hohe Genauigkeit ", "Frame3");
  row("Label6", "QLabel", "My &Home - Loc:", "", "frmOptions", "Text1");
  row("Text1", "QLineEdit", "", " Eigener Locator/Vorgabe  ");
}

void tst_frmOptions::controls() {
  QFETCH(QString, name);
  QFETCH(QString, className);
  QFETCH(QString, caption);
  QFETCH(QString, toolTip);
  QFETCH(QString, parentName);
  QFETCH(QString, buddy);

  Module1 state = firstRunState();
  MainParts main;
  frmOptions dialog(state, main.targets());
  QCOMPARE(dialog.objectName(), QStringLiteral("frmOptions"));
  QCOMPARE(dialog.windowTitle(), QStringLiteral("Grundeinstellungen Marvento"));
  QVERIFY(child<QPushButton>(dialog, "Command1")->isDefault());
  QCOMPARE(child<QLineEdit>(dialog, "Text1")->maxLength(), 10);

  auto* widget = dialog.findChild<QWidget*>(name);
  QVERIFY2(widget != nullptr, qPrintable(name));
  QCOMPARE(QString::fromLatin1(widget->metaObject()->className()), className);
  QCOMPARE(widget->toolTip(), toolTip);
  QCOMPARE(widget->parentWidget()->objectName(), parentName);
  QString shown;
  if (auto* label = qobject_cast<QLabel*>(widget)) {
    shown = label->text();
    QCOMPARE(label->buddy() ? label->buddy()->objectName() : QString(), buddy);
  }
  if (auto* button = qobject_cast<QAbstractButton*>(widget)) shown = button->text();
  if (auto* frame = qobject_cast<QGroupBox*>(widget)) shown = frame->title();
  if (!caption.isEmpty()) QCOMPARE(shown, caption);
}

void tst_frmOptions::placement_data() {
  QTest::addColumn<QString>("left");
  QTest::addColumn<QString>("top");
  QTest::addColumn<double>("leftTwips");
  QTest::addColumn<double>("topTwips");
  QTest::newRow("nothing stored") << QString() << QString() << 1700.0 << 1600.0;
  QTest::newRow("stored position") << "3000"
                                   << "1440" << 3700.0 << 2040.0;
  QTest::newRow("German decimal sign") << "2880,5"
                                       << "720" << 3580.5 << 1320.0;
  QTest::newRow("no number") << "links"
                             << "oben" << 1700.0 << 1600.0;
}

void tst_frmOptions::placement() {
  QFETCH(QString, left);
  QFETCH(QString, top);
  QFETCH(double, leftTwips);
  QFETCH(double, topTwips);
  if (!left.isNull()) marvento::SaveSetting(QStringLiteral("MainLeft"), left);
  if (!top.isNull()) marvento::SaveSetting(QStringLiteral("MainTop"), top);

  Module1 state = firstRunState();
  MainParts main;
  frmOptions dialog(state, main.targets());
  const QPoint expected(static_cast<int>(std::lround(leftTwips * dialog.logicalDpiX() / 1440)),
                        static_cast<int>(std::lround(topTwips * dialog.logicalDpiY() / 1440)));
  QCOMPARE(dialog.pos(), expected);
}

void tst_frmOptions::load_data() {
  QTest::addColumn<QString>("comSettings");
  QTest::addColumn<int>("interval");
  QTest::addColumn<int>("rateIndexAtLoad");
  QTest::addColumn<QString>("rateShown");
  QTest::addColumn<int>("intervalCount");
  QTest::addColumn<QString>("intervalShown");

  QTest::newRow("first run") << "4800,N,8,1" << 30 << 2 << "4800" << 10 << "30";
  QTest::newRow("1200 and 10 s") << "1200,N,8,1" << 10 << 0 << "1200" << 10 << "10";
  QTest::newRow("115200 and 60 s") << "115200,N,8,1" << 60 << 7 << "115200" << 10 << "60";
  QTest::newRow("rate outside the list") << "300,N,8,1" << 50 << 2 << "300" << 10 << "50";
  QTest::newRow("no rate") << ",N,8,1" << 33 << 2 << "0" << 11 << "33";
  QTest::newRow("55 s is not listed") << "9600,N,8,1" << 55 << 3 << "9600" << 11 << "55";
  QTest::newRow("65 s") << "9600,N,8,1" << 65 << 3 << "9600" << 11 << "65";
  QTest::newRow("5 s from the store") << "9600,N,8,1" << 5 << 3 << "9600" << 11 << "5";
}

void tst_frmOptions::load() {
  QFETCH(QString, comSettings);
  QFETCH(int, interval);
  QFETCH(int, rateIndexAtLoad);
  QFETCH(QString, rateShown);
  QFETCH(int, intervalCount);
  QFETCH(QString, intervalShown);

  Module1 state = firstRunState();
  state.ComSettings = comSettings;
  state.GpsIntervalSeconds = interval;
  MainParts main;
  frmOptions dialog(state, main.targets());
  auto* rate = child<QComboBox>(dialog, "Combo2");
  auto* seconds = child<QComboBox>(dialog, "Combo3");
  QCOMPARE(rate->currentIndex(), rateIndexAtLoad);
  QCOMPARE(seconds->count(), intervalCount);
  QCOMPARE(seconds->currentText(), intervalShown);
  dialog.show();
  QCOMPARE(rate->currentText(), rateShown);
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

void tst_frmOptions::ok_data() {
  QTest::addColumn<QString>("portText");
  QTest::addColumn<QString>("rateText");
  QTest::addColumn<QString>("intervalText");
  QTest::addColumn<QString>("homeText");
  QTest::addColumn<QString>("comPort");
  QTest::addColumn<int>("comNumber");
  QTest::addColumn<QString>("comSettings");
  QTest::addColumn<int>("seconds");

  // Typed into the dialog of a first run (Com1, 4800, 30 s), then OK.
  auto row = [](const char* tag, const char* port, const char* rate, const char* interval,
                const char* home, const char* comPort, int number, const char* settings,
                int seconds) {
    QTest::newRow(tag) << QString::fromUtf8(port) << QString::fromUtf8(rate)
                       << QString::fromUtf8(interval) << QString::fromUtf8(home)
                       << QString::fromUtf8(comPort) << number << QString::fromUtf8(settings)
                       << seconds;
  };
  row("5 s raised", "Com1", "4800", "5", "", "Com1", 1, "4800,N,8,1", 10);
  row("66 s cut", "Com1", "4800", "66", "", "Com1", 1, "4800,N,8,1", 65);
  row("65 s kept", "Com1", "4800", "65", "", "Com1", 1, "4800,N,8,1", 65);
  row("12,5 stops at the comma", "Com1", "4800", "12,5", "", "Com1", 1, "4800,N,8,1", 12);
  row("12.5 to even", "Com1", "4800", "12.5", "", "Com1", 1, "4800,N,8,1", 12);
  row("13.5 to even", "Com1", "4800", "13.5", "", "Com1", 1, "4800,N,8,1", 14);
  row("interval no number", "Com1", "4800", "oft", "", "Com1", 1, "4800,N,8,1", 10);
  row("interval beyond 32 bits", "Com1", "4800", "9e99", "", "Com1", 1, "4800,N,8,1", 65);
  row("empty rate", "Com1", "", "30", "", "Com1", 1, ",N,8,1", 30);
  row("typed rate", "Com1", "300", "30", "", "Com1", 1, "300,N,8,1", 30);
  row("COM12 keeps capitals", "COM12", "9600", "30", "", "COM12", 12, "9600,N,8,1", 30);
  row("prefix letters do not count", "Xyz7", "4800", "30", "", "Xyz7", 7, "4800,N,8,1", 30);
  row("Com alone gives 0", "Com", "4800", "30", "", "Com", 0, "4800,N,8,1", 30);
  row("too short keeps the old port", "C1", "4800", "30", "", "Com1", 1, "4800,N,8,1", 30);
  row("beyond 16 bits keeps the old port", "Com40000", "4800", "30", "", "Com1", 1, "4800,N,8,1",
      30);
  row("home locator upper-cased", "Com1", "4800", "30", "jo62qm", "Com1", 1, "4800,N,8,1", 30);
  row("home locator untrimmed", "Com1", "4800", "30", " jo62 ", "Com1", 1, "4800,N,8,1", 30);
}

void tst_frmOptions::ok() {
  QFETCH(QString, portText);
  QFETCH(QString, rateText);
  QFETCH(QString, intervalText);
  QFETCH(QString, homeText);
  QFETCH(QString, comPort);
  QFETCH(int, comNumber);
  QFETCH(QString, comSettings);
  QFETCH(int, seconds);

  Module1 state = firstRunState();
  state.MyHomeLoc = QStringLiteral("JO31AB");
  MainParts main;
  frmOptions dialog(state, main.targets());
  dialog.show();
  child<QComboBox>(dialog, "Combo1")->setEditText(portText);
  child<QComboBox>(dialog, "Combo2")->setEditText(rateText);
  child<QComboBox>(dialog, "Combo3")->setEditText(intervalText);
  child<QLineEdit>(dialog, "Text1")->setText(homeText);
  QTest::mouseClick(child<QPushButton>(dialog, "Command1"), Qt::LeftButton);

  QCOMPARE(dialog.result(), int(QDialog::Accepted));
  QVERIFY(!dialog.isVisible());
  QCOMPARE(state.ComPort, comPort);
  QCOMPARE(state.ComNumber, comNumber);
  QCOMPARE(state.ComSettings, comSettings);
  QCOMPARE(state.GpsIntervalSeconds, seconds);
  QCOMPARE(main.timer.interval(), seconds * 1000);
  QCOMPARE(state.MyHomeLoc, homeText.toUpper());
  // Stored at once, whatever happens to the program later.
  QCOMPARE(marvento::GetSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("missing")),
           homeText.toUpper());
  // Nothing else goes to the store before the exit.
  QCOMPARE(marvento::GetSetting(QStringLiteral("Com"), QStringLiteral("missing")),
           QStringLiteral("missing"));
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

void tst_frmOptions::formatChangeEmptiesCoordinates_data() {
  QTest::addColumn<QString>("option");
  QTest::addColumn<bool>("emptied");
  QTest::newRow("decimal degrees") << "Option4" << true;
  QTest::newRow("10-character locators") << "Option2_1" << true;
  QTest::newRow("same degrees") << "Option3" << false;
  QTest::newRow("same locators") << "Option2_0" << false;
  QTest::newRow("GPS time alone") << "Check1" << false;
}

void tst_frmOptions::formatChangeEmptiesCoordinates() {
  QFETCH(QString, option);
  QFETCH(bool, emptied);
  Module1 state = firstRunState();
  MainParts main;
  frmOptions dialog(state, main.targets());
  dialog.show();
  dialog.findChild<QAbstractButton*>(option)->click();
  child<QPushButton>(dialog, "Command1")->click();
  QCOMPARE(main.fieldsEmpty(), emptied);
  QCOMPARE(main.fieldsKept(), !emptied);
  QCOMPARE(state.GradDezimal, option == QStringLiteral("Option4"));
  QCOMPARE(state.Loc10st, option == QStringLiteral("Option2_1"));
  QCOMPARE(state.GpsZeit, option == QStringLiteral("Check1"));
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
  expectSameState(state, before);
  if (QTest::currentTestFailed()) return;
  QVERIFY(!main.timer.isActive());
  QCOMPARE(main.timer.interval(), 30000);
  QVERIFY(main.fieldsKept());
  QCOMPARE(main.window.windowTitle(), QStringLiteral("Marvento JO62QM"));
  QCOMPARE(marvento::GetSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("missing")),
           QStringLiteral("missing"));
}

QTEST_MAIN(tst_frmOptions)
#include "tst_frmOptions.moc"
