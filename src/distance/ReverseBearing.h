#pragma once

#include <QString>

#include <optional>

class QLabel;

namespace marvento {

// The opposite of the bearing shown in the caption of lblRichtung ("69,74 °" gives
// "249,74 °"), worked from the rounded number in the caption, in degrees 0 to 360 with
// one or two decimals. Nothing when no bearing stands: an empty caption or the "-" of a
// distance out of range.
std::optional<QString> ReverseBearingPrompt(const QString& caption);

// The menu command: shows the opposite bearing in an information box titled
// " Gegenrichtung". Changes nothing.
void mnuGegenRichtung_Click(const QLabel* lblRichtung);

}  // namespace marvento
