#include "distance/ReverseBearing.h"

#include "platform/Format.h"
#include "platform/Numbers.h"

namespace marvento {

std::optional<QString> ReverseBearingPrompt(const QString& caption) {
  // "-" would read as 0 and give a confident 180 for a bearing that does not exist.
  if (caption.isEmpty() || caption == u"-") return std::nullopt;
  double r = Val(ToDotDecimal(caption)) + 180;
  if (r > 360) r = r - 360;
  return Format(r, u"##0.0#") + QStringLiteral(" °");
}

}  // namespace marvento
