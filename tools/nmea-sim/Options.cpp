#include "Options.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <map>
#include <set>

namespace marvento::nmeasim {

namespace {

bool ToDouble(const std::string& text, double& out) {
  if (text.empty()) return false;
  char* end = nullptr;
  errno = 0;
  const double v = std::strtod(text.c_str(), &end);
  if (errno != 0 || end != text.c_str() + text.size() || !std::isfinite(v)) return false;
  out = v;
  return true;
}

bool ToLong(const std::string& text, long& out) {
  if (text.empty()) return false;
  char* end = nullptr;
  errno = 0;
  const long v = std::strtol(text.c_str(), &end, 10);
  if (errno != 0 || end != text.c_str() + text.size()) return false;
  out = v;
  return true;
}

std::string Range(const std::string& name, const std::string& value, const char* range) {
  return "invalid value '" + value + "' for --" + name + ": expected " + range;
}

}  // namespace

bool IsStandardBaud(long baud) {
  static const std::set<long> rates = {300,   600,   1200,  2400,   4800,  9600,
                                       19200, 38400, 57600, 115200, 230400};
  return rates.contains(baud);
}

ParseResult ParseOptions(const std::vector<std::string>& args) {
  ParseResult r;
  Options& o = r.options;
  TrackConfig& t = o.track;
  bool dropoutEveryGiven = false;
  std::string firstTrackOption;

  auto number = [&](double& field, double lo, double hi, const char* range) {
    return [&field, lo, hi, range](const std::string& name, const std::string& v) -> std::string {
      double d = 0;
      if (!ToDouble(v, d) || d < lo || d > hi) return Range(name, v, range);
      field = d;
      return {};
    };
  };
  auto integer = [&](auto& field, long lo, long hi, const char* range) {
    return [&field, lo, hi, range](const std::string& name, const std::string& v) -> std::string {
      long n = 0;
      if (!ToLong(v, n) || n < lo || n > hi) return Range(name, v, range);
      field = static_cast<std::remove_reference_t<decltype(field)>>(n);
      return {};
    };
  };
  auto text = [](std::string& field) {
    return [&field](const std::string& name, const std::string& v) -> std::string {
      if (v.empty()) return "--" + name + " needs a non-empty value";
      field = v;
      return {};
    };
  };

  using Handler = std::function<std::string(const std::string&, const std::string&)>;
  const std::map<std::string, Handler> general = {
      {"link", text(o.link)},
      {"device", text(o.device)},
      {"replay", text(o.replay)},
      {"baud",
       [&](const std::string& name, const std::string& v) -> std::string {
         long n = 0;
         if (!ToLong(v, n) || !IsStandardBaud(n))
           return Range(name, v, "a standard rate such as 4800, 9600 or 115200");
         o.baud = n;
         return {};
       }},
      {"seed",
       [&](const std::string& name, const std::string& v) -> std::string {
         long n = 0;
         if (!ToLong(v, n) || n < 0 || n > 4294967295L)
           return Range(name, v, "a whole number from 0 to 4294967295");
         o.seed = static_cast<unsigned>(n);
         o.seedGiven = true;
         return {};
       }},
      {"duration", number(o.duration, 0, 1e9, "seconds, 0 or more")},
  };
  const std::map<std::string, Handler> trackOptions = {
      {"lat", number(t.lat, -90, 90, "degrees from -90 (south) to 90 (north)")},
      {"lon", number(t.lon, -180, 180, "degrees from -180 (west) to 180 (east)")},
      {"speed", number(t.speedKn, 0, 10000, "knots from 0 to 10000")},
      {"course", number(t.courseDeg, 0, 360, "degrees from 0 to 360")},
      {"height", number(t.height, -1000, 100000, "metres from -1000 to 100000")},
      {"height-noise", number(t.heightNoise, 0, 1000, "metres from 0 to 1000")},
      {"satellites", integer(t.satellites, 0, 12, "a count from 0 to 12")},
      {"dropout", integer(t.dropout, 0, 1000000, "seconds, 0 or more")},
      {"dropout-every",
       [&](const std::string& name, const std::string& v) -> std::string {
         long n = 0;
         if (!ToLong(v, n) || n < 1 || n > 1000000) return Range(name, v, "seconds, 1 or more");
         t.dropoutEvery = static_cast<int>(n);
         dropoutEveryGiven = true;
         return {};
       }},
      {"dropout-satellites", integer(t.dropoutSatellites, 0, 12, "a count from 0 to 12")},
      {"talker",
       [&](const std::string& name, const std::string& v) -> std::string {
         if (v.size() != 2 || v[0] < 'A' || v[0] > 'Z' || v[1] < 'A' || v[1] > 'Z')
           return Range(name, v, "two capital letters such as GP or GN");
         o.talker = v;
         return {};
       }},
  };

  for (std::size_t i = 0; i < args.size(); ++i) {
    const std::string& arg = args[i];
    if (arg == "-h" || arg == "--help") {
      o.help = true;
      continue;
    }
    if (!arg.starts_with("--") || arg.size() == 2) {
      r.error = "unexpected argument '" + arg + "'";
      return r;
    }
    std::string name = arg.substr(2);
    std::string value;
    bool inlineValue = false;
    if (const auto eq = name.find('='); eq != std::string::npos) {
      value = name.substr(eq + 1);
      name.resize(eq);
      inlineValue = true;
    }
    const Handler* handler = nullptr;
    if (auto it = general.find(name); it != general.end()) handler = &it->second;
    if (auto it = trackOptions.find(name); it != trackOptions.end()) {
      handler = &it->second;
      if (firstTrackOption.empty()) firstTrackOption = name;
    }
    if (!handler) {
      r.error = "unknown option '--" + name + "'";
      return r;
    }
    if (!inlineValue) {
      if (i + 1 >= args.size()) {
        r.error = "--" + name + " needs a value";
        return r;
      }
      value = args[++i];
    }
    if (std::string e = (*handler)(name, value); !e.empty()) {
      r.error = e;
      return r;
    }
  }

  if (o.help) return r;
  if (!o.link.empty() && !o.device.empty()) {
    r.error = "--link and --device exclude each other";
  } else if (!o.replay.empty() && !firstTrackOption.empty()) {
    r.error = "--" + firstTrackOption + " has no effect with --replay";
  } else if (dropoutEveryGiven && t.dropout == 0) {
    r.error = "--dropout-every needs --dropout";
  } else if (t.dropout >= t.dropoutEvery) {
    r.error = "--dropout (" + std::to_string(t.dropout) +
              " s) must be shorter than --dropout-every (" + std::to_string(t.dropoutEvery) + " s)";
  }
  return r;
}

std::string Usage(const std::string& program) {
  return "Usage: " + program + R"( [OPTION]...
Simulate a GPS receiver that sends NMEA 0183 sentences once a second.

Without --device a pseudo-terminal is opened and the path of its serial side is
printed on standard output (or the path given with --link). Point a serial port
of Marvento at that path: in ~/.config/Marvento/Marvento.conf, group [Ports],
for example Com9=/tmp/gps-sim, then choose Com9 in the settings dialog.

Output:
  --link PATH          make PATH a symbolic link to the pseudo-terminal and
                       print PATH; the link is removed on exit
  --device PATH        write to an existing serial port or pseudo-terminal
  --baud RATE          line rate, default 4800; RATE/10 characters a second.
                       Generated sentences that do not fit into a second are
                       dropped; a captured second runs on into the next ones
  --duration SECONDS   stop after this time (default: run until interrupted)

Source (default: a generated track, UTC time from the system clock):
  --replay FILE        play a capture file line by line, one second per burst,
                       from the start again at its end; lines starting with #
                       are skipped
  --lat DEGREES        start latitude, south negative (default 52.52)
  --lon DEGREES        start longitude, west negative (default 13.4)
  --speed KNOTS        speed over ground (default 0)
  --course DEGREES     initial course, followed along a great circle (default 0)
  --height METRES      antenna height above sea level (default 35)
  --height-noise M     heights vary at random within +-M metres (default 1.5)
  --satellites N       satellites in use, 0 to 12 (default 8)
  --dropout SECONDS    lose the fix for this long in every period: GGA with
                       quality 0, RMC and GLL with status V (default 0: never)
  --dropout-every S    length of that period in seconds (default 60)
  --dropout-satellites N  satellites reported while the fix is lost (default 0)
  --talker XX          talker of GGA, GSA, RMC and GLL (default GP); GN gives a
                       multi-system receiver (Marvento reads every talker)
  --seed N             seed for the height noise, for repeatable runs

  -h, --help           show this help and exit

Exit status: 0 when stopped by --duration, SIGINT or SIGTERM; 1 when the port,
pseudo-terminal or capture file fails; 2 on a bad command line.
)";
}

}  // namespace marvento::nmeasim
