#include "station/StationLinks.h"

#include "platform/MsgBox.h"
#include "platform/Numbers.h"
#include "station/Js8CallLink.h"
#include "station/RotatorLink.h"
#include "station/WsjtxLink.h"

#include <QHostAddress>
#include <QTimer>

#include <cmath>

namespace marvento {

namespace {

bool sameAddress(const StationAddress& a, const StationAddress& b) {
  return a.status == b.status && a.host == b.host && a.port == b.port;
}

QHostAddress listenAddress(const QString& host) {
  if (host.compare(u"localhost", Qt::CaseInsensitive) == 0) return QHostAddress::LocalHost;
  return QHostAddress(host);
}

}  // namespace

std::optional<double> BearingOfCaption(const QString& caption) {
  const QString text = caption.trimmed();
  // Val reads a caption without digits (the control's name, "-") as 0, a bearing like any.
  if (text.isEmpty() || !text.at(0).isDigit()) return std::nullopt;
  const double bearing = Val(ToDotDecimal(text));
  if (!std::isfinite(bearing) || bearing < 0 || bearing > 360) return std::nullopt;
  return bearing;
}

StationLinks::StationLinks(QObject* parent)
    : QObject(parent),
      m_wsjtx(std::make_unique<WsjtxLink>()),
      m_js8call(std::make_unique<Js8CallLink>()),
      m_rotator(std::make_unique<RotatorLink>()) {
  connect(m_wsjtx.get(), &WsjtxLink::failed, this,
          [this](const QString& message) { tell(message, QStringLiteral(" WSJT-X")); });
  connect(m_js8call.get(), &Js8CallLink::gridKept, this, &StationLinks::notice);
  connect(m_rotator.get(), &RotatorLink::turnFailed, this,
          [this](const QString& message) { tell(message, QStringLiteral(" Antenne drehen")); });
  connect(m_rotator.get(), &RotatorLink::turnAccepted, this, [this](double azimuth) {
    m_turning = true;
    m_lastAzimuth.reset();
    m_rotator->setPollInterval(kRotorTurningPoll);
    emit rotorTurned(azimuth);
  });
  connect(m_rotator.get(), &RotatorLink::azimuthReported, this, [this](double azimuth, double) {
    // Two equal answers in a row: the antenna has stopped, and is asked less often again.
    if (m_turning && m_lastAzimuth && std::fabs(*m_lastAzimuth - azimuth) < 0.05) {
      m_turning = false;
      m_rotator->setPollInterval(kRotorPoll);
    }
    m_lastAzimuth = azimuth;
    emit rotorAzimuth(azimuth);
  });
  // A question that fails is asked again at the next turn of the poll; the panel says it.
  connect(m_rotator.get(), &RotatorLink::positionFailed, this,
          [this] { emit rotorAzimuth(std::nullopt); });
}

StationLinks::~StationLinks() = default;

void StationLinks::apply() {
  applyWsjtx(LoadStationAddress(StationProgram::Wsjtx));
  applyJs8Call(LoadStationAddress(StationProgram::Js8Call));
  applyRotor(LoadStationAddress(StationProgram::Rotor));
}

void StationLinks::applyWsjtx(const StationAddress& address) {
  if (sameAddress(address, m_wsjtxAt) &&
      (address.status != StationAddress::Ok || m_wsjtx->isListening())) {
    return;
  }
  m_wsjtxAt = address;
  m_wsjtx->stop();
  if (address.status != StationAddress::Ok) return;
  // Failure comes as the link's own signal, with the reason in German.
  if (m_wsjtx->listen(listenAddress(address.host), address.port)) {
    m_wsjtx->setLocator(m_locator);
  }
}

void StationLinks::applyJs8Call(const StationAddress& address) {
  if (sameAddress(address, m_js8callAt)) return;
  m_js8callAt = address;
  m_js8call->stop();
  if (address.status != StationAddress::Ok) return;
  m_js8call->setLocator(m_locator);
  m_js8call->start(address.host, address.port);
}

void StationLinks::applyRotor(const StationAddress& address) {
  if (sameAddress(address, m_rotorAt)) return;
  const bool wasOn = rotorOn();
  m_rotorAt = address;
  m_turning = false;
  m_rotator->setPollInterval(std::chrono::milliseconds(0));
  m_rotator->stop();
  if (rotorOn()) {
    m_rotator->setAddress(address.host, address.port);
    m_rotator->setPollInterval(kRotorPoll);
    m_rotator->requestPosition();
  }
  if (wasOn != rotorOn()) emit rotorSwitched(rotorOn());
}

void StationLinks::ownLocator(const QString& locator) {
  m_locator = locator.trimmed().toUpper();
  // Each link sends only a valid locator, and only when it differs from the one sent last.
  if (m_wsjtx->isListening()) m_wsjtx->setLocator(m_locator);
  if (m_js8callAt.status == StationAddress::Ok) m_js8call->setLocator(m_locator);
}

bool StationLinks::rotorOn() const {
  return m_rotorAt.status == StationAddress::Ok;
}

void StationLinks::turnRotor(double azimuth) {
  if (rotorOn()) m_rotator->turnTo(azimuth);
}

void StationLinks::tell(const QString& message, const QString& title) {
  // The box waits until the socket has finished the handler that brought the failure.
  QTimer::singleShot(0, this, [message, title] { MsgBox(message, vbExclamation, title); });
}

}  // namespace marvento
