// The window with the station programs beside it: a real rotctld (hamlib's dummy rotator),
// a WSJT-X peer and a JS8Call server in the test, and a GPS drive through a pseudo-terminal.

#include "app/frmMain.h"

#include "../gps/PtyFeeder.h"
#include "../station/WsjtxDatagram.h"
#include "platform/MsgBoxRecorder.h"
#include "platform/Settings.h"
#include "station/RotatorLink.h"
#include "station/StationLinks.h"
#include "station/WsjtxLink.h"
#include "support/ProgramFixture.h"
#include "support/Pty.h"
#include "support/RealBoxes.h"

#include "support/RotctldDaemon.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QNetworkDatagram>
#include <QProcess>
#include <QStatusBar>
#include <QTcpServer>
#include <QTcpSocket>
#include <QToolBar>
#include <QUdpSocket>
#include <QtTest>

#include <cmath>
#include <memory>
#include <numbers>
#include <optional>

using namespace marvento;
using marvento::test::IsolatedUser;
using marvento::test::Program;
using marvento::test::RealBoxes;

namespace {

using test::freePort;
using test::kRotctld;
const QString kHost = test::kLoopback;
using Rotctld = test::RotctldDaemon;

// Asks the daemon itself, on a connection of its own, where the rotator points.
std::optional<double> daemonAzimuth(quint16 port) {
  QTcpSocket socket;
  socket.connectToHost(kHost, port);
  if (!socket.waitForConnected(1000)) return std::nullopt;
  socket.write("p\n");
  QByteArray reply;
  while (reply.count('\n') < 2 && socket.waitForReadyRead(1000)) reply += socket.readAll();
  const QList<QByteArray> lines = reply.split('\n');
  bool ok = false;
  const double azimuth = lines.value(0).trimmed().toDouble(&ok);
  return ok ? std::optional<double>(azimuth) : std::nullopt;
}

// The centre of a 6-character locator, degrees east and north.
QPointF centreOf(const QString& loc) {
  const auto c = [&](int i) { return loc.at(i).toUpper().unicode(); };
  const double lon =
      -180 + (c(0) - 'A') * 20 + (c(2) - '0') * 2 + (c(4) - 'A') * 5.0 / 60 + 2.5 / 60;
  const double lat = -90 + (c(1) - 'A') * 10 + (c(3) - '0') + (c(5) - 'A') * 2.5 / 60 + 1.25 / 60;
  return {lon, lat};
}

// The initial great-circle bearing from one locator's centre to the other's, 0 to 360.
double bearing(const QString& from, const QString& to) {
  constexpr double rad = std::numbers::pi / 180;
  const QPointF a = centreOf(from);
  const QPointF b = centreOf(to);
  const double dl = (b.x() - a.x()) * rad;
  const double y = std::sin(dl) * std::cos(b.y() * rad);
  const double x = std::cos(a.y() * rad) * std::sin(b.y() * rad) -
                   std::sin(a.y() * rad) * std::cos(b.y() * rad) * std::cos(dl);
  return std::fmod(std::atan2(y, x) / rad + 360, 360);
}

// The 6-character square of a position.
QString squareOf(double lon, double lat) {
  const double x = lon + 180;
  const double y = lat + 90;
  QString s;
  s += QChar('A' + int(x / 20));
  s += QChar('A' + int(y / 10));
  s += QChar('0' + int(std::fmod(x, 20) / 2));
  s += QChar('0' + int(std::fmod(y, 10)));
  s += QChar('A' + int(std::fmod(x, 2) * 12));
  s += QChar('A' + int(std::fmod(y, 1) * 24));
  return s;
}

// An RMC sentence with a fix at the position, checksum included.
QByteArray rmc(int second, double lon, double lat) {
  const auto minutes = [](double degrees, int width) {
    const int whole = int(degrees);
    return QStringLiteral("%1%2")
        .arg(whole, width, 10, QChar('0'))
        .arg((degrees - whole) * 60, 6, 'f', 3, QChar('0'));
  };
  const QString body = QStringLiteral("GPRMC,1200%1.00,A,%2,N,%3,E,010.0,090.0,241126,003.1,W")
                           .arg(second, 2, 10, QChar('0'))
                           .arg(minutes(lat, 2), minutes(lon, 3));
  char sum = 0;
  for (QChar ch : body) sum = char(sum ^ ch.toLatin1());
  return QStringLiteral("$%1*%2\r\n")
      .arg(body)
      .arg(int(static_cast<unsigned char>(sum)), 2, 16, QChar('0'))
      .toUpper()
      .toLatin1();
}

// Types both locators and presses Enter in the remote field, as the user would.
void computeFrom(frmMain* w, const QString& own, const QString& remote) {
  w->tbMyLoc->clear();
  QTest::keyClicks(w->tbMyLoc, own);
  w->tbFremdLoc->clear();
  w->tbFremdLoc->setFocus();
  QTest::keyClicks(w->tbFremdLoc, remote);
  QTest::keyClick(w->tbFremdLoc, Qt::Key_Return);
}

void triggerRotor(frmMain* w, const QString& how) {
  if (how == u"shortcut") {
    QTest::keyClick(w, Qt::Key_D, Qt::ControlModifier);
  } else if (how == u"tool bar") {
    QAction* button = w->tbToolBar->findChild<QAction*>(QStringLiteral("Rotor"));
    QVERIFY(button);
    QTest::mouseClick(w->tbToolBar->widgetForAction(button), Qt::LeftButton);
  } else {
    w->mnuRotor->trigger();
  }
}

}  // namespace

class tst_StationWindow : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY2(QFile::exists(kRotctld),
             "rotctld is missing: sh tools/deps.sh installs it (Debian package libhamlib-utils)");
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  }

  // The second pair lies nearly south, so that its opposite is close to north where the dummy
  // starts: the rotator need not travel long in either case.
  void rotorTurnsToTheComputedBearing_data() {
    QTest::addColumn<QString>("remote");
    QTest::addColumn<bool>("reverse");
    QTest::addColumn<QString>("how");
    QTest::newRow("bearing, Ctrl+D") << QStringLiteral("JP84AA") << false << "shortcut";
    QTest::newRow("opposite after F3, tool bar") << QStringLiteral("JM65AA") << true << "tool bar";
  }
  void rotorTurnsToTheComputedBearing() {
    QFETCH(QString, remote);
    QFETCH(bool, reverse);
    QFETCH(QString, how);
    const quint16 port = freePort();
    Rotctld daemon;
    QVERIFY2(daemon.start(port), "rotctld did not start");
    IsolatedUser user;
    SaveSetting(SettingKey::Rotor, QStringLiteral("127.0.0.1:%1").arg(port));
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QVERIFY(w->Panel6->isVisible());

    const QString own = QStringLiteral("JO62QM");
    computeFrom(w, own, remote);
    QVERIFY(!w->lblRichtung->text().isEmpty());
    if (reverse) {
      QTest::keyClick(w, Qt::Key_F3);
      QCOMPARE(boxes.count(), 1);  // the opposite bearing, shown
    }
    triggerRotor(w, how);
    const double wanted = std::fmod(bearing(own, remote) + (reverse ? 180 : 0), 360);

    // Arrived means: within a degree, and still there a moment later (not passing by).
    std::optional<double> last;
    const auto arrived = [&] {
      const std::optional<double> now = daemonAzimuth(port);
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
    QTest::addColumn<QString>("setting");  // "%1" is a port where nothing listens
    QTest::addColumn<bool>("compute");
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("start");  // of the text
    QTest::newRow("rotor off") << "" << true << int(vbExclamation) << "Es ist kein Rotor";
    QTest::newRow("nothing computed")
        << "127.0.0.1:%1" << false << int(vbInformation) << "Es ist noch keine Richtung";
    QTest::newRow("daemon unreachable") << "127.0.0.1:%1" << true << int(vbExclamation)
                                        << RotatorLink::unreachableText(kHost, 0).left(30);
  }
  void rotorRefusalsAreTold() {
    QFETCH(QString, setting);
    QFETCH(bool, compute);
    QFETCH(int, style);
    QFETCH(QString, start);
    const quint16 port = freePort();
    IsolatedUser user;
    if (!setting.isEmpty()) SaveSetting(SettingKey::Rotor, setting.arg(port));
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QCOMPARE(w->Panel6->isVisible(), !setting.isEmpty());
    if (compute) computeFrom(w, QStringLiteral("JO62QM"), QStringLiteral("JO31NK"));
    QCOMPARE(boxes.count(), 0);
    QTest::keyClick(w, Qt::Key_D, Qt::ControlModifier);
    QTRY_COMPARE_WITH_TIMEOUT(boxes.count(), 1, 6000);
    QCOMPARE(boxes.last().title, QStringLiteral(" Antenne drehen"));
    QCOMPARE(boxes.last().style, style);
    QVERIFY2(boxes.last().prompt.startsWith(start), qPrintable(boxes.last().prompt));
    if (start.startsWith(u"Der Rotor")) {
      QCOMPARE(boxes.last().prompt, RotatorLink::unreachableText(kHost, port));
    }
  }

  // The same refusal through a real box, closed with Enter; the window goes on working.
  void rotorOffThroughARealBox() {
    IsolatedUser user;
    RealBoxes boxes(Qt::Key_Return);
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    w->mnuRotor->trigger();
    QCOMPARE(boxes.titles(), QStringList{QStringLiteral(" Antenne drehen")});
    computeFrom(w, QStringLiteral("JO62QM"), QStringLiteral("JO31NK"));
    QVERIFY(!w->lblRichtung->text().isEmpty());
    QCOMPARE(boxes.titles().size(), 1);
  }

  // The rotor option switched on and off again: the panel comes and goes, and the window
  // makes room for it and gives it back.
  void rotorPanelFollowsTheSetting() {
    IsolatedUser user;
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    const int width = w->width();
    const quint16 port = freePort();
    SaveSetting(SettingKey::Rotor, QStringLiteral("127.0.0.1:%1").arg(port));
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

  // A WSJT-X instance, known from its Heartbeat, is told each new own locator once.
  void wsjtxLearnsTheOwnLocator() {
    QUdpSocket probe;
    QVERIFY(probe.bind(QHostAddress::LocalHost, 0));
    const quint16 port = probe.localPort();
    probe.close();
    IsolatedUser user;
    SaveSetting(SettingKey::Wsjtx, QStringLiteral("127.0.0.1:%1").arg(port));
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QVERIFY(w->stationLinks().wsjtx().isListening());

    QUdpSocket peer;
    QVERIFY(peer.bind(QHostAddress::LocalHost, 0));
    const QByteArray id = "WSJT-X - IC7300";
    peer.writeDatagram(test::Heartbeat(id), QHostAddress::LocalHost, port);
    QTRY_COMPARE(w->stationLinks().wsjtx().instances().size(), size_t(1));

    struct Step {
      const char* own;
      const char* sent;  // nothing when the square stays the same
    } steps[] = {{"JO62QM", "JO62QM"}, {"JO62QM53AB", nullptr}, {"JO62RM", "JO62RM"}};
    for (const Step& step : steps) {
      computeFrom(w, QString::fromLatin1(step.own), QStringLiteral("JO31NK"));
      if (!step.sent) {
        QTest::qWait(200);  // nothing to await: a datagram that should not come
        QVERIFY2(!peer.hasPendingDatagrams(), step.own);
        continue;
      }
      QTRY_VERIFY(peer.hasPendingDatagrams());
      const QByteArray d = peer.receiveDatagram().data();
      const QByteArray expected = test::Header(11, id) + test::Utf8(step.sent);
      QCOMPARE(d.toHex(' '), expected.toHex(' '));
    }
    QCOMPARE(boxes.count(), 0);
  }

  // JS8Call's API gets the grid line whenever the own locator changes.
  void js8callLearnsTheOwnLocator() {
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    IsolatedUser user;
    SaveSetting(SettingKey::Js8Call, QStringLiteral("127.0.0.1:%1").arg(server.serverPort()));
    MsgBoxRecorder boxes;
    Program program;
    frmMain* w = program.window();
    QVERIFY(QTest::qWaitForWindowActive(w));
    QTRY_VERIFY(server.hasPendingConnections());
    QTcpSocket* client = server.nextPendingConnection();

    for (const char* own : {"JO62QM", "JN58TD"}) {
      computeFrom(w, QString::fromLatin1(own), QStringLiteral("JO31NK"));
      QTRY_VERIFY(client->canReadLine());
      const QByteArray line = client->readLine();
      QVERIFY(line.endsWith('\n'));
      const QJsonObject message = QJsonDocument::fromJson(line).object();
      QCOMPARE(message.value(u"type").toString(), QStringLiteral("STATION.SET_GRID"));
      QCOMPARE(message.value(u"value").toString(), QString::fromLatin1(own));
      QVERIFY(message.value(u"params").isObject());
    }
    QCOMPARE(boxes.count(), 0);
  }

  // A drive across three square boundaries: each square entered is one log line, told in the
  // window with a beep; fixes inside a square add nothing.
  void gpsDriveLogsEachSquareOnce() {
    IsolatedUser user;
    const QString savedDir = QDir::currentPath();
    QVERIFY(QDir::setCurrent(user.path()));
    test::Pty pty;
    QVERIFY(pty.ok());
    test::SetPortDevice(1, pty.path());
    SaveSetting(SettingKey::Gps, QStringLiteral("GPS an"));
    SaveSetting(SettingKey::Com, QStringLiteral("Com1"));
    SaveSetting(SettingKey::Protokoll, QStringLiteral("True"));
    SaveSetting(SettingKey::GradDezimal, QStringLiteral("True"));

    const struct {
      double lon, lat;
    } drive[] = {{13.400, 52.52}, {13.410, 52.52}, {13.425, 52.52}, {13.430, 52.53},
                 {13.505, 52.53}, {13.510, 52.53}, {13.510, 52.55}, {13.512, 52.56}};
    QStringList squares;
    for (const auto& fix : drive) {
      const QString square = squareOf(fix.lon, fix.lat);
      if (squares.isEmpty() || squares.back() != square) squares << square;
    }
    QCOMPARE(squares.size(), 4);  // the start and three crossings

    // The receiver repeats the current fix, as a real one does every second.
    std::unique_ptr<test::PtyFeeder> feeder;
    const auto transmit = [&](int second, double lon, double lat) {
      feeder.reset();
      std::vector<test::Piece> pieces(100, test::Piece{30, rmc(second, lon, lat)});
      feeder = std::make_unique<test::PtyFeeder>(pty, std::move(pieces));
    };
    transmit(0, drive[0].lon, drive[0].lat);
    MsgBoxRecorder boxes;
    {
      Program program;
      frmMain* w = program.window();
      const auto shownLongitude = [&] { return QLocale().toDouble(w->tbMyLg->text().trimmed()); };
      for (int i = 0; i < int(std::size(drive)); ++i) {
        transmit(i, drive[i].lon, drive[i].lat);
        const auto reached = [&] {
          if (!w->isPolling()) w->Timer1_Timer();
          return std::fabs(shownLongitude() - drive[i].lon) < 1e-6 &&
                 w->tbMyLoc->text() == squareOf(drive[i].lon, drive[i].lat);
        };
        QTRY_VERIFY2_WITH_TIMEOUT(reached(), qPrintable(w->tbMyLoc->text()), 5000);
        QTRY_VERIFY(!w->isPolling());
      }
      QCOMPARE(w->sbStatusBar->currentMessage(), QStringLiteral("Neues Feld: ") + squares.back());
      feeder.reset();
    }
    test::ClearPortDevices();
    QCOMPARE(boxes.count(), 0);
    QCOMPARE(boxes.beeps(), int(squares.size()) - 1);

    QFile log(QStringLiteral("GPS_Protokoll.txt"));
    QVERIFY(log.open(QIODevice::ReadOnly));
    const QStringList lines =
        QString::fromUtf8(log.readAll()).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    QStringList logged;
    for (const QString& line : lines) logged << line.split(u' ', Qt::SkipEmptyParts).last();
    QDir::setCurrent(savedDir);
    // The start may have a line of its own (the window's first poll writes one); every square
    // entered has exactly one.
    const QStringList crossed = squares.mid(1);
    QCOMPARE(logged.mid(logged.size() - crossed.size()), crossed);
    QVERIFY2(logged.size() == crossed.size() ||
                 (logged.size() == squares.size() && logged.front() == squares.front()),
             qPrintable(logged.join(u',')));
  }
};

QTEST_MAIN(tst_StationWindow)
#include "tst_StationWindow.moc"
