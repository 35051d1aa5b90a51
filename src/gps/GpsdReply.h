#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QDateTime>

#include <optional>

namespace marvento {

// What Marvento takes from gpsd: the fix of a TPV report, with the satellite count of a SKY
// report beside it.
struct GpsdFix {
  // A 2D or 3D fix with a finite position in range; nothing else below counts without it.
  bool valid = false;
  double lat = 0.0;              // degrees, north positive, within [-90, 90]
  double lon = 0.0;              // degrees, east positive, within [-180, 180]
  std::optional<double> altMSL;  // metres above mean sea level; 3D fixes only
  std::optional<int> satellitesUsed;
  std::optional<double> speed;   // over ground, metres per second, not negative
  std::optional<double> course;  // over ground, degrees from true north, within [0, 360]
  QDateTime utc;                 // time of the fix; invalid when the report gave none
};

// One line of gpsd's JSON stream, read by libgps's own parser.
struct GpsdReply {
  enum class Kind {
    Other,  // any other class (VERSION, DEVICES, WATCH, ...) or text gpsd would not send
    Tpv,    // a position report, with or without a fix
    Sky,    // a satellite report
  };
  Kind kind = Kind::Other;
  GpsdFix fix;                        // Tpv; satellitesUsed stays empty
  std::optional<int> satellitesUsed;  // Sky, when it listed its satellites
};
GpsdReply ReadGpsdReply(QByteArrayView line);

// Cuts gpsd's byte stream into lines and keeps what the latest reports said.
class GpsdReplyReader {
 public:
  // A line longer than this is no report of gpsd's; it is dropped up to its line end.
  static constexpr qsizetype kMaxLine = 64 * 1024;

  // Takes the bytes as they came from the socket; returns how many TPV reports they ended.
  int add(QByteArrayView bytes);
  // Forgets everything, for a new connection.
  void clear();

  // The latest TPV report's fix, carrying the satellite count of the latest SKY report.
  const std::optional<GpsdFix>& latest() const { return m_latest; }
  bool skySeen() const { return m_satellitesUsed.has_value(); }

 private:
  void line(QByteArrayView text, int& tpvCount);

  QByteArray m_pending;
  bool m_dropping = false;  // inside an overlong line
  std::optional<GpsdFix> m_latest;
  std::optional<int> m_satellitesUsed;
};

}  // namespace marvento
