#pragma once

#include <QString>

#include <cstdint>
#include <functional>

class QLabel;
class QLineEdit;
class QTimer;

namespace marvento {

class Clock;
class CommControl;
struct Module1;

// The controls of frmMain that a poll reads or writes. panel1 and panel2 are the first two
// panels of sbStatusBar.
struct GpsPollView {
  QLabel* lbInfo = nullptr;
  QLabel* lbKurs = nullptr;
  QLineEdit* tbMyLoc = nullptr;
  QLineEdit* tbMyLg = nullptr;
  QLineEdit* tbMyBr = nullptr;
  QLineEdit* tbFremdLoc = nullptr;
  QLineEdit* tbFremdLg = nullptr;
  QLineEdit* tbFremdBr = nullptr;
  QLabel* panel1 = nullptr;
  QLabel* panel2 = nullptr;
  QTimer* Timer1 = nullptr;
  CommControl* MSComm1 = nullptr;
};

// What a poll hands to other parts of the program.
struct GpsPollHooks {
  std::function<void()> Compute;
  // A height sample from a GGA sentence with a fix: height and unit fields as they stand,
  // satellite count in "#0".
  std::function<void(const QString& alt, const QString& unit, const QString& sats)> HeightSample;
  std::function<void()> UnlockEntry;
};

// One GPS poll after another: fetches a sentence, counts failed tries and switches reception
// off after too many (3, or 6 once data has come), writes a good fix into the own position
// fields and calls Compute, shows time, height, course.
class GpsPoll {
 public:
  GpsPoll(Module1& state, const GpsPollView& view, GpsPollHooks hooks, Clock& clock);

  // One poll on the given port with serial settings such as "4800,N,8,1". The caller has
  // called LockEntry; this ends with UnlockEntry and the normal pointer.
  void poll(std::int16_t port, const QString& settings);

  // True from the start of poll() to its return. A timer tick or a close request that
  // arrives while events are handled inside a poll checks this.
  bool isPolling() const { return m_depth > 0; }

  // Failed polls since data last arrived; not reset when reception is given up.
  std::int16_t GpsTries() const { return m_gpsTries; }

 private:
  void failure(QString reason);
  void data(const QString& sentence, const QString& rawBuffer, QString& kursText);

  Module1& m_state;
  GpsPollView m_view;
  GpsPollHooks m_hooks;
  Clock& m_clock;
  std::int16_t m_gpsTries = 0;
  int m_depth = 0;
};

}  // namespace marvento
