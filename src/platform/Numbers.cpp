#include "platform/Numbers.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace marvento {

namespace {

bool isBlank(QChar c) {
  return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

bool isDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

}  // namespace

double Val(QStringView text) {
  // Collect the characters that make up the number, without the blanks, then read them
  // with from_chars, which does not depend on the C locale.
  std::string number;
  number.reserve(32);
  qsizetype i = 0;
  const qsizetype n = text.size();
  auto skipBlanks = [&] {
    while (i < n && isBlank(text[i])) ++i;
  };

  skipBlanks();
  bool negative = false;
  if (i < n && (text[i] == u'+' || text[i] == u'-')) {
    negative = text[i] == u'-';
    ++i;
  }
  bool digits = false;
  bool point = false;
  for (; i < n; ++i) {
    const QChar c = text[i];
    if (isBlank(c)) continue;
    if (isDigit(c)) {
      number += static_cast<char>(c.unicode());
      digits = true;
    } else if (c == u'.' && !point) {
      number += '.';
      point = true;
    } else {
      break;
    }
  }
  if (!digits) return 0.0;

  // An exponent counts only when at least one digit follows it.
  if (i < n && (text[i] == u'E' || text[i] == u'e' || text[i] == u'D' || text[i] == u'd')) {
    qsizetype j = i + 1;
    std::string exponent = "e";
    while (j < n && isBlank(text[j])) ++j;
    if (j < n && (text[j] == u'+' || text[j] == u'-')) {
      exponent += static_cast<char>(text[j].unicode());
      ++j;
    }
    bool expDigits = false;
    for (; j < n; ++j) {
      const QChar c = text[j];
      if (isBlank(c)) continue;
      if (!isDigit(c)) break;
      // More than a few digits of exponent only decide between 0 and infinity.
      if (exponent.size() < 8) exponent += static_cast<char>(c.unicode());
      expDigits = true;
    }
    if (expDigits) number += exponent;
  }

  double value = 0.0;
  const auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
  (void)end;
  if (ec == std::errc::result_out_of_range) {
    // from_chars leaves the value alone here; decide by the exponent's sign.
    const auto e = number.find('e');
    const bool tiny = e != std::string::npos && e + 1 < number.size() && number[e + 1] == '-';
    value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
  }
  return negative ? -value : value;
}

QString ToDotDecimal(QString text) {
  const qsizetype comma = text.indexOf(u',');
  if (comma >= 0) text[comma] = u'.';
  return text;
}

QString Str(long long value) {
  const QString digits = QString::number(value);
  return value >= 0 ? u' ' + digits : digits;
}

QString Str(double value) {
  QString text = QString::number(value, 'g', 15);
  return value >= 0 ? u' ' + text : text;
}

bool IsNumeric(QStringView text) {
  text = text.trimmed();
  qsizetype i = 0;
  const qsizetype n = text.size();
  if (i < n && (text[i] == u'+' || text[i] == u'-')) ++i;
  bool digits = false;
  bool separator = false;
  for (; i < n; ++i) {
    const QChar c = text[i];
    if (isDigit(c)) {
      digits = true;
    } else if ((c == u'.' || c == u',') && !separator) {
      separator = true;
    } else {
      break;
    }
  }
  if (!digits) return false;
  if (i < n && (text[i] == u'E' || text[i] == u'e')) {
    ++i;
    if (i < n && (text[i] == u'+' || text[i] == u'-')) ++i;
    bool expDigits = false;
    while (i < n && isDigit(text[i])) {
      ++i;
      expDigits = true;
    }
    if (!expDigits) return false;
  }
  return i == n;
}

double Int(double value) {
  return std::floor(value);
}

double Fix(double value) {
  return std::trunc(value);
}

double RoundHalfEven(double value) {
  return std::nearbyint(value);  // the default rounding mode is to nearest, ties to even
}

namespace {

template <typename T>
std::optional<T> toInteger(double value) {
  if (!std::isfinite(value)) return std::nullopt;
  const double rounded = RoundHalfEven(value);
  if (rounded < static_cast<double>(std::numeric_limits<T>::min()) ||
      rounded > static_cast<double>(std::numeric_limits<T>::max())) {
    return std::nullopt;
  }
  return static_cast<T>(rounded);
}

}  // namespace

std::optional<std::int16_t> ToInt16(double value) {
  return toInteger<std::int16_t>(value);
}

std::optional<std::int32_t> ToInt32(double value) {
  return toInteger<std::int32_t>(value);
}

}  // namespace marvento
