// The WSJT-X link on real UDP sockets: test peers send Heartbeat and Status datagrams as WSJT-X
// does and compare the Location reply byte for byte.

#include "WsjtxDatagram.h"
#include "station/WsjtxLink.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QSignalSpy>
#include <QUdpSocket>
#include <QtTest>

#include <algorithm>
#include <memory>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

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

// One Heartbeat each from count fresh loopback ports (ids numbered from first), as a flood of
// one-off senders does; each port is closed again at once. Returns how many went out.
int floodFromFreshPorts(quint16 to, int first, int count) {
  sockaddr_in target{};
  target.sin_family = AF_INET;
  target.sin_port = htons(to);
  target.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  sockaddr_in local = target;
  local.sin_port = 0;
  int sent = 0;
  for (int i = first; i < first + count; ++i) {
    const int fd = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (fd < 0) break;
    const QByteArray datagram = Heartbeat("Flood " + QByteArray::number(i));
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&local), sizeof local) == 0 &&
        ::sendto(fd, datagram.constData(), std::size_t(datagram.size()), 0,
                 reinterpret_cast<const sockaddr*>(&target), sizeof target) == datagram.size()) {
      ++sent;
    }
    ::close(fd);
  }
  return sent;
}

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

  // One-off senders from 10,000 ports fill the list before a steady instance starts and go on
  // while it runs. The instance sends a Heartbeat every period, as WSJT-X does; it is told the
  // locator within one period of its start and of every change, during the flood and after it,
  // and the list never grows beyond its bound.
  void floodDoesNotLockOutASteadyInstance() {
    using std::chrono::milliseconds;
    m_link->setHeartbeatPeriod(milliseconds(250));
    const qint64 period = m_link->heartbeatPeriod().count();
    // What the test's own loop may add on a busy machine (it looks every few milliseconds).
    const qint64 slack = period / 5;
    constexpr int kFlood = 10000;
    constexpr int kMax = WsjtxLink::kMaxInstances;
    QSignalSpy changed(m_link.get(), &WsjtxLink::instancesChanged);
    m_link->setLocator(QStringLiteral("JO62QM"));

    int flooded = floodFromFreshPorts(m_port, 0, 2 * kMax);
    QCOMPARE(flooded, 2 * kMax);
    QTRY_COMPARE(m_link->instances().size(), std::size_t(kMax));

    struct Change {
      qint64 at;
      QByteArray locator;
    };
    struct Told {
      qint64 at;
      QByteArray datagram;
    };
    const QByteArray squares[] = {"JO62QN", "JO62RN", "JO62RM", "JO62QM"};
    std::vector<Change> changes{{0, "JO62QM"}};  // its start: nothing told yet
    std::vector<Told> told;
    std::size_t largest = 0;
    Peer station;
    QElapsedTimer clock;
    clock.start();
    qint64 nextBeat = 0;
    qint64 floodDoneAt = -1;
    // Until the flood has ended and a change after it had two periods to arrive, or the time
    // is up.
    while (floodDoneAt < 0 || changes.back().at <= floodDoneAt ||
           clock.elapsed() < changes.back().at + 2 * period) {
      QVERIFY2(clock.elapsed() < 30000,
               qPrintable(QStringLiteral("flood stuck at %1").arg(flooded)));
      if (clock.elapsed() >= nextBeat) {
        station.send(Heartbeat("WSJT-X"), m_port);
        nextBeat += period;
      }
      // Spread over six periods, so that it runs while the locator changes.
      const int due = int(std::min<qint64>(kFlood, kFlood * clock.elapsed() / (6 * period) + 1));
      if (flooded < due) {
        const int sent = floodFromFreshPorts(m_port, flooded, std::min(100, due - flooded));
        QVERIFY2(sent > 0, "no datagram could be sent from a fresh port");
        flooded += sent;
        if (flooded >= kFlood) floodDoneAt = clock.elapsed();
      }
      if (clock.elapsed() >= changes.back().at + 5 * period / 2) {
        const QByteArray square = squares[(changes.size() - 1) % std::size(squares)];
        changes.push_back({clock.elapsed(), square});
        m_link->setLocator(QString::fromLatin1(square));
      }
      QTest::qWait(2);
      while (station.socket.hasPendingDatagrams()) {
        told.push_back({clock.elapsed(), station.socket.receiveDatagram().data()});
      }
      largest = std::max(largest, m_link->instances().size());
    }

    QCOMPARE(largest, std::size_t(kMax));
    QVERIFY(changes.size() >= 4);  // the start and two more during the flood, one after it
    for (const Change& change : changes) {
      const QByteArray expected = Location("WSJT-X", change.locator);
      const auto answer = std::find_if(told.begin(), told.end(), [&](const Told& t) {
        return t.at >= change.at && t.datagram == expected;
      });
      QVERIFY2(
          answer != told.end(),
          qPrintable(QStringLiteral("%1 at %2 ms never told").arg(change.locator).arg(change.at)));
      QVERIFY2(answer->at - change.at <= period + slack,
               qPrintable(QStringLiteral("%1 at %2 ms told after %3 ms")
                              .arg(change.locator)
                              .arg(change.at)
                              .arg(answer->at - change.at)));
    }
    // Most of the flood reached the link (the system may drop some when its queue is full).
    QVERIFY2(changed.count() > kFlood / 2, qPrintable(QString::number(changed.count())));
  }

  void silentAndClosedInstancesAreForgotten() {
    // Twelve periods of silence: forgotten after 300 ms.
    m_link->setHeartbeatPeriod(std::chrono::milliseconds(25));
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
