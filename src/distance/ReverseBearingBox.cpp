// The menu command's box; the opposite bearing itself is worked out without widgets.
#include "distance/ReverseBearing.h"
#include "platform/MsgBox.h"

#include <QLabel>

namespace marvento {

void mnuGegenRichtung_Click(const QLabel* lblRichtung) {
  if (const auto prompt = ReverseBearingPrompt(lblRichtung->text())) {
    MsgBox(*prompt, vbInformation, QStringLiteral(" Gegenrichtung"));
  }
}

}  // namespace marvento
