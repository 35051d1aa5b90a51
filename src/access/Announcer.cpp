#include "access/Announcer.h"

#include "access/LiveRegion.h"
#include "access/Spoken.h"

#include <QAction>
#include <QEvent>
#include <QLabel>
#include <QStatusBar>
#include <QTimer>

#include <algorithm>
#include <vector>

namespace marvento {

namespace {

QString insertModeName(bool insert) {
  return insert ? QStringLiteral("Einfügemodus") : QStringLiteral("Überschreibmodus");
}

}  // namespace

Announcer::Announcer(const AnnouncerView& view, QWidget* window)
    : QObject(window), m_view(view), m_live(new LiveRegion(window)) {
  setObjectName(QStringLiteral("Announcer"));
  m_readStatus = new QAction(QStringLiteral("Status &vorlesen"), this);
  m_readStatus->setObjectName(QStringLiteral("mnuStatusVorlesen"));
  m_readStatus->setShortcut(QKeySequence(Qt::Key_F4));
  connect(m_readStatus, &QAction::triggered, this, &Announcer::readStatus);

  // A label has no signal for a new text; it repaints, and that is where it is seen.
  if (m_view.info) m_view.info->installEventFilter(this);
  if (m_view.insertPanel) {
    m_view.insertPanel->setAccessibleName(insertModeName(m_view.insertPanel->isEnabled()));
    m_view.insertPanel->installEventFilter(this);
  }
  if (m_view.statusBar) {
    connect(m_view.statusBar, &QStatusBar::messageChanged, m_live, &LiveRegion::say);
  }
}

void Announcer::computed(const StationPair& pair) {
  // F3 shows its answer in a message box, which the reader reads by itself.
  if (pair.reverse) return;
  m_fromFix = false;
  if (m_pending) return;
  m_pending = true;
  QTimer::singleShot(0, this, &Announcer::sayResult);
}

void Announcer::fixTaken() {
  m_fromFix = true;
}

void Announcer::sayResult() {
  m_pending = false;
  const QString distance = m_view.distance ? m_view.distance->text() : QString();
  const QString bearing = m_view.bearing ? m_view.bearing->text() : QString();
  // The result captions carry their value in their name, so that moving to them tells it.
  if (m_view.distance) {
    m_view.distance->setAccessibleName(
        (QStringLiteral("Entfernung ") + distance.trimmed()).trimmed());
  }
  if (m_view.bearing) {
    m_view.bearing->setAccessibleName((QStringLiteral("Richtung ") + bearing.trimmed()).trimmed());
  }
  const QString result = SpokenResult(distance, bearing);
  const bool repeat = result == m_lastResult;
  const bool fromFix = m_fromFix;
  m_fromFix = false;
  m_lastResult = result;
  if (result.isEmpty() || (fromFix && repeat)) return;
  m_live->say(result);
}

void Announcer::infoShown() {
  const QString text = m_view.info->text().simplified();
  if (text == m_lastInfo) return;
  m_lastInfo = text;
  m_live->say(text);
}

QString Announcer::statusText() const {
  QStringList parts;
  if (m_view.statusBar) {
    parts << m_view.statusBar->currentMessage();
    std::vector<QLabel*> panels;
    for (QLabel* panel : m_view.statusBar->findChildren<QLabel*>(Qt::FindDirectChildrenOnly)) {
      if (panel->isVisibleTo(m_view.statusBar)) panels.push_back(panel);
    }
    std::sort(panels.begin(), panels.end(), [](QLabel* a, QLabel* b) { return a->x() < b->x(); });
    for (QLabel* panel : panels) {
      const QString named = panel->accessibleName();
      parts << (named.isEmpty() ? SpokenPanel(panel->text(), panel->toolTip()) : named);
    }
  }
  for (QLabel* line : {m_view.info, m_view.course}) {
    if (line) parts << line->text();
  }
  return SpokenSequence(parts);
}

void Announcer::readStatus() {
  m_live->say(statusText());
}

bool Announcer::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_view.info && event->type() == QEvent::Paint) {
    infoShown();
  } else if (watched == m_view.insertPanel && event->type() == QEvent::EnabledChange) {
    const QString mode = insertModeName(m_view.insertPanel->isEnabled());
    m_view.insertPanel->setAccessibleName(mode);
    m_live->say(mode);
  }
  return false;
}

}  // namespace marvento
