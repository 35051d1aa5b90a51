#include "distance/Coordinates.h"

#include "platform/Format.h"
#include "platform/Numbers.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace marvento {

namespace {

struct AxisLimits {
  double degrees;
  double minutes;
  QString degreesMessage;  // limit message of the degrees, minutes and seconds form
  QString decimalMessage;  // limit message of the decimal form
};

const AxisLimits& longitudeLimits() {
  static const AxisLimits limits{180, 59.999, QStringLiteral(" ( max ±179° 59' 59,99999\" ) "),
                                 QStringLiteral(" ( max ±179,9999999°\" ) ")};
  return limits;
}

const AxisLimits& latitudeLimits() {
  static const AxisLimits limits{90, 59.99999, QStringLiteral(" ( max ±89° 59' 59,99999\" ) "),
                                 QStringLiteral(" ( max ±89,9999999°\" ) ")};
  return limits;
}

constexpr double kSecondsLimit = 59.99999;

// The seconds a field shows: a tenth of a millimetre on the ground is more than any position
// needs, and the noise of a sum such as 13.4 (1,278977E-12) reads as the zero it is.
QString secondsText(float seconds) {
  return FormatDecimals(seconds, 4);
}

// A limit message in the decimal sign of the fields.
QString localized(const QString& message) {
  QString text = message;
  return text.replace(u',', QLocale().decimalPoint());
}

const QString& formatHint() {
  static const QString hint = QStringLiteral(" ( wie x°x'x\" ) ");
  return hint;
}

struct AxisRead {
  bool ok = false;
  double value = 0;
  QString prompt;
};

AxisRead refuse(QString prompt) {
  return {false, 0, std::move(prompt)};
}

AxisRead readDecimal(QStringView text, const AxisLimits& limits) {
  const double value = Val(ToDotDecimal(text.toString()));
  if (!(std::fabs(value) < limits.degrees)) return refuse(localized(limits.decimalMessage));
  return {true, value, {}};
}

AxisRead readDegrees(QStringView text, const AxisLimits& limits) {
  const QString echo = text.toString();
  const QString hint = echo + formatHint();
  const QString overLimit = echo + localized(limits.degreesMessage);

  const qsizetype degreeMark = text.indexOf(u'°');
  if (degreeMark <= 0) return refuse(hint);
  const double degrees = Val(text.left(degreeMark));
  if (!(std::fabs(degrees) < limits.degrees)) return refuse(overLimit);

  const bool negative = text.startsWith(u'-');

  const qsizetype minuteMark = text.indexOf(u'\'');
  if (minuteMark <= 0) return refuse(hint);
  // A minute mark in front of the degree mark leaves no room for the minutes; the runtime
  // would refuse the slice, and the user learns most from the format hint.
  if (minuteMark < degreeMark) return refuse(hint);
  const double minutes = Val(text.mid(degreeMark + 1, minuteMark - degreeMark - 1));
  if (!std::isfinite(minutes) || minutes > limits.minutes) return refuse(overLimit);

  if (!text.endsWith(u'"')) return refuse(hint);
  const qsizetype secondsLength = text.size() - minuteMark - 2;
  const double seconds = Val(ToDotDecimal(text.mid(minuteMark + 1, secondsLength).toString()));
  if (!std::isfinite(seconds) || seconds > kSecondsLimit) return refuse(overLimit);

  double value = std::fabs(degrees) + minutes / 60 + seconds / 3600;
  // Minutes or seconds typed negative must not carry a value past the limit either way.
  if (!(std::fabs(value) < limits.degrees)) return refuse(overLimit);
  if (negative) value = -value;
  return {true, value, {}};
}

AxisRead readAxis(QStringView text, const AxisLimits& limits, bool GradDezimal) {
  return GradDezimal ? readDecimal(text, limits) : readDegrees(text, limits);
}

}  // namespace

CoordinateRead ParseCoordinates(QStringView CoordLg, QStringView CoordBr, bool GradDezimal) {
  CoordinateRead out;
  const AxisRead lg = readAxis(CoordLg, longitudeLimits(), GradDezimal);
  if (!lg.ok) {
    out.prompt = lg.prompt;
    return out;
  }
  out.Lg = lg.value;
  const AxisRead br = readAxis(CoordBr, latitudeLimits(), GradDezimal);
  if (!br.ok) {
    out.prompt = br.prompt;
    return out;
  }
  out.Br = br.value;
  out.ok = true;
  return out;
}

std::optional<DegreesMinutesSeconds> SplitDegrees(double a) {
  const auto degrees = ToInt16(Int(a));
  if (!degrees) return std::nullopt;
  const double fraction = a - *degrees;
  const auto minutes = ToInt16(Int(fraction * 60));
  if (!minutes) return std::nullopt;

  DegreesMinutesSeconds dms{*degrees, *minutes,
                            static_cast<float>((fraction * 60 - *minutes) * 60)};
  // Seconds that the field would show as 60 carry too: "59' 60\"" is a text the coordinate
  // entry refuses, and the field must read back.
  if (dms.seconds >= 60 || secondsText(dms.seconds) == u"60") {
    ++dms.minutes;
    dms.seconds = std::max(dms.seconds - 60.0f, 0.0f);
  }
  if (dms.minutes == 60) {
    const auto carried = ToInt16(static_cast<double>(dms.degrees) + 1);
    if (!carried) return std::nullopt;
    dms.degrees = *carried;
    dms.minutes = 0;
  }
  return dms;
}

std::optional<QString> CoordinateText(double value, bool GradDezimal) {
  // The sign is written on its own so that -0.5 keeps it although its degrees are 0.
  const QString sign = value < 0 ? QStringLiteral("-") : QString();
  const double magnitude = value < 0 ? -value : value;
  if (GradDezimal) return sign + FormatPlain(magnitude);

  const auto dms = SplitDegrees(magnitude);
  if (!dms) return std::nullopt;
  return sign + Str(static_cast<long long>(dms->degrees)) + QStringLiteral("°") +
         Str(static_cast<long long>(dms->minutes)) + QStringLiteral("' ") +
         secondsText(dms->seconds) + QStringLiteral("\"");
}

}  // namespace marvento
