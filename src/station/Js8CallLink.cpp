#include "station/Js8CallLink.h"

#include "locator/LocatorToCoords.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>

#include <algorithm>

namespace marvento {

namespace {

// The locator in capitals when it is a valid one of 6 to 10 characters, else nothing.
QString validLocator(const QString& locator) {
  const QString text = locator.trimmed().toUpper();
  if (text.size() < 6 || text.size() > 10 || DecodeLocator(text).status != LocatorDecode::Ok) {
    return {};
  }
  return text;
}

// JS8Call reports the grid sent (or its first characters, at least a square) once it has
// taken it.
bool reportsGrid(const QString& reported, const QString& sent) {
  return reported.size() >= 6 && sent.startsWith(reported);
}

}  // namespace

Js8CallLink::Js8CallLink(QObject* parent) : QObject(parent) {
  m_retry.setSingleShot(true);
  m_connectTimeout.setSingleShot(true);
  connect(&m_retry, &QTimer::timeout, this, &Js8CallLink::connectNow);
  connect(&m_connectTimeout, &QTimer::timeout, this, &Js8CallLink::onGone);
  m_settle.setSingleShot(true);
  m_settle.setInterval(kReportSettle);
  connect(&m_settle, &QTimer::timeout, this, [this] {
    if (m_keptTold || m_sent.isEmpty() || reportsGrid(m_reported, m_sent)) return;
    m_keptTold = true;
    emit gridKept(keptGridText());
  });
}

Js8CallLink::~Js8CallLink() {
  // No signal of the socket may reach a half-destroyed link.
  if (m_socket) m_socket->disconnect(this);
}

QByteArray Js8CallLink::gridMessage(const QString& locator) {
  // The fields in the order of JS8Call's own examples; the value goes through the JSON
  // writer, so no character of it can end the string.
  const QByteArray array = QJsonDocument(QJsonArray{locator}).toJson(QJsonDocument::Compact);
  const QByteArray value = array.sliced(1, array.size() - 2);
  return R"({"type":"STATION.SET_GRID","value":)" + value + R"(,"params":{}})" + '\n';
}

QByteArray Js8CallLink::gridQuery() {
  return R"({"type":"STATION.GET_GRID","value":"","params":{}})" + QByteArray("\n");
}

QString Js8CallLink::keptGridText() {
  return QStringLiteral(
      "JS8Call behält seinen eigenen Locator: in JS8Call unter Settings „AutoGrid“ ankreuzen.");
}

void Js8CallLink::start(const QString& host, std::uint16_t port) {
  stop();
  m_keptTold = false;
  m_host = host;
  m_port = port;
  m_running = true;
  m_nextRetry = kFirstRetry;
  connectNow();
}

void Js8CallLink::stop() {
  m_running = false;
  m_retry.stop();
  m_connectTimeout.stop();
  m_settle.stop();
  if (m_socket) {
    m_socket->disconnect(this);
    m_socket->abort();
    m_socket->deleteLater();
    m_socket = nullptr;
  }
  if (m_connected) {
    m_connected = false;
    emit connectedChanged(false);
  }
}

bool Js8CallLink::isConnected() const {
  return m_connected;
}

void Js8CallLink::setLocator(const QString& locator) {
  const QString valid = validLocator(locator);
  if (valid.isEmpty()) return;
  m_locator = valid;
  sendLocator();
}

void Js8CallLink::connectNow() {
  if (!m_running) return;
  if (m_socket) {
    m_socket->disconnect(this);
    m_socket->abort();
    m_socket->deleteLater();
  }
  m_socket = new QTcpSocket(this);
  connect(m_socket, &QTcpSocket::connected, this, &Js8CallLink::onConnected);
  connect(m_socket, &QTcpSocket::disconnected, this, &Js8CallLink::onGone);
  connect(m_socket, &QTcpSocket::errorOccurred, this, &Js8CallLink::onGone);
  connect(m_socket, &QTcpSocket::readyRead, this, &Js8CallLink::onReadyRead);
  m_connectTimeout.start(kConnectTimeout);
  m_socket->connectToHost(m_host, m_port);
}

void Js8CallLink::onConnected() {
  m_connectTimeout.stop();
  m_nextRetry = kFirstRetry;
  m_connected = true;
  m_sent.clear();
  m_buffer.clear();
  m_skipLine = false;
  emit connectedChanged(true);
  sendLocator();
}

void Js8CallLink::onGone() {
  // Both "disconnected" and "errorOccurred" may come for one loss; the first one counts.
  if (!m_running || m_retry.isActive()) return;
  m_connectTimeout.stop();
  if (m_socket) {
    m_socket->disconnect(this);
    m_socket->abort();
    m_socket->deleteLater();
    m_socket = nullptr;
  }
  m_sent.clear();
  if (m_connected) {
    m_connected = false;
    emit connectedChanged(false);
  }
  m_retry.start(m_nextRetry);
  m_nextRetry = std::min(m_nextRetry * 2, kLongestRetry);
}

void Js8CallLink::sendLocator() {
  if (!isConnected() || m_locator.isEmpty() || m_locator == m_sent) return;
  m_socket->write(gridMessage(m_locator) + gridQuery());
  m_sent = m_locator;
  emit locatorSent(m_locator);
}

void Js8CallLink::onReadyRead() {
  m_buffer += m_socket->readAll();
  qsizetype start = 0;
  for (qsizetype end = m_buffer.indexOf('\n'); end >= 0; end = m_buffer.indexOf('\n', start)) {
    if (!m_skipLine) takeLine(QByteArrayView(m_buffer).sliced(start, end - start));
    m_skipLine = false;
    start = end + 1;
  }
  m_buffer.remove(0, start);
  if (m_buffer.size() > kMaxLine) {
    m_buffer.clear();
    m_skipLine = true;
  }
}

void Js8CallLink::takeLine(QByteArrayView line) {
  // JS8Call tells its API clients about its own events; only its grid is of use here.
  const QJsonObject message = QJsonDocument::fromJson(line.toByteArray()).object();
  if (message.value(u"type").toString() != u"STATION.GRID" || m_sent.isEmpty()) return;
  m_reported = message.value(u"value").toString().trimmed().toUpper();
  if (reportsGrid(m_reported, m_sent)) {
    m_settle.stop();
    m_keptTold = false;  // taken: should it keep its own again later, that is told again
  } else {
    m_settle.start();
  }
}

}  // namespace marvento
