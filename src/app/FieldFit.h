#pragma once

class QFontMetrics;
class QLineEdit;

namespace marvento {

// Widths in pixels for the entry fields of the main window, measured with the font they use.

// The widest text that the program writes into a coordinate field, in either form: a sign,
// 15 significant digits written out in full, or seconds with four decimals.
int WidestCoordinateText(const QFontMetrics& metrics);
// The widest locator of 10 characters.
int WidestLocatorText(const QFontMetrics& metrics);

// The width that field needs to show a text of textWidth pixels whole, frame, margins and
// cursor included, in its own style.
int FieldWidthFor(const QLineEdit& field, int textWidth);

// Text that the program writes into the field is shown from its start, as the user reads it
// (degrees first); what the user types keeps the cursor where the typing is.
void ShowTextFromStart(QLineEdit* field);

}  // namespace marvento
