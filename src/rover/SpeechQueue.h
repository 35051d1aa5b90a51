#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace marvento {

// The order of spoken messages. A message being spoken is never cut off: the next ones wait.
// At most `capacity` wait; when another comes, the oldest waiting one is dropped, since on the
// road the newest news counts. A text that already waits is not queued twice.
class SpeechQueue {
 public:
  explicit SpeechQueue(int capacity = 3) : m_capacity(capacity) {}

  // Takes a message; gives it back when it is to be spoken at once (nothing is being spoken).
  std::optional<QString> add(const QString& text);
  // The message being spoken has ended; gives the next one to speak, if any.
  std::optional<QString> finished();
  // Drops everything, as when the speech service fails.
  void clear();

  bool speaking() const { return m_speaking; }
  const QStringList& waiting() const { return m_waiting; }

 private:
  int m_capacity;
  bool m_speaking = false;
  QStringList m_waiting;
};

}  // namespace marvento
