#pragma once

#include "platform/Clock.h"

#include <QList>

namespace marvento::test {

// A clock that tests set and read; setting the time of day changes only this object.
class FakeClock final : public Clock {
 public:
  explicit FakeClock(QDateTime now = QDateTime(QDate(2026, 11, 18), QTime(14, 22, 10)))
      : m_now(std::move(now)) {}

  QDateTime now() const override { return m_now; }
  bool setTimeOfDay(QTime time) override {
    m_sets.push_back(time);
    if (m_refuse) return false;
    m_now.setTime(time);
    return true;
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
