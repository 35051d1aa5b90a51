#include "gps/GpsPoll.h"

#include "gps/EntryLock.h"
#include "gps/GpsTime.h"
#include "gps/GpsdExchange.h"
#include "gps/SentenceDecoding.h"
#include "gps/SerialExchange.h"
#include "platform/CommControl.h"
#include "platform/MsgBox.h"

#include <QLabel>
#include <QLineEdit>
#include <QTimer>

#include <algorithm>
#include <limits>

namespace marvento {

namespace {

// Empty once blanks at both ends are cut off (blanks only, not tabs).
bool onlyBlanks(const QString& text) {
  return std::all_of(text.begin(), text.end(), [](QChar c) { return c == u' '; });
}

}  // namespace

GpsPoll::GpsPoll(const GpsPollView& view, GpsPollHooks hooks, Clock& clock)
    : m_view(view), m_hooks(std::move(hooks)), m_clock(clock) {
  if (m_view.MSComm1) m_exchange = std::make_unique<SerialExchange>(*m_view.MSComm1);
}

GpsPoll::~GpsPoll() {
  if (m_exchange) m_exchange->cancel();
  if (m_gpsd) m_gpsd->cancel();
}

GpsPollSettings GpsPoll::settings() const {
  return m_hooks.Settings ? m_hooks.Settings() : GpsPollSettings{};
}

GpsExchange* GpsPoll::current() {
  if (!IsGpsdSource(settings().comPort)) return m_exchange.get();
  if (!m_gpsd) m_gpsd = std::make_unique<GpsdExchange>();
  return m_gpsd.get();
}

void GpsPoll::closeGpsd() {
  if (m_gpsd) m_gpsd->cancel();
}

void GpsPoll::setExchange(std::unique_ptr<GpsExchange> exchange) {
  if (m_exchange) m_exchange->cancel();
  m_exchange = std::move(exchange);
}

void GpsPoll::poll(std::int16_t port, const QString& settings, std::function<void()> then) {
  if (m_polling) return;
  m_polling = true;
  m_then = std::move(then);
  if (m_view.lbInfo) m_view.lbInfo->clear();
  m_running = current();
  if (!m_running) {
    finished(ExchangeResult::failed(ExchangeResult::Kind::PortError,
                                    QStringLiteral("Keine Schnittstelle")));
    return;
  }
  const GpsPollSettings now = this->settings();
  const QString address = now.gpsdAddress.isEmpty() ? kDefaultGpsdAddress : now.gpsdAddress;
  m_running->start({port, settings, now.busyPort, address},
                   [this](const ExchangeResult& result) { finished(result); });
}

void GpsPoll::cancel() {
  if (!m_polling) return;
  if (m_running) m_running->cancel();
  m_then = nullptr;
  end();
}

void GpsPoll::finished(const ExchangeResult& result) {
  QString kursText;
  if (result.hasSentence()) {
    data(result.sentence, result.rawBuffer, kursText);
  } else {
    failure(result.reason);
  }

  if (m_view.lbKurs) {
    const QString panelTime = m_view.panel2 ? m_view.panel2->text() : QString();
    if (const auto line = CourseLine(kursText, panelTime)) m_view.lbKurs->setText(*line);
  }
  std::function<void()> then = std::move(m_then);
  m_then = nullptr;
  end();
  if (then) then();
}

void GpsPoll::end() {
  if (m_hooks.UnlockEntry) m_hooks.UnlockEntry();
  ResetMousePointer();
  m_polling = false;
}

void GpsPoll::failure(QString reason) {
  const int maxTries = m_dataSeen ? 6 : 3;
  // A count that no longer fits is a dropped step, as everywhere in the poll.
  if (m_gpsTries < std::numeric_limits<std::int16_t>::max()) ++m_gpsTries;
  if (m_view.lbInfo) {
    m_view.lbInfo->setText(QString::number(m_gpsTries) + QStringLiteral(". Versuch/") +
                           QString::number(maxTries) + QStringLiteral(" : ") + reason);
  }
  if (m_gpsTries < maxTries) return;

  if (m_view.lbInfo) m_view.lbInfo->clear();
  ResetMousePointer();
  if (m_view.Timer1 && m_view.Timer1->isActive()) m_view.Timer1->stop();
  if (m_hooks.ReceptionOff) m_hooks.ReceptionOff();
  MsgBox(QStringLiteral("GPS-Datenübertragungsfehler:\n") + reason +
             QStringLiteral("\nGPS-Empfang wurde deaktiviert !"),
         vbExclamation, QStringLiteral(" Fehler"));
  if (m_view.MSComm1 && m_view.MSComm1->portOpen()) m_view.MSComm1->setPortOpen(false);
  closeGpsd();
  m_dataSeen = false;
}

void GpsPoll::data(const QString& sentence, const QString& rawBuffer, QString& kursText) {
  m_gpsTries = 0;
  m_dataSeen = true;
  const GpsPollSettings now = settings();

  const DecodedSentence d = DecodeSentence(sentence, rawBuffer);
  if (d.heightSample && now.receptionOn && m_hooks.HeightSample) {
    m_hooks.HeightSample(d.heightSample->alt, d.heightSample->unit, d.heightSample->sats);
  }
  if (d.info && m_view.lbInfo) m_view.lbInfo->setText(*d.info);
  if (!d.timeAndPosition) {
    kursText = d.kursText;
    return;
  }

  if (d.hasTime()) {
    const GpsTimeStep step = ApplyGpsTime(d.utcText, now.gpsZeit, m_clock);
    if (m_view.panel2) m_view.panel2->setText(step.shown);
    // A desktop user may not set the clock; say so once instead of failing silently.
    if (step.clockError != 0 && !m_clockRefusalTold) {
      m_clockRefusalTold = true;
      if (m_view.lbInfo) m_view.lbInfo->setText(ClockRefusedText(step.clockError));
    }
  }

  if (!d.positionGood) {
    if (m_view.lbInfo) m_view.lbInfo->setText(kBadPositionText);
  } else {
    if (m_view.tbMyLg) m_view.tbMyLg->setText(d.lgText(now.gradDezimal));
    if (m_view.tbMyBr) m_view.tbMyBr->setText(d.brText(now.gradDezimal));
    if (m_view.tbFremdLoc && onlyBlanks(m_view.tbFremdLoc->text())) {
      const Placeholders p = RemotePlaceholders(now.gradDezimal);
      m_view.tbFremdLoc->setText(p.loc);
      if (m_view.tbFremdLg) m_view.tbFremdLg->setText(p.lg);
      if (m_view.tbFremdBr) m_view.tbFremdBr->setText(p.br);
    }
    if (m_hooks.Compute) m_hooks.Compute();
    if (m_hooks.FixTaken) {
      if (const std::optional<GpsFix> fix = d.fix()) m_hooks.FixTaken(*fix);
    }
  }
  kursText = d.kursText;
}

}  // namespace marvento
