#include "station/RotatorLink.h"

#include <QTcpSocket>

#include <algorithm>
#include <cmath>

namespace marvento {

namespace {

QString addressText(const QString& host, std::uint16_t port) {
  return (host.contains(u':') ? u'[' + host + u']' : host) + u':' + QString::number(port);
}

// The azimuth modulo 360, rounded to tenths, in [0, 360).
double normalized(double azimuth) {
  double a = std::fmod(azimuth, 360.0);
  if (a < 0) a += 360.0;
  a = std::round(a * 10.0) / 10.0;
  return a >= 360.0 ? 0.0 : a;
}

}  // namespace

RotatorLink::RotatorLink(QObject* parent) : QObject(parent) {
  m_timeout.setSingleShot(true);
  connect(&m_timeout, &QTimer::timeout, this, [this] { failAll(silentText(m_host, m_port)); });
  connect(&m_poll, &QTimer::timeout, this, &RotatorLink::requestPosition);
}

RotatorLink::~RotatorLink() {
  if (m_socket) m_socket->disconnect(this);
}

QByteArray RotatorLink::turnCommand(double azimuth) {
  return "P " + QByteArray::number(normalized(azimuth), 'f', 1) + " 0\n";
}

QString RotatorLink::unreachableText(const QString& host, std::uint16_t port) {
  return QStringLiteral(
             "Der Rotor-Dienst rotctld ist unter %1 nicht erreichbar.\n"
             "Zum Ausprobieren ohne Rotor: rotctld -m 1 -t %2")
      .arg(addressText(host, port))
      .arg(port);
}

QString RotatorLink::silentText(const QString& host, std::uint16_t port) {
  return QStringLiteral("Der Rotor-Dienst rotctld unter %1 antwortet nicht.")
      .arg(addressText(host, port));
}

QString RotatorLink::refusedText(int hamlibError) {
  return QStringLiteral("Der Rotor hat den Befehl abgelehnt (hamlib-Fehler %1).").arg(hamlibError);
}

QString RotatorLink::garbledText(const QString& host, std::uint16_t port) {
  return QStringLiteral("Der Rotor-Dienst unter %1 gibt unverständliche Antworten.")
      .arg(addressText(host, port));
}

void RotatorLink::setAddress(const QString& host, std::uint16_t port) {
  if (host == m_host && port == m_port) return;
  stop();
  m_host = host;
  m_port = port;
}

void RotatorLink::stop() {
  m_queue.clear();
  m_waiting = false;
  m_timeout.stop();
  dropConnection();
}

void RotatorLink::turnTo(double azimuth) {
  if (!std::isfinite(azimuth)) return;
  const auto unsent = m_waiting ? m_queue.begin() + 1 : m_queue.begin();
  const auto queued = std::find_if(unsent, m_queue.end(), [](const Request& r) {
    return r.command == RotctldCommand::SetPosition;
  });
  if (queued != m_queue.end()) {
    queued->azimuth = azimuth;
  } else {
    m_queue.push_back({RotctldCommand::SetPosition, azimuth});
  }
  process();
}

void RotatorLink::requestPosition() {
  const bool asked = std::any_of(m_queue.begin(), m_queue.end(), [](const Request& r) {
    return r.command == RotctldCommand::GetPosition;
  });
  if (asked) return;
  m_queue.push_back({RotctldCommand::GetPosition, 0});
  process();
}

void RotatorLink::setPollInterval(std::chrono::milliseconds interval) {
  if (interval.count() <= 0) {
    m_poll.stop();
    return;
  }
  m_poll.start(interval);
}

void RotatorLink::process() {
  if (m_waiting || m_queue.empty()) return;
  if (m_host.isEmpty() || m_port == 0) {
    failAll(unreachableText(m_host, m_port));
    return;
  }
  if (!m_socket) {
    m_socket = new QTcpSocket(this);
    connect(m_socket, &QTcpSocket::connected, this, &RotatorLink::process);
    connect(m_socket, &QTcpSocket::readyRead, this, &RotatorLink::onReadyRead);
    connect(m_socket, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError e) {
      // A refused or lost connection: whatever was asked is not answered.
      const bool lost = e == QAbstractSocket::RemoteHostClosedError;
      failAll(lost && !m_waiting && m_queue.empty() ? QString() : unreachableText(m_host, m_port));
    });
    m_timeout.start(kReplyTimeout);
    m_socket->connectToHost(m_host, m_port);
    return;
  }
  if (m_socket->state() != QAbstractSocket::ConnectedState) return;
  const Request& request = m_queue.front();
  m_socket->write(request.command == RotctldCommand::SetPosition ? turnCommand(request.azimuth)
                                                                 : QByteArray("p\n"));
  m_waiting = true;
  m_timeout.start(kReplyTimeout);
}

void RotatorLink::onReadyRead() {
  m_buffer += m_socket->readAll();
  while (m_waiting) {
    const Request request = m_queue.front();
    const RotctldReply reply = ReadRotctldReply(request.command, m_buffer);
    if (reply.kind == RotctldReply::Incomplete) return;
    if (reply.kind == RotctldReply::Malformed) {
      failAll(garbledText(m_host, m_port));
      return;
    }
    m_buffer.remove(0, reply.consumed);
    m_queue.pop_front();
    m_waiting = false;
    m_timeout.stop();
    switch (reply.kind) {
      case RotctldReply::Done: emit turnAccepted(normalized(request.azimuth)); break;
      case RotctldReply::Position: emit azimuthReported(reply.azimuth, reply.elevation); break;
      case RotctldReply::Error: fail(request, refusedText(reply.code)); break;
      default: break;
    }
    process();
  }
  // Nothing was asked: whatever came is no answer to anything.
  m_buffer.clear();
}

void RotatorLink::fail(const Request& request, const QString& message) {
  if (request.command == RotctldCommand::SetPosition) {
    emit turnFailed(message);
  } else {
    emit positionFailed(message);
  }
}

void RotatorLink::failAll(const QString& message) {
  const std::deque<Request> failed = std::move(m_queue);
  m_queue.clear();
  m_waiting = false;
  m_timeout.stop();
  dropConnection();
  if (message.isEmpty()) return;
  for (const Request& request : failed) fail(request, message);
}

void RotatorLink::dropConnection() {
  m_buffer.clear();
  if (!m_socket) return;
  m_socket->disconnect(this);
  m_socket->abort();
  m_socket->deleteLater();
  m_socket = nullptr;
}

}  // namespace marvento
