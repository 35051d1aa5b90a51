#pragma once

class QWidget;

namespace marvento {

// Gives the controls of the main window their German names and descriptions for screen
// readers; the window's controls are found by their object names.
void SetMainAccessibleTexts(QWidget* window);

}  // namespace marvento
