#pragma once

#include <QString>

#include <optional>

class QLabel;

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

// The two captions of one solve. A caption that the computation did not reach stays
// unset, so that the label keeps its earlier text.
struct DistanceBearing {
  std::optional<QString> entfernung;  // distance, with its leading blanks and unit
  std::optional<QString> richtung;    // "ddd,d °" or "-"
  int error = 0;                      // a RunError that ended the computation, or 0
};

// Great-circle distance and initial bearing from the own to the remote station on a
// sphere. Latitudes and longitudes in decimal degrees, north and east positive; the radius
// is a text in kilometres as the user picked it (decimal comma or point). At 20030 km
// and beyond, or at 0 km and below, the bearing is "-". Uses the machine's decimal sign.
DistanceBearing SolveDistanceBearing(double MyBr, double FremdBr, double MyLg, double FremdLg,
                                     const QString& radiusText);

// Solves and writes the captions that were reached into the two labels. Returns the
// run-time error that ended the computation, or 0.
int ShowDistanceBearing(double MyBr, double FremdBr, double MyLg, double FremdLg,
                        const QString& radiusText, QLabel* lblEntfernung, QLabel* lblRichtung);

}  // namespace marvento
