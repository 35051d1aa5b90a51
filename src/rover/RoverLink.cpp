#include "rover/RoverLink.h"

#include "platform/MsgBox.h"
#include "rover/RoverSpeaker.h"
#include "rover/Spelling.h"
#include "station/StationLinks.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QStandardPaths>
#include <QStatusBar>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <vector>

namespace marvento {

namespace {

constexpr double kMetresPerSecondPerKnot = 1852.0 / 3600.0;
// Below this the rover stands: the nearest edge is shown instead of the one ahead.
constexpr double kMovingMs = 0.7;
// Two fixes closer than this give no course of their own.
constexpr double kCourseBaseM = 5.0;

QString ageText(qint64 ms) {
  const qint64 s = ms / 1000;
  return QStringLiteral("%1:%2").arg(s / 60).arg(s % 60, 2, 10, QChar(u'0'));
}

}  // namespace

RoverLink::RoverLink(const RoverView& view, RoverHooks hooks, QObject* parent)
    : QObject(parent), m_view(view), m_hooks(std::move(hooks)) {
  setObjectName(QStringLiteral("rover"));
  // The speech service is opened and fed in a thread of its own: opening it lists every voice
  // it has, which takes seconds, and the window must not stand still meanwhile.
  m_speechThread = new QThread(this);
  m_speechThread->setObjectName(QStringLiteral("speech"));
  m_speaker = new RoverSpeaker;
  m_speaker->moveToThread(m_speechThread);
  connect(m_speechThread, &QThread::finished, m_speaker, &QObject::deleteLater);
  m_speechThread->start();
  connect(m_speaker, &RoverSpeaker::unavailable, this, [this](const QString& reason) {
    if (m_toldUnavailable || !m_view.lbInfo) return;
    m_toldUnavailable = true;
    m_view.lbInfo->setText(reason);
  });
  if (m_view.locatorLabel) m_locatorCaption = m_view.locatorLabel->text();
  m_clock.start();
  m_watch = new QTimer(this);
  m_watch->setObjectName(QStringLiteral("roverWatch"));
  m_watch->setInterval(1000);
  connect(m_watch, &QTimer::timeout, this, &RoverLink::checkReception);
  m_watch->start();
  apply(m_settings);
}

RoverLink::~RoverLink() {
  m_speechThread->quit();
  // A speech service that hangs (or is still listing its voices) must not hold up the end of
  // the window: its thread is let go, kept where it can still be found, and ends with the
  // process. Destroying a running thread would abort the program.
  if (!m_speechThread->wait(5000)) {
    static std::vector<QThread*> letGo;
    m_speechThread->setParent(nullptr);
    letGo.push_back(m_speechThread);
  }
}

void RoverLink::say(const QString& text) {
  QMetaObject::invokeMethod(
      m_speaker, [speaker = m_speaker, text] { speaker->say(text); }, Qt::QueuedConnection);
}

void RoverLink::apply(const RoverSettings& settings) {
  m_settings = settings;
  // Reception may have been switched off and on: the next fix starts anew.
  m_events = CrossingFilter(settings.level, settings.marginM);
  m_links = CrossingFilter(SquareLevel::Six, settings.marginM);
  m_approach.reset();
  m_lastPosition.reset();
  m_lost = false;
  m_sinceFix.invalidate();
  showAge(std::nullopt);
  if (m_view.lbFeldrand) m_view.lbFeldrand->clear();
  emit boundaryAhead(std::nullopt);
}

void RoverLink::speak(const QString& text) {
  if (m_settings.announce) say(text);
}

void RoverLink::takeFix(const GpsFix& fix) {
  const QDateTime utc = FixDateTime(fix.utc, QDateTime::currentDateTimeUtc());
  m_track.add({fix.position, utc, fix.heightMetres});
  m_sinceFix.start();
  showAge(std::nullopt);
  if (m_lost) {
    m_lost = false;
    speak(QStringLiteral("GPS-Empfang wieder da."));
  }

  // The station programs learn the locator only while its square is settled: a fix that has
  // strayed across a line, but not the margin, leaves them as they were.
  m_links.next(fix.position);
  if (m_hooks.tellLocator && m_view.tbMyLoc &&
      CellAt(fix.position, SquareLevel::Six) == m_links.square()) {
    m_hooks.tellLocator(m_view.tbMyLoc->text());
  }

  const CrossingFilter::Step step = m_events.next(fix.position);
  if (step.crossed) {
    const QString entered = CellLocator(step.to);
    // Every square passed is a place of the track, whatever else the log's rules would skip.
    if (m_hooks.writeLog) m_hooks.writeLog();
    if (m_view.statusBar)
      m_view.statusBar->showMessage(QStringLiteral("Neues Feld: ") + entered, 5000);
    Beep();
    m_track.mark({fix.position, utc, entered});
    m_approach.reset();
    speak(QStringLiteral("Neues Feld: ") + SpellLocator(entered, m_settings.spelling));
    emit squareEntered(entered);
  }
  showBoundary(fix);
}

void RoverLink::showBoundary(const GpsFix& fix) {
  const qint64 now = m_clock.elapsed();
  std::optional<double> speedMs;
  if (fix.speedKnots) speedMs = *fix.speedKnots * kMetresPerSecondPerKnot;
  std::optional<double> course;
  if (m_lastPosition) {
    const double moved = DistanceBetween(*m_lastPosition, fix.position);
    if (!speedMs && now > m_lastFixMs) speedMs = moved / ((now - m_lastFixMs) / 1000.0);
    if (moved >= kCourseBaseM) course = CourseBetween(*m_lastPosition, fix.position);
  }
  if (fix.courseDegrees && speedMs && *speedMs >= kMovingMs) course = *fix.courseDegrees;
  m_lastPosition = fix.position;
  m_lastFixMs = now;

  const bool moving = course && (!speedMs || *speedMs >= kMovingMs);
  const std::optional<BoundaryAhead> ahead =
      moving ? BoundaryAlong(fix.position, *course, m_settings.level)
             : NearestBoundary(fix.position, m_settings.level);
  if (!ahead) {
    if (m_view.lbFeldrand) m_view.lbFeldrand->clear();
    emit boundaryAhead(std::nullopt);
    return;
  }
  if (m_view.lbFeldrand) m_view.lbFeldrand->setText(BoundaryLine(*ahead, speedMs, moving));
  emit boundaryAhead(ahead->edge);
  if (!moving) return;
  if (const auto mark = m_approach.next(ahead->next, ahead->distanceM)) {
    const QString where = *mark >= ApproachWatch::kFarM ? QStringLiteral("In einem Kilometer")
                                                        : QStringLiteral("In 200 Metern");
    speak(where + QStringLiteral(" Feldgrenze, dahinter ") +
          SpellLocator(CellLocator(ahead->next), m_settings.spelling));
  }
}

void RoverLink::receptionOff() {
  lost(QStringLiteral("GPS-Empfang aufgegeben"));
  m_events.reset();
  m_links.reset();
  m_lastPosition.reset();
}

void RoverLink::lost(const QString& why) {
  m_track.breakSegment();
  m_approach.reset();
  if (m_view.lbFeldrand) m_view.lbFeldrand->setText(why + QStringLiteral(" – Position veraltet"));
  emit boundaryAhead(std::nullopt);
  if (m_lost) return;
  m_lost = true;
  speak(QStringLiteral("GPS-Empfang verloren."));
}

void RoverLink::checkReception() {
  if (!m_hooks.receptionOn || !m_hooks.receptionOn()) {
    m_sinceFix.invalidate();
    showAge(std::nullopt);
    return;
  }
  // Reception just seen on counts from now, so a start without a fix is noticed too.
  if (!m_sinceFix.isValid()) m_sinceFix.start();
  const qint64 interval = std::max(1000, m_hooks.pollIntervalMs ? m_hooks.pollIntervalMs() : 1000);
  const qint64 age = m_sinceFix.elapsed();
  showAge(age > 2 * interval && m_lastPosition ? std::optional<qint64>(age) : std::nullopt);
  if (age > 3 * interval) {
    const QString why = QStringLiteral("Kein GPS-Empfang seit %1 min").arg(ageText(age));
    if (m_view.lbFeldrand) m_view.lbFeldrand->setText(why);
    if (!m_lost) lost(why);
  }
}

void RoverLink::showAge(std::optional<qint64> ageMs) {
  if (!m_view.locatorLabel) return;
  const QString caption = ageMs
                              ? m_locatorCaption + QStringLiteral(" (%1 alt)").arg(ageText(*ageMs))
                              : m_locatorCaption;
  if (m_view.locatorLabel->text() == caption) return;
  m_view.locatorLabel->setText(caption);
  // The age may need more room than the caption alone; the label widens into the gap after it.
  if (m_locatorWidth == 0) m_locatorWidth = m_view.locatorLabel->width();
  m_view.locatorLabel->resize(std::max(m_locatorWidth, m_view.locatorLabel->sizeHint().width()),
                              m_view.locatorLabel->height());
}

void RoverLink::announce() {
  QString text;
  const QString locator = m_view.tbMyLoc ? m_view.tbMyLoc->text().trimmed().left(6) : QString();
  text = locator.isEmpty() ? QStringLiteral("Kein eigener Locator.")
                           : QStringLiteral("Standort ") +
                                 SpellLocator(locator, m_settings.spelling) + QStringLiteral(".");
  const QString distance =
      m_view.lblEntfernung ? m_view.lblEntfernung->text().trimmed() : QString();
  const auto bearing =
      m_view.lblRichtung ? BearingOfCaption(m_view.lblRichtung->text()) : std::nullopt;
  if (!distance.isEmpty() && bearing) {
    // A voice reads "km" letter by letter.
    QString spoken = distance;
    spoken.replace(QStringLiteral("km"), QStringLiteral("Kilometer"));
    text += QStringLiteral(" Entfernung %1, Richtung %2 Grad.")
                .arg(spoken)
                .arg(std::lround(*bearing) % 360);
  }
  // Asked for by key: spoken also with the announcements off.
  say(text);
}

QString RoverLink::saveTrackTo(const QString& path) {
  return WriteGpx(path, m_track);
}

void RoverLink::saveTrack() {
  if (m_track.isEmpty()) {
    MsgBox(QStringLiteral("Noch keine Strecke: seit dem Start kam keine GPS-Position."),
           vbInformation, QStringLiteral("Strecke speichern"));
    return;
  }
  QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
  if (folder.isEmpty() || !QDir(folder).exists()) folder = QDir::homePath();
  const QString suggested = QDir(folder).filePath(
      QStringLiteral("Strecke-%1.gpx")
          .arg(QDateTime::currentDateTimeUtc().toString(QStringLiteral("yyyy-MM-dd-HHmm"))));
  const QString path =
      QFileDialog::getSaveFileName(m_view.window, QStringLiteral("Strecke speichern"), suggested,
                                   QStringLiteral("GPX-Dateien (*.gpx)"));
  if (path.isEmpty()) return;
  const QString error = saveTrackTo(path);
  if (!error.isEmpty()) {
    MsgBox(error + QStringLiteral("\n") + QDir::toNativeSeparators(path), vbExclamation,
           QStringLiteral("Strecke speichern"));
  }
}

}  // namespace marvento
