#pragma once

#include "contest/EdiCheck.h"

#include <QString>

namespace marvento {

// Writes a copy of the log at inPath to outPath with each record's points, and the header's
// CQSOP, CODXC and CWWLs, as the check recomputed them; every other byte stays as it was.
// The new file appears whole or not at all; the original is never written. Returns the
// empty text on success, else a German message.
QString FixEdi(QIODevice& in, QIODevice& out, const EdiCheck& log,
               const EdiProgress& progress = {});
QString FixEdi(const QString& inPath, const QString& outPath, const EdiCheck& log,
               const EdiProgress& progress = {});

}  // namespace marvento
