#include "gps/EntryLock.h"

#include <QAction>
#include <QApplication>
#include <QWidget>

namespace marvento {

void LockEntry(const EntryControls& controls) {
  ShowHourglass();
  for (QWidget* w : controls.widgets) {
    if (w) w->setEnabled(false);
  }
  for (QAction* a : controls.actions) {
    if (a) a->setEnabled(false);
  }
}

void UnlockEntry(const EntryControls& controls) {
  for (QWidget* w : controls.widgets) {
    if (w) w->setEnabled(true);
  }
  for (QAction* a : controls.actions) {
    if (a) a->setEnabled(true);
  }
}

void ShowHourglass() {
  if (!qobject_cast<QApplication*>(QCoreApplication::instance())) return;
  if (QApplication::overrideCursor()) {
    QApplication::changeOverrideCursor(Qt::WaitCursor);
  } else {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  }
}

void ResetMousePointer() {
  if (!qobject_cast<QApplication*>(QCoreApplication::instance())) return;
  while (QApplication::overrideCursor()) QApplication::restoreOverrideCursor();
}

}  // namespace marvento
