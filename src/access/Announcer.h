#pragma once

#include "distance/StationPair.h"

#include <QObject>
#include <QPointer>

class QAction;
class QLabel;
class QStatusBar;
class QWidget;

namespace marvento {

class LiveRegion;

// The parts of a window whose changes a screen reader is told of.
struct AnnouncerView {
  QLabel* distance = nullptr;  // result captions
  QLabel* bearing = nullptr;
  QLabel* info = nullptr;         // messages of reception, crossings, the rotor
  QLabel* course = nullptr;       // speed and course: read on request only, it changes at each fix
  QLabel* insertPanel = nullptr;  // enabled means insert mode
  QStatusBar* statusBar = nullptr;
};

// Tells a screen reader what changes in a window without a word: the result of each
// computation, each new info line and status bar message, the insert mode; and reads the
// status bar and info lines on request (its action, F4). Computations after a GPS fix are
// said only when their result differs from the one said last, or the reader would talk
// at every fix.
class Announcer : public QObject {
  Q_OBJECT

 public:
  Announcer(const AnnouncerView& view, QWidget* window);

  // For the window's menu: "Status vorlesen", F4.
  QAction* readStatusAction() const { return m_readStatus; }

  // The window computed (or cleared, or turned the bearing): say the result, once the
  // window has finished reporting this run.
  void computed(const StationPair& pair);
  // The computation just reported came from a GPS fix.
  void fixTaken();
  void readStatus();
  // What readStatus says.
  QString statusText() const;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void sayResult();
  void infoShown();

  AnnouncerView m_view;
  LiveRegion* m_live = nullptr;
  QAction* m_readStatus = nullptr;
  QString m_lastResult;
  QString m_lastInfo;
  bool m_pending = false;
  bool m_fromFix = false;
};

}  // namespace marvento
