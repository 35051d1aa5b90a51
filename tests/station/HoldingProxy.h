#pragma once

// A TCP proxy on loopback in front of a daemon, for a daemon that is slow to answer: what the
// client sends passes at once, but the daemon's answers on the first connection are held back
// until release(). Later connections pass both ways.

#include <QByteArray>
#include <QHostAddress>
#include <QObject>
#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

namespace marvento::test {

class HoldingProxy : public QObject {
 public:
  explicit HoldingProxy(quint16 daemonPort) : m_daemonPort(daemonPort) {
    m_server.listen(QHostAddress::LocalHost, 0);
    connect(&m_server, &QTcpServer::newConnection, this, &HoldingProxy::accept);
  }
  quint16 port() const { return m_server.serverPort(); }

  // Everything the clients sent that has reached the daemon.
  const QByteArray& toDaemon() const { return m_toDaemon; }
  // The daemon's answers held back so far.
  const QByteArray& held() const { return m_held; }

  // Lets the held answers through, and holds nothing more.
  void release() {
    m_released = true;
    if (m_heldClient) m_heldClient->write(m_held);
    m_held.clear();
  }

 private:
  void accept() {
    while (QTcpSocket* client = m_server.nextPendingConnection()) {
      auto* daemon = new QTcpSocket(client);
      daemon->connectToHost(QHostAddress::LocalHost, m_daemonPort);
      if (!daemon->waitForConnected(2000)) {
        client->abort();
        client->deleteLater();
        continue;
      }
      const bool hold = !m_heldClient && !m_released;
      if (hold) m_heldClient = client;
      connect(client, &QTcpSocket::readyRead, this, [this, client, daemon] {
        const QByteArray bytes = client->readAll();
        m_toDaemon += bytes;
        daemon->write(bytes);
      });
      connect(daemon, &QTcpSocket::readyRead, this, [this, client, daemon, hold] {
        const QByteArray bytes = daemon->readAll();
        if (hold && !m_released) {
          m_held += bytes;
        } else {
          client->write(bytes);
        }
      });
      connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
      connect(daemon, &QTcpSocket::disconnected, client, &QTcpSocket::disconnectFromHost);
    }
  }

  quint16 m_daemonPort;
  QPointer<QTcpSocket> m_heldClient;
  QByteArray m_toDaemon;
  QByteArray m_held;
  bool m_released = false;
  // Last, so that its connections, which write into the members above, go first.
  QTcpServer m_server;
};

}  // namespace marvento::test
