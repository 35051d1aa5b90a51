// The rotator link against a real rotctld (hamlib's dummy rotator, -m 1) on a free local port,
// and against a stand-in server for the replies the dummy never gives.

#include "station/RotatorLink.h"

#include "support/RotctldDaemon.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QLocale>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace marvento;

namespace {

using test::freePort;
using test::kRotctld;
const QString kHost = test::kLoopback;
using Rotctld = test::RotctldDaemon;

// Answers every command line with the next of the given replies, optionally a byte at a time.
class FakeRotctld : public QObject {
 public:
  FakeRotctld(QList<QByteArray> replies, bool trickle) : m_replies(std::move(replies)) {
    m_server.listen(QHostAddress::LocalHost, 0);
    connect(&m_server, &QTcpServer::newConnection, this, [this, trickle] {
      QTcpSocket* client = m_server.nextPendingConnection();
      connect(client, &QTcpSocket::readyRead, this, [this, client, trickle] {
        while (client->canReadLine()) {
          m_commands << client->readLine();
          if (m_replies.isEmpty()) continue;
          const QByteArray reply = m_replies.takeFirst();
          if (!trickle) {
            client->write(reply);
            continue;
          }
          for (qsizetype i = 0; i < reply.size(); ++i) {
            QTimer::singleShot(20 * (i + 1), client,
                               [client, b = reply.mid(i, 1)] { client->write(b); });
          }
        }
      });
    });
  }
  quint16 port() const { return m_server.serverPort(); }

  QTcpServer m_server;
  QList<QByteArray> m_replies;
  QList<QByteArray> m_commands;
};

}  // namespace

class TestRotatorLink : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void turnCommandIsDotDecimalModulo360_data();
  void turnCommandIsDotDecimalModulo360();
  void realRotctldTurnsToTheAzimuth();
  void refusedConnectionGivesTheGermanMessage();
  void repliesTheDummyNeverGives_data();
  void repliesTheDummyNeverGives();
};

void TestRotatorLink::initTestCase() {
  QVERIFY2(QFile::exists(kRotctld),
           "rotctld is missing: sh tools/deps.sh installs it (Debian package libhamlib-utils)");
  // A German desktop writes a decimal comma; rotctld reads only a point.
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
}

void TestRotatorLink::turnCommandIsDotDecimalModulo360_data() {
  QTest::addColumn<double>("azimuth");
  QTest::addColumn<QByteArray>("command");
  QTest::newRow("123.4") << 123.4 << QByteArray("P 123.4 0\n");
  QTest::newRow("-10") << -10.0 << QByteArray("P 350.0 0\n");
  QTest::newRow("359.96 rounds to north") << 359.96 << QByteArray("P 0.0 0\n");
  QTest::newRow("720.25") << 720.25 << QByteArray("P 0.3 0\n");
}

void TestRotatorLink::turnCommandIsDotDecimalModulo360() {
  QFETCH(double, azimuth);
  QFETCH(QByteArray, command);
  QCOMPARE(RotatorLink::turnCommand(azimuth), command);
}

void TestRotatorLink::realRotctldTurnsToTheAzimuth() {
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

  // The dummy turns at 6° a second: about 21 s from north.
  link.setPollInterval(std::chrono::milliseconds(500));
  auto arrived = [&] {
    return !reported.isEmpty() && std::fabs(reported.back().front().toDouble() - 123.4) < 1.0;
  };
  QTRY_VERIFY_WITH_TIMEOUT(arrived(), 60000);
  QVERIFY(reported.count() > 2);
  QCOMPARE(reported.back().at(1).toDouble(), 0.0);
  link.setPollInterval(std::chrono::milliseconds(0));

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

void TestRotatorLink::refusedConnectionGivesTheGermanMessage() {
  const quint16 port = freePort();
  RotatorLink link;
  link.setAddress(kHost, port);
  QSignalSpy turnFailed(&link, &RotatorLink::turnFailed);
  QSignalSpy positionFailed(&link, &RotatorLink::positionFailed);
  link.turnTo(45);
  link.requestPosition();
  QTRY_COMPARE_WITH_TIMEOUT(turnFailed.count(), 1, 5000);
  QCOMPARE(positionFailed.count(), 1);
  const QString expected = QStringLiteral(
                               "Der Rotor-Dienst rotctld ist unter 127.0.0.1:%1 nicht erreichbar.\n"
                               "Zum Ausprobieren ohne Rotor: rotctld -m 1 -t %1")
                               .arg(port);
  QCOMPARE(turnFailed.front().front().toString(), expected);
  QCOMPARE(positionFailed.front().front().toString(), expected);
}

void TestRotatorLink::repliesTheDummyNeverGives_data() {
  QTest::addColumn<bool>("turn");
  QTest::addColumn<QByteArray>("reply");
  QTest::addColumn<bool>("trickle");
  QTest::addColumn<QString>("failure");  // empty when the reply is good
  QTest::addColumn<double>("azimuth");
  QTest::newRow("turn refused") << true << QByteArray("RPRT -9\n") << false
                                << QStringLiteral(
                                       "Der Rotor hat den Befehl abgelehnt (hamlib-Fehler -9).")
                                << 0.0;
  QTest::newRow("position refused")
      << false << QByteArray("RPRT -5\n") << false
      << QStringLiteral("Der Rotor hat den Befehl abgelehnt (hamlib-Fehler -5).") << 0.0;
  QTest::newRow("garbled") << true << QByteArray("Hello\n") << false
                           << QStringLiteral(
                                  "Der Rotor-Dienst unter 127.0.0.1:%port gibt "
                                  "unverständliche Antworten.")
                           << 0.0;
  QTest::newRow("position a byte at a time")
      << false << QByteArray("271.50\n12.00\n") << true << QString() << 271.5;
}

void TestRotatorLink::repliesTheDummyNeverGives() {
  QFETCH(bool, turn);
  QFETCH(QByteArray, reply);
  QFETCH(bool, trickle);
  QFETCH(QString, failure);
  QFETCH(double, azimuth);
  FakeRotctld fake(reply.isEmpty() ? QList<QByteArray>() : QList<QByteArray>{reply}, trickle);
  RotatorLink link;
  link.setAddress(kHost, fake.port());
  QSignalSpy failed(&link, turn ? &RotatorLink::turnFailed : &RotatorLink::positionFailed);
  QSignalSpy reported(&link, &RotatorLink::azimuthReported);
  QSignalSpy accepted(&link, &RotatorLink::turnAccepted);
  turn ? link.turnTo(10) : link.requestPosition();
  QTRY_COMPARE_WITH_TIMEOUT(failed.count() + reported.count() + accepted.count(), 1, 5000);
  QCOMPARE(fake.m_commands.front(), turn ? QByteArray("P 10.0 0\n") : QByteArray("p\n"));
  if (failure.isEmpty()) {
    QCOMPARE(reported.count(), 1);
    QCOMPARE(reported.front().front().toDouble(), azimuth);
    QCOMPARE(reported.front().at(1).toDouble(), 12.0);
  } else {
    QCOMPARE(failed.count(), 1);
    QCOMPARE(failed.front().front().toString(),
             QString(failure).replace(QStringLiteral("%port"), QString::number(fake.port())));
  }
}

QTEST_GUILESS_MAIN(TestRotatorLink)
#include "tst_RotatorLink.moc"
