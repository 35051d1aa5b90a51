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
// The general form written out in full below 1E-4 instead of the exponent form, with the
// same 15 significant digits: 0,0000123 rather than 1,23E-05. For coordinates, which a user
// reads and the entry reads back.
QString FormatPlain(double value);

// At most `decimals` places, rounded half away from zero, trailing zeros and a bare decimal
// sign dropped, never the exponent form: 1,278977E-12 with four places gives "0", 2,50 gives
// "2,5". A float is rounded on its 7 significant digits first, as Format does.
QString FormatDecimals(double value, int decimals);
QString FormatDecimals(float value, int decimals);

inline QString Format(int value, QStringView pattern = {}) {
  return Format(static_cast<double>(value), pattern);
}
inline QString Format(long long value, QStringView pattern = {}) {
  return Format(static_cast<double>(value), pattern);
}

}  // namespace marvento
