#pragma once

#include "app/frmMain.h"

#include <QLineEdit>
#include <QtTest>

namespace marvento::test {

// Types both locators and presses Enter in the remote field, as the user would.
inline void ComputeFrom(frmMain* w, const QString& own, const QString& remote) {
  w->tbMyLoc->clear();
  QTest::keyClicks(w->tbMyLoc, own);
  w->tbFremdLoc->clear();
  w->tbFremdLoc->setFocus();
  QTest::keyClicks(w->tbFremdLoc, remote);
  QTest::keyClick(w->tbFremdLoc, Qt::Key_Return);
}

}  // namespace marvento::test
