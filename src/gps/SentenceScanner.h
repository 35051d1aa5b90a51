#pragma once

#include <QString>
#include <QStringView>

namespace marvento {

// Collects the accepted chunks of one exchange and finds the first whole sentence of a known
// type in them: GGA, RMC or GLL of any talker ("$GPGGA", "$GNRMC", "$BDGLL"). A sentence is
// whole once the "$" of its successor has arrived; it runs from its "$" up to that one,
// checksum and line end included. A whole sentence with a wrong checksum or too few fields
// is passed over as if it had not arrived. All positions are looked up anew over the whole
// text, so how the stream fell into chunks does not matter, as long as the text kept stays
// within kMaxReceived.
class SentenceScanner {
 public:
  // The most characters of receive text kept between chunks: a few kilobytes beyond the
  // longest sentence (NMEA allows 82 characters; some receivers send a few hundred). A port
  // that delivers garbage at full speed would otherwise fill the memory during one exchange;
  // the older part goes, the tail stays, since a sentence still to be completed is there.
  static constexpr qsizetype kLongestSentence = 512;
  static constexpr qsizetype kMaxReceived = kLongestSentence + 4096;

  enum class Step {
    NoKnownType,  // no acceptable sentence of a known type has begun yet
    Incomplete,   // a known sentence has begun, its successor has not
    Found,
  };

  Step add(QStringView chunk);
  const QString& received() const { return m_received; }
  // Valid after Found.
  const QString& sentence() const { return m_sentence; }
  // The whole receive text if it holds an RMC sentence of any talker, whole and intact or
  // not yet ended, else empty. Valid after Found.
  QString rawBuffer() const;

 private:
  QString m_received;
  QString m_sentence;
};

// Whether a chunk holds the start of a sentence of any talker: "$" and two capital letters.
// The exchange keeps only such chunks.
bool HoldsSentenceStart(QStringView chunk);

}  // namespace marvento
