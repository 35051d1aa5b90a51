#include "gps/SerialExchange.h"

#include "platform/CommControl.h"
#include "platform/MsgBox.h"
#include "platform/Numbers.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace marvento {

ExchangeResult ExchangeResult::found(QString sentence, QString rawBuffer) {
  ExchangeResult r;
  r.kind = Kind::Sentence;
  r.sentence = std::move(sentence);
  r.rawBuffer = std::move(rawBuffer);
  return r;
}

ExchangeResult ExchangeResult::failed(Kind kind, QString reason) {
  ExchangeResult r;
  r.kind = kind;
  r.reason = std::move(reason);
  return r;
}

double ExchangeWaitMs(double baud) {
  return 1.0 / std::sqrt(baud) * 0.004 * 86400.0 * 1000.0;
}

namespace {

using Kind = ExchangeResult::Kind;

// gpsd opens the receivers it watches exclusively; when one runs, it is the likely holder.
bool gpsdRunning() {
  const QDir proc(QStringLiteral("/proc"));
  for (const QString& pid : proc.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    if (!pid.front().isDigit()) continue;
    QFile comm(proc.filePath(pid + QStringLiteral("/comm")));
    if (comm.open(QIODevice::ReadOnly) && comm.readAll().trimmed() == "gpsd") return true;
  }
  return false;
}

}  // namespace

SerialExchange::SerialExchange(CommControl& MSComm1, QObject* parent)
    : QObject(parent), m_comm(MSComm1) {
  m_deadline.setSingleShot(true);
  m_deadline.setTimerType(Qt::PreciseTimer);
  connect(&m_deadline, &QTimer::timeout, this, &SerialExchange::onDeadline);
  connect(&m_comm, &CommControl::readyRead, this, &SerialExchange::onReadyRead);
  // Queued, so that a hang-up found in the middle of a read ends the exchange only after
  // that read has returned.
  connect(&m_comm, &CommControl::hungUp, this, &SerialExchange::onHangUp, Qt::QueuedConnection);
}

SerialExchange::~SerialExchange() {
  if (running()) cancel();
}

void SerialExchange::start(const ExchangeRequest& request, Finished finished) {
  if (running()) cancel();
  m_finished = std::move(finished);
  m_scanner = SentenceScanner{};

  if (request.busyPort == request.port) {
    m_phase = Phase::Asking;
    const int answer = MsgBox(QStringLiteral("Schnittstelle wird schon verwendet ( Mouse ? )\n"
                                             "Trotzdem versuchen ?"),
                              vbOKCancel + vbExclamation, QStringLiteral(" Achtung"));
    // The window may have been closed while the question stood.
    if (m_phase != Phase::Asking) return;
    if (answer == vbCancel) {
      finish(ExchangeResult::failed(Kind::PortRefused,
                                    QStringLiteral("Bitte andere Schnittstelle auswählen")));
      return;
    }
  }
  m_phase = Phase::Waiting;

  // A port that an earlier exchange of this program left open is used as it is; only a
  // port held by someone else is a failure.
  auto failed = [this](const CommResult& r) {
    if (r.ok() || (r.number == comPortOpen && m_comm.portOpen())) return false;
    QString reason = r.description;
    Kind kind = Kind::PortError;
    if (r.number == comPortOpen) {
      kind = Kind::PortBusy;
      if (gpsdRunning()) {
        reason += QStringLiteral(
            " gpsd läuft und hält den Empfänger vermutlich: gpsd als "
            "Quelle wählen oder gpsd beenden.");
      }
    }
    finish(ExchangeResult::failed(kind, reason));
    return true;
  };
  if (failed(m_comm.setCommPort(request.port))) return;
  if (failed(m_comm.setSettings(request.settings))) return;
  m_comm.setInputLen(0);
  m_comm.setInputMode(0);
  m_comm.setHandshaking(0);
  if (failed(m_comm.setPortOpen(true))) return;
  m_device = m_comm.device();

  // The rate is read up to the first comma and rounded like a 32-bit integer.
  const auto baud = ToInt32(Val(request.settings));
  QString rateError;
  if (!baud) {
    rateError = QStringLiteral("Überlauf");
  } else if (*baud == 0) {
    rateError = QStringLiteral("Division durch Null");
  } else if (*baud < 0) {
    rateError = QStringLiteral("Ungültiger Prozeduraufruf oder ungültiges Argument");
  }
  if (!rateError.isEmpty()) {
    finish(ExchangeResult::failed(Kind::PortError, rateError));
    return;
  }

  m_clock.start();
  m_boundMs = ExchangeWaitMs(*baud);
  armDeadline(m_boundMs);
  // What arrived while the port was being opened may already be enough.
  takeChunk();
}

void SerialExchange::cancel() {
  if (m_phase == Phase::Idle) return;
  stopWaiting();
  m_finished = nullptr;
}

void SerialExchange::onReadyRead() {
  if (m_phase != Phase::Waiting) return;
  takeChunk();
}

bool SerialExchange::takeChunk() {
  const int waiting = m_comm.inBufferCount();
  if (!m_comm.portOpen()) {
    // Taking in found the device gone; the port is closed already.
    onHangUp();
    return true;
  }
  if (waiting <= kChunkThreshold) return false;
  const QString chunk = m_comm.input();
  // A chunk counts when a sentence of any talker starts in it ("$GP", "$GN", "$BD", ...).
  if (chunk.isEmpty() || !HoldsSentenceStart(chunk)) return false;
  switch (m_scanner.add(chunk)) {
    case SentenceScanner::Step::NoKnownType:
      // Other sentences keep the wait going for a while, never past the first deadline.
      armDeadline(std::min(static_cast<double>(m_clock.elapsed()) + kRearmMs, m_boundMs));
      return false;
    case SentenceScanner::Step::Incomplete: return false;
    case SentenceScanner::Step::Found: break;
  }
  const ExchangeResult result = ExchangeResult::found(m_scanner.sentence(), m_scanner.rawBuffer());
  stopWaiting();
  finish(result);
  return true;
}

void SerialExchange::armDeadline(double atMs) {
  const double left = atMs - static_cast<double>(m_clock.elapsed());
  m_deadline.start(std::max(0, static_cast<int>(std::ceil(left))));
}

void SerialExchange::onDeadline() {
  if (m_phase != Phase::Waiting) return;
  // A sentence that became whole just at the deadline still counts.
  if (takeChunk()) return;
  if (m_phase != Phase::Waiting) return;
  stopWaiting();
  finish(ExchangeResult::failed(Kind::NoReception, QStringLiteral("Zurzeit kein GPS-Empfang")));
}

void SerialExchange::onHangUp() {
  // A late signal from an earlier hang-up finds the port of a newer exchange open.
  if (m_phase != Phase::Waiting || m_comm.portOpen()) return;
  stopWaiting();
  finish(ExchangeResult::failed(
      Kind::Disconnected, QStringLiteral("Der GPS-Empfänger an %1 wurde getrennt.").arg(m_device)));
}

void SerialExchange::stopWaiting() {
  m_deadline.stop();
  if (m_comm.portOpen()) m_comm.setPortOpen(false);
  m_phase = Phase::Idle;
}

void SerialExchange::finish(const ExchangeResult& result) {
  m_phase = Phase::Idle;
  Finished finished = std::move(m_finished);
  m_finished = nullptr;
  if (finished) finished(result);
}

}  // namespace marvento
