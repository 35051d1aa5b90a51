#include "options/frmOptions.h"

#include "platform/CommControl.h"
#include "platform/MsgBoxRecorder.h"
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

  void ok();
  void receptionOffClosesAndClears();
  void receptionOnStartsTimer();
  void formatChangeEmptiesCoordinates();
  void cancelChangesNothing();
  void cancelKeepsThePortPanelOneNames();
  void typedDevicePath_data();
  void typedDevicePath();
  void sourceAndStationPrograms_data();
  void sourceAndStationPrograms();
  void storedStationProgramsAreShown();

 private:
  QTemporaryDir m_config;
};

// Typed into the dialog of a first run (Com1, 4800, 30 s), then OK.
void tst_frmOptions::ok() {
  const struct {
    const char *port, *rate, *interval, *home, *comPort;
    int comNumber;
    const char* comSettings;
    int seconds;
  } cases[] = {
      {"Com1", "4800", "5", "", "Com1", 1, "4800,N,8,1", 10},
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
  child<QPushButton>(dialog, "Command1")->click();

  QCOMPARE(dialog.result(), int(QDialog::Accepted));
  QCOMPARE(state.GpsStatus, marvento::kGpsAus);
  QVERIFY(!main.timer.isActive());
  QVERIFY(!main.comm.portOpen());
  QCOMPARE(main.info.text(), QString());
  QCOMPARE(main.window.windowTitle(), QStringLiteral("Marvento "));
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
    QCOMPARE(state.GradDezimal, option == QStringLiteral("Option4"));
    QCOMPARE(state.Loc10st, option == QStringLiteral("Option2_1"));
    QCOMPARE(state.GpsZeit, option == QStringLiteral("Check1"));
  }
}

// By the button or by the close box.
void tst_frmOptions::cancelChangesNothing() {
  for (const bool closeBox : {false, true}) {
    Module1 state = firstRunState();
    state.GpsStatus = marvento::kGpsAn;
    state.MyHomeLoc = QStringLiteral("JO31AB");
    MainParts main;
    frmOptions dialog(state, main.targets());
    dialog.show();
    child<QComboBox>(dialog, "Combo1")->setEditText(QStringLiteral("Com7"));
    child<QComboBox>(dialog, "Combo3")->setEditText(QStringLiteral("45"));
    child<QLineEdit>(dialog, "Text1")->setText(QStringLiteral("jo62qm"));
    child<QRadioButton>(dialog, "Option1_1")->setChecked(true);
    child<QRadioButton>(dialog, "Option4")->setChecked(true);
    closeBox ? void(dialog.close()) : child<QPushButton>(dialog, "Command2")->click();

    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QCOMPARE(state.ComPort, QStringLiteral("Com1"));
    QCOMPARE(state.GpsIntervalSeconds, 30);
    QCOMPARE(state.MyHomeLoc, QStringLiteral("JO31AB"));
    QCOMPARE(state.GpsStatus, marvento::kGpsAn);
    QVERIFY(!state.GradDezimal);
    QVERIFY(!main.timer.isActive());  // the menu command stopped it; it restarts it itself
    QVERIFY(main.fieldsKept());
    QCOMPARE(marvento::GetSetting(QStringLiteral("MyHomeLoc"), QStringLiteral("missing")),
             QStringLiteral("missing"));
  }
}

// Regression: the scan lowered ComNumber below a port that is not there (an unplugged USB
// receiver), and Abbrechen left reception on that lower port under the old name.
void tst_frmOptions::cancelKeepsThePortPanelOneNames() {
  marvento::test::Pty pty;
  QVERIFY(pty.ok());
  marvento::test::SetPortDevice(3, pty.path());
  Module1 state = firstRunState();
  state.ComPort = QStringLiteral("Com9");
  state.ComNumber = 9;
  MainParts main;
  frmOptions dialog(state, main.targets());
  QCOMPARE(state.ComNumber, 3);  // what the scan offers
  dialog.show();
  child<QPushButton>(dialog, "Command2")->click();
  QCOMPARE(state.ComNumber, 9);
  QCOMPARE(state.ComPort, QStringLiteral("Com9"));
}

void tst_frmOptions::typedDevicePath_data() {
  // How the text is typed ("%pty" the pseudo-terminal, "%link" a link to it), which port
  // it becomes (0: refused), and the start of the message box.
  QTest::addColumn<QString>("typed");
  QTest::addColumn<bool>("mapped");  // the pty is Com3 already
  QTest::addColumn<int>("number");
  QTest::addColumn<QString>("box");
  QTest::newRow("known device") << "%pty" << true << 3 << "Der GPS-Empfänger an ";
  QTest::newRow("link to a known device") << "%link" << true << 3 << "Der GPS-Empfänger an ";
  QTest::newRow("device of no port") << "%pty" << false << 29 << "Der GPS-Empfänger an ";
  QTest::newRow("missing") << "/dev/marvento-no-gps" << false << 0
                           << "Das Gerät /dev/marvento-no-gps ist nicht vorhanden.";
  QTest::newRow("no device") << "/tmp" << false << 0 << "/tmp ist keine serielle Schnittstelle.";
  // Regression: a name without a number became port 0 and the busy-port question.
  QTest::newRow("port 0") << "Com" << false << 0 << "Die Schnittstelle „Com“ gibt es nicht.";
}

// A path typed as the port becomes that port's device, stored for the next start, or is
// refused with the dialog left open.
void tst_frmOptions::typedDevicePath() {
  QFETCH(QString, typed);
  QFETCH(bool, mapped);
  QFETCH(int, number);
  QFETCH(QString, box);
  marvento::test::Pty pty;
  QVERIFY(pty.ok());
  if (mapped) marvento::test::SetPortDevice(3, pty.path());
  const QString link = m_config.filePath(QStringLiteral("gps-link"));
  QFile::remove(link);
  QVERIFY(QFile::link(pty.path(), link));
  typed.replace(QStringLiteral("%pty"), pty.path()).replace(QStringLiteral("%link"), link);

  Module1 state = firstRunState();
  MainParts main;
  marvento::MsgBoxRecorder boxes;
  frmOptions dialog(state, main.targets());
  dialog.show();
  child<QComboBox>(dialog, "Combo1")->setEditText(typed);
  child<QPushButton>(dialog, "Command1")->click();

  QCOMPARE(boxes.count(), 1);
  QVERIFY2(boxes.last().prompt.startsWith(box), qPrintable(boxes.last().prompt));
  if (number == 0) {
    QVERIFY(dialog.isVisible());
    QCOMPARE(state.ComPort, QStringLiteral("Com1"));
    QCOMPARE(state.ComNumber, 1);
    return;
  }
  QCOMPARE(dialog.result(), int(QDialog::Accepted));
  QCOMPARE(state.ComNumber, number);
  QCOMPARE(state.ComPort, QStringLiteral("Com%1").arg(number));
  QVERIFY2(
      boxes.last().prompt.endsWith(QStringLiteral(" wird als Com%1 angesprochen.").arg(number)),
      qPrintable(boxes.last().prompt));
  // The port opens the typed device from now on, also after a restart.
  QCOMPARE(QFileInfo(marvento::PortDevice(number)).canonicalFilePath(), pty.path());
  if (typed == link) QCOMPARE(marvento::PortDevice(number), link);
}

void tst_frmOptions::sourceAndStationPrograms_data() {
  QTest::addColumn<QString>("port");
  QTest::addColumn<QString>("gpsd");
  QTest::addColumn<QString>("wsjtx");  // empty: the check box stays off
  QTest::addColumn<QString>("rotor");
  QTest::addColumn<QString>("box");  // the refusal's start; empty when accepted
  QTest::addColumn<QString>("comPort");
  QTest::addColumn<QString>("storedGpsd");  // "missing" when the key stays unwritten
  QTest::addColumn<QString>("storedWsjtx");
  QTest::addColumn<QString>("storedRotor");

  QTest::newRow("gpsd at its default") << "gpsd"
                                       << "localhost:2947"
                                       << ""
                                       << ""
                                       << ""
                                       << "gpsd"
                                       << "localhost:2947"
                                       << ""
                                       << "";
  QTest::newRow("gpsd elsewhere, programs on") << "GPSD"
                                               << " 192.168.1.5:2948 "
                                               << "224.0.0.1:2237"
                                               << "[::1]"
                                               << ""
                                               << "gpsd"
                                               << "192.168.1.5:2948"
                                               << "224.0.0.1:2237"
                                               << "[::1]:4533";
  QTest::newRow("gpsd address refused") << "gpsd"
                                        << "localhost:x"
                                        << ""
                                        << ""
                                        << "Ungültige gpsd-Adresse"
                                        << "Com1"
                                        << "missing"
                                        << "missing"
                                        << "missing";
  QTest::newRow("a port ignores a bad gpsd address") << "Com2"
                                                     << "localhost:x"
                                                     << ""
                                                     << ""
                                                     << ""
                                                     << "Com2"
                                                     << "missing"
                                                     << ""
                                                     << "";
  QTest::newRow("WSJT-X needs an address to listen on") << "gpsd"
                                                        << "localhost:2947"
                                                        << "rechner:2237"
                                                        << ""
                                                        << "Die Adresse „rechner:2237“ für WSJT-X"
                                                        << "Com1"
                                                        << "missing"
                                                        << "missing"
                                                        << "missing";
  QTest::newRow("rotor port out of range") << "Com1"
                                           << "localhost:2947"
                                           << ""
                                           << "127.0.0.1:70000"
                                           << "Die Adresse „127.0.0.1:70000“ für Rotor"
                                           << "Com1"
                                           << "missing"
                                           << "missing"
                                           << "missing";
}

// gpsd as a source and the station programs: checked before anything changes, stored at OK.
void tst_frmOptions::sourceAndStationPrograms() {
  QFETCH(QString, port);
  QFETCH(QString, gpsd);
  QFETCH(QString, wsjtx);
  QFETCH(QString, rotor);
  QFETCH(QString, box);
  QFETCH(QString, comPort);
  QFETCH(QString, storedGpsd);
  QFETCH(QString, storedWsjtx);
  QFETCH(QString, storedRotor);

  Module1 state = firstRunState();
  MainParts main;
  marvento::MsgBoxRecorder boxes;
  frmOptions dialog(state, main.targets());
  dialog.show();
  QVERIFY(child<QComboBox>(dialog, "Combo1")->findText(QStringLiteral("gpsd")) >= 0);
  child<QComboBox>(dialog, "Combo1")->setEditText(port);
  child<QLineEdit>(dialog, "tbGpsd")->setText(gpsd);
  if (!wsjtx.isEmpty()) {
    child<QCheckBox>(dialog, "chkWsjtx")->setChecked(true);
    child<QLineEdit>(dialog, "tbWsjtx")->setText(wsjtx);
  }
  if (!rotor.isEmpty()) {
    child<QCheckBox>(dialog, "chkRotor")->setChecked(true);
    child<QLineEdit>(dialog, "tbRotor")->setText(rotor);
  }
  child<QPushButton>(dialog, "Command1")->click();

  if (box.isEmpty()) {
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
  } else {
    QCOMPARE(boxes.count(), 1);
    QVERIFY2(boxes.last().prompt.startsWith(box), qPrintable(boxes.last().prompt));
    QVERIFY(dialog.isVisible());
  }
  QCOMPARE(state.ComPort, comPort);
  QCOMPARE(marvento::GetSetting("Gpsd", "missing"), storedGpsd);
  QCOMPARE(marvento::GetSetting("Wsjtx", "missing"), storedWsjtx);
  QCOMPARE(marvento::GetSetting("Js8Call", "missing"),
           box.isEmpty() ? QString() : QStringLiteral("missing"));
  QCOMPARE(marvento::GetSetting("Rotor", "missing"), storedRotor);
}

void tst_frmOptions::storedStationProgramsAreShown() {
  marvento::SaveSetting(QStringLiteral("Js8Call"), QStringLiteral("10.0.0.7:2442"));
  marvento::SaveSetting(QStringLiteral("Rotor"), QStringLiteral("kein Rotor"));  // edited by hand
  Module1 state = firstRunState();
  state.GpsdAddress = QStringLiteral("pi.local:2947");
  MainParts main;
  frmOptions dialog(state, main.targets());
  QCOMPARE(child<QLineEdit>(dialog, "tbGpsd")->text(), QStringLiteral("pi.local:2947"));
  QVERIFY(child<QCheckBox>(dialog, "chkJs8Call")->isChecked());
  QCOMPARE(child<QLineEdit>(dialog, "tbJs8Call")->text(), QStringLiteral("10.0.0.7:2442"));
  // An address that does not read counts as off; the field offers the usual one.
  QVERIFY(!child<QCheckBox>(dialog, "chkRotor")->isChecked());
  QVERIFY(!child<QLineEdit>(dialog, "tbRotor")->isEnabled());
  QCOMPARE(child<QLineEdit>(dialog, "tbRotor")->text(), QStringLiteral("127.0.0.1:4533"));
  QVERIFY(!child<QCheckBox>(dialog, "chkWsjtx")->isChecked());
}

QTEST_MAIN(tst_frmOptions)
#include "tst_frmOptions.moc"
