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

QString RotatorLink::hungUpText(const QString& host, std::uint16_t port) {
  return QStringLiteral(
             "Der Rotor-Dienst rotctld unter %1 hat die Verbindung ohne Antwort beendet.")
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
  m_sent = 0;
  m_timeout.stop();
  dropConnection();
}

void RotatorLink::turnTo(double azimuth) {
  if (!std::isfinite(azimuth)) return;
  const auto unsent = m_queue.begin() + static_cast<std::ptrdiff_t>(m_sent);
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
  if (m_sent == m_queue.size()) return;
  if (m_host.isEmpty() || m_port == 0) {
    failAll(unreachableText(m_host, m_port));
    return;
  }
  if (!m_socket) {
    m_socket = new QTcpSocket(this);
    m_accepted = false;
    connect(m_socket, &QTcpSocket::connected, this, [this] {
      m_accepted = true;
      process();
    });
    connect(m_socket, &QTcpSocket::readyRead, this, &RotatorLink::onReadyRead);
    connect(m_socket, &QTcpSocket::errorOccurred, this, [this](QAbstractSocket::SocketError e) {
      // A refused or lost connection: whatever was asked is not answered. An idle connection
      // the daemon closes (it was restarted) is no news; the next command connects anew.
      const bool closed = e == QAbstractSocket::RemoteHostClosedError;
      if (closed && m_queue.empty()) {
        failAll(QString());
      } else if (closed && m_accepted) {
        failAll(hungUpText(m_host, m_port));
      } else {
        failAll(unreachableText(m_host, m_port));
      }
    });
    m_timeout.start(kReplyTimeout);
    m_socket->connectToHost(m_host, m_port);
    return;
  }
  if (m_socket->state() != QAbstractSocket::ConnectedState) return;
  // The wait runs from the oldest command still unanswered; one sent behind it adds none.
  if (m_sent == 0) m_timeout.start(kReplyTimeout);
  for (; m_sent < m_queue.size(); ++m_sent) {
    const Request& request = m_queue[m_sent];
    m_socket->write(request.command == RotctldCommand::SetPosition ? turnCommand(request.azimuth)
                                                                   : QByteArray("p\n"));
  }
}

void RotatorLink::onReadyRead() {
  m_buffer += m_socket->readAll();
  while (m_sent > 0) {
    const Request request = m_queue.front();
    const RotctldReply reply = ReadRotctldReply(request.command, m_buffer);
    if (reply.kind == RotctldReply::Incomplete) return;
    if (reply.kind == RotctldReply::Malformed) {
      failAll(garbledText(m_host, m_port));
      return;
    }
    m_buffer.remove(0, reply.consumed);
    m_queue.pop_front();
    --m_sent;
    // An answer shows the daemon at work: the next one has its own full wait.
    if (m_sent > 0) {
      m_timeout.start(kReplyTimeout);
    } else {
      m_timeout.stop();
    }
    switch (reply.kind) {
      case RotctldReply::Done: emit turnAccepted(normalized(request.azimuth)); break;
      case RotctldReply::Position: emit azimuthReported(reply.azimuth, reply.elevation); break;
      case RotctldReply::Error: fail(request, refusedText(reply.code)); break;
      default: break;
    }
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
  m_sent = 0;
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
