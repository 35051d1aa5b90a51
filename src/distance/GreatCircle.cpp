#include "distance/GreatCircle.h"

#include "distance/RunError.h"
#include "platform/Format.h"
#include "platform/Numbers.h"

#include <cmath>

namespace marvento {

namespace {

// Degrees to radians with the rounded pi, multiplied first and divided second.
double rad(double degrees) {
  return degrees * kPi / 180;
}

double clamp(double x) {
  if (x >= 1.0) x = kUpperClamp;
  if (x <= -1.0) x = kLowerClamp;
  return x;
}

// A division that reports what the runtime would: n / 0 is error 11, 0 / 0 error 6, and a
// quotient too large for a double error 6.
Checked divide(double numerator, double denominator) {
  if (denominator == 0) return {0, numerator == 0 ? kOverflow : kDivisionByZero};
  const double q = numerator / denominator;
  if (!std::isfinite(q)) return {0, std::isnan(q) ? kInvalidCall : kOverflow};
  return {q, kNoError};
}

}  // namespace

Checked ArcCos(double x) {
  const double radicand = -x * x + 1;
  if (!(radicand >= 0)) return {0, kInvalidCall};
  const double s = std::sqrt(radicand);
  const Checked ratio = divide(-x, s);
  if (ratio.error) return ratio;
  return {std::atan(ratio.value) + 2 * std::atan(1.0), kNoError};
}

Checked RadiusKm(const QString& radiusText) {
  const double radius = Val(ToDotDecimal(radiusText));
  if (!std::isfinite(radius)) return {0, kOverflow};
  return {radius, kNoError};
}

GreatCircle SolveGreatCircle(double MyBr, double FremdBr, double MyLg, double FremdLg,
                             double radiusKm) {
  GreatCircle out;
  const double sinMyBr = std::sin(rad(MyBr));
  const double cosMyBr = std::cos(rad(MyBr));
  const double sinFremdBr = std::sin(rad(FremdBr));
  const double dLgRad = rad(FremdLg) - rad(MyLg);

  const double q =
      clamp(sinMyBr * sinFremdBr + std::cos(rad(FremdBr)) * cosMyBr * std::cos(dLgRad));
  const Checked d = ArcCos(q);
  if (d.error) {
    out.error = d.error;
    return out;
  }

  const double km = radiusKm * kFullCircle / 360 * d.value * 180 / kPi;
  if (!std::isfinite(km)) {
    out.error = kOverflow;
    return out;
  }
  out.km = km;
  if (km <= 0 || km >= kDistanceLimitKm) return out;

  const Checked x = divide(sinFremdBr - std::cos(d.value) * sinMyBr, std::sin(d.value) * cosMyBr);
  if (x.error) {
    out.error = x.error;
    return out;
  }
  const Checked angle = ArcCos(clamp(x.value));
  if (angle.error) {
    out.error = angle.error;
    return out;
  }
  double b = angle.value * 180 / kPi;
  if (std::sin(dLgRad) < 0) b = 360 - b;
  out.bearing = b;
  return out;
}

QString DistanceCaption(double km) {
  if (km < 1) return QStringLiteral("   ") + Format(km * 1000, u"0.00") + QStringLiteral(" m");
  if (km < 10) return QStringLiteral("  ") + Format(km * 1000, u"0.0") + QStringLiteral(" m");
  return QStringLiteral(" ") + Format(km, u"0.00") + QStringLiteral(" km");
}

QString BearingCaption(std::optional<double> bearing) {
  if (!bearing) return QStringLiteral("-");
  return Format(*bearing, u"##0.0##") + QStringLiteral(" °");
}

DistanceBearing SolveDistanceBearing(double MyBr, double FremdBr, double MyLg, double FremdLg,
                                     const QString& radiusText) {
  DistanceBearing out;
  const Checked radius = RadiusKm(radiusText);
  if (radius.error) {
    out.error = radius.error;
    return out;
  }
  const GreatCircle r = SolveGreatCircle(MyBr, FremdBr, MyLg, FremdLg, radius.value);
  out.error = r.error;
  if (r.km) out.entfernung = DistanceCaption(*r.km);
  if (r.bearing || r.bearingMeaningless()) out.richtung = BearingCaption(r.bearing);
  return out;
}

}  // namespace marvento
