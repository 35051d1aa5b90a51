// The WSJT-X link on real UDP sockets: test peers send Heartbeat and Status datagrams as WSJT-X
// does and compare the Location reply byte for byte.

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
using test::Heartbeat;
using test::Location;

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

}  // namespace

class TestWsjtxLink : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    m_link = std::make_unique<WsjtxLink>();
    QVERIFY(m_link->listen(kLoopback, 0));
    m_port = m_link->localPort();
    QVERIFY(m_port != 0);
  }

  // A Heartbeat or a Status makes an instance known. Each is answered under its own id, in
  // the schema it speaks, once there is a locator and whenever its square changes.
  void instancesAreToldTheLocator() {
    Peer first, second;
    first.send(Heartbeat("WSJT-X - IC7300"), m_port);
    second.send(test::Status("WSJT-X - FT991", 3), m_port);
    QTRY_COMPARE(m_link->instances().size(), std::size_t(2));
    QVERIFY(first.silent(100) && second.silent(100));

    m_link->setLocator(QStringLiteral("JO62QM84AT"));
    QCOMPARE(first.reply(), Location("WSJT-X - IC7300", "JO62QM"));
    QCOMPARE(second.reply(), Location("WSJT-X - FT991", "JO62QM", 3));

    // More heartbeats, a new locator in the same square, texts that are no locator: nothing new.
    first.send(Heartbeat("WSJT-X - IC7300"), m_port);
    for (const char* text : {"JO62QM11XX", "", "JO6", "ZZ99ZZ"}) {
      m_link->setLocator(QString::fromLatin1(text));
    }
    QVERIFY(first.silent() && second.silent(100));
    m_link->setLocator(QStringLiteral("jo62qn"));
    QCOMPARE(first.reply(), Location("WSJT-X - IC7300", "JO62QN"));
    QCOMPARE(second.reply(), Location("WSJT-X - FT991", "JO62QN", 3));
  }

  void multicastGroupIsSharedWithAnotherListener() {
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
      if (iface.flags().testFlag(QNetworkInterface::IsLoopBack))
        sender.setMulticastInterface(iface);
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

    QCOMPARE(sender.writeDatagram(Heartbeat("WSJT-X"), kGroup, port),
             qint64(Heartbeat("WSJT-X").size()));
    QVERIFY2(waitForDatagram(sender), "no Location reply to a heartbeat sent to the group");
    QCOMPARE(sender.receiveDatagram().data(), Location("WSJT-X", "IO91WM"));
    QVERIFY2(waitForDatagram(other), "the other listener lost the heartbeat");
    QCOMPARE(other.receiveDatagram().data(), Heartbeat("WSJT-X"));

    // Sent to the group, not to the loopback address: a unicast datagram to that port is no
    // business of the link.
    Peer unicast;
    unicast.send(Heartbeat("Elsewhere"), port);
    QVERIFY(unicast.silent());
    QCOMPARE(link.instances().size(), std::size_t(1));
  }

  // Every refusal of the reader takes the same way through the link; WsjtxMessage_test holds
  // the malformed kinds.
  void hostileDatagramsAreIgnored_data() {
    QTest::addColumn<QByteArray>("datagram");
    QTest::newRow("truncated") << Heartbeat("WSJT-X").left(14);
    QTest::newRow("64 KiB of noise") << QByteArray(65000, '\xAD');
    // Messages of other types do not make an instance known.
    QTest::newRow("location") << Location("WSJT-X", "JO62QM");
    QTest::newRow("close") << test::Close("WSJT-X");
  }

  void hostileDatagramsAreIgnored() {
    QFETCH(QByteArray, datagram);
    m_link->setLocator(QStringLiteral("JO62QM"));
    QSignalSpy changed(m_link.get(), &WsjtxLink::instancesChanged);
    Peer attacker;
    attacker.send(datagram, m_port);
    QVERIFY(attacker.silent());
    QCOMPARE(changed.count(), 0);
    QVERIFY(m_link->instances().empty());
    // The link still works after it.
    attacker.send(Heartbeat("WSJT-X"), m_port);
    QCOMPARE(attacker.reply(), Location("WSJT-X", "JO62QM"));
  }

  void floodFromManyPortsKeepsTheListBounded() {
    m_link->setLocator(QStringLiteral("JO62QM"));
    Peer station;
    station.send(Heartbeat("WSJT-X"), m_port);
    QCOMPARE(station.reply(), Location("WSJT-X", "JO62QM"));

    constexpr int kFlood = 3 * WsjtxLink::kMaxInstances;
    std::vector<std::unique_ptr<Peer>> flood;
    for (int i = 0; i < kFlood; ++i) {
      flood.push_back(std::make_unique<Peer>());
      flood.back()->send(Heartbeat("F" + QByteArray::number(i)), m_port);
    }
    QTRY_COMPARE_WITH_TIMEOUT(m_link->instances().size(), std::size_t(WsjtxLink::kMaxInstances),
                              3000);
    QVERIFY(flood.back()->silent());
    QCOMPARE(m_link->instances().size(), std::size_t(WsjtxLink::kMaxInstances));
    // The station heard before the flood keeps its place and is still told; the refused are not.
    m_link->setLocator(QStringLiteral("JO62QN"));
    QCOMPARE(station.reply(), Location("WSJT-X", "JO62QN"));
    QVERIFY(flood.back()->silent(100));
  }

  void silentAndClosedInstancesAreForgotten() {
    m_link->setForgetAfter(std::chrono::milliseconds(300));
    Peer gone, closing;
    gone.send(Heartbeat("WSJT-X - A"), m_port);
    closing.send(Heartbeat("WSJT-X - B"), m_port);
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
    gone.send(Heartbeat("WSJT-X - A"), m_port);
    QCOMPARE(gone.reply(), Location("WSJT-X - A", "JO62QM"));
  }

  void portInUseIsReportedInGerman() {
    WsjtxLink second;
    QSignalSpy failed(&second, &WsjtxLink::failed);
    QVERIFY(!second.listen(kLoopback, m_port));
    QVERIFY(!second.isListening());
    QCOMPARE(failed.count(), 1);
    QCOMPARE(
        failed.front().front().toString(),
        QStringLiteral("Marvento kann die Nachrichten von WSJT-X unter 127.0.0.1:%1 nicht "
                       "empfangen.\nEin anderes Programm empfängt dort schon. Mehrere "
                       "Programme können sich eine Multicast-Gruppe wie 224.0.0.1:2237 teilen.")
            .arg(m_port));
  }

 private:
  std::unique_ptr<WsjtxLink> m_link;
  quint16 m_port = 0;
};

QTEST_GUILESS_MAIN(TestWsjtxLink)
#include "tst_WsjtxLink.moc"
