#include "gps/SentenceScanner.h"

#include "gps/NmeaSentences.h"

namespace marvento {

SentenceScanner::Step SentenceScanner::add(QStringView chunk) {
  m_received += chunk;
  const SentenceSearch found = FindKnownSentence(m_received);
  if (found.result != SentenceSearch::Result::Found && m_received.size() > kMaxReceived) {
    // A copy of the tail, so that the memory of a long text goes back at once.
    m_received = QStringView(m_received).right(kMaxReceived).toString();
    // The sentence begun may have been cut off at its start.
    return FindKnownSentence(m_received).result == SentenceSearch::Result::Incomplete
               ? Step::Incomplete
               : Step::NoKnownType;
  }
  switch (found.result) {
    case SentenceSearch::Result::None: return Step::NoKnownType;
    case SentenceSearch::Result::Incomplete: return Step::Incomplete;
    case SentenceSearch::Result::Found: break;
  }
  m_sentence = m_received.mid(found.start, found.length);
  return Step::Found;
}

QString SentenceScanner::rawBuffer() const {
  const bool holdsRmc =
      FindKnownSentence(m_received, SentenceKind::Rmc).result != SentenceSearch::Result::None;
  return holdsRmc ? m_received : QString();
}

bool HoldsSentenceStart(QStringView chunk) {
  for (qsizetype at = chunk.indexOf(u'$'); at >= 0 && at + 2 < chunk.size();
       at = chunk.indexOf(u'$', at + 1)) {
    const QChar first = chunk[at + 1];
    const QChar second = chunk[at + 2];
    if (first >= u'A' && first <= u'Z' && second >= u'A' && second <= u'Z') return true;
  }
  return false;
}

}  // namespace marvento
