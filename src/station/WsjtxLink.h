#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <vector>

class QUdpSocket;

namespace marvento {

// Listens where WSJT-X sends its UDP messages, learns each running instance from its
// Heartbeat or Status, and tells every instance the own locator with a Location message.
// WSJT-X takes it only with "Accept UDP requests" and "AutoGrid" switched on.
class WsjtxLink : public QObject {
  Q_OBJECT

 public:
  struct Instance {
    QByteArray id;
    QHostAddress address;
    std::uint16_t port = 0;
    std::uint32_t schema = 2;  // the schema the instance writes; replies use the same
    QElapsedTimer heard;       // since its last Heartbeat or Status
  };

  // More instances than this at once are no real station: a flood from many ports. A full
  // list makes room for a newcomer by dropping the instance heard from least recently.
  static constexpr int kMaxInstances = 16;
  // How often WSJT-X sends its Heartbeat.
  static constexpr std::chrono::milliseconds kHeartbeatPeriod = std::chrono::seconds(15);
  // An instance silent for this many of its Heartbeats (three minutes) has gone.
  static constexpr int kForgetAfterBeats = 12;
  // Datagrams taken per turn of the event loop, so that a flood cannot hold the window.
  static constexpr int kDatagramsPerTurn = 64;

  explicit WsjtxLink(QObject* parent = nullptr);
  ~WsjtxLink() override;

  // Listens on address:port, a local address (loopback by default) or a multicast group,
  // which is joined and shared with other listeners such as GridTracker or JTAlert. Stops
  // listening before; false, with failed() emitted, when the port cannot be had.
  bool listen(const QHostAddress& address, std::uint16_t port);
  void stop();
  bool isListening() const;
  // The port listened on (the one given, or the one the system chose for port 0).
  std::uint16_t localPort() const;

  // The own locator; its first six characters go to every known instance when they differ
  // from those sent last, and to each newly heard instance. Other texts are not sent.
  void setLocator(const QString& locator);

  const std::vector<Instance>& instances() const { return m_instances; }

  // For tests: a shorter Heartbeat period, which shortens the time after which silent
  // instances are forgotten with it.
  void setHeartbeatPeriod(std::chrono::milliseconds period);
  std::chrono::milliseconds heartbeatPeriod() const { return m_heartbeatPeriod; }

 signals:
  void instancesChanged();
  // A Location message went to the instance (id as it sent it).
  void locationSent(const QByteArray& id, const QString& locator);
  // German text: the address could not be listened on.
  void failed(const QString& message);

 private:
  void readPending();
  void take(const QByteArray& datagram, const QHostAddress& sender, std::uint16_t port);
  void send(const Instance& instance);
  void forgetSilent();

  QUdpSocket* m_socket = nullptr;
  QTimer m_sweep;
  QTimer m_more;
  std::vector<Instance> m_instances;
  QString m_locator;
  std::chrono::milliseconds m_heartbeatPeriod = kHeartbeatPeriod;
};

}  // namespace marvento
