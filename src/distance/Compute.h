#pragma once

#include <QString>

#include <functional>
#include <optional>

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

// What the command remembers from its last run, to tell what the user has changed since.
// Positions are decimal degrees, east and north positive, and empty until a run has worked
// them out: 0 is a place like any other (the equator, the prime meridian).
struct ComputeMemory {
  QString LastFremdLoc;
  QString LastMyLoc;
  QString LastMyLg;
  QString LastMyBr;
  QString LastFremdLg;
  QString LastFremdBr;
  std::optional<double> MyLg;
  std::optional<double> MyBr;
  std::optional<double> FremdLg;
  std::optional<double> FremdBr;
};

// The six entries as the command read them, blanks at both ends removed.
struct ComputeEntries {
  QString FremdLoc;
  QString MyLoc;
  QString MyLg;
  QString MyBr;
  QString FremdLg;
  QString FremdBr;
};

// Which description rules this time, by what changed since the last run:
// A both locators (a coordinate field is empty), B own coordinates, C remote locator,
// D remote coordinates, E own locator, F nothing changed.
enum class Route { A, B, C, D, E, F };
Route PickRoute(const ComputeEntries& entry, const ComputeMemory& memory);

// What the command reads from the preferences at each run.
struct ComputePreferences {
  bool GradDezimal = false;  // coordinates in decimal degrees, else degrees, minutes, seconds
  bool Loc10st = false;      // locators made from coordinates get 10 characters, else 6
  bool logOn = false;        // GPS reception and the log are both on
};

// The compute command of the main window: decides between locator and coordinates on each
// side, fills in the other description, and shows distance and bearing. It reports every
// refusal to the user itself and never fails its caller. One instance lives as long as the
// window, since its memory decides the next run.
class ComputeCommand {
 public:
  // preferences is asked at the start of each run; writeGpsLog is called on the routes that
  // log while its logOn holds.
  ComputeCommand(const ComputeFields& fields, std::function<ComputePreferences()> preferences,
                 std::function<void()> writeGpsLog);

  void Compute();

  const ComputeMemory& memory() const { return m_memory; }

 private:
  // How a step ended: go on, the command ends (the user has been told), or a run-time
  // error for the command's handler.
  struct [[nodiscard]] Step {
    enum Kind { Next, End, Fault };
    Kind kind = Next;
    int error = 0;
    bool goOn() const { return kind == Next; }
  };
  static Step next() { return {}; }
  static Step end() { return {Step::End, 0}; }
  static Step fault(int error) { return {Step::Fault, error}; }

  Step Run();
  Step OwnCoordsToLocator();
  Step RemoteCoordsToLocator();
  Step ResolveMySide();
  Step ResolveFremdSide();
  Step LocatorToFields();
  Step CheckLength();
  Step SolveDistance();
  Step ParseCoordinates();
  Step WriteCoordinates(QLineEdit* lgField, QLineEdit* brField);
  void LogIfOn();
  void HandleError(int error);

  void RememberAll(bool capitals);
  void RememberOwn();
  void RememberRemote();

  ComputeFields m_fields;
  std::function<ComputePreferences()> m_preferences;
  ComputePreferences m_prefs;
  std::function<void()> m_writeGpsLog;
  ComputeMemory m_memory;

  // Working variables of one run.
  ComputeEntries m_entry;
  QString m_WorkLoc;
  double m_WorkLg = 0;
  double m_WorkBr = 0;
  QString m_CoordLg;
  QString m_CoordBr;
  bool m_MySide = false;
};

}  // namespace marvento
