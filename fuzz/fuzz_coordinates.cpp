// Coordinate entry in both forms, and the way back from a value to the text of a field.
#include "FuzzSupport.h"
#include "distance/Coordinates.h"

#include <cmath>

using namespace marvento;
using marvento::fuzz::Check;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::UseGermanLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  const bool gradDezimal = in.byte() & 1;
  const QString text = in.rest();
  // Longitude and latitude field, split at the first line end.
  const qsizetype cut = text.indexOf(u'\n');
  const QString lg = (cut < 0 ? text : text.left(cut)).trimmed();
  const QString br = (cut < 0 ? QString() : text.mid(cut + 1)).trimmed();
  const QString shown = lg + QStringLiteral(" | ") + br;

  const CoordinateRead read = ParseCoordinates(lg, br, gradDezimal);
  if (!read.ok) {
    Check(!read.prompt.isEmpty(), "a refusal has a message", shown);
    return 0;
  }
  Check(std::isfinite(read.Lg) && std::fabs(read.Lg) < 180, "an accepted longitude is in range",
        shown);
  Check(std::isfinite(read.Br) && std::fabs(read.Br) < 90, "an accepted latitude is in range",
        shown);

  // What the program writes back into the fields for an accepted position reads again as
  // the same position. Right at the limits the written text may round onto the limit.
  if (std::fabs(read.Lg) > 179.999 || std::fabs(read.Br) > 89.999) return 0;
  const std::optional<QString> lgText = CoordinateText(read.Lg, gradDezimal);
  const std::optional<QString> brText = CoordinateText(read.Br, gradDezimal);
  Check(lgText && brText, "a position in range has a field text", shown);
  const CoordinateRead again = ParseCoordinates(*lgText, *brText, gradDezimal);
  const QString written =
      shown + QStringLiteral(" -> ") + *lgText + QStringLiteral(" | ") + *brText;
  Check(again.ok, "the written field text is accepted", written);
  Check(std::fabs(again.Lg - read.Lg) < 1e-6 && std::fabs(again.Br - read.Br) < 1e-6,
        "the written field text keeps the position", written);
  return 0;
}
