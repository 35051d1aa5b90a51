#pragma once

#include <QString>

#include <array>
#include <optional>

namespace marvento {

// The six entry fields of the main window.
enum class ComputeField { MyLoc, MyLg, MyBr, FremdLoc, FremdLg, FremdBr };
inline constexpr std::size_t kComputeFieldCount = 6;

// The texts of the six entry fields, indexed by ComputeField.
struct ComputeTexts {
  std::array<QString, kComputeFieldCount> text;

  QString& operator[](ComputeField f) { return text[static_cast<std::size_t>(f)]; }
  const QString& operator[](ComputeField f) const { return text[static_cast<std::size_t>(f)]; }
  bool operator==(const ComputeTexts&) const = default;
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

// Which description rules this time, by what the user changed since the last run.
enum class Route {
  BothLocators,       // a coordinate field is empty: both sides from their locators
  OwnCoordinates,     // the own coordinates changed: they make the own locator
  RemoteLocator,      // the remote locator changed (or is empty)
  RemoteCoordinates,  // the remote coordinates changed: they make the remote locator
  OwnLocator,         // the own locator changed (or is empty)
  Unchanged,          // nothing changed: solve again, with the radius as it stands now
};
// entry holds the field texts with blanks at both ends removed.
Route PickRoute(const ComputeTexts& entry, const ComputeMemory& memory);

// What the command reads from the preferences at each run.
struct ComputePreferences {
  bool GradDezimal = false;  // coordinates in decimal degrees, else degrees, minutes, seconds
  bool Loc10st = false;      // locators made from coordinates get 10 characters, else 6
  bool logOn = false;        // GPS reception and the log are both on
};

// The box that ends a run, shown after the fields and labels are written.
struct ComputeRefusal {
  QString prompt;
  QString title;
  int style = 0;                      // MsgBox style: 48 a refusal, 64 a remark on the result
  std::optional<ComputeField> focus;  // the field to put the cursor in, if any
};

// Everything one run decides; the window applies it in this order: fields, labels, memory,
// log line, beep, box, focus.
struct ComputeOutcome {
  Route route = Route::Unchanged;
  ComputeTexts fields;  // the six texts as the window must show them
  // The fields the run wrote: they show their text from the start (degrees and the first
  // letters of a locator), also where the text is the one they held already.
  std::array<bool, kComputeFieldCount> written{};
  std::optional<QString> entfernung;  // unset: the label keeps its text
  std::optional<QString> richtung;
  ComputeMemory memory;  // for the next run
  bool writeLog = false;
  bool beep = false;
  std::optional<ComputeRefusal> refusal;

  bool wrote(ComputeField f) const { return written[static_cast<std::size_t>(f)]; }
};

// One run of the compute command: decides between locator and coordinates on each side, fills
// in the other description, and solves distance and bearing on a sphere of the radius in
// radiusText (kilometres, as Combo1 shows it). A refusal is part of the outcome, never an
// exception.
ComputeOutcome DecideCompute(ComputeTexts fields, const QString& radiusText, ComputeMemory memory,
                             const ComputePreferences& preferences);

}  // namespace marvento
