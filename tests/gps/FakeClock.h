#pragma once

#include "platform/Clock.h"

#include <QList>

#include <cerrno>

namespace marvento::test {

// A clock that tests set and read; setting the time of day changes only this object, or is
// refused as for a user without the right to set the clock.
class FakeClock final : public Clock {
 public:
  explicit FakeClock(QDateTime now = QDateTime(QDate(2026, 11, 18), QTime(14, 22, 10)))
      : m_now(std::move(now)) {}

  QDateTime now() const override { return m_now; }
  int setTimeOfDay(QTime time) override {
    m_sets.push_back(time);
    if (m_refuse) return EPERM;
    m_now.setTime(time);
    return 0;
  }

  void set(QDateTime now) { m_now = std::move(now); }
  void refuse(bool refuse) { m_refuse = refuse; }
  const QList<QTime>& sets() const { return m_sets; }

 private:
  QDateTime m_now;
  bool m_refuse = false;
  QList<QTime> m_sets;
};

}  // namespace marvento::test
