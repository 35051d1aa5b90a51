#pragma once

#include "height/HeightTable.h"

#include <QString>

namespace marvento {

// The text of the evaluation box: both figures with their unit in lower case, line breaks "\n".
QString HeightMessage(const HeightFigures& figures);

// Report false: a sample from a GGA sentence (Alt, Unit, Sats as the sentence gives them).
// Report true: the evaluation; Alt and Sats are not read, Unit receives the table's unit and the
// two figures are shown in a message box. The table is never changed by an evaluation.
void HeightEvaluate(HeightTable& table, const QString& Alt, QString& Unit, const QString& Sats,
                    bool Report);

}  // namespace marvento
