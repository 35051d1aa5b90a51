#include "NmeaText.h"

#include <cmath>
#include <cstdio>

namespace marvento::nmeasim {

std::uint8_t Checksum(std::string_view body) {
  std::uint8_t sum = 0;
  for (char c : body) sum ^= static_cast<std::uint8_t>(c);
  return sum;
}

std::string Frame(std::string_view body) {
  char tail[8];
  std::snprintf(tail, sizeof tail, "*%02X\r\n", Checksum(body));
  std::string s;
  s.reserve(body.size() + 6);
  s += '$';
  s += body;
  s += tail;
  return s;
}

bool HasValidChecksum(std::string_view sentence) {
  if (sentence.empty() || (sentence[0] != '$' && sentence[0] != '!')) return false;
  const auto star = sentence.rfind('*');
  if (star == std::string_view::npos || star + 3 > sentence.size()) return false;
  unsigned given = 0;
  for (char c : sentence.substr(star + 1, 2)) {
    given <<= 4;
    if (c >= '0' && c <= '9')
      given |= static_cast<unsigned>(c - '0');
    else if (c >= 'A' && c <= 'F')
      given |= static_cast<unsigned>(c - 'A' + 10);
    else if (c >= 'a' && c <= 'f')
      given |= static_cast<unsigned>(c - 'a' + 10);
    else
      return false;
  }
  const auto rest = sentence.substr(star + 3);
  if (!(rest.empty() || rest == "\r\n" || rest == "\n" || rest == "\r")) return false;
  return given == Checksum(sentence.substr(1, star - 1));
}

namespace {

// Degrees and minutes with the minutes rounded to four places, carrying 60' into the degree.
CoordText DegreesMinutes(double deg, int degDigits, char plus, char minus) {
  const double mag = std::fabs(deg);
  long whole = static_cast<long>(std::floor(mag));
  long tenThousandths = std::lround((mag - static_cast<double>(whole)) * 60.0 * 10000.0);
  if (tenThousandths >= 600000) {
    ++whole;
    tenThousandths -= 600000;
  }
  char buf[64];
  std::snprintf(buf, sizeof buf, "%0*ld%02ld.%04ld", degDigits, whole, tenThousandths / 10000,
                tenThousandths % 10000);
  const bool zero = whole == 0 && tenThousandths == 0;
  return {buf, (deg < 0 && !zero) ? minus : plus};
}

std::tm Utc(std::time_t t) {
  std::tm tm{};
  gmtime_r(&t, &tm);
  return tm;
}

}  // namespace

CoordText LatitudeText(double deg) {
  return DegreesMinutes(deg, 2, 'N', 'S');
}

CoordText LongitudeText(double deg) {
  return DegreesMinutes(deg, 3, 'E', 'W');
}

std::string UtcTimeText(std::time_t t) {
  const std::tm tm = Utc(t);
  char buf[64];
  std::snprintf(buf, sizeof buf, "%02d%02d%02d.00", tm.tm_hour, tm.tm_min, tm.tm_sec);
  return buf;
}

std::string UtcDateText(std::time_t t) {
  const std::tm tm = Utc(t);
  char buf[64];
  std::snprintf(buf, sizeof buf, "%02d%02d%02d", tm.tm_mday, tm.tm_mon + 1, tm.tm_year % 100);
  return buf;
}

}  // namespace marvento::nmeasim
