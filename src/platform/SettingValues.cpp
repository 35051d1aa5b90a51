#include "platform/SettingValues.h"

#include "platform/Numbers.h"

#include <QRegularExpression>

#include <cstdint>

namespace marvento {

namespace {

// Whether Val finds a number at the start of the text at all.
bool startsWithNumber(const QString& text) {
  static const QRegularExpression number(
      QStringLiteral("^[ \\t\\r\\n]*[+-]?[ \\t\\r\\n]*\\.?[0-9]"));
  return number.match(text).hasMatch();
}

}  // namespace

std::optional<bool> ReadBoolean(const QString& text) {
  const QString word = text.trimmed();
  if (word.compare(u"True", Qt::CaseInsensitive) == 0) return true;
  if (word.compare(u"False", Qt::CaseInsensitive) == 0) return false;
  if (IsNumeric(word)) return Val(ToDotDecimal(word)) != 0;
  return std::nullopt;
}

std::optional<PollInterval> ReadInterval(const QString& text) {
  // The empty text is what an interval of 0 is written as; it reads back as 0.
  if (!text.trimmed().isEmpty() && !startsWithNumber(text)) return std::nullopt;
  const std::optional<std::int32_t> seconds = ToInt32(Val(text));
  if (!seconds || *seconds < 0) return std::nullopt;
  const std::int64_t milliseconds = std::int64_t{*seconds} * 1000;
  if (milliseconds > INT32_MAX) return std::nullopt;
  if (milliseconds > 65534) return PollInterval{65, 65000};
  return PollInterval{*seconds, static_cast<std::int32_t>(milliseconds)};
}

std::optional<std::int16_t> ReadRadiusPosition(const QString& text) {
  if (!IsNumeric(text)) return std::nullopt;
  const std::optional<std::int16_t> position = ToInt16(Val(ToDotDecimal(text.trimmed())));
  if (!position || *position < -1 || *position > 11) return std::nullopt;
  return position;
}

std::optional<std::int32_t> ReadBaudRate(const QString& text) {
  static const QRegularExpression digits(QStringLiteral("^[0-9]{1,7}$"));
  const QString number = text.trimmed();
  if (!digits.match(number).hasMatch()) return std::nullopt;
  const int rate = number.toInt();
  if (rate < 50 || rate > 4000000) return std::nullopt;
  return rate;
}

std::optional<std::int16_t> ReadPortNumber(const QString& text) {
  static const QRegularExpression name(QStringLiteral("^com([0-9]{1,2})$"),
                                       QRegularExpression::CaseInsensitiveOption);
  const QRegularExpressionMatch match = name.match(text.trimmed());
  if (!match.hasMatch()) return std::nullopt;
  const int number = match.captured(1).toInt();
  if (number < 1 || number > 29) return std::nullopt;
  return static_cast<std::int16_t>(number);
}

QString BooleanText(bool value) {
  return value ? QStringLiteral("True") : QStringLiteral("False");
}

QString TwipsText(float twips) {
  // Seven digits read back as another single for some values; nine always suffice, and the
  // fewest that do keep the usual positions as short as they look.
  QString text;
  for (int digits = 7; digits <= 9; ++digits) {
    text = QString::number(twips, 'g', digits);
    if (static_cast<float>(Val(text)) == twips) break;
  }
  return text;
}

}  // namespace marvento
