#include "platform/Format.h"

#include <QLocale>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <utility>

namespace marvento {

namespace {

// A finite value as sign, significant digits and the position of the decimal point
// relative to them: 0.DIGITS x 10^point.
struct Decimal {
  bool negative = false;
  std::string digits;  // no trailing zeros; empty for zero
  int point = 0;
};

Decimal toDecimal(double value, int significant) {
  Decimal d;
  d.negative = std::signbit(value);
  char buf[64];
  const auto result = std::to_chars(buf, buf + sizeof buf, std::fabs(value),
                                    std::chars_format::scientific, significant - 1);
  const std::string text(buf, result.ptr);  // d.ddddde+XX
  const auto e = text.find('e');
  for (std::size_t i = 0; i < e; ++i) {
    if (text[i] != '.') d.digits += text[i];
  }
  d.point = std::stoi(text.substr(e + 1)) + 1;
  while (!d.digits.empty() && d.digits.back() == '0') d.digits.pop_back();
  if (d.digits.empty()) d.point = 0;
  return d;
}

// The digits before and after the decimal point, without padding; both empty for zero.
std::pair<std::string, std::string> split(const Decimal& d) {
  if (d.digits.empty()) return {};
  if (d.point <= 0) return {{}, std::string(static_cast<std::size_t>(-d.point), '0') + d.digits};
  if (static_cast<std::size_t>(d.point) >= d.digits.size()) {
    return {d.digits + std::string(d.point - d.digits.size(), '0'), {}};
  }
  return {d.digits.substr(0, d.point), d.digits.substr(d.point)};
}

QString decimalSign() {
  return QLocale().decimalPoint();
}

QString nonFinite(double value) {
  if (std::isnan(value)) return QStringLiteral("NaN");
  return value < 0 ? QStringLiteral("-Inf") : QStringLiteral("Inf");
}

QString generalForm(double value, int significant) {
  if (!std::isfinite(value)) return nonFinite(value);
  const Decimal d = toDecimal(value, significant);
  if (d.digits.empty()) return QStringLiteral("0");
  const QString sign = d.negative ? QStringLiteral("-") : QString();
  const int exponent = d.point - 1;
  if (exponent < -4 || exponent >= 15) {
    QString text = sign + QChar(d.digits[0]);
    if (d.digits.size() > 1) text += decimalSign() + QString::fromLatin1(d.digits.substr(1));
    const int absExp = std::abs(exponent);
    text += (exponent < 0 ? QStringLiteral("E-") : QStringLiteral("E+"));
    text += QString::number(absExp).rightJustified(2, u'0');
    return text;
  }
  auto [whole, fraction] = split(d);
  if (whole.empty()) whole = "0";
  QString text = sign + QString::fromLatin1(whole);
  if (!fraction.empty()) text += decimalSign() + QString::fromLatin1(fraction);
  return text;
}

struct Pattern {
  int minWhole = 0;
  int minFraction = 0;
  int maxFraction = 0;
  bool point = false;
};

Pattern parsePattern(QStringView pattern) {
  Pattern p;
  for (const QChar c : pattern) {
    if (c == u'.') {
      p.point = true;
    } else if (c == u'0') {
      if (p.point) {
        ++p.minFraction;
        ++p.maxFraction;
      } else {
        ++p.minWhole;
      }
    } else if (c == u'#') {
      if (p.point) ++p.maxFraction;
    }
  }
  return p;
}

// Adds one at the last place of a digit string; gives true when the carry runs out of it.
bool increment(std::string& digits) {
  for (auto it = digits.rbegin(); it != digits.rend(); ++it) {
    if (*it == '9') {
      *it = '0';
    } else {
      ++*it;
      return false;
    }
  }
  return true;
}

QString patterned(double value, QStringView pattern, int significant) {
  if (!std::isfinite(value)) return nonFinite(value);
  const Pattern p = parsePattern(pattern);
  const Decimal d = toDecimal(value, significant);

  auto [whole, fraction] = split(d);

  const auto maxFraction = static_cast<std::size_t>(p.maxFraction);
  if (fraction.size() > maxFraction) {
    const bool up = fraction[maxFraction] >= '5';
    fraction.resize(maxFraction);
    if (up) {
      std::string all = whole + fraction;
      if (increment(all)) all.insert(all.begin(), '1');
      whole = all.substr(0, all.size() - fraction.size());
      fraction = all.substr(all.size() - fraction.size());
    }
  }
  while (fraction.size() > static_cast<std::size_t>(p.minFraction) && fraction.back() == '0') {
    fraction.pop_back();
  }
  if (fraction.size() < static_cast<std::size_t>(p.minFraction))
    fraction.resize(p.minFraction, '0');

  const auto firstNonZero = whole.find_first_not_of('0');
  whole = firstNonZero == std::string::npos ? std::string() : whole.substr(firstNonZero);
  if (whole.size() < static_cast<std::size_t>(p.minWhole)) {
    whole.insert(0, p.minWhole - whole.size(), '0');
  }

  const bool allZero = whole.find_first_not_of('0') == std::string::npos &&
                       fraction.find_first_not_of('0') == std::string::npos;
  QString text = (d.negative && !allZero) ? QStringLiteral("-") : QString();
  text += QString::fromLatin1(whole);
  if (p.point && (!fraction.empty() || !whole.empty())) {
    text += decimalSign() + QString::fromLatin1(fraction);
  }
  return text;
}

QString plainForm(double value, int significant) {
  if (!std::isfinite(value)) return nonFinite(value);
  const Decimal d = toDecimal(value, significant);
  if (d.digits.empty() || d.point - 1 >= -4) return generalForm(value, significant);
  const auto [whole, fraction] = split(d);
  return (d.negative ? QStringLiteral("-0") : QStringLiteral("0")) + decimalSign() +
         QString::fromLatin1(fraction);
}

QString upToDecimals(double value, int decimals, int significant) {
  const QString pattern = QStringLiteral("0.") + QString(std::max(decimals, 0), u'#');
  QString text = patterned(value, pattern, significant);
  if (text.endsWith(decimalSign())) text.chop(decimalSign().size());
  return text;
}

}  // namespace

QString FormatPlain(double value) {
  return plainForm(value, 15);
}

QString FormatDecimals(double value, int decimals) {
  return upToDecimals(value, decimals, 15);
}

QString FormatDecimals(float value, int decimals) {
  return upToDecimals(static_cast<double>(value), decimals, 7);
}

QString Format(double value, QStringView pattern) {
  return pattern.isEmpty() ? generalForm(value, 15) : patterned(value, pattern, 15);
}

QString Format(float value, QStringView pattern) {
  const double widened = static_cast<double>(value);
  return pattern.isEmpty() ? generalForm(widened, 7) : patterned(widened, pattern, 7);
}

}  // namespace marvento
