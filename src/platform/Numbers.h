#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>

namespace marvento {

// The number at the start of a text. A point is the only decimal sign; blanks, tabs and
// line ends are skipped wherever they stand (also between sign and digits and inside the
// digits); a sign and an exponent (E or D) are taken; reading stops at the first other
// character. No number gives 0. A value too large for a double gives +/-infinity.
double Val(QStringView text);

// The text with its first comma, and only that one, turned into a point.
QString ToDotDecimal(QString text);

// Digits of a whole number with a leading blank when it is 0 or more: Str(7) == " 7".
QString Str(long long value);
// A double in the general form with a point as decimal sign, leading blank when >= 0.
QString Str(double value);

// Whether the text, without blanks at both ends, reads as a number: an optional sign,
// digits with at most one decimal point or comma, an optional exponent.
bool IsNumeric(QStringView text);

// Rounding down (also for negative values) and truncation toward zero.
double Int(double value);
double Fix(double value);

// A half goes to the even number: 30.5 -> 30, 31.5 -> 32, -2.5 -> -2.
double RoundHalfEven(double value);

// Conversions to 16- and 32-bit integers with half-to-even rounding; nothing when the
// value is no number or does not fit.
std::optional<std::int16_t> ToInt16(double value);
std::optional<std::int32_t> ToInt32(double value);

}  // namespace marvento
