#pragma once

#include <QString>

namespace marvento {

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

}  // namespace marvento
