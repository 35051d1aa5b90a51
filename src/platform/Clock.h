#pragma once

#include <QDateTime>
#include <QTime>

namespace marvento {

// The computer's clock: read as local date and time, and the time of day set. Tests hand in
// a clock of their own, so that no test ever changes the real one.
class Clock {
 public:
  virtual ~Clock() = default;

  // Local date and time (Now).
  virtual QDateTime now() const = 0;
  // Sets the local time of day and keeps today's date. 0 when done, else the system's error
  // number (EPERM without the right to set the clock, EINVAL for an invalid time).
  virtual int setTimeOfDay(QTime time) = 0;

  QTime time() const { return now().time(); }
  QDate date() const { return now().date(); }
};

// The real clock. Setting it needs the right to change the system time (CAP_SYS_TIME);
// without it the call does nothing and returns EPERM.
Clock& SystemClock();

}  // namespace marvento
