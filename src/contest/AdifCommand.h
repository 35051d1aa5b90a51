#pragma once

#include <QString>

class QWidget;

namespace marvento {

// "ADIF ergänzen…": asks for the ADIF file, the own locator for QSOs without MY_GRIDSQUARE
// (the home locator offered), whether fields present are replaced, and the new file; then
// writes it in the background with a progress box. Messages through MsgBox.
void CompleteAdifInteractive(QWidget* parent, const QString& homeLocator);

}  // namespace marvento
