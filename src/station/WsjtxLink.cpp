#include "station/WsjtxLink.h"

#include "locator/LocatorToCoords.h"
#include "station/WsjtxMessage.h"

#include <QNetworkDatagram>
#include <QNetworkInterface>
#include <QUdpSocket>

#include <algorithm>

namespace marvento {

namespace {

QString addressText(const QHostAddress& address, std::uint16_t port) {
  const QString host = address.protocol() == QAbstractSocket::IPv6Protocol
                           ? u'[' + address.toString() + u']'
                           : address.toString();
  return host + u':' + QString::number(port);
}

// The first six characters in capitals when they make a valid locator, else nothing.
QString squareOf(const QString& locator) {
  const QString square = locator.trimmed().left(6).toUpper();
  if (square.size() != 6 || DecodeLocator(square).status != LocatorDecode::Ok) return {};
  return square;
}

}  // namespace

WsjtxLink::WsjtxLink(QObject* parent) : QObject(parent) {
  m_more.setSingleShot(true);
  m_more.setInterval(0);
  connect(&m_more, &QTimer::timeout, this, &WsjtxLink::readPending);
  connect(&m_sweep, &QTimer::timeout, this, &WsjtxLink::forgetSilent);
  setHeartbeatPeriod(kHeartbeatPeriod);
}

WsjtxLink::~WsjtxLink() = default;

bool WsjtxLink::listen(const QHostAddress& address, std::uint16_t port) {
  stop();
  m_socket = new QUdpSocket(this);
  bool ok = false;
  if (address.isMulticast()) {
    // Bound to the group itself, only datagrams sent to the group arrive; the shared port
    // lets GridTracker or JTAlert listen beside us.
    ok = m_socket->bind(address, port,
                        QAbstractSocket::ShareAddress | QAbstractSocket::ReuseAddressHint);
    if (ok) {
      bool joined = m_socket->joinMulticastGroup(address);
      // WSJT-X on the same computer may send through the loopback interface, which the
      // default route does not choose.
      for (const QNetworkInterface& iface : QNetworkInterface::allInterfaces()) {
        if (iface.flags().testFlag(QNetworkInterface::IsLoopBack) &&
            iface.flags().testFlag(QNetworkInterface::IsUp)) {
          joined = m_socket->joinMulticastGroup(address, iface) || joined;
        }
      }
      ok = joined;
    }
  } else {
    ok = m_socket->bind(address, port);
  }
  if (!ok) {
    const QAbstractSocket::SocketError error = m_socket->error();
    QString reason;
    switch (error) {
      case QAbstractSocket::AddressInUseError:
        reason = QStringLiteral(
            "Ein anderes Programm empfängt dort schon. Mehrere Programme "
            "können sich eine Multicast-Gruppe wie 224.0.0.1:2237 teilen.");
        break;
      case QAbstractSocket::SocketAddressNotAvailableError:
        reason = QStringLiteral("Die Adresse gehört nicht zu diesem Rechner.");
        break;
      default: reason = m_socket->errorString(); break;
    }
    delete m_socket;
    m_socket = nullptr;
    emit failed(QStringLiteral("Marvento kann die Nachrichten von WSJT-X unter %1 nicht "
                               "empfangen.\n%2")
                    .arg(addressText(address, port), reason));
    return false;
  }
  connect(m_socket, &QUdpSocket::readyRead, this, &WsjtxLink::readPending);
  return true;
}

void WsjtxLink::stop() {
  m_more.stop();
  m_sweep.stop();
  if (m_socket) {
    m_socket->disconnect(this);
    m_socket->close();
    m_socket->deleteLater();
    m_socket = nullptr;
  }
  if (!m_instances.empty()) {
    m_instances.clear();
    emit instancesChanged();
  }
}

bool WsjtxLink::isListening() const {
  return m_socket != nullptr;
}

std::uint16_t WsjtxLink::localPort() const {
  return m_socket ? m_socket->localPort() : 0;
}

void WsjtxLink::setLocator(const QString& locator) {
  const QString square = squareOf(locator);
  if (square.isEmpty() || square == m_locator) return;
  m_locator = square;
  for (const Instance& instance : m_instances) send(instance);
}

void WsjtxLink::setHeartbeatPeriod(std::chrono::milliseconds period) {
  m_heartbeatPeriod = std::max(period, std::chrono::milliseconds(1));
  // Looking twice per period keeps a silent instance at most a 24th too long.
  m_sweep.setInterval(
      std::max<std::chrono::milliseconds>(m_heartbeatPeriod / 2, std::chrono::milliseconds(1)));
}

void WsjtxLink::readPending() {
  if (!m_socket) return;
  for (int n = 0; n < kDatagramsPerTurn && m_socket->hasPendingDatagrams(); ++n) {
    const QNetworkDatagram datagram = m_socket->receiveDatagram();
    if (!datagram.isValid()) break;
    take(datagram.data(), datagram.senderAddress(),
         static_cast<std::uint16_t>(datagram.senderPort()));
  }
  // The rest comes after the window has had its turn.
  if (m_socket->hasPendingDatagrams()) m_more.start();
}

void WsjtxLink::take(const QByteArray& datagram, const QHostAddress& sender, std::uint16_t port) {
  if (port == 0 || sender.isNull()) return;
  const WsjtxMessage message = ReadWsjtxMessage(datagram);
  if (message.result != WsjtxMessage::Ok) return;

  const auto from = std::find_if(m_instances.begin(), m_instances.end(), [&](const Instance& i) {
    return i.port == port && i.address.isEqual(sender);
  });
  if (message.type == WsjtxMessage::Close) {
    if (from != m_instances.end() && from->id == message.id) {
      m_instances.erase(from);
      emit instancesChanged();
    }
    return;
  }
  if (message.type != WsjtxMessage::Heartbeat && message.type != WsjtxMessage::Status) return;

  if (from != m_instances.end()) {
    from->heard.restart();
    from->schema = message.schema;
    if (from->id != message.id) {
      // Another program on the same port: it has not been told the locator yet.
      from->id = message.id;
      emit instancesChanged();
      send(*from);
    }
    return;
  }
  // A full list gives the place of the instance heard from least recently to the newcomer,
  // so no flood from many ports can keep a newly started WSJT-X out. One the flood pushed out
  // comes back with its next Heartbeat and is told at once: it never waits beyond a period.
  if (static_cast<int>(m_instances.size()) >= kMaxInstances) {
    m_instances.erase(
        std::min_element(m_instances.begin(), m_instances.end(),
                         [](const Instance& a, const Instance& b) { return a.heard < b.heard; }));
  }
  Instance instance;
  instance.id = message.id;
  instance.address = sender;
  instance.port = port;
  instance.schema = message.schema;
  instance.heard.start();
  m_instances.push_back(instance);
  if (!m_sweep.isActive()) m_sweep.start();
  emit instancesChanged();
  send(m_instances.back());
}

void WsjtxLink::send(const Instance& instance) {
  if (!m_socket || m_locator.isEmpty()) return;
  const QByteArray datagram = WsjtxLocationMessage(instance.schema, instance.id, m_locator);
  if (m_socket->writeDatagram(datagram, instance.address, instance.port) == datagram.size()) {
    emit locationSent(instance.id, m_locator);
  }
}

void WsjtxLink::forgetSilent() {
  const auto before = m_instances.size();
  const auto forgetAfter = m_heartbeatPeriod * kForgetAfterBeats;
  std::erase_if(m_instances,
                [&](const Instance& i) { return i.heard.elapsed() >= forgetAfter.count(); });
  if (m_instances.empty()) m_sweep.stop();
  if (m_instances.size() != before) emit instancesChanged();
}

}  // namespace marvento
