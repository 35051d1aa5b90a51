#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace marvento::nmeasim {

// XOR of every character of the body, the text between "$" and "*".
std::uint8_t Checksum(std::string_view body);

// "$", the body, "*", two upper-case hex digits of its checksum, CR LF.
std::string Frame(std::string_view body);

// True if the sentence ("$...*HH", line end optional) carries the checksum of its body.
bool HasValidChecksum(std::string_view sentence);

struct CoordText {
  std::string value;  // ddmm.mmmm or dddmm.mmmm
  char hemisphere;    // 'N'/'S' or 'E'/'W'
};

// Latitude in decimal degrees, north positive, |deg| <= 90, as NMEA ddmm.mmmm.
// Minutes are rounded to four places; a value that rounds to zero counts as north.
CoordText LatitudeText(double deg);

// Longitude in decimal degrees, east positive, |deg| <= 180, as NMEA dddmm.mmmm.
CoordText LongitudeText(double deg);

// UTC time of day of a POSIX time as hhmmss.00, and its date as ddmmyy.
std::string UtcTimeText(std::time_t t);
std::string UtcDateText(std::time_t t);

}  // namespace marvento::nmeasim
