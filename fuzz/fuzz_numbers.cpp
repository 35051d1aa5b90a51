// Val, Format and the integer conversions on any text and any bit pattern of a number.
#include "FuzzSupport.h"
#include "platform/Format.h"
#include "platform/Numbers.h"

#include <cmath>

using namespace marvento;
using marvento::fuzz::Check;

namespace {

// Every pattern the program formats with, and the general form.
constexpr const char16_t* kPatterns[] = {
    u"",    u"###", u"######", u"###0.0######", u"###0.0##", u"##0.0#",  u"#0",           u"#0.0##",
    u"##0", u"00",  u"0.00",   u"0.0",          u"####0.0#", u"###0.0#", u"######0.00###"};

int decimals(QStringView pattern) {
  const qsizetype point = pattern.indexOf(u'.');
  return point < 0 ? 0 : static_cast<int>(pattern.size() - point - 1);
}

QString describe(double value, QStringView pattern, const QString& text) {
  return QString::number(value, 'g', 17) + QStringLiteral(" with \"") + pattern.toString() +
         QStringLiteral("\" gave \"") + text + u'"';
}

// What was written reads back as the value, within half a unit of the pattern's last place
// (or the significant digits of the general form) and the digits the type holds.
void checkFormat(double value, QStringView pattern, const QString& text, double relative) {
  const bool hasZero = pattern.contains(u'0');
  if (pattern.isEmpty() || hasZero)
    Check(!text.isEmpty(), "Format gives a text", describe(value, pattern, text));
  if (!std::isfinite(value)) return;
  if (hasZero) {
    bool digit = false;
    for (QChar c : text) digit = digit || c.isDigit();
    Check(digit, "Format writes a digit for a 0 in the pattern", describe(value, pattern, text));
  }
  if (std::fabs(value) > 1e12) return;
  const double back = Val(ToDotDecimal(text));
  const double unit = pattern.isEmpty() ? 0 : 0.5 * std::pow(10.0, -decimals(pattern));
  const double slack = unit + std::fabs(value) * relative + 1e-300;
  Check(std::fabs(back - value) <= slack * (1 + 1e-9), "Format reads back as the value",
        describe(value, pattern, text) + QStringLiteral(" read back ") +
            QString::number(back, 'g', 17));
}

void checkConversions(double value) {
  const std::optional<std::int16_t> i16 = ToInt16(value);
  const std::optional<std::int32_t> i32 = ToInt32(value);
  const double rounded = RoundHalfEven(value);
  if (i16) Check(*i16 == rounded, "ToInt16 rounds half to even", QString::number(value, 'g', 17));
  if (i32) Check(*i32 == rounded, "ToInt32 rounds half to even", QString::number(value, 'g', 17));
  if (std::isfinite(value) && std::fabs(value) < 32767)
    Check(i16.has_value(), "ToInt16 takes a small value");
  if (std::isfinite(value) && std::fabs(value) < 2147483647)
    Check(i32.has_value(), "ToInt32 takes a value in range");
  if (std::isfinite(value)) {
    Check(Int(value) <= value && value - Int(value) <= 1, "Int rounds down",
          QString::number(value, 'g', 17));
    Check(std::fabs(Fix(value)) <= std::fabs(value), "Fix goes toward zero",
          QString::number(value, 'g', 17));
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::UseGermanLocale();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QString text = fuzz::Text(data, size);
  const double typed = Val(text);
  Check(!std::isnan(typed), "Val gives a number", text);
  const double withComma = Val(ToDotDecimal(text));
  Check(!std::isnan(withComma), "Val after ToDotDecimal gives a number", text);
  (void)IsNumeric(text);
  (void)Str(typed);

  fuzz::Input in(data, size);
  const double raw = in.number();
  const float single = in.single();
  for (const char16_t* p : kPatterns) {
    const QStringView pattern(p);
    for (double value : {typed, raw}) checkFormat(value, pattern, Format(value, pattern), 1e-14);
    checkFormat(single, pattern, Format(single, pattern), 1e-6);
  }
  for (double value : {typed, withComma, raw, static_cast<double>(single)}) checkConversions(value);
  return 0;
}
