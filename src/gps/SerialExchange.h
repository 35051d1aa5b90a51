#pragma once

#include "gps/GpsExchange.h"
#include "gps/SentenceScanner.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace marvento {

class CommControl;

// How long an exchange waits, in milliseconds: 0.004 / sqrt(baud) days (4.99 s at 4800).
double ExchangeWaitMs(double baud);

// How long an exchange may run on after a chunk with "$GP" but no known sentence name:
// 0.00001 days.
inline constexpr double kRearmMs = 864.0;

// Chunks are taken only once more than this many characters wait.
inline constexpr int kChunkThreshold = 210;

// The exchange over the serial control MSComm1: asks first if the port is the one the scan
// found busy, opens the port, takes chunks of more than 210 characters as they arrive until
// a whole sentence of a known type stands in them, and closes the port. The wait ends at
// the deadline (a sentence that is whole by then is still taken) or at once when the
// device hangs up.
class SerialExchange final : public QObject, public GpsExchange {
  Q_OBJECT

 public:
  explicit SerialExchange(CommControl& MSComm1, QObject* parent = nullptr);
  ~SerialExchange() override;

  void start(const ExchangeRequest& request, Finished finished) override;
  void cancel() override;
  bool running() const override { return m_phase != Phase::Idle; }

 private:
  enum class Phase { Idle, Asking, Waiting };

  void onReadyRead();
  void onDeadline();
  void onHangUp();
  // Takes a chunk if enough waits; true when the exchange ended on it.
  bool takeChunk();
  void armDeadline(double fromNowMs);
  void finish(const ExchangeResult& result);
  void stopWaiting();

  CommControl& m_comm;
  Phase m_phase = Phase::Idle;
  Finished m_finished;
  SentenceScanner m_scanner;
  QTimer m_deadline;
  QElapsedTimer m_clock;
  double m_boundMs = 0.0;  // the first deadline, which later ones never pass
  QString m_device;
};

}  // namespace marvento
