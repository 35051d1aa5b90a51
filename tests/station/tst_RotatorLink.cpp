// The rotator link against a real rotctld (hamlib's dummy rotator, -m 1) on a free local port,
// and against a stand-in server for the replies the dummy never gives.

#include "station/RotatorLink.h"

#include "HoldingProxy.h"
#include "support/RotctldDaemon.h"

#include <QFile>
#include <QLocale>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

using namespace marvento;

namespace {

using test::freePort;
using test::kRotctld;
const QString kHost = test::kLoopback;
using Rotctld = test::RotctldDaemon;

// What the stand-in does with a connection.
enum class Stand {
  Absent,              // nothing listens at the port
  HangUpAtOnce,        // accepts and closes
  HangUpAfterCommand,  // reads the command line and closes
  Reply                // answers the first command line
};

// Answers the first command line with the given reply, a byte at a time, so that the link
// must gather it across reads; or hangs up, as the stand says.
class FakeRotctld : public QObject {
 public:
  FakeRotctld(Stand stand, const QByteArray& reply) {
    m_server.listen(QHostAddress::LocalHost, 0);
    if (stand == Stand::Absent) m_server.close();
    connect(&m_server, &QTcpServer::newConnection, this, [this, stand, reply] {
      QTcpSocket* client = m_server.nextPendingConnection();
      if (stand == Stand::HangUpAtOnce) {
        client->close();
        return;
      }
      connect(client, &QTcpSocket::readyRead, this, [this, client, stand, reply] {
        if (!client->canReadLine() || !m_command.isEmpty()) return;
        m_command = client->readLine();
        if (stand == Stand::HangUpAfterCommand) {
          client->close();
          return;
        }
        for (qsizetype i = 0; i < reply.size(); ++i) {
          QTimer::singleShot(20 * (i + 1), client,
                             [client, b = reply.mid(i, 1)] { client->write(b); });
        }
      });
    });
  }
  quint16 port() const { return m_server.serverPort(); }

  QTcpServer m_server;
  QByteArray m_command;
};

}  // namespace

class TestRotatorLink : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QVERIFY2(QFile::exists(kRotctld),
             "rotctld is missing: sh tools/deps.sh installs it (Debian package libhamlib-utils)");
    // A German desktop writes a decimal comma; rotctld reads only a point.
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  }

  void turnCommandIsDotDecimalModulo360() {
    QCOMPARE(RotatorLink::turnCommand(123.4), QByteArray("P 123.4 0\n"));
    QCOMPARE(RotatorLink::turnCommand(-10), QByteArray("P 350.0 0\n"));
    QCOMPARE(RotatorLink::turnCommand(359.96), QByteArray("P 0.0 0\n"));  // rounds to north
    QCOMPARE(RotatorLink::turnCommand(720.25), QByteArray("P 0.3 0\n"));
  }

  void realRotctldTurnsToTheAzimuth() {
    const quint16 port = freePort();
    QVERIFY(port != 0);
    auto daemon = std::make_unique<Rotctld>();
    QVERIFY2(daemon->start(port), "rotctld did not start");

    RotatorLink link;
    link.setAddress(kHost, port);
    QSignalSpy accepted(&link, &RotatorLink::turnAccepted);
    QSignalSpy reported(&link, &RotatorLink::azimuthReported);
    QSignalSpy turnFailed(&link, &RotatorLink::turnFailed);
    QSignalSpy positionFailed(&link, &RotatorLink::positionFailed);

    link.turnTo(123.4);
    QTRY_COMPARE_WITH_TIMEOUT(accepted.count(), 1, 5000);
    QCOMPARE(accepted.front().front().toDouble(), 123.4);

    // The dummy turns at 6° a second; polled, it reports its way there (the window's test
    // waits for the arrival).
    link.setPollInterval(std::chrono::milliseconds(200));
    QTRY_VERIFY_WITH_TIMEOUT(reported.count() >= 3, 5000);
    link.setPollInterval(std::chrono::milliseconds(0));
    const double azimuth = reported.back().front().toDouble();
    QVERIFY2(azimuth > 0 && azimuth < 123.4, qPrintable(QString::number(azimuth)));
    QCOMPARE(reported.back().at(1).toDouble(), 0.0);

    // rotctld restarted: the next command finds it again.
    daemon.reset();
    QTest::qWait(100);
    daemon = std::make_unique<Rotctld>();
    QVERIFY2(daemon->start(port), "rotctld did not start again");
    reported.clear();
    link.requestPosition();
    QTRY_COMPARE_WITH_TIMEOUT(reported.count() + positionFailed.count(), 1, 5000);
    // A command sent on the old connection may be lost with it; the one after that is answered.
    if (positionFailed.count() == 1) {
      link.requestPosition();
      QTRY_COMPARE_WITH_TIMEOUT(reported.count(), 1, 5000);
    }
    link.turnTo(200);
    QTRY_COMPARE_WITH_TIMEOUT(accepted.count(), 2, 5000);
    QCOMPARE(turnFailed.count(), 0);
  }

  // A query the daemon is slow to answer (the proxy holds its answer back) does not hold up a
  // turn: the turn reaches rotctld at once and the antenna moves; the answers come in order.
  void turnGoesOutWhileAQueryIsUnanswered() {
    const quint16 port = freePort();
    QVERIFY(port != 0);
    Rotctld daemon;
    QVERIFY2(daemon.start(port), "rotctld did not start");
    test::HoldingProxy proxy(port);
    RotatorLink link;
    link.setAddress(kHost, proxy.port());
    QStringList outcomes;
    connect(&link, &RotatorLink::azimuthReported, this,
            [&](double azimuth, double) { outcomes << QStringLiteral("at %1").arg(azimuth); });
    connect(&link, &RotatorLink::turnAccepted, this,
            [&](double azimuth) { outcomes << QStringLiteral("turned %1").arg(azimuth); });
    connect(&link, &RotatorLink::positionFailed, this,
            [&](const QString& text) { outcomes << text; });
    connect(&link, &RotatorLink::turnFailed, this, [&](const QString& text) { outcomes << text; });

    link.requestPosition();
    // The dummy has answered (azimuth and elevation, two lines); the proxy holds it.
    QTRY_COMPARE_WITH_TIMEOUT(proxy.held().count('\n'), 2, 3000);
    link.turnTo(90);
    // A turn waiting for the answer would only go out after it: within the reply timeout, here
    // never, as the answer is held.
    QTRY_COMPARE_WITH_TIMEOUT(proxy.toDaemon(), QByteArray("p\nP 90.0 0\n"), 1000);
    QTRY_VERIFY_WITH_TIMEOUT(test::DaemonAzimuth(port).value_or(0) > 1, 3000);
    QVERIFY2(outcomes.isEmpty(), qPrintable(outcomes.join(u'|')));

    proxy.release();
    QTRY_COMPARE_WITH_TIMEOUT(outcomes.size(), 2, 3000);
    QCOMPARE(outcomes, QStringList({"at 0", "turned 90"}));
  }

  void repliesTheDummyNeverGives_data() {
    QTest::addColumn<bool>("turn");
    QTest::addColumn<int>("standRow");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("failure");  // empty when the reply is good
    const QString hungUp = QStringLiteral(
        "Der Rotor-Dienst rotctld unter 127.0.0.1:%port hat die Verbindung ohne Antwort "
        "beendet.");
    QTest::newRow("nothing listens")
        << false << int(Stand::Absent) << QByteArray()
        << QStringLiteral(
               "Der Rotor-Dienst rotctld ist unter 127.0.0.1:%port nicht erreichbar.\n"
               "Zum Ausprobieren ohne Rotor: rotctld -m 1 -t %port");
    QTest::newRow("hangs up at once") << true << int(Stand::HangUpAtOnce) << QByteArray() << hungUp;
    QTest::newRow("hangs up after the command")
        << false << int(Stand::HangUpAfterCommand) << QByteArray() << hungUp;
    QTest::newRow("turn refused") << true << int(Stand::Reply) << QByteArray("RPRT -9\n")
                                  << QStringLiteral(
                                         "Der Rotor hat den Befehl abgelehnt (hamlib-Fehler -9).");
    QTest::newRow("garbled") << true << int(Stand::Reply) << QByteArray("Hello\n")
                             << QStringLiteral(
                                    "Der Rotor-Dienst unter 127.0.0.1:%port gibt "
                                    "unverständliche Antworten.");
    QTest::newRow("position") << false << int(Stand::Reply) << QByteArray("271.50\n12.00\n")
                              << QString();
  }

  void repliesTheDummyNeverGives() {
    QFETCH(bool, turn);
    QFETCH(int, standRow);
    const auto stand = Stand(standRow);
    QFETCH(QByteArray, reply);
    QFETCH(QString, failure);
    FakeRotctld fake(stand, reply);
    const quint16 port = fake.port();
    RotatorLink link;
    link.setAddress(kHost, port);
    QSignalSpy failed(&link, turn ? &RotatorLink::turnFailed : &RotatorLink::positionFailed);
    QSignalSpy reported(&link, &RotatorLink::azimuthReported);
    QSignalSpy accepted(&link, &RotatorLink::turnAccepted);
    turn ? link.turnTo(10) : link.requestPosition();
    QTRY_COMPARE_WITH_TIMEOUT(failed.count() + reported.count() + accepted.count(), 1, 5000);
    if (stand == Stand::Reply || stand == Stand::HangUpAfterCommand) {
      QCOMPARE(fake.m_command, turn ? QByteArray("P 10.0 0\n") : QByteArray("p\n"));
    }
    if (failure.isEmpty()) {
      QCOMPARE(reported.front(), QVariantList({271.5, 12.0}));
    } else {
      QCOMPARE(failed.count(), 1);
      QCOMPARE(failed.front().front().toString(),
               QString(failure).replace(QStringLiteral("%port"), QString::number(port)));
    }
  }
};

QTEST_GUILESS_MAIN(TestRotatorLink)
#include "tst_RotatorLink.moc"
