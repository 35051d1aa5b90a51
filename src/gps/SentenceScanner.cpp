#include "gps/SentenceScanner.h"

namespace marvento {

SentenceScanner::Step SentenceScanner::add(const QString& chunk) {
  m_received += chunk;
  qsizetype first = -1;
  for (const auto name : {u"$GPGGA", u"$GPRMC", u"$GPGLL"}) {
    const qsizetype pos = m_received.indexOf(QStringView(name));
    if (pos >= 0 && (first < 0 || pos < first)) first = pos;
  }
  if (first < 0) return Step::NoKnownType;
  const qsizetype next = m_received.indexOf(u"$G", first + 1);
  if (next < 0) return Step::Incomplete;
  m_sentence = m_received.mid(first, next - first);
  return Step::Found;
}

QString SentenceScanner::rawBuffer() const {
  return m_received.contains(u"$GPRMC") ? m_received : QString();
}

}  // namespace marvento
