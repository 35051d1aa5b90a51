#pragma once

#include "rover/SpeechQueue.h"

#include <QObject>
#include <QString>

#include <atomic>

class QTextToSpeech;

namespace marvento {

// Speaks through the desktop's speech service (Qt TextToSpeech, speech-dispatcher), one
// message after the other. The service is opened at the first message; when there is none,
// unavailable() comes once and every later message is dropped quietly.
class RoverSpeaker : public QObject {
  Q_OBJECT

 public:
  explicit RoverSpeaker(QObject* parent = nullptr);
  ~RoverSpeaker() override;

  void say(const QString& text);
  // Whether the service failed; nothing more is tried then. Safe from any thread.
  bool failed() const { return m_failed; }

 signals:
  // The German reason why nothing can be spoken; once.
  void unavailable(const QString& reason);
  // A message was handed to the service (as written; a German voice gets ForGermanVoice).
  void speaking(const QString& text);

 private:
  bool open();
  void speakNow(const QString& text);
  void onState(int state);
  void fail(const QString& reason);

  QTextToSpeech* m_speech = nullptr;
  SpeechQueue m_queue;
  std::atomic<bool> m_failed = false;
  bool m_german = false;                         // the service speaks with a German voice
  quint64 m_handed = 0;                          // messages handed to the service so far
  static constexpr int kLongestMessage = 45000;  // ms
};

}  // namespace marvento
