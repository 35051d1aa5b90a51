#pragma once

#include <QTimer>

namespace marvento {

// Switches a poll timer on or off. An interval of 0 means the timer never fires (a QTimer
// would fire continuously), and switching on a running timer keeps its countdown.
inline void SetTimerEnabled(QTimer* timer, bool enabled) {
  if (!enabled || timer->interval() <= 0) {
    timer->stop();
  } else if (!timer->isActive()) {
    timer->start();
  }
}

}  // namespace marvento
