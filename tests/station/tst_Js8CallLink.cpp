// The JS8Call link against a local TCP server that stands in for JS8Call's API.

#include "station/Js8CallLink.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

using namespace marvento;

namespace {

// JS8Call's API end: takes one client and collects the lines it sends.
class FakeJs8Call : public QObject {
 public:
  bool listen(quint16 port = 0) {
    if (!m_server.listen(QHostAddress::LocalHost, port)) return false;
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
      while (QTcpSocket* client = m_server.nextPendingConnection()) {
        m_client = client;
        ++m_connections;
        connect(client, &QTcpSocket::readyRead, this, [this, client] {
          while (client->canReadLine()) m_lines << client->readLine();
        });
        // JS8Call talks to its clients too; the link must not mind.
        client->write(R"({"type":"PING","value":"","params":{"NAME":"JS8Call","VERSION":"2.2.0"}})"
                      "\n");
      }
    });
    return true;
  }
  void stop() {
    if (m_client) m_client->abort();
    m_server.close();
  }
  quint16 port() const { return m_server.serverPort(); }

  QTcpServer m_server;
  QPointer<QTcpSocket> m_client;
  QList<QByteArray> m_lines;
  int m_connections = 0;
};

}  // namespace

class TestJs8CallLink : public QObject {
  Q_OBJECT

 private slots:
  void locatorReachesJs8CallLateAndAgainAfterItsRestart() {
    quint16 port = 0;
    {
      QTcpServer probe;
      QVERIFY(probe.listen(QHostAddress::LocalHost, 0));
      port = probe.serverPort();
    }
    Js8CallLink link;
    QSignalSpy connected(&link, &Js8CallLink::connectedChanged);
    link.setLocator(QStringLiteral("JO62QM84AT"));
    link.start(QStringLiteral("127.0.0.1"), port);
    // JS8Call not running yet: refused, tried again later, nothing said.
    QTest::qWait(1200);
    QCOMPARE(connected.count(), 0);

    FakeJs8Call js8;
    QVERIFY(js8.listen(port));
    QTRY_COMPARE_WITH_TIMEOUT(js8.m_lines.size(), 1, 10000);
    QCOMPARE(js8.m_lines[0],
             QByteArray(R"({"type":"STATION.SET_GRID","value":"JO62QM84AT","params":{}})"
                        "\n"));
    // The same locator again is not sent; a new one is, and a text that is no locator not.
    link.setLocator(QStringLiteral("jo62qm84at"));
    link.setLocator(QStringLiteral("JO62"));
    link.setLocator(QStringLiteral("JO62QN"));
    QTRY_COMPARE_WITH_TIMEOUT(js8.m_lines.size(), 2, 5000);
    QVERIFY(js8.m_lines[1].contains(R"("value":"JO62QN")"));

    // JS8Call ends and comes back on the same port: the link finds it and tells it again.
    js8.stop();
    QTRY_VERIFY_WITH_TIMEOUT(!link.isConnected(), 5000);
    QTest::qWait(700);
    QVERIFY(js8.listen(port));
    QTRY_COMPARE_WITH_TIMEOUT(js8.m_lines.size(), 3, 10000);
    QVERIFY(js8.m_lines[2].contains(R"("value":"JO62QN")"));
    QCOMPARE(js8.m_connections, 2);
    QCOMPARE(connected.count(), 3);  // true, false, true
  }

  void gridValueCannotLeaveItsString() {
    const QString hostile = QStringLiteral("A\",\"type\":\"X\n");
    const QByteArray line = Js8CallLink::gridMessage(hostile);
    QCOMPARE(line.count('\n'), 1);
    const QJsonObject json = QJsonDocument::fromJson(line).object();
    QCOMPARE(json.value(u"type").toString(), QStringLiteral("STATION.SET_GRID"));
    QCOMPARE(json.value(u"value").toString(), hostile);
  }
};

QTEST_GUILESS_MAIN(TestJs8CallLink)
#include "tst_Js8CallLink.moc"
