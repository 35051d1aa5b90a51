#pragma once

#include <QList>

class QAction;
class QWidget;

namespace marvento {

// What a poll fences off from the user, in the order it is disabled: the tool bar, the two
// top-level menus (as their QActions), Combo1, tbMyLoc, tbMyLg, tbMyBr, tbFremdLg,
// tbFremdBr. tbFremdLoc is not among them: it stays open during a poll.
struct EntryControls {
  QList<QWidget*> widgets;
  QList<QAction*> actions;
};

// Hourglass on, the controls off.
void LockEntry(const EntryControls& controls);
// The controls on again. The pointer stays as it is.
void UnlockEntry(const EntryControls& controls);

// The screen's pointer: the hourglass over the whole application, or back to normal
// (every hourglass taken off, however often it was put on).
void ShowHourglass();
void ResetMousePointer();

}  // namespace marvento
