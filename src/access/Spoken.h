#pragma once

#include <QString>
#include <QStringList>

namespace marvento {

// What a screen reader is given to say: the captions of the window rewritten where a unit
// sign would be spelt out or skipped ("°" becomes "Grad", "km" "Kilometer"). Pure text.

// The result of a computation from the two result captions ("541,3 km", "69,74 °"); empty
// when neither holds anything, as after New or a refused computation.
QString SpokenResult(const QString& distance, const QString& bearing);

// One status bar panel: a text that starts with a number (a time, a date in any form) is
// said behind the panel's description, which tells what it is; a text that starts with a
// word says so itself. Empty when the panel shows nothing.
QString SpokenPanel(const QString& text, const QString& description);

// Parts said one after the other, as sentences; empty parts are left out.
QString SpokenSequence(const QStringList& parts);

}  // namespace marvento
