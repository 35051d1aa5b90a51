#include "locator/QraToCoords.h"

namespace marvento {

QString QraToCoords(const QString& text, double& Lg, double& Br) {
  const QString wrongLocator = QStringLiteral(" Falscher Locator !");
  if (text.size() != 5) return wrongLocator;

  auto code = [&](qsizetype i) { return static_cast<int>(text[i].unicode()); };
  auto isDigit = [](int c) { return c >= u'0' && c <= u'9'; };
  if (!isDigit(code(2)) || !isDigit(code(3)) || code(4) < u'A' || code(4) > u'Z') {
    return wrongLocator;
  }

  int A = code(0) - 65;
  int B = code(1) - 64;
  int D1 = code(2) - 48;
  int D2 = code(3) - 48;
  const int K = code(4) - 64;

  // Cells are numbered 01 to 80; "00" would name a cell north of its band.
  const int cell = 10 * D1 + D2;
  if (cell > 80 || cell == 0 || A < 0 || A > 25 || B < 1 || B > 26) return wrongLocator;
  if (K > 10 || K == 9) return QStringLiteral(" KF falsch !");

  // W to Z are the bands west of the zero meridian, X to Z those south of 41 degrees.
  if (A > 21) A -= 26;
  if (B > 23) B -= 26;
  // A units digit 0 is column 10 of the row before.
  if (D2 == 0) {
    D1 -= 1;
    D2 = 10;
  }

  // Band edge minus row and small-field row, then half a small field (1/48 degree);
  // cell's east edge plus small-field column, less 1/5 - 1/30 (1/6 degree). The decimal
  // constants keep these digits so the results match to the last bit.
  Br = (B + 40) - D1 / 8.0 - kKfOffsets[K + 10] / 24.0 - 0.0208333333333333;
  Lg = 2 * A + D2 / 5.0 + kKfOffsets[K] / 15.0 - 0.166666666666666;
  return {};
}

}  // namespace marvento
