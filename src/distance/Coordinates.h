#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>

namespace marvento {

// What reading a longitude and latitude pair from the two entry texts gave.
struct CoordinateRead {
  bool ok = false;
  double Lg = 0;   // decimal degrees, east positive; also set when only Br was refused
  double Br = 0;   // decimal degrees, north positive
  QString prompt;  // the text of the refusal message when not ok
};

// Reads the entry texts (blanks at both ends already removed), longitude first, so that
// only the longitude is reported when both are bad.
// Decimal form (GradDezimal): a number with comma or point; |Lg| < 180, |Br| < 90.
// Otherwise degrees, minutes and seconds such as  -13° 22' 30,5"  with the seconds mark as
// the last character; minutes up to 59.999 (longitude) or 59.99999 (latitude), seconds up
// to 59.99999, and the whole value below 180 or 90.
CoordinateRead ParseCoordinates(QStringView CoordLg, QStringView CoordBr, bool GradDezimal);

// The title of every coordinate refusal; it is shown with style 48 and no beep.
inline const QString kCoordinateTitle = QStringLiteral(" Falsche Gradeingabe !");

// Whole degrees, whole minutes and seconds of a value of 0 or more. The seconds are kept in
// single precision; seconds that the field would show as 60 carry into the minutes, and 60
// minutes into the degrees.
struct DegreesMinutesSeconds {
  std::int16_t degrees = 0;
  std::int16_t minutes = 0;
  float seconds = 0;
};
// Nothing when the degrees do not fit 16 bits (the runtime's overflow).
std::optional<DegreesMinutesSeconds> SplitDegrees(double a);

// The text the program writes into a coordinate field for a value in decimal degrees:
// "-" for a negative value, then the general form of the number without the exponent form
// (GradDezimal), or Str(degrees) "°" Str(minutes) "' " seconds with at most four decimals
// and the seconds mark. Nothing on overflow.
std::optional<QString> CoordinateText(double value, bool GradDezimal);

}  // namespace marvento
