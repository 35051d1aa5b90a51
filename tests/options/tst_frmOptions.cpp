#include "options/frmOptions.h"

#include "platform/CommControl.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "station/StationAddress.h"
#include "support/Pty.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
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

  // Typed into the dialog of a first run (Com1, 4800, 30 s), then OK.
  void ok() {
    const struct {
      const char *port, *rate, *interval, *home, *comPort;
      int comNumber;
      const char* comSettings;
      int seconds;
    } cases[] = {
        {"Com1", "", "5", "", "Com1", 1, ",N,8,1", 10},
        {"COM12", "9600", "9e99", "jo62qm", "COM12", 12, "9600,N,8,1", 65},
        {"Com40000", "4800", "30", "", "Com1", 1, "4800,N,8,1", 30},  // beyond 16 bits
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

  // Each button of the three groups and the time box: shown from the preferences, and on its
  // own it sets its preference alone.
  void buttons() {
    const char* const on[] = {"Option1_0", "Option4", "Option2_1", "Check1"};
    for (const bool startOn : {false, true}) {
      Preferences current;
      current.receptionOn = current.GradDezimal = current.Loc10st = current.GpsZeit = startOn;
      frmOptions dialog(current, nullptr);
      for (const char* name : on)
        QCOMPARE(child<QAbstractButton>(dialog, name)->isChecked(), startOn);
    }
    for (int button = 0; button <= 4; ++button) {  // 4: all off
      frmOptions dialog(Preferences{}, nullptr);
      dialog.show();
      if (button < 4) child<QAbstractButton>(dialog, on[button])->click();
      child<QPushButton>(dialog, "Command1")->click();
      const Preferences& chosen = dialog.chosen();
      QList<bool> expected(4, false);
      if (button < 4) expected[button] = true;
      QCOMPARE(
          QList<bool>({chosen.receptionOn, chosen.GradDezimal, chosen.Loc10st, chosen.GpsZeit}),
          expected);
    }
  }

  // The scan may lower the port number to the highest port there is, and it reports a port
  // that this program holds open, so that the poll skips the busy-port question there.
  void scanReportsThePortThisProgramHolds() {
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

  void typedDevicePath_data() {
    // How the text is typed ("%pty" the pseudo-terminal, "%link" a link to it) and the port it
    // becomes; the refusals are among those of refusalsLeaveAllAsItWas.
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("mapped");  // the pty is Com3 already
    QTest::addColumn<int>("number");
    QTest::newRow("known device") << "%pty" << true << 3;
    QTest::newRow("link to a known device") << "%link" << true << 3;
    QTest::newRow("device of no port") << "%pty" << false << 29;
  }

  // A path typed as the port becomes that port's device, stored for the next start.
  void typedDevicePath() {
    QFETCH(QString, typed);
    QFETCH(bool, mapped);
    QFETCH(int, number);
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
    QCOMPARE(boxes.last().prompt,
             QStringLiteral("Der GPS-Empfänger an %1 wird als Com%2 angesprochen.")
                 .arg(typed)
                 .arg(number));
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.chosen().ComNumber, number);
    QCOMPARE(dialog.chosen().ComPort, QStringLiteral("Com%1").arg(number));
    // The port opens the typed device from now on, also after a restart.
    QCOMPARE(QFileInfo(marvento::PortDevice(number)).canonicalFilePath(), pty.path());
    if (typed == link) QCOMPARE(marvento::PortDevice(number), link);
  }

  // The source, the gpsd address and the station programs are all checked before anything
  // changes: a refusal keeps the dialog open and leaves the first run's values.
  void refusalsLeaveAllAsItWas() {
    struct Case {
      const char* port;
      const char* box = nullptr;  // the refusal's start; nullptr when accepted
      const char* gpsd = "localhost:2947";
      const char* wsjtx = nullptr;  // nullptr leaves the box off
      const char* rotor = nullptr;
      // Port, gpsd address, WSJT-X and rotor as they would be stored (empty when off).
      const char* chosen = "Com1|localhost:2947||";
    };
    const Case cases[] = {
        {"GPSD", nullptr, " 192.168.1.5:2948 ", "224.0.0.1:2237", "[::1]",
         "gpsd|192.168.1.5:2948|224.0.0.1:2237|[::1]:4533"},
        {"gpsd", "Ungültige gpsd-Adresse", "localhost:x"},
        // With a port as the source a bad gpsd address is passed over and the old one kept.
        {"Com2", nullptr, "localhost:x", nullptr, nullptr, "Com2|localhost:2947||"},
        // WSJT-X needs an address to listen on.
        {"gpsd", "Die Adresse „rechner:2237“ für WSJT-X", "localhost:2947", "rechner:2237"},
        {"/dev/marvento-no-gps", "Das Gerät /dev/marvento-no-gps ist nicht vorhanden."},
        {"/tmp", "/tmp ist keine serielle Schnittstelle."},
        // Regression: a name without a number became port 0 and the busy-port question.
        {"Com", "Die Schnittstelle „Com“ gibt es nicht."},
    };
    for (const auto& c : cases) {
      CommControl probe;
      marvento::MsgBoxRecorder boxes;
      frmOptions dialog(Preferences{}, &probe);
      dialog.show();
      QVERIFY(child<QComboBox>(dialog, "Combo1")->findText(QStringLiteral("gpsd")) >= 0);
      child<QComboBox>(dialog, "Combo1")->setEditText(c.port);
      child<QLineEdit>(dialog, "tbGpsd")->setText(c.gpsd);
      const std::pair<const char*, const char*> programs[] = {{"Wsjtx", c.wsjtx},
                                                              {"Rotor", c.rotor}};
      for (const auto& [name, address] : programs) {
        if (!address) continue;
        child<QCheckBox>(dialog, qPrintable(QStringLiteral("chk") + name))->setChecked(true);
        child<QLineEdit>(dialog, qPrintable(QStringLiteral("tb") + name))->setText(address);
      }
      child<QPushButton>(dialog, "Command1")->click();

      QCOMPARE(boxes.count(), c.box ? 1 : 0);
      if (c.box) {
        QVERIFY2(boxes.last().prompt.startsWith(QString::fromUtf8(c.box)),
                 qPrintable(boxes.last().prompt));
      }
      QCOMPARE(dialog.isVisible(), c.box != nullptr);
      const Preferences& chosen = dialog.chosen();
      QCOMPARE(QStringList({chosen.ComPort, chosen.GpsdAddress,
                            marvento::StationAddressText(chosen.stations[0]),
                            marvento::StationAddressText(chosen.stations[2])})
                   .join(u'|'),
               QString::fromUtf8(c.chosen));
      QCOMPARE(chosen.stations[1].status, marvento::StationAddress::Off);
    }
  }

  void storedStationProgramsAreShown() {
    Preferences current;
    current.GpsdAddress = QStringLiteral("pi.local:2947");
    current.stations[1] = marvento::ParseStationAddress(QStringLiteral("10.0.0.7:2442"),
                                                        marvento::StationProgram::Js8Call);
    // An address that does not read counts as off; the field offers the usual one.
    current.stations[2] = marvento::ParseStationAddress(QStringLiteral("kein Rotor"),
                                                        marvento::StationProgram::Rotor);
    frmOptions dialog(current, nullptr);
    QCOMPARE(child<QLineEdit>(dialog, "tbGpsd")->text(), QStringLiteral("pi.local:2947"));
    QVERIFY(child<QCheckBox>(dialog, "chkJs8Call")->isChecked());
    QCOMPARE(child<QLineEdit>(dialog, "tbJs8Call")->text(), QStringLiteral("10.0.0.7:2442"));
    QVERIFY(!child<QCheckBox>(dialog, "chkRotor")->isChecked());
    QVERIFY(!child<QLineEdit>(dialog, "tbRotor")->isEnabled());
    QCOMPARE(child<QLineEdit>(dialog, "tbRotor")->text(), QStringLiteral("127.0.0.1:4533"));
    QVERIFY(!child<QCheckBox>(dialog, "chkWsjtx")->isChecked());
  }

 private:
  QTemporaryDir m_config;
};

QTEST_MAIN(tst_frmOptions)
#include "tst_frmOptions.moc"
