#include "gps/GpsdClient.h"

#include <QHostAddress>
#include <QTcpSocket>
#include <QTimer>

#include <utility>

namespace marvento {

namespace {

constexpr quint16 kGpsdPort = 2947;
// gpsd reports once per receiver cycle, mostly every second: a report younger than that is
// the latest one there is.
constexpr qint64 kFreshMs = 1000;

const QByteArray kWatch = QByteArrayLiteral("?WATCH={\"enable\":true,\"json\":true};\n");

std::optional<quint16> portOf(QStringView text) {
  if (text.isEmpty() || text.size() > 5) return std::nullopt;
  int port = 0;
  for (const QChar c : text) {
    if (c < u'0' || c > u'9') return std::nullopt;
    port = port * 10 + (c.unicode() - u'0');
  }
  if (port < 1 || port > 65535) return std::nullopt;
  return static_cast<quint16>(port);
}

bool usableHost(QStringView host) {
  if (host.isEmpty()) return false;
  for (const QChar c : host) {
    if (c.isSpace() || c == u'/' || c == u'[' || c == u']') return false;
  }
  return true;
}

}  // namespace

QString GpsdAddress::text() const {
  const QString shown = host.contains(u':') ? u'[' + host + u']' : host;
  return shown + u':' + QString::number(port);
}

std::optional<GpsdAddress> ParseGpsdAddress(QStringView text) {
  text = text.trimmed();
  GpsdAddress address;
  QStringView host = text;
  QStringView port;
  if (text.startsWith(u'[')) {
    const qsizetype close = text.indexOf(u']');
    if (close < 0) return std::nullopt;
    host = text.mid(1, close - 1);
    const QStringView rest = text.mid(close + 1);
    if (!rest.isEmpty()) {
      if (!rest.startsWith(u':')) return std::nullopt;
      port = rest.mid(1);
      if (port.isEmpty()) return std::nullopt;
    }
    if (QHostAddress(host.toString()).protocol() != QAbstractSocket::IPv6Protocol) {
      return std::nullopt;
    }
  } else if (text.count(u':') == 1) {
    const qsizetype colon = text.indexOf(u':');
    host = text.left(colon);
    port = text.mid(colon + 1);
    if (port.isEmpty()) return std::nullopt;
  } else if (text.count(u':') > 1) {
    // A bare IPv6 address has no room for a port.
    if (QHostAddress(text.toString()).protocol() != QAbstractSocket::IPv6Protocol) {
      return std::nullopt;
    }
  }
  if (!usableHost(host)) return std::nullopt;
  address.host = host.toString();
  address.port = kGpsdPort;
  if (!port.isEmpty()) {
    const auto number = portOf(port);
    if (!number) return std::nullopt;
    address.port = *number;
  }
  return address;
}

QString GpsdMessage(GpsdOutcome outcome, const QString& address, const QString& detail) {
  const QString start = QStringLiteral("Starten mit: sudo systemctl start gpsd");
  switch (outcome) {
    case GpsdOutcome::Fix: return {};
    case GpsdOutcome::NoFix:
      return QStringLiteral("gpsd (%1) meldet noch keine Position").arg(address);
    case GpsdOutcome::Silent:
      return QStringLiteral("Zurzeit kein GPS-Empfang über gpsd (%1)").arg(address);
    case GpsdOutcome::BadAddress:
      return QStringLiteral(
                 "Ungültige gpsd-Adresse „%1“: erwartet wird Rechner:Port, etwa "
                 "localhost:2947")
          .arg(address);
    case GpsdOutcome::Refused:
      return QStringLiteral(
                 "Keine Verbindung zu gpsd unter %1: Verbindung abgelehnt, gpsd läuft "
                 "dort nicht. ")
                 .arg(address) +
             start;
    case GpsdOutcome::HostNotFound:
      return QStringLiteral(
                 "Rechner für gpsd nicht gefunden: %1. Adresse prüfen, oder gpsd auf "
                 "diesem Rechner starten: sudo systemctl start gpsd")
          .arg(address);
    case GpsdOutcome::Closed:
      return QStringLiteral("gpsd unter %1 hat die Verbindung beendet. Läuft gpsd noch? ")
                 .arg(address) +
             start;
    case GpsdOutcome::NoAnswer:
      return QStringLiteral("gpsd unter %1 antwortet nicht. Läuft gpsd? ").arg(address) + start;
    case GpsdOutcome::SocketError:
      return QStringLiteral("Verbindung zu gpsd unter %1 gestört (%2). ").arg(address, detail) +
             start;
  }
  return {};
}

GpsdClient::GpsdClient(QObject* parent)
    : QObject(parent), m_socket(new QTcpSocket(this)), m_deadline(new QTimer(this)) {
  m_deadline->setSingleShot(true);
  // What gpsd sends beyond this waits in the system until it is read: a peer that floods the
  // connection cannot fill the memory between two reads.
  m_socket->setReadBufferSize(GpsdReplyReader::kMaxLine);
  connect(m_socket, &QTcpSocket::connected, this, &GpsdClient::connected);
  connect(m_socket, &QTcpSocket::readyRead, this, &GpsdClient::readReplies);
  connect(m_socket, &QTcpSocket::errorOccurred, this, &GpsdClient::socketFailed);
  connect(m_deadline, &QTimer::timeout, this, &GpsdClient::deadline);
}

GpsdClient::~GpsdClient() {
  // No callback and no signal may reach a half-destroyed client.
  disconnect(m_socket, nullptr, this, nullptr);
  m_socket->abort();
}

void GpsdClient::request(const QString& address, std::chrono::milliseconds wait, Done done) {
  cancel();
  m_done = std::move(done);
  m_busy = true;
  m_reportsInRequest = 0;
  const std::optional<GpsdAddress> parsed = ParseGpsdAddress(address);
  if (!parsed) {
    m_addressText = address;
    finish(GpsdOutcome::BadAddress);
    return;
  }
  m_addressText = parsed->text();
  const bool sameAddress =
      m_address && m_address->host == parsed->host && m_address->port == parsed->port;
  if (!sameAddress || m_socket->state() == QAbstractSocket::UnconnectedState) {
    m_socket->abort();
    m_reader.clear();
    m_sinceReport.invalidate();
    m_address = parsed;
    m_socket->connectToHost(parsed->host, parsed->port);
  }
  m_deadline->start(wait);
  answerIfReady();
}

void GpsdClient::cancel() {
  ++m_generation;
  m_done = nullptr;
  m_busy = false;
  m_deadline->stop();
}

void GpsdClient::close() {
  cancel();
  m_socket->abort();
  m_reader.clear();
  m_sinceReport.invalidate();
  m_address.reset();
}

void GpsdClient::connected() {
  m_socket->write(kWatch);
}

void GpsdClient::readReplies() {
  const int reports = m_reader.add(m_socket->readAll());
  if (reports > 0) {
    m_sinceReport.start();
    if (m_done) m_reportsInRequest += reports;
  }
  answerIfReady();
}

void GpsdClient::socketFailed() {
  GpsdOutcome outcome = GpsdOutcome::SocketError;
  switch (m_socket->error()) {
    case QAbstractSocket::ConnectionRefusedError: outcome = GpsdOutcome::Refused; break;
    case QAbstractSocket::HostNotFoundError: outcome = GpsdOutcome::HostNotFound; break;
    case QAbstractSocket::RemoteHostClosedError: outcome = GpsdOutcome::Closed; break;
    default: break;
  }
  finish(outcome, m_socket->errorString());
  // The next request connects anew.
  m_socket->abort();
  m_reader.clear();
  m_sinceReport.invalidate();
}

void GpsdClient::deadline() {
  if (!m_done) return;
  if (m_socket->state() != QAbstractSocket::ConnectedState) {
    finish(GpsdOutcome::NoAnswer);
    m_socket->abort();
    return;
  }
  const std::optional<GpsdFix>& latest = m_reader.latest();
  const bool reported = m_reportsInRequest > 0 ||
                        (latest && m_sinceReport.isValid() && m_sinceReport.elapsed() < kFreshMs);
  if (!reported || !latest) {
    finish(GpsdOutcome::Silent);
  } else {
    finish(latest->valid ? GpsdOutcome::Fix : GpsdOutcome::NoFix);
  }
}

void GpsdClient::answerIfReady() {
  if (!m_done || m_socket->state() != QAbstractSocket::ConnectedState) return;
  const std::optional<GpsdFix>& latest = m_reader.latest();
  if (!latest) return;
  const bool fresh =
      m_reportsInRequest > 0 || (m_sinceReport.isValid() && m_sinceReport.elapsed() < kFreshMs);
  if (!fresh) return;
  // On a new connection the satellite report of the cycle may still be on its way; it comes
  // before the next position report at the latest.
  if (latest->valid && !m_reader.skySeen() && m_reportsInRequest < 2) return;
  finish(latest->valid ? GpsdOutcome::Fix : GpsdOutcome::NoFix);
}

void GpsdClient::finish(GpsdOutcome outcome, const QString& detail) {
  if (!m_done) return;
  m_deadline->stop();
  GpsdResult result;
  result.outcome = outcome;
  if ((outcome == GpsdOutcome::Fix || outcome == GpsdOutcome::NoFix) && m_reader.latest()) {
    result.fix = *m_reader.latest();
  }
  result.message = GpsdMessage(outcome, m_addressText, detail);
  Done done = std::exchange(m_done, nullptr);
  const quint64 generation = m_generation;
  // Never from inside request() or a socket signal: the caller may start the next request
  // or delete this client in its callback.
  QMetaObject::invokeMethod(
      this,
      [this, generation, done = std::move(done), result] {
        if (generation != m_generation) return;
        m_busy = false;
        done(result);
      },
      Qt::QueuedConnection);
}

}  // namespace marvento
