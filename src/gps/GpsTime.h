#pragma once

#include <QString>
#include <QTime>

#include <optional>

namespace marvento {

class Clock;

// The UTC field hhmmss.ss taken apart for the status panel. A field without a fraction is
// read as hhmmss. With a point too far left, minutes and hours stay empty, and the time is
// not one of the day.
struct UtcTimeParts {
  QString secRaw;    // two digits, the point and the fraction: "19.00"
  QString secText;   // whole seconds begun, at least two digits: "19" for 19.60
  QString minText;   // "35"
  QString hourText;  // "12"
  QString shown;     // "12:35:19"
  // Hours 0 to 23, minutes and seconds 0 to 59, and 60 only as the leap second after 23:59.
  bool inRange = false;
};
UtcTimeParts SplitUtc(const QString& utcText);

// The time of day the clock is to be set to: its own hour, minute and second from GPS (the
// seconds of the sentence plus 0.2, rounded), or nothing when the seconds of the clock
// differ by less than 0.5, the clock's seconds or hour read 00, or the new seconds fall
// outside [0, 60). A second value of 60 carries into the next minute.
std::optional<QTime> CorrectedTime(const UtcTimeParts& utc, QTime pcTime);

struct GpsTimeStep {
  QString shown;       // the text for the second panel
  int clockError = 0;  // the system's error number when it refused to set the clock
};

// The time step of a poll for a numeric UTC field: corrects the clock if gpsZeit is set.
GpsTimeStep ApplyGpsTime(const QString& utcText, bool gpsZeit, Clock& clock);

// What lbInfo says when the system refused to set the clock.
QString ClockRefusedText(int error);

}  // namespace marvento
