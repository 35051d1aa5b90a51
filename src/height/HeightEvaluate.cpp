#include "height/HeightEvaluate.h"

#include "platform/Format.h"
#include "platform/MsgBox.h"

namespace marvento {

QString HeightMessage(const HeightFigures& figures) {
  const QString unit = figures.unit.toLower();
  return QStringLiteral("Die vorläufig ermittelte Höhe beträgt: ") + u'\n' + u'\n' +
         QStringLiteral("kurzfristiges Mittel: ") + Format(figures.mean, u"####0.0#") + u' ' +
         unit + u'\n' + QStringLiteral("langfristiges Mittel: ") +
         Format(figures.mode, u"####0.0#") + u' ' + unit;
}

void HeightEvaluate(HeightTable& table, const QString& Alt, QString& Unit, const QString& Sats,
                    bool Report) {
  if (!Report) {
    table.sample(Alt, Unit, Sats);
    return;
  }
  const HeightFigures figures = table.figures();
  Unit = figures.unit;
  MsgBox(HeightMessage(figures), vbInformation, QStringLiteral("GPS - Höhe"));
}

}  // namespace marvento
