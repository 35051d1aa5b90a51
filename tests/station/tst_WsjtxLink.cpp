// The WSJT-X link on real UDP sockets: test peers send Heartbeat and Status datagrams as WSJT-X
// does and read the Location reply byte by byte.

#include "WsjtxDatagram.h"
#include "station/WsjtxLink.h"

#include <QDeadlineTimer>
#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QSignalSpy>
#include <QUdpSocket>
#include <QtTest>

#include <memory>
#include <vector>

using namespace marvento;

namespace {

const QHostAddress kLoopback(QHostAddress::LocalHost);
const QHostAddress kGroup(QStringLiteral("224.0.0.1"));

// Waits, handling events, until the socket holds a datagram or the time is up.
bool waitForDatagram(QUdpSocket& socket, int ms = 3000) {
  const QDeadlineTimer deadline(ms);
  while (!socket.hasPendingDatagrams() && !deadline.hasExpired()) QTest::qWait(5);
  return socket.hasPendingDatagrams();
}

// A WSJT-X instance as the link sees it: a socket on a port of its own that sends its
// messages to the link and receives the replies.
struct Peer {
  Peer() { socket.bind(kLoopback, 0); }
  void send(const QByteArray& datagram, quint16 port, const QHostAddress& to = kLoopback) {
    QCOMPARE(socket.writeDatagram(datagram, to, port), qint64(datagram.size()));
  }
  QByteArray reply() {
    if (!waitForDatagram(socket)) return {};
    return socket.receiveDatagram().data();
  }
  // Nothing arrives within a while: what the link must not send comes by then on loopback.
  bool silent(int ms = 300) { return !waitForDatagram(socket, ms); }

  QUdpSocket socket;
};

struct Location {
  quint32 magic = 0, schema = 0, type = 0;
  QByteArray id, locator;
  bool complete = false;
};

// Reads the Location message field by field from the layout WSJT-X publishes.
Location decodeLocation(const QByteArray& d) {
  Location l;
  qsizetype at = 0;
  auto u32 = [&](quint32& v) {
    if (d.size() - at < 4) return false;
    v = quint32(quint8(d[at])) << 24 | quint32(quint8(d[at + 1])) << 16 |
        quint32(quint8(d[at + 2])) << 8 | quint32(quint8(d[at + 3]));
    at += 4;
    return true;
  };
  auto bytes = [&](QByteArray& v) {
    quint32 n = 0;
    if (!u32(n) || n > quint32(d.size() - at)) return false;
    v = d.mid(at, n);
    at += n;
    return true;
  };
  l.complete = u32(l.magic) && u32(l.schema) && u32(l.type) && bytes(l.id) && bytes(l.locator) &&
               at == d.size();
  return l;
}

}  // namespace

class TestWsjtxLink : public QObject {
  Q_OBJECT

 private slots:
  void init();
  void cleanup();
  void heartbeatOrStatusIsAnsweredWithLocation_data();
  void heartbeatOrStatusIsAnsweredWithLocation();
  void twoInstancesAtOnce();
  void multicastGroupIsSharedWithAnotherListener();
  void hostileDatagramsAreIgnored_data();
  void hostileDatagramsAreIgnored();
  void floodFromManyPortsKeepsTheListBounded();
  void silentAndClosedInstancesAreForgotten();
  void portInUseIsReportedInGerman();

 private:
  std::unique_ptr<WsjtxLink> m_link;
  quint16 m_port = 0;
};

void TestWsjtxLink::init() {
  m_link = std::make_unique<WsjtxLink>();
  QVERIFY(m_link->listen(kLoopback, 0));
  m_port = m_link->localPort();
  QVERIFY(m_port != 0);
}

void TestWsjtxLink::cleanup() {
  m_link.reset();
}

void TestWsjtxLink::heartbeatOrStatusIsAnsweredWithLocation_data() {
  QTest::addColumn<QByteArray>("first");
  QTest::addColumn<quint32>("schema");
  QTest::newRow("heartbeat, schema 2") << test::Heartbeat("WSJT-X", 2) << 2u;
  QTest::newRow("heartbeat, schema 3") << test::Heartbeat("WSJT-X", 3) << 3u;
  QTest::newRow("status, schema 2") << test::Status("WSJT-X", 2) << 2u;
}

void TestWsjtxLink::heartbeatOrStatusIsAnsweredWithLocation() {
  QFETCH(QByteArray, first);
  QFETCH(quint32, schema);
  m_link->setLocator(QStringLiteral("JO62QM84AT"));
  Peer wsjtx;
  wsjtx.send(first, m_port);

  const QByteArray reply = wsjtx.reply();
  QVERIFY2(!reply.isEmpty(), "no Location reply");
  // AD BC CB DA | schema | 00 00 00 0B | 6 "WSJT-X" | 6 "JO62QM"
  QCOMPARE(reply.left(4), QByteArray("\xAD\xBC\xCB\xDA", 4));
  const Location l = decodeLocation(reply);
  QVERIFY(l.complete);
  QCOMPARE(l.magic, 0xADBCCBDAu);
  QCOMPARE(l.schema, schema);
  QCOMPARE(l.type, 11u);
  QCOMPARE(l.id, QByteArray("WSJT-X"));
  QCOMPARE(l.locator, QByteArray("JO62QM"));
  QCOMPARE(reply.size(), 12 + 4 + 6 + 4 + 6);
  QCOMPARE(m_link->instances().size(), std::size_t(1));
  QCOMPARE(m_link->instances().front().port, wsjtx.socket.localPort());

  // More heartbeats, and a new locator in the same square: nothing new to tell.
  wsjtx.send(test::Heartbeat("WSJT-X", schema), m_port);
  m_link->setLocator(QStringLiteral("JO62QM11XX"));
  QVERIFY(wsjtx.silent());
  // Texts that are no locator are not passed on.
  m_link->setLocator(QString());
  m_link->setLocator(QStringLiteral("JO6"));
  m_link->setLocator(QStringLiteral("ZZ99ZZ"));
  QVERIFY(wsjtx.silent());

  m_link->setLocator(QStringLiteral("jo62qn"));
  const Location moved = decodeLocation(wsjtx.reply());
  QVERIFY(moved.complete);
  QCOMPARE(moved.locator, QByteArray("JO62QN"));
  QCOMPARE(moved.schema, schema);
}

void TestWsjtxLink::twoInstancesAtOnce() {
  Peer first, second;
  first.send(test::Heartbeat("WSJT-X - IC7300"), m_port);
  second.send(test::Heartbeat("WSJT-X - FT991", 3), m_port);
  QTRY_COMPARE_WITH_TIMEOUT(m_link->instances().size(), std::size_t(2), 3000);
  // Before the first fix there is nothing to tell.
  QVERIFY(first.silent(100) && second.silent(100));

  m_link->setLocator(QStringLiteral("JN58TD"));
  const Location a = decodeLocation(first.reply());
  const Location b = decodeLocation(second.reply());
  QVERIFY(a.complete && b.complete);
  QCOMPARE(a.id, QByteArray("WSJT-X - IC7300"));
  QCOMPARE(b.id, QByteArray("WSJT-X - FT991"));
  QCOMPARE(a.schema, 2u);
  QCOMPARE(b.schema, 3u);
  QCOMPARE(a.locator, QByteArray("JN58TD"));
  QCOMPARE(b.locator, QByteArray("JN58TD"));
}

void TestWsjtxLink::multicastGroupIsSharedWithAnotherListener() {
  m_link.reset();
  // A plain pair of sockets first: without a multicast route there is nothing to test.
  QUdpSocket probe;
  QVERIFY(probe.bind(QHostAddress::AnyIPv4, 0, QUdpSocket::ShareAddress));
  const quint16 port = probe.localPort();
  QUdpSocket sender;
  QVERIFY(sender.bind(kLoopback, 0));
  sender.setSocketOption(QAbstractSocket::MulticastTtlOption, 0);
  sender.setSocketOption(QAbstractSocket::MulticastLoopbackOption, 1);
  for (const QNetworkInterface& iface : QNetworkInterface::allInterfaces()) {
    if (iface.flags().testFlag(QNetworkInterface::IsLoopBack)) sender.setMulticastInterface(iface);
  }
  if (!probe.joinMulticastGroup(kGroup) ||
      sender.writeDatagram(QByteArray("probe"), kGroup, port) != 5 ||
      !waitForDatagram(probe, 2000)) {
    QSKIP("this machine delivers no multicast to itself (no multicast route)");
  }
  probe.close();

  // The link and another listener (GridTracker, JTAlert) share the group's port.
  WsjtxLink link;
  QVERIFY(link.listen(kGroup, port));
  QUdpSocket other;
  QVERIFY(other.bind(kGroup, port, QUdpSocket::ShareAddress | QUdpSocket::ReuseAddressHint));
  QVERIFY(other.joinMulticastGroup(kGroup));
  link.setLocator(QStringLiteral("IO91WM"));

  QCOMPARE(sender.writeDatagram(test::Heartbeat("WSJT-X"), kGroup, port),
           qint64(test::Heartbeat("WSJT-X").size()));
  QVERIFY2(waitForDatagram(sender), "no Location reply to a heartbeat sent to the group");
  const Location l = decodeLocation(sender.receiveDatagram().data());
  QVERIFY(l.complete);
  QCOMPARE(l.type, 11u);
  QCOMPARE(l.locator, QByteArray("IO91WM"));
  QVERIFY2(waitForDatagram(other), "the other listener lost the heartbeat");
  QCOMPARE(other.receiveDatagram().data(), test::Heartbeat("WSJT-X"));

  // Sent to the group, not to the loopback address: a unicast datagram to that port is no
  // business of the link.
  Peer unicast;
  unicast.send(test::Heartbeat("Elsewhere"), port);
  QVERIFY(unicast.silent());
  QCOMPARE(link.instances().size(), std::size_t(1));
}

void TestWsjtxLink::hostileDatagramsAreIgnored_data() {
  QTest::addColumn<QByteArray>("datagram");
  const QByteArray good = test::Heartbeat("WSJT-X");
  QTest::newRow("wrong magic") << test::Header(0, "WSJT-X", 2, 0x12345678);
  QTest::newRow("schema 9") << test::Header(0, "WSJT-X", 9) + test::Be32(3) + test::Utf8("2.6") +
                                   test::Utf8("x");
  QTest::newRow("truncated") << good.left(14);
  QTest::newRow("id beyond the datagram")
      << test::Be32(0xADBCCBDA) + test::Be32(2) + test::Be32(0) + test::Be32(60000) + "WSJT-X";
  QTest::newRow("64 KiB of noise") << QByteArray(65000, '\xAD');
  // Messages of other types do not make an instance known.
  QTest::newRow("location") << test::Header(11, "WSJT-X") + test::Utf8("JO62QM");
  QTest::newRow("close") << test::Close("WSJT-X");
}

void TestWsjtxLink::hostileDatagramsAreIgnored() {
  QFETCH(QByteArray, datagram);
  m_link->setLocator(QStringLiteral("JO62QM"));
  QSignalSpy changed(m_link.get(), &WsjtxLink::instancesChanged);
  Peer attacker;
  attacker.send(datagram, m_port);
  QVERIFY(attacker.silent());
  QCOMPARE(changed.count(), 0);
  QVERIFY(m_link->instances().empty());
  // The link still works after it.
  attacker.send(test::Heartbeat("WSJT-X"), m_port);
  QVERIFY(decodeLocation(attacker.reply()).complete);
}

void TestWsjtxLink::floodFromManyPortsKeepsTheListBounded() {
  m_link->setLocator(QStringLiteral("JO62QM"));
  Peer station;
  station.send(test::Heartbeat("WSJT-X"), m_port);
  QVERIFY(decodeLocation(station.reply()).complete);

  constexpr int kFlood = 3 * WsjtxLink::kMaxInstances;
  std::vector<std::unique_ptr<Peer>> flood;
  for (int i = 0; i < kFlood; ++i) {
    flood.push_back(std::make_unique<Peer>());
    flood.back()->send(test::Heartbeat("F" + QByteArray::number(i)), m_port);
  }
  QTRY_COMPARE_WITH_TIMEOUT(m_link->instances().size(), std::size_t(WsjtxLink::kMaxInstances),
                            3000);
  QVERIFY(flood.back()->silent());
  QCOMPARE(m_link->instances().size(), std::size_t(WsjtxLink::kMaxInstances));
  // The station heard before the flood keeps its place and is still told.
  QCOMPARE(m_link->instances().front().id, QByteArray("WSJT-X"));
  m_link->setLocator(QStringLiteral("JO62QN"));
  QCOMPARE(decodeLocation(station.reply()).locator, QByteArray("JO62QN"));
  // Those the full list refused get nothing.
  QVERIFY(flood.back()->silent(100));
}

void TestWsjtxLink::silentAndClosedInstancesAreForgotten() {
  m_link->setForgetAfter(std::chrono::milliseconds(300));
  Peer gone, closing;
  gone.send(test::Heartbeat("WSJT-X - A"), m_port);
  closing.send(test::Heartbeat("WSJT-X - B"), m_port);
  QTRY_COMPARE_WITH_TIMEOUT(m_link->instances().size(), std::size_t(2), 3000);

  // A Close with another id, or from another port, closes nothing.
  closing.send(test::Close("WSJT-X - A"), m_port);
  Peer stranger;
  stranger.send(test::Close("WSJT-X - B"), m_port);
  QTest::qWait(50);
  QCOMPARE(m_link->instances().size(), std::size_t(2));
  closing.send(test::Close("WSJT-X - B"), m_port);
  QTRY_COMPARE_WITH_TIMEOUT(m_link->instances().size(), std::size_t(1), 3000);
  QCOMPARE(m_link->instances().front().id, QByteArray("WSJT-X - A"));

  QTRY_VERIFY_WITH_TIMEOUT(m_link->instances().empty(), 3000);
  // Heard again, it is new again and is told the locator at once.
  m_link->setLocator(QStringLiteral("JO62QM"));
  gone.send(test::Heartbeat("WSJT-X - A"), m_port);
  QCOMPARE(decodeLocation(gone.reply()).locator, QByteArray("JO62QM"));
}

void TestWsjtxLink::portInUseIsReportedInGerman() {
  WsjtxLink second;
  QSignalSpy failed(&second, &WsjtxLink::failed);
  QVERIFY(!second.listen(kLoopback, m_port));
  QVERIFY(!second.isListening());
  QCOMPARE(failed.count(), 1);
  const QString message = failed.front().front().toString();
  QVERIFY2(message.startsWith(
               QStringLiteral("Marvento kann die Nachrichten von WSJT-X unter 127.0.0.1:") +
               QString::number(m_port) + QStringLiteral(" nicht empfangen.")),
           qPrintable(message));
  QVERIFY2(message.contains(QStringLiteral("224.0.0.1:2237")), qPrintable(message));
}

QTEST_GUILESS_MAIN(TestWsjtxLink)
#include "tst_WsjtxLink.moc"
