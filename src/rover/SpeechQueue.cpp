#include "rover/SpeechQueue.h"

namespace marvento {

std::optional<QString> SpeechQueue::add(const QString& text) {
  if (text.isEmpty()) return std::nullopt;
  if (!m_speaking) {
    m_speaking = true;
    return text;
  }
  if (m_waiting.contains(text)) return std::nullopt;
  m_waiting << text;
  while (m_waiting.size() > m_capacity) m_waiting.removeFirst();
  return std::nullopt;
}

std::optional<QString> SpeechQueue::finished() {
  if (m_waiting.isEmpty()) {
    m_speaking = false;
    return std::nullopt;
  }
  m_speaking = true;
  return m_waiting.takeFirst();
}

void SpeechQueue::clear() {
  m_speaking = false;
  m_waiting.clear();
}

}  // namespace marvento
