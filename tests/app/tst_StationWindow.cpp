// The window with the station programs beside it: a real rotctld (hamlib's dummy rotator),
// a WSJT-X peer and a JS8Call server in the test, and the receiver on a pseudo-terminal.

#include "app/frmMain.h"

#include "../gps/PtyFeeder.h"
#include "../station/WsjtxDatagram.h"
#include "gps/GpsLog.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "station/RotatorLink.h"
#include "station/StationLinks.h"
#include "station/WsjtxLink.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"
#include "support/RotctldDaemon.h"
#include "support/Typing.h"

#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QNetworkDatagram>
#include <QStatusBar>
#include <QTcpServer>
#include <QTcpSocket>
#include <QToolBar>
#include <QUdpSocket>
#include <QtTest>

#include <cmath>
#include <memory>
#include <optional>

using namespace marvento;

namespace {

const QByteArray kGsa = "$GPGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1*39\r\n";
const QByteArray kGsv = "$GPGSV,2,1,08,01,40,083,46,02,17,308,41,12,07,344,39,14,22,228,45*75\r\n";

QStringList logLines() {
  QFile file(GpsLog::kFileName);
  if (!file.open(QIODevice::ReadOnly)) return {};
  return QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

}  // namespace

class tst_StationWindow : public test::ProgramTest {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY2(QFile::exists(test::kRotctld),
             "rotctld is missing: sh tools/deps.sh installs it (Debian package libhamlib-utils)");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  }
  // The GPS log is written into the current folder.
  void init() { QVERIFY(begin()); }
  void cleanup() { end(); }

  // The second pair lies nearly south, so that its opposite is close to north where the dummy
  // starts: the rotator need not travel long in either case.
  void rotorTurnsToTheShownBearing_data() {
    QTest::addColumn<QString>("remote");
    QTest::addColumn<bool>("reverse");  // F3 first, then the tool bar; else Ctrl+D
    QTest::newRow("bearing, Ctrl+D") << QStringLiteral("JP84AA") << false;
    QTest::newRow("opposite after F3, tool bar") << QStringLiteral("JM65AA") << true;
  }
  void rotorTurnsToTheShownBearing() {
    QFETCH(QString, remote);
    QFETCH(bool, reverse);
    const quint16 port = test::freePort();
    test::RotctldDaemon daemon;
    QVERIFY2(daemon.start(port), "rotctld did not start");
    SaveSetting(SettingKey::Rotor, QStringLiteral("127.0.0.1:%1").arg(port));
    MsgBoxRecorder boxes;
    frmMain* w = start();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QVERIFY(w->Panel6->isVisible());

    test::ComputeFrom(w, QStringLiteral("JO62QM"), remote);
    double wanted = QLocale().toDouble(w->lblRichtung->text().remove(u'°').trimmed());
    if (reverse) {
      QTest::keyClick(w, Qt::Key_F3);
      QCOMPARE(boxes.count(), 1);  // the opposite bearing, shown
      wanted = std::fmod(wanted + 180, 360);
      QAction* button = w->tbToolBar->findChild<QAction*>(QStringLiteral("Rotor"));
      QTest::mouseClick(w->tbToolBar->widgetForAction(button), Qt::LeftButton);
    } else {
      QTest::keyClick(w, Qt::Key_D, Qt::ControlModifier);
    }
    QVERIFY2(wanted > 2 && wanted < 358, "the rotator would not have to move");

    // Arrived means: within a degree, and still there a moment later (not passing by).
    std::optional<double> last;
    const auto arrived = [&] {
      const std::optional<double> now = test::DaemonAzimuth(port);
      const bool still = now && last && std::fabs(*now - *last) < 0.01;
      last = now;
      return still && std::fabs(*now - wanted) < 1.0;
    };
    QTRY_VERIFY2_WITH_TIMEOUT(
        arrived(),
        qPrintable(QStringLiteral("rotator at %1, wanted %2").arg(last.value_or(-1)).arg(wanted)),
        8000);
    QCOMPARE(boxes.count(), reverse ? 1 : 0);
    // The panel follows the rotator's own report, asked often while the antenna turns.
    const QString shown = QStringLiteral("Rotor %1°").arg(int(std::lround(*last)) % 360);
    QTRY_COMPARE_WITH_TIMEOUT(w->Panel6->text(), shown, 2000);
  }

  // A command that cannot be carried out says why, in German, and moves nothing.
  void rotorRefusalsAreTold_data() {
    QTest::addColumn<bool>("rotorOn");  // at a port where nothing listens
    QTest::addColumn<bool>("compute");
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("start");  // of the text
    QTest::newRow("rotor off") << false << true << int(vbExclamation) << "Es ist kein Rotor";
    QTest::newRow("nothing computed")
        << true << false << int(vbInformation) << "Es ist noch keine Richtung";
    QTest::newRow("daemon unreachable")
        << true << true << int(vbExclamation) << "Der Rotor-Dienst rotctld ist unter 127.0.0.1:";
  }
  void rotorRefusalsAreTold() {
    QFETCH(bool, rotorOn);
    QFETCH(bool, compute);
    QFETCH(int, style);
    QFETCH(QString, start);
    if (rotorOn)
      SaveSetting(SettingKey::Rotor, QStringLiteral("127.0.0.1:%1").arg(test::freePort()));
    MsgBoxRecorder boxes;
    frmMain* w = this->start();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QCOMPARE(w->Panel6->isVisible(), rotorOn);
    if (compute) test::ComputeFrom(w, QStringLiteral("JO62QM"), QStringLiteral("JO31NK"));
    QCOMPARE(boxes.count(), 0);
    QTest::keyClick(w, Qt::Key_D, Qt::ControlModifier);
    QTRY_COMPARE_WITH_TIMEOUT(boxes.count(), 1, 6000);
    QCOMPARE(boxes.last().title, QStringLiteral(" Antenne drehen"));
    QCOMPARE(boxes.last().style, style);
    QVERIFY2(boxes.last().prompt.startsWith(start), qPrintable(boxes.last().prompt));
  }

  // The rotor option switched on and off again: the panel comes and goes, and the window
  // makes room for it and gives it back.
  void rotorPanelFollowsTheSetting() {
    MsgBoxRecorder boxes;
    frmMain* w = start();
    const int width = w->width();
    SaveSetting(SettingKey::Rotor, QStringLiteral("127.0.0.1:%1").arg(test::freePort()));
    w->applyStationLinks();
    QVERIFY(w->stationLinks().rotorOn());
    QVERIFY(w->Panel6->isVisible());
    QVERIFY(w->Panel6->geometry().right() <= w->sbStatusBar->width());
    // Nothing listens there: the panel says the position is unknown, without a box.
    QSignalSpy failed(&w->stationLinks().rotator(), &RotatorLink::positionFailed);
    QVERIFY(failed.wait(6000));
    QCOMPARE(w->Panel6->text(), QStringLiteral("Rotor ?"));
    QCOMPARE(boxes.count(), 0);
    SaveSetting(SettingKey::Rotor, QString());
    w->applyStationLinks();
    QVERIFY(!w->stationLinks().rotorOn());
    QVERIFY(w->Panel6->isHidden());
    QCOMPARE(w->width(), width);
  }

  // A computation tells the own locator to WSJT-X, known from its Heartbeat, as the square,
  // and to JS8Call's API as typed; a JS8Call that keeps its own grid is named in lbInfo.
  void stationProgramsLearnTheOwnLocator() {
    QUdpSocket wsjtx;
    QVERIFY(wsjtx.bind(QHostAddress::LocalHost, 0));
    const quint16 linkPort = test::freePort();  // the link listens here for WSJT-X
    QTcpServer js8call;
    QVERIFY(js8call.listen(QHostAddress::LocalHost, 0));
    SaveSetting(SettingKey::Wsjtx, QStringLiteral("127.0.0.1:%1").arg(linkPort));
    SaveSetting(SettingKey::Js8Call, QStringLiteral("127.0.0.1:%1").arg(js8call.serverPort()));
    MsgBoxRecorder boxes;
    frmMain* w = start();
    QVERIFY(QTest::qWaitForWindowActive(w));
    const QByteArray id = "WSJT-X - IC7300";
    wsjtx.writeDatagram(test::Heartbeat(id), QHostAddress::LocalHost, linkPort);
    QTRY_COMPARE(w->stationLinks().wsjtx().instances().size(), size_t(1));
    QTRY_VERIFY(js8call.hasPendingConnections());
    QTcpSocket* client = js8call.nextPendingConnection();

    test::ComputeFrom(w, QStringLiteral("JO62QM53AB"), QStringLiteral("JO31NK"));
    QTRY_VERIFY(wsjtx.hasPendingDatagrams());
    QCOMPARE(wsjtx.receiveDatagram().data().toHex(' '), test::Location(id, "JO62QM").toHex(' '));
    QTRY_VERIFY(client->canReadLine());
    QCOMPARE(client->readLine(),
             QByteArray(R"({"type":"STATION.SET_GRID","value":"JO62QM53AB","params":{}})"
                        "\n"));
    // JS8Call without AutoGrid answers the question for its grid with its own: the window
    // says what to tick.
    QTRY_VERIFY(client->canReadLine());
    QCOMPARE(client->readLine(), QByteArray(R"({"type":"STATION.GET_GRID","value":"","params":{}})"
                                            "\n"));
    client->write(R"({"type":"STATION.GRID","value":"JO31","params":{}})"
                  "\n");
    QTRY_COMPARE(w->lbInfo->text(),
                 QStringLiteral("JS8Call behält seinen eigenen Locator: in JS8Call unter Settings "
                                "„AutoGrid“ ankreuzen."));
    QCOMPARE(boxes.count(), 0);
  }

  // The locator shown and logged is the square the station is in, here 370 m north of the row
  // edge between JO62QM and JO62QN; an impossible time moves the
  // square but neither the GPS time nor the log, and an impossible position brings nothing of its
  // sentence.
  void receiverSquareIsTrueAndImpossibleValuesAreNotTaken() {
    test::Pty pty;
    QVERIFY(pty.ok());
    test::SetNoPortDevices();
    test::SetPortDevice(1, pty.path());
    SaveSetting(SettingKey::Com, QStringLiteral("Com1"));
    SaveSetting(SettingKey::BitSek, QStringLiteral("115200"));
    SaveSetting(SettingKey::Gps, QStringLiteral("GPS an"));
    SaveSetting(SettingKey::Protokoll, QStringLiteral("True"));
    SaveSetting(SettingKey::GpsZeit, QStringLiteral("False"));  // the real clock is never set
    MsgBoxRecorder boxes;
    frmMain* w = start();
    w->Timer1->stop();  // the polls below are the test's own
    // A poll the start may have begun on the silent receiver ends first.
    QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 5000);
    std::unique_ptr<test::PtyFeeder> feeder;
    const auto pollOn = [&](const QByteArray& gga) {
      feeder.reset();
      // More than the exchange's least chunk, so that the sentence is taken at once.
      feeder = std::make_unique<test::PtyFeeder>(
          pty, std::vector<test::Piece>{{60, gga + kGsa + kGsv + kGsv}});
      w->Timer1_Timer();
      QTRY_VERIFY_WITH_TIMEOUT(!w->isPolling(), 5000);
    };

    pollOn("$GPGGA,123510.00,5232.000,N,01322.500,E,1,08,0.9,45.4,M,46.9,M,,*56\r\n");
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62QM"));
    // Entering the true square is a crossing, and every crossing is logged.
    pollOn("$GPGGA,123519.00,5232.700,N,01322.500,E,1,08,0.9,45.4,M,46.9,M,,*58\r\n");
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62QN"));
    QCOMPARE(w->Panel2->text(), QStringLiteral("12:35:19"));
    const QStringList lines = logLines();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().contains(QStringLiteral("12:35:19")) &&
                 lines.first().endsWith(QStringLiteral("JO62QN")),
             qPrintable(lines.first()));

    // A square further east at the time 25:61:61, then latitude 95.
    pollOn("$GPGGA,256161.00,5232.700,N,01327.500,E,1,08,0.9,45.4,M,46.9,M,,*57\r\n");
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62RN"));
    QCOMPARE(w->Panel2->text(), QStringLiteral("12:35:19"));
    QCOMPARE(logLines(), lines);
    pollOn("$GPGGA,123600.00,9500.000,N,01327.500,E,1,08,0.9,45.4,M,46.9,M,,*5B\r\n");
    QCOMPARE(w->lbInfo->text(),
             QStringLiteral("Schlechter Empfang oder zu geringe Anzahl an Satelliten !"));
    QCOMPARE(w->tbMyLoc->text(), QStringLiteral("JO62RN"));
    QCOMPARE(w->Panel2->text(), QStringLiteral("12:35:19"));
    QCOMPARE(logLines(), lines);
    QCOMPARE(boxes.count(), 0);
  }
};

QTEST_MAIN(tst_StationWindow)
#include "tst_StationWindow.moc"
