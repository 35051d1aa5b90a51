#include "rover/RoverSpeaker.h"

#include "rover/Spelling.h"

#include <QLocale>
#include <QTextToSpeech>
#include <QTimer>

namespace marvento {

RoverSpeaker::RoverSpeaker(QObject* parent) : QObject(parent) {}

RoverSpeaker::~RoverSpeaker() = default;

bool RoverSpeaker::open() {
  if (m_speech) return true;
  if (m_failed) return false;
  const QStringList engines = QTextToSpeech::availableEngines();
  if (engines.isEmpty()) {
    fail(QStringLiteral("Keine Sprachausgabe: Qt findet keinen Sprachdienst (speech-dispatcher)."));
    return false;
  }
  const QString engine =
      engines.contains(QStringLiteral("speechd")) ? QStringLiteral("speechd") : engines.first();
  m_speech = new QTextToSpeech(engine, this);
  if (m_speech->state() == QTextToSpeech::Error) {
    fail(QStringLiteral("Keine Sprachausgabe: der Sprachdienst antwortet nicht (%1).")
             .arg(m_speech->errorString()));
    return false;
  }
  // A German voice where the service has one; the texts are German.
  const QLocale german(QLocale::German, QLocale::Germany);
  for (const QLocale& locale : m_speech->availableLocales()) {
    if (locale.language() == QLocale::German) {
      m_speech->setLocale(locale == german ? german : locale);
      m_german = true;
      break;
    }
  }
  connect(m_speech, &QTextToSpeech::stateChanged, this,
          [this](QTextToSpeech::State state) { onState(int(state)); });
  return true;
}

void RoverSpeaker::say(const QString& text) {
  if (!open()) return;
  if (const auto now = m_queue.add(text)) speakNow(*now);
}

void RoverSpeaker::speakNow(const QString& text) {
  const quint64 message = ++m_handed;
  m_speech->say(m_german ? ForGermanVoice(text) : text);
  emit speaking(text);
  // A service that never reports the message as ended (a sound device that hangs) must not
  // hold the queue for ever; no announcement takes this long.
  QTimer::singleShot(kLongestMessage, this, [this, message] {
    if (message == m_handed && m_queue.speaking()) onState(int(QTextToSpeech::Ready));
  });
}

void RoverSpeaker::onState(int state) {
  if (state == QTextToSpeech::Speaking) return;
  if (state == QTextToSpeech::Error) {
    fail(QStringLiteral("Keine Sprachausgabe: %1").arg(m_speech->errorString()));
    return;
  }
  if (state != QTextToSpeech::Ready || !m_queue.speaking()) return;
  if (const auto next = m_queue.finished()) speakNow(*next);
}

void RoverSpeaker::fail(const QString& reason) {
  m_queue.clear();
  if (m_failed) return;
  m_failed = true;
  emit unavailable(reason);
}

}  // namespace marvento
