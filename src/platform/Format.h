#pragma once

#include <QString>
#include <QStringView>

namespace marvento {

// Number to text with the decimal sign of QLocale(). In a pattern, "0" is a digit always
// written, "#" a digit written when needed and "." the decimal sign; the value is rounded
// half away from zero at the pattern's last place, on its decimal value as shown to 15
// significant digits (7 for a float), so that 2.675 with "0.00" gives 2,68.
// Without a pattern (empty) it gives the general form: up to 15 (7) significant digits, no
// trailing zeros, no leading blank, and the exponent form "1,3E-12" below 1E-4 and from 1E15.
// NaN and the infinities give "NaN", "Inf" and "-Inf".
QString Format(double value, QStringView pattern = {});
QString Format(float value, QStringView pattern = {});
inline QString Format(int value, QStringView pattern = {}) {
  return Format(static_cast<double>(value), pattern);
}
inline QString Format(long long value, QStringView pattern = {}) {
  return Format(static_cast<double>(value), pattern);
}

}  // namespace marvento
