#pragma once

#include <QString>

#include <optional>


namespace marvento {

// The rounded constants the results are defined with; they are deliberately not the
// full-precision values.
inline constexpr double kPi = 3.14159265358979;
inline constexpr double kFullCircle = 6.28318530717959;
inline constexpr double kUpperClamp = 0.999999999999999;
inline constexpr double kLowerClamp = -0.999999999999999;
inline constexpr double kDistanceLimitKm = 20030;

// A value, or the run-time error that stopped its computation.
struct Checked {
  double value = 0;
  int error = 0;  // a RunError, 0 when the value holds
};

// Arc cosine in radians, for -1 < x < 1. At exactly +-1 it divides by zero (error 11);
// beyond, or for NaN, the square root has no value (error 5).
Checked ArcCos(double x);

// The radius of Combo1 as a number of kilometres: the text with a decimal comma or point, read
// like Val (unreadable text counts as 0). A text too large for a double is error 6.
Checked RadiusKm(const QString& radiusText);

// The numbers of one solve. A quantity the computation did not reach stays unset. The
// bearing is also unset, with no error, where it has no meaning: at 20030 km and beyond, or
// at 0 km and below.
struct GreatCircle {
  std::optional<double> km;       // distance along the sphere, kilometres
  std::optional<double> bearing;  // initial bearing, degrees clockwise from north, [0, 360]
  int error = 0;                  // a RunError that ended the computation, or 0
  bool bearingMeaningless() const { return km && !bearing && error == 0; }
};

// Great-circle distance and initial bearing from the own to the remote station on a sphere
// of radiusKm kilometres (any finite value; 0 and below give no bearing). Latitudes and
// longitudes in decimal degrees, north and east positive; the positions are clamped away
// from coincidence and from the antipode, so the distance lies within radius * (pi - 4.5e-8).
GreatCircle SolveGreatCircle(double MyBr, double FremdBr, double MyLg, double FremdLg,
                             double radiusKm);

// " 353,31 km", below 10 km in metres ("  5559,7 m", "   555,97 m"). Machine's decimal sign.
QString DistanceCaption(double km);
// "69,74 °", "-" where the bearing has no meaning.
QString BearingCaption(std::optional<double> bearing);

// The two captions of one solve. A caption that the computation did not reach stays
// unset, so that the label keeps its earlier text.
struct DistanceBearing {
  std::optional<QString> entfernung;  // distance, with its leading blanks and unit
  std::optional<QString> richtung;    // "ddd,d °" or "-"
  int error = 0;                      // a RunError that ended the computation, or 0
};

// Reads the radius text, solves and formats both captions.
DistanceBearing SolveDistanceBearing(double MyBr, double FremdBr, double MyLg, double FremdLg,
                                     const QString& radiusText);

}  // namespace marvento
