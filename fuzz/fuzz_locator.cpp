// Maidenhead decoding and encoding and the old QRA locator.
#include "FuzzSupport.h"
#include "locator/CoordsToLocator.h"
#include "locator/LocatorToCoords.h"
#include "locator/QraToCoords.h"

#include <cmath>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

// Cell sizes of the 10-character form in degrees.
constexpr double kCellLg = 2.0 / 24 / 10 / 24;
constexpr double kCellBr = 1.0 / 24 / 10 / 24;

QString num(double v) {
  return QString::number(v, 'g', 17);
}

void checkDecode(const QString& text) {
  const LocatorDecode d = DecodeLocator(text);
  Check(d.shown == text.left(10), "the decoder shows the first ten characters", text);
  if (d.status != LocatorDecode::Ok) return;
  const QString head = text.left(10);
  Check(d.Lg >= -180 && d.Lg < 180 && d.Br >= -90 && d.Br < 90, "a locator lies on the grid",
        text + u' ' + num(d.Lg) + u' ' + num(d.Br));
  const QString ten = CoordsToLocator10(d.Lg, d.Br);
  const QString trip = head + QStringLiteral(" -> ") + ten;
  if (head.size() == 6) {
    // The centre of a subsquare encodes to the same subsquare in both forms.
    Check(ten.startsWith(head), "a subsquare's centre encodes to its locator", trip);
    const QString six = CoordsToLocator6(d.Lg, d.Br);
    Check(six == head, "a 6-character locator survives the round trip",
          head + QStringLiteral(" -> ") + six);
    return;
  }
  // A south-west corner may lie a hair below its cell edges, as the decoding's sums leave
  // it: it encodes to its own cell or to the smallest cell just west or south of it.
  const LocatorDecode back = DecodeLocator(ten);
  Check(back.status == LocatorDecode::Ok && ten.startsWith(head.left(4)) &&
            d.Lg - back.Lg >= -1e-9 && d.Lg - back.Lg <= kCellLg + 1e-9 &&
            d.Br - back.Br >= -1e-9 && d.Br - back.Br <= kCellBr + 1e-9,
        "a cell's corner encodes to its cell or the next one west or south", trip);
}

void checkEncode(double lg, double br) {
  const QString six = CoordsToLocator6(lg, br);
  const QString ten = CoordsToLocator10(lg, br);
  const QString where = num(lg) + u' ' + num(br) + QStringLiteral(" -> ") + six + u' ' + ten;
  Check(six.size() == 6 && ten.size() == 10, "locators have six and ten characters", where);
  const LocatorDecode d6 = DecodeLocator(six);
  const LocatorDecode d10 = DecodeLocator(ten);
  Check(d6.status == LocatorDecode::Ok && d10.status == LocatorDecode::Ok,
        "encoding always gives a valid locator", where);
  if (!(std::fabs(lg) < 180 && std::fabs(br) < 90)) return;
  // The point lies in the cell of its 10-character locator.
  Check(lg >= d10.Lg - 1e-9 && lg < d10.Lg + kCellLg + 1e-9 && br >= d10.Br - 1e-9 &&
            br < d10.Br + kCellBr + 1e-9,
        "the point lies in its cell", where + u' ' + num(d10.Lg) + u' ' + num(d10.Br));
  // The 6-character form names the subsquare the point lies in, and the 10-character form
  // a cell inside it.
  Check(std::fabs(d6.Lg - lg) <= 1.0 / 24 + 1e-9 && std::fabs(d6.Br - br) <= 1.0 / 48 + 1e-9 &&
            ten.startsWith(six),
        "the point lies in its subsquare", where);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QString text = fuzz::Text(data, size);
  checkDecode(text);
  checkDecode(text.toUpper());

  double lg = 1234, br = 1234;
  const QString upper = text.toUpper();
  const QString error = QraToCoords(upper, lg, br);
  if (error.isEmpty()) {
    Check(upper.size() == 5, "only five characters make a QRA locator", text);
    Check(std::fabs(lg) < 180 && std::fabs(br) < 90, "a QRA locator lies on the earth",
          text + u' ' + num(lg) + u' ' + num(br));
  } else {
    Check(lg == 1234 && br == 1234, "a refused QRA locator leaves the position", text);
  }

  fuzz::Input in(data, size);
  const double a = in.number();
  const double b = in.number();
  checkEncode(a, b);
  // The same bits folded into the grid, where the cell property can be checked.
  if (std::isfinite(a) && std::isfinite(b)) checkEncode(std::fmod(a, 180.0), std::fmod(b, 90.0));
  return 0;
}
