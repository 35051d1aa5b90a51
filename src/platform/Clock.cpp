#include "platform/Clock.h"

#include <cerrno>
#include <ctime>

namespace marvento {

namespace {

class RealClock final : public Clock {
 public:
  QDateTime now() const override { return QDateTime::currentDateTime(); }

  int setTimeOfDay(QTime time) override {
    if (!time.isValid()) return EINVAL;
    const QDateTime target(QDate::currentDate(), time);
    const qint64 ms = target.toMSecsSinceEpoch();
    timespec ts{};
    ts.tv_sec = static_cast<time_t>(ms / 1000);
    ts.tv_nsec = static_cast<long>((ms % 1000) * 1000000);
    return clock_settime(CLOCK_REALTIME, &ts) == 0 ? 0 : errno;
  }
};

}  // namespace

Clock& SystemClock() {
  static RealClock clock;
  return clock;
}

}  // namespace marvento
