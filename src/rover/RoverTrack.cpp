#include "rover/RoverTrack.h"

#include <QSaveFile>
#include <QXmlStreamWriter>

#include <cmath>

namespace marvento {

void RoverTrack::add(const TrackPoint& point) {
  if (m_broken || m_segments.isEmpty()) m_segments.append(QVector<TrackPoint>());
  m_broken = false;
  m_segments.last() << point;
}

void RoverTrack::clear() {
  m_segments.clear();
  m_waypoints.clear();
  m_broken = true;
}

QDateTime FixDateTime(const std::optional<QTime>& utc, const QDateTime& nowUtc) {
  if (!utc || !utc->isValid()) return nowUtc;
  QDateTime best;
  for (int day : {-1, 0, 1}) {
    const QDateTime candidate(nowUtc.date().addDays(day), *utc, Qt::UTC);
    if (!best.isValid() ||
        std::llabs(candidate.msecsTo(nowUtc)) < std::llabs(best.msecsTo(nowUtc))) {
      best = candidate;
    }
  }
  return best;
}

namespace {

QString number(double value, int decimals) {
  return QString::number(value, 'f', decimals);
}

QString timeText(const QDateTime& utc) {
  return utc.toUTC().toString(utc.time().msec() ? Qt::ISODateWithMs : Qt::ISODate);
}

}  // namespace

QByteArray GpxText(const RoverTrack& track) {
  QByteArray out;
  QXmlStreamWriter xml(&out);
  xml.setAutoFormatting(true);
  xml.writeStartDocument();
  xml.writeStartElement(QStringLiteral("gpx"));
  xml.writeDefaultNamespace(QStringLiteral("http://www.topografix.com/GPX/1/1"));
  xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.1"));
  xml.writeAttribute(QStringLiteral("creator"), QStringLiteral("Marvento"));
  const auto place = [&](const QString& element, const GeoPoint& p, const QDateTime& utc,
                         const std::optional<double>& height) {
    xml.writeStartElement(element);
    xml.writeAttribute(QStringLiteral("lat"), number(p.lat, 7));
    xml.writeAttribute(QStringLiteral("lon"), number(p.lon, 7));
    if (height && std::isfinite(*height)) {
      xml.writeTextElement(QStringLiteral("ele"), number(*height, 1));
    }
    if (utc.isValid()) xml.writeTextElement(QStringLiteral("time"), timeText(utc));
  };
  // GPX wants the waypoints before the tracks.
  for (const TrackWaypoint& w : track.waypoints()) {
    place(QStringLiteral("wpt"), w.position, w.utc, std::nullopt);
    xml.writeTextElement(QStringLiteral("name"), w.name);
    xml.writeEndElement();
  }
  if (!track.segments().isEmpty()) {
    xml.writeStartElement(QStringLiteral("trk"));
    xml.writeTextElement(QStringLiteral("name"), QStringLiteral("Marvento"));
    for (const auto& segment : track.segments()) {
      xml.writeStartElement(QStringLiteral("trkseg"));
      for (const TrackPoint& p : segment) {
        place(QStringLiteral("trkpt"), p.position, p.utc, p.heightM);
        xml.writeEndElement();
      }
      xml.writeEndElement();
    }
    xml.writeEndElement();
  }
  xml.writeEndElement();
  xml.writeEndDocument();
  return out;
}

QString WriteGpx(const QString& path, const RoverTrack& track) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) {
    return QStringLiteral("Die Datei kann nicht angelegt werden: %1").arg(file.errorString());
  }
  const QByteArray text = GpxText(track);
  if (file.write(text) != text.size() || !file.commit()) {
    return QStringLiteral("Die Datei wurde nicht geschrieben: %1").arg(file.errorString());
  }
  return {};
}

}  // namespace marvento
