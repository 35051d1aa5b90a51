#include "gps/GpsdReply.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QRegularExpression>

#include <gps.h>

#include <cmath>
#include <memory>
#include <optional>

namespace marvento {

namespace {

bool finite(double value) {
  return std::isfinite(value);
}

// gpsd's time as a date; nothing for a time that no fix can have (before 1980, after 9999).
QDateTime utcOf(const timespec_t& time) {
  constexpr long long kFirst = 315964800LL;    // 1980-01-06, the start of GPS time
  constexpr long long kLast = 253402300799LL;  // 9999-12-31 23:59:59
  if (time.tv_sec < kFirst || time.tv_sec > kLast || time.tv_nsec < 0 ||
      time.tv_nsec >= 1000000000L) {
    return {};
  }
  const qint64 ms = static_cast<qint64>(time.tv_sec) * 1000 + time.tv_nsec / 1000000;
  return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC);
}

GpsdFix fixOf(const gps_data_t& data) {
  GpsdFix fix;
  const gps_fix_t& f = data.fix;
  if ((data.set & MODE_SET) == 0 || f.mode < MODE_2D || (data.set & LATLON_SET) == 0) return fix;
  if (!finite(f.latitude) || !finite(f.longitude) || std::fabs(f.latitude) > 90.0 ||
      std::fabs(f.longitude) > 180.0) {
    return fix;
  }
  fix.valid = true;
  fix.lat = f.latitude;
  fix.lon = f.longitude;
  if (f.mode >= MODE_3D) {
    // Daemons before 3.21 send only "alt", which meant the height above sea level there.
    if (finite(f.altMSL)) {
      fix.altMSL = f.altMSL;
    } else if (finite(f.altitude)) {
      fix.altMSL = f.altitude;
    }
  }
  if ((data.set & SPEED_SET) != 0 && finite(f.speed) && f.speed >= 0.0) fix.speed = f.speed;
  if ((data.set & TRACK_SET) != 0 && finite(f.track) && f.track >= 0.0 && f.track <= 360.0) {
    fix.course = f.track;
  }
  if ((data.set & TIME_SET) != 0) fix.utc = utcOf(f.time);
  return fix;
}

// libgps 3.22 loops for ever on many odd but well-formed objects (a field without a name, a
// name longer than its buffer, a repeated "class", a text where a number belongs). It is handed
// a report of gpsd's own shape, built from the fields Marvento reads and checked value by value:
// a TPV or SKY class, numbers where gpsd writes numbers, a time in gpsd's form. Anything else
// is left out; a report can lose nothing it needs.
bool gpsdTime(const QString& text) {
  static const QRegularExpression form(
      QStringLiteral("^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}(\\.[0-9]{1,9})?Z$"));
  return form.match(text).hasMatch();
}

void copyNumbers(const QJsonObject& from, QJsonObject& to,
                 std::initializer_list<const char*> names) {
  for (const char* name : names) {
    const QJsonValue value = from.value(QLatin1String(name));
    if (value.isDouble() && std::isfinite(value.toDouble())) to.insert(QLatin1String(name), value);
  }
}

std::optional<QJsonObject> gpsdShaped(const QJsonObject& report) {
  const QString kind = report.value(QStringLiteral("class")).toString();
  if (kind != u"TPV" && kind != u"SKY") return std::nullopt;
  QJsonObject kept;
  kept.insert(QStringLiteral("class"), kind);
  if (kind == u"TPV") {
    const double mode = report.value(QStringLiteral("mode")).toDouble(-1);
    if (mode != std::floor(mode) || mode < 0 || mode > 3) return std::nullopt;
    kept.insert(QStringLiteral("mode"), static_cast<int>(mode));
    const QJsonValue time = report.value(QStringLiteral("time"));
    if (time.isString() && gpsdTime(time.toString())) kept.insert(QStringLiteral("time"), time);
    copyNumbers(report, kept, {"lat", "lon", "alt", "altMSL", "altHAE", "speed", "track"});
    return kept;
  }
  copyNumbers(report, kept, {"nSat", "uSat"});
  const QJsonValue satellites = report.value(QStringLiteral("satellites"));
  if (satellites.isArray()) {
    QJsonArray list;
    for (const QJsonValue& entry : satellites.toArray()) {
      const QJsonObject given = entry.toObject();
      QJsonObject satellite;
      copyNumbers(given, satellite, {"PRN", "el", "az", "ss"});
      const QJsonValue used = given.value(QStringLiteral("used"));
      if (used.isBool()) satellite.insert(QStringLiteral("used"), used);
      list.append(satellite);
    }
    kept.insert(QStringLiteral("satellites"), list);
  }
  return kept;
}

}  // namespace

GpsdReply ReadGpsdReply(QByteArrayView line) {
  GpsdReply reply;
  // libgps 3.22 loops for ever on some malformed text, such as {"a":"""class":"WATCH"}, and
  // takes what stands before a cut as read: only one well-formed JSON object reaches it.
  line = line.trimmed();
  if (!line.startsWith('{') || !line.endsWith('}')) return reply;
  QJsonParseError error;
  const QJsonDocument document = QJsonDocument::fromJson(line.toByteArray(), &error);
  if (error.error != QJsonParseError::NoError || !document.isObject()) return reply;
  // gps_unpack wants a writable text with its end mark; the structure is large, so it lives on
  // the heap.
  const std::optional<QJsonObject> shaped = gpsdShaped(document.object());
  if (!shaped) return reply;
  QByteArray text = QJsonDocument(*shaped).toJson(QJsonDocument::Compact);
  auto data = std::make_unique<gps_data_t>();
  if (gps_unpack(text.data(), data.get()) != 0) return reply;
  if ((data->set & MODE_SET) != 0) {
    reply.kind = GpsdReply::Kind::Tpv;
    reply.fix = fixOf(*data);
  } else if ((data->set & SATELLITE_SET) != 0) {
    reply.kind = GpsdReply::Kind::Sky;
    // Without a list of satellites the count of used ones is unknown, not zero.
    if (data->satellites_visible > 0 && data->satellites_used >= 0 &&
        data->satellites_used <= data->satellites_visible) {
      reply.satellitesUsed = data->satellites_used;
    }
  }
  return reply;
}

int GpsdReplyReader::add(QByteArrayView bytes) {
  int tpvCount = 0;
  while (!bytes.isEmpty()) {
    const qsizetype end = bytes.indexOf('\n');
    const QByteArrayView piece = end < 0 ? bytes : bytes.first(end);
    if (!m_dropping) {
      if (m_pending.size() + piece.size() > kMaxLine) {
        m_pending.clear();
        m_dropping = true;
      } else {
        m_pending += piece;
      }
    }
    if (end < 0) break;
    if (!m_dropping) line(m_pending, tpvCount);
    m_pending.clear();
    m_dropping = false;
    bytes = bytes.sliced(end + 1);
  }
  return tpvCount;
}

void GpsdReplyReader::clear() {
  *this = GpsdReplyReader();
}

void GpsdReplyReader::line(QByteArrayView text, int& tpvCount) {
  const GpsdReply reply = ReadGpsdReply(text);
  switch (reply.kind) {
    case GpsdReply::Kind::Other: return;
    case GpsdReply::Kind::Sky:
      if (reply.satellitesUsed) {
        m_satellitesUsed = reply.satellitesUsed;
        if (m_latest) m_latest->satellitesUsed = m_satellitesUsed;
      }
      return;
    case GpsdReply::Kind::Tpv:
      m_latest = reply.fix;
      m_latest->satellitesUsed = m_satellitesUsed;
      ++tpvCount;
      return;
  }
}

}  // namespace marvento
