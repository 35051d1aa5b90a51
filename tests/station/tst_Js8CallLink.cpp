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

// How long the link waits for further grid reports here, in milliseconds.
constexpr int kSettle = 100;

// JS8Call's API end: takes one client and collects the lines it sends. As JS8Call does, it
// takes the grid of STATION.SET_GRID only with AutoGrid ticked, and then reports it back
// (STATION.GRID); STATION.GET_GRID is answered with the grid it holds. Some versions may keep
// only the first characters of a long locator.
class FakeJs8Call : public QObject {
 public:
  bool listen(quint16 port = 0) {
    if (!m_server.listen(QHostAddress::LocalHost, port)) return false;
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
      while (QTcpSocket* client = m_server.nextPendingConnection()) {
        m_client = client;
        ++m_connections;
        connect(client, &QTcpSocket::readyRead, this, [this, client] {
          while (client->canReadLine()) answer(client, m_lines.emplace_back(client->readLine()));
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
  // The lines that set the grid, each followed by the query for it.
  QList<QByteArray> setGridLines() const {
    QList<QByteArray> lines;
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
      if (i % 2 == 0)
        lines << m_lines[i];
      else if (m_lines[i] != R"({"type":"STATION.GET_GRID","value":"","params":{}})"
                             "\n")
        lines << "not the query: " + m_lines[i];
    }
    return lines;
  }

  QTcpServer m_server;
  QPointer<QTcpSocket> m_client;
  QList<QByteArray> m_lines;
  int m_connections = 0;
  bool m_autoGrid = true;
  qsizetype m_keeps = 10;  // characters of a locator it keeps
  QString m_grid = QStringLiteral("JO31");
  int m_queries = 0;  // STATION.GET_GRID answered

 private:
  void answer(QTcpSocket* client, const QByteArray& line) {
    const QJsonObject request = QJsonDocument::fromJson(line).object();
    const QString type = request.value(u"type").toString();
    if (type == u"STATION.SET_GRID" && m_autoGrid) {
      m_grid = request.value(u"value").toString().left(m_keeps);
      report(client);
    } else if (type == u"STATION.GET_GRID") {
      ++m_queries;
      report(client);
    }
  }
  void report(QTcpSocket* client) {
    const QJsonObject grid{{"type", "STATION.GRID"}, {"value", m_grid}, {"params", QJsonObject()}};
    client->write(QJsonDocument(grid).toJson(QJsonDocument::Compact) + '\n');
  }
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
    QTRY_COMPARE_WITH_TIMEOUT(js8.setGridLines().size(), 1, 10000);
    QCOMPARE(js8.setGridLines()[0],
             QByteArray(R"({"type":"STATION.SET_GRID","value":"JO62QM84AT","params":{}})"
                        "\n"));
    // The same locator again is not sent; a new one is, and a text that is no locator not.
    link.setLocator(QStringLiteral("jo62qm84at"));
    link.setLocator(QStringLiteral("JO62"));
    link.setLocator(QStringLiteral("JO62QN"));
    QTRY_COMPARE_WITH_TIMEOUT(js8.setGridLines().size(), 2, 5000);
    QVERIFY(js8.setGridLines()[1].contains(R"("value":"JO62QN")"));

    // JS8Call ends and comes back on the same port: the link finds it and tells it again.
    js8.stop();
    QTRY_VERIFY_WITH_TIMEOUT(!link.isConnected(), 5000);
    QTest::qWait(700);
    QVERIFY(js8.listen(port));
    QTRY_COMPARE_WITH_TIMEOUT(js8.setGridLines().size(), 3, 10000);
    QVERIFY(js8.setGridLines()[2].contains(R"("value":"JO62QN")"));
    QCOMPARE(js8.m_connections, 2);
    QCOMPARE(connected.count(), 3);  // true, false, true
  }

  // The grid JS8Call reports back tells whether it took the locator; one that keeps its own
  // is told once, and again only after it had taken one in between.
  void gridKeptByJs8CallIsToldOnce_data() {
    QTest::addColumn<QList<bool>>("autoGrid");  // JS8Call's option as each locator is sent
    QTest::addColumn<bool>("atOnce");           // the locators sent without waiting for replies
    QTest::addColumn<int>("keeps");             // characters of a locator JS8Call keeps
    QTest::addColumn<int>("told");
    QTest::newRow("AutoGrid ticked") << QList<bool>{true, true, true} << false << 10 << 0;
    QTest::newRow("AutoGrid ticked, late reports")
        << QList<bool>{true, true, true, true} << true << 10 << 0;
    QTest::newRow("AutoGrid not ticked") << QList<bool>{false, false, false} << false << 10 << 1;
    QTest::newRow("not ticked, late reports")
        << QList<bool>{false, false, false} << true << 10 << 1;
    QTest::newRow("ticked later") << QList<bool>{false, true, true} << false << 10 << 1;
    QTest::newRow("unticked again") << QList<bool>{false, true, false} << false << 10 << 2;
    QTest::newRow("keeps the square of a long locator")
        << QList<bool>{true, true} << false << 6 << 0;
    QTest::newRow("keeps only the field") << QList<bool>{true, true} << false << 4 << 1;
  }
  void gridKeptByJs8CallIsToldOnce() {
    QFETCH(QList<bool>, autoGrid);
    QFETCH(bool, atOnce);
    QFETCH(int, keeps);
    QFETCH(int, told);
    FakeJs8Call js8;
    QVERIFY(js8.listen());
    js8.m_keeps = keeps;
    Js8CallLink link;
    link.setReportSettle(std::chrono::milliseconds(kSettle));
    QSignalSpy kept(&link, &Js8CallLink::gridKept);
    link.start(QStringLiteral("127.0.0.1"), js8.port());
    QTRY_VERIFY(link.isConnected());
    const QStringList locators = {"JO62QM84AT", "JO62QN11AA", "JO62RN22BB", "JO62RM33CC"};
    for (int i = 0; i < autoGrid.size(); ++i) {
      js8.m_autoGrid = autoGrid[i];
      link.setLocator(locators[i]);
      if (!atOnce) {
        // JS8Call has answered, and the link has made up its mind.
        QTRY_COMPARE(js8.m_queries, i + 1);
        QTest::qWait(kSettle + 100);
      }
    }
    QTRY_COMPARE(js8.m_queries, autoGrid.size());
    QTRY_COMPARE(kept.count(), told);
    QTest::qWait(kSettle + 100);  // one too many comes by now
    QCOMPARE(kept.count(), told);
    for (const QList<QVariant>& notice : kept) {
      QCOMPARE(notice.front().toString(),
               QStringLiteral("JS8Call behält seinen eigenen Locator: in JS8Call unter Settings "
                              "„AutoGrid“ ankreuzen."));
    }
  }

  // A line longer than any of JS8Call's is skipped to its end, whatever its tail looks like,
  // and the lines after it are read.
  void overlongLineIsSkipped() {
    FakeJs8Call js8;
    QVERIFY(js8.listen());
    Js8CallLink link;
    link.setReportSettle(std::chrono::milliseconds(kSettle));
    QSignalSpy kept(&link, &Js8CallLink::gridKept);
    link.start(QStringLiteral("127.0.0.1"), js8.port());
    link.setLocator(QStringLiteral("JO62QM"));
    QTRY_COMPARE(js8.m_queries, 1);
    js8.m_client->write(QByteArray(3 * Js8CallLink::kMaxLine, 'x') +
                        R"({"type":"STATION.GRID","value":"AA00AA","params":{}})"
                        "\n");
    QTest::qWait(kSettle + 100);
    QCOMPARE(kept.count(), 0);
    js8.m_autoGrid = false;
    link.setLocator(QStringLiteral("JO62QN"));
    QTRY_COMPARE(kept.count(), 1);
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
