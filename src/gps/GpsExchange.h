#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace marvento {

// How one exchange with the position source ended.
struct ExchangeResult {
  enum class Kind {
    Sentence,      // a whole sentence of a known type arrived
    NoReception,   // the wait ran out: "Zurzeit kein GPS-Empfang"
    Disconnected,  // the receiver went away during the wait
    PortBusy,      // another program holds the device
    PortRefused,   // the user chose not to use the port the scan found busy
    PortError,     // the port could not be opened or set up
  };

  Kind kind = Kind::NoReception;
  QString sentence;   // Sentence: from its "$" up to the next "$G", line end included
  QString rawBuffer;  // Sentence: the whole receive text if it holds an RMC, else empty
  QString reason;     // every other kind: what the user is told, in German, without a mark

  bool hasSentence() const { return kind == Kind::Sentence; }
  // The one-text form: the sentence, or "!" and the reason.
  QString text() const { return hasSentence() ? sentence : QStringLiteral("!") + reason; }

  static ExchangeResult found(QString sentence, QString rawBuffer);
  static ExchangeResult failed(Kind kind, QString reason);
};

// What a poll asks of the source. A source that has no port of its own ignores the port.
struct ExchangeRequest {
  std::int16_t port = 0;
  QString settings;           // "4800,N,8,1" and the like
  std::int16_t busyPort = 0;  // the port the last scan found busy: asked about first
  QString address;            // gpsd's "host:port" when gpsd is the source
};

// The port name that chooses gpsd as the source ("Com=gpsd" in the settings), in any case.
inline const QString kGpsdSource = QStringLiteral("gpsd");
inline bool IsGpsdSource(const QString& comPort) {
  return comPort.trimmed().compare(kGpsdSource, Qt::CaseInsensitive) == 0;
}
// Where gpsd listens unless the settings say otherwise.
inline const QString kDefaultGpsdAddress = QStringLiteral("localhost:2947");

// One exchange with a position source, driven by the event loop: start() returns at once
// (or after a modal question), and finished is called exactly once unless cancel() comes
// first. Nothing waits in a loop, so the window goes on painting.
class GpsExchange {
 public:
  using Finished = std::function<void(const ExchangeResult&)>;

  virtual ~GpsExchange() = default;

  virtual void start(const ExchangeRequest& request, Finished finished) = 0;
  // Ends a running exchange without calling finished, the port closed.
  virtual void cancel() = 0;
  virtual bool running() const = 0;
};

}  // namespace marvento
