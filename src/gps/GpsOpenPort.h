#pragma once

#include <QString>

#include <cstdint>

class QLabel;

namespace marvento {

class CommControl;
struct Module1;

// Collects the accepted chunks of one exchange and finds the first whole sentence of a known
// type ("$GPGGA", "$GPRMC", "$GPGLL") in them. A sentence is whole once the "$G" of its
// successor has arrived; it runs from its "$" up to that "$G", checksum and line end
// included. All positions are looked up anew over the whole text, so how the stream fell
// into chunks does not matter.
class SentenceScanner {
 public:
  enum class Step {
    NoKnownType,  // none of the three names has arrived yet
    Incomplete,   // a known sentence has begun, its successor has not
    Found,
  };

  Step add(const QString& chunk);
  const QString& received() const { return m_received; }
  // Valid after Found.
  const QString& sentence() const { return m_sentence; }
  // The whole receive text if it holds "$GPRMC", else empty. Valid after Found.
  QString rawBuffer() const;

 private:
  QString m_received;
  QString m_sentence;
};

// How long an exchange waits, in milliseconds: 0.004 / sqrt(baud) days (4.99 s at 4800).
double ExchangeWaitMs(double baud);

// How long an exchange may run on after a chunk with "$GP" but no known sentence name:
// 0.00001 days.
inline constexpr double kRearmMs = 864.0;

// Chunks are taken only once more than this many characters wait.
inline constexpr int kChunkThreshold = 210;

// One serial exchange on MSComm1: open the port, read until a whole sentence of a known
// type stands in the receive text or the wait runs out, close the port. Returns the
// sentence, a failure text beginning with "!" (reason without the mark:
// "Zur Zeit kein GPS-Empfang", "Falsche Daten empfangen", "Bitte andere Schnittstelle
// auswählen", or the serial control's own description) or "Keine gültigen GPS-Daten".
// rawBuffer is set as SentenceScanner::rawBuffer on success and emptied otherwise.
// Clears lbInfo first; asks before using the port that the port check found busy.
// The wait blocks on the port and handles no events.
QString GpsOpenPort(CommControl& MSComm1, const Module1& state, QLabel* lbInfo, std::int16_t Port,
                    const QString& Settings, QString& RawBuffer);

}  // namespace marvento
