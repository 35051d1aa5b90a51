#pragma once

#include <QStringList>

namespace marvento {

// Items laid out as a print statement lays out comma-separated items in zones of 14 columns:
// each item after the first starts at the beginning of the zone after the one the previous
// item ended in (column 14 * n + 1), padded with blanks; an item that fills or overruns its
// zone pushes the next one on. No blanks follow the last item.
QString PrintZones(const QStringList& items);

}  // namespace marvento
