#include "options/frmOptions.h"

#include "platform/CommControl.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "station/StationAddress.h"
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
using marvento::Preferences;
using marvento::SettingKey;

namespace {

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
  void buttons();
  void scanReportsThePortThisProgramHolds();
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
    Preferences first;
    first.MyHomeLoc = QStringLiteral("JO31AB");
    CommControl probe;
    frmOptions dialog(first, &probe);
    dialog.show();
    child<QComboBox>(dialog, "Combo1")->setEditText(c.port);
    child<QComboBox>(dialog, "Combo2")->setEditText(c.rate);
    child<QComboBox>(dialog, "Combo3")->setEditText(c.interval);
    child<QLineEdit>(dialog, "Text1")->setText(c.home);
    QTest::mouseClick(child<QPushButton>(dialog, "Command1"), Qt::LeftButton);

    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    const Preferences& chosen = dialog.chosen();
    QCOMPARE(chosen.ComPort, QString(c.comPort));
    QCOMPARE(chosen.ComNumber, c.comNumber);
    QCOMPARE(chosen.ComSettings, QString(c.comSettings));
    QCOMPARE(chosen.GpsIntervalSeconds, c.seconds);
    QCOMPARE(chosen.MyHomeLoc, QString(c.home).toUpper());
    // The dialog stores nothing itself; the window does, after OK.
    QCOMPARE(marvento::GetSetting(SettingKey::MyHomeLoc, "missing"), QStringLiteral("missing"));
  }
}

// Each button of the three groups and the time box, shown from the preferences and returned.
void tst_frmOptions::buttons() {
  const struct {
    const char* button;
    bool receptionOn, gradDezimal, loc10st, gpsZeit;
  } cases[] = {
      {"Option1_0", true, false, false, false}, {"Option1_1", false, false, false, false},
      {"Option4", false, true, false, false},   {"Option2_1", false, false, true, false},
      {"Check1", false, false, false, true},
  };
  for (const auto& c : cases) {
    for (const bool startOn : {false, true}) {
      Preferences current;
      current.receptionOn = current.GradDezimal = current.Loc10st = current.GpsZeit = startOn;
      frmOptions dialog(current, nullptr);
      dialog.show();
      QCOMPARE(child<QRadioButton>(dialog, "Option1_0")->isChecked(), startOn);
      QCOMPARE(child<QRadioButton>(dialog, "Option4")->isChecked(), startOn);
      QCOMPARE(child<QRadioButton>(dialog, "Option2_1")->isChecked(), startOn);
      QCOMPARE(child<QCheckBox>(dialog, "Check1")->isChecked(), startOn);
      // All off, then the one button.
      for (const char* name : {"Option1_1", "Option3", "Option2_0"}) {
        child<QRadioButton>(dialog, name)->setChecked(true);
      }
      child<QCheckBox>(dialog, "Check1")->setChecked(false);
      child<QAbstractButton>(dialog, c.button)->click();
      child<QPushButton>(dialog, "Command1")->click();
      const Preferences& chosen = dialog.chosen();
      QCOMPARE(chosen.receptionOn, c.receptionOn);
      QCOMPARE(chosen.GradDezimal, c.gradDezimal);
      QCOMPARE(chosen.Loc10st, c.loc10st);
      QCOMPARE(chosen.GpsZeit, c.gpsZeit);
    }
  }
}

// The scan may lower the port number to the highest port there is, and it reports a port
// that this program holds open, so that the poll skips the busy-port question there.
void tst_frmOptions::scanReportsThePortThisProgramHolds() {
  marvento::test::Pty held, free;
  QVERIFY(held.ok() && free.ok());
  marvento::test::SetPortDevice(3, held.path());
  marvento::test::SetPortDevice(5, free.path());
  // The serial control of a poll holds the port while the dialog's probe scans.
  CommControl comm;
  QVERIFY(comm.setCommPort(3).ok());
  QVERIFY(comm.setPortOpen(true).ok());
  Preferences current;
  current.ComPort = QStringLiteral("Com9");
  current.ComNumber = 9;
  CommControl probe;
  frmOptions dialog(current, &probe);
  QCOMPARE(dialog.chosen().ComNumber, 5);
  QCOMPARE(dialog.busyPort(), std::optional<std::int16_t>(3));
  // Abbrechen: the window takes the busy port, not the lowered number.
  dialog.reject();
  QCOMPARE(dialog.busyPort(), std::optional<std::int16_t>(3));
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

  CommControl probe;
  marvento::MsgBoxRecorder boxes;
  frmOptions dialog(Preferences{}, &probe);
  dialog.show();
  child<QComboBox>(dialog, "Combo1")->setEditText(typed);
  child<QPushButton>(dialog, "Command1")->click();

  QCOMPARE(boxes.count(), 1);
  QVERIFY2(boxes.last().prompt.startsWith(box), qPrintable(boxes.last().prompt));
  if (number == 0) {
    QVERIFY(dialog.isVisible());
    return;
  }
  QCOMPARE(dialog.result(), int(QDialog::Accepted));
  QCOMPARE(dialog.chosen().ComNumber, number);
  QCOMPARE(dialog.chosen().ComPort, QStringLiteral("Com%1").arg(number));
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
  QTest::addColumn<QString>("chosenGpsd");
  QTest::addColumn<QString>("chosenWsjtx");  // as stored: empty when off
  QTest::addColumn<QString>("chosenRotor");

  const QString none;
  const QString localGpsd = QStringLiteral("localhost:2947");
  QTest::newRow("gpsd at its default")
      << "gpsd" << localGpsd << none << none << none << "gpsd" << localGpsd << none << none;
  QTest::newRow("gpsd elsewhere, programs on") << "GPSD"
                                               << " 192.168.1.5:2948 "
                                               << "224.0.0.1:2237"
                                               << "[::1]" << none << "gpsd"
                                               << "192.168.1.5:2948"
                                               << "224.0.0.1:2237"
                                               << "[::1]:4533";
  QTest::newRow("gpsd address refused") << "gpsd"
                                        << "localhost:x" << none << none << "Ungültige gpsd-Adresse"
                                        << "Com1" << localGpsd << none << none;
  QTest::newRow("a port ignores a bad gpsd address")
      << "Com2"
      << "localhost:x" << none << none << none << "Com2" << localGpsd << none << none;
  QTest::newRow("WSJT-X needs an address to listen on")
      << "gpsd" << localGpsd << "rechner:2237" << none << "Die Adresse „rechner:2237“ für WSJT-X"
      << "Com1" << localGpsd << none << none;
  QTest::newRow("rotor port out of range") << "Com1" << localGpsd << none << "127.0.0.1:70000"
                                           << "Die Adresse „127.0.0.1:70000“ für Rotor"
                                           << "Com1" << localGpsd << none << none;
}

// gpsd as a source and the station programs: checked before anything changes.
void tst_frmOptions::sourceAndStationPrograms() {
  QFETCH(QString, port);
  QFETCH(QString, gpsd);
  QFETCH(QString, wsjtx);
  QFETCH(QString, rotor);
  QFETCH(QString, box);
  QFETCH(QString, comPort);
  QFETCH(QString, chosenGpsd);
  QFETCH(QString, chosenWsjtx);
  QFETCH(QString, chosenRotor);

  CommControl probe;
  marvento::MsgBoxRecorder boxes;
  frmOptions dialog(Preferences{}, &probe);
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
  const Preferences& chosen = dialog.chosen();
  QCOMPARE(chosen.ComPort, comPort);
  QCOMPARE(chosen.GpsdAddress, chosenGpsd);
  QCOMPARE(marvento::StationAddressText(chosen.stations[0]), chosenWsjtx);
  QCOMPARE(chosen.stations[1].status, marvento::StationAddress::Off);
  QCOMPARE(marvento::StationAddressText(chosen.stations[2]), chosenRotor);
}

void tst_frmOptions::storedStationProgramsAreShown() {
  Preferences current;
  current.GpsdAddress = QStringLiteral("pi.local:2947");
  current.stations[1] = marvento::ParseStationAddress(QStringLiteral("10.0.0.7:2442"),
                                                      marvento::StationProgram::Js8Call);
  // An address that does not read counts as off; the field offers the usual one.
  current.stations[2] =
      marvento::ParseStationAddress(QStringLiteral("kein Rotor"), marvento::StationProgram::Rotor);
  frmOptions dialog(current, nullptr);
  QCOMPARE(child<QLineEdit>(dialog, "tbGpsd")->text(), QStringLiteral("pi.local:2947"));
  QVERIFY(child<QCheckBox>(dialog, "chkJs8Call")->isChecked());
  QCOMPARE(child<QLineEdit>(dialog, "tbJs8Call")->text(), QStringLiteral("10.0.0.7:2442"));
  QVERIFY(!child<QCheckBox>(dialog, "chkRotor")->isChecked());
  QVERIFY(!child<QLineEdit>(dialog, "tbRotor")->isEnabled());
  QCOMPARE(child<QLineEdit>(dialog, "tbRotor")->text(), QStringLiteral("127.0.0.1:4533"));
  QVERIFY(!child<QCheckBox>(dialog, "chkWsjtx")->isChecked());
}

QTEST_MAIN(tst_frmOptions)
#include "tst_frmOptions.moc"
