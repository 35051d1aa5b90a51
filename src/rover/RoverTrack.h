#pragma once

#include "distance/StationPair.h"

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QTime>
#include <QVector>

#include <optional>

namespace marvento {

struct TrackPoint {
  GeoPoint position;
  QDateTime utc;
  std::optional<double> heightM;
};

struct TrackWaypoint {
  GeoPoint position;
  QDateTime utc;
  QString name;  // the locator of the square entered
};

// The track of this run: the fixes in segments, a new segment after each loss of reception,
// and a waypoint at each square crossed.
class RoverTrack {
 public:
  void add(const TrackPoint& point);
  // Reception was lost: the next point starts a new segment.
  void breakSegment() { m_broken = true; }
  void mark(const TrackWaypoint& waypoint) { m_waypoints << waypoint; }
  void clear();

  const QVector<QVector<TrackPoint>>& segments() const { return m_segments; }
  const QVector<TrackWaypoint>& waypoints() const { return m_waypoints; }
  bool isEmpty() const { return m_segments.isEmpty() && m_waypoints.isEmpty(); }

 private:
  QVector<QVector<TrackPoint>> m_segments;
  QVector<TrackWaypoint> m_waypoints;
  bool m_broken = true;
};

// The date and time of a fix that carries only its time of day, taken on the day that puts it
// nearest to the system clock (a fix just before midnight read just after it is yesterday's).
// Without a time from the receiver, the system clock's.
QDateTime FixDateTime(const std::optional<QTime>& utc, const QDateTime& nowUtc);

// The track as a GPX 1.1 document.
QByteArray GpxText(const RoverTrack& track);

// Writes the document whole or not at all; the German reason on failure, else empty.
QString WriteGpx(const QString& path, const RoverTrack& track);

}  // namespace marvento
