#pragma once

#include "distance/Compute.h"

#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;

namespace marvento {

// The controls of the main window that the compute command reads and writes. All must be
// set; Combo1's current text is the earth radius in kilometres.
struct ComputeFields {
  QLineEdit* tbMyLoc = nullptr;
  QLineEdit* tbFremdLoc = nullptr;
  QLineEdit* tbMyLg = nullptr;
  QLineEdit* tbMyBr = nullptr;
  QLineEdit* tbFremdLg = nullptr;
  QLineEdit* tbFremdBr = nullptr;
  QLabel* lblEntfernung = nullptr;
  QLabel* lblRichtung = nullptr;
  QComboBox* Combo1 = nullptr;
};

// The compute command of the main window: reads the fields, lets DecideCompute decide and
// shows what it decided, refusals included. One instance lives as long as the window, since
// its memory decides the next run.
class ComputeCommand {
 public:
  // preferences is asked at the start of each run; writeGpsLog is called when a run decides
  // on a log line.
  ComputeCommand(const ComputeFields& fields, std::function<ComputePreferences()> preferences,
                 std::function<void()> writeGpsLog);

  void Compute();

  const ComputeMemory& memory() const { return m_memory; }

 private:
  QLineEdit* field(ComputeField f) const;

  ComputeFields m_fields;
  std::function<ComputePreferences()> m_preferences;
  std::function<void()> m_writeGpsLog;
  ComputeMemory m_memory;
};

}  // namespace marvento
