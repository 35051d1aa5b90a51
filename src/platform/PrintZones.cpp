#include "platform/PrintZones.h"

namespace marvento {

QString PrintZones(const QStringList& items) {
  constexpr qsizetype kZoneWidth = 14;
  QString line;
  for (qsizetype i = 0; i < items.size(); ++i) {
    if (i > 0) {
      const qsizetype next = (line.size() / kZoneWidth + 1) * kZoneWidth;
      line += QString(next - line.size(), u' ');
    }
    line += items[i];
  }
  return line;
}

}  // namespace marvento
