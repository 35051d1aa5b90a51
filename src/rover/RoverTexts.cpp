#include "rover/RoverTexts.h"

#include <QLocale>

#include <cmath>

namespace marvento {

QString DistanceText(double metres) {
  const QLocale german(QLocale::German, QLocale::Germany);
  if (metres < 995) {
    // Tens of metres: a GPS fix is no better.
    return QStringLiteral("%1 m").arg(std::lround(metres / 10) * 10);
  }
  if (metres < 9950) return german.toString(metres / 1000, 'f', 1) + QStringLiteral(" km");
  return QStringLiteral("%1 km").arg(std::lround(metres / 1000));
}

QString DurationText(double seconds) {
  if (seconds < 60) return QStringLiteral("%1 s").arg(std::max(1L, std::lround(seconds / 5) * 5));
  const long minutes = std::lround(seconds / 60);
  if (minutes < 60) return QStringLiteral("%1 min").arg(minutes);
  return QStringLiteral("%1 h %2 min").arg(minutes / 60).arg(minutes % 60);
}

QString CompassName(double courseDeg) {
  static const char* const kNames[] = {"Norden", "Nordosten", "Osten",  "Südosten",
                                       "Süden",  "Südwesten", "Westen", "Nordwesten"};
  const double c = std::fmod(std::fmod(courseDeg, 360.0) + 360.0, 360.0);
  return QString::fromUtf8(kNames[int(std::floor((c + 22.5) / 45.0)) % 8]);
}

QString BoundaryLine(const BoundaryAhead& ahead, std::optional<double> speedMs, bool moving) {
  const QString next = CellLocator(ahead.next);
  if (!moving) {
    return QStringLiteral("Feldrand %1 nach %2, dahinter %3")
        .arg(DistanceText(ahead.distanceM), CompassName(ahead.bearingDeg), next);
  }
  QString line = QStringLiteral("Nächstes Feld %1 in %2").arg(next, DistanceText(ahead.distanceM));
  if (speedMs && *speedMs > 0) {
    line += QStringLiteral(" (%1)").arg(DurationText(ahead.distanceM / *speedMs));
  }
  return line;
}

std::optional<double> ApproachWatch::next(const GridCell& ahead, double distanceM) {
  if (!m_ahead || !(*m_ahead == ahead) || distanceM > kFarM * 1.5) {
    m_farSaid = m_nearSaid = false;
  }
  m_ahead = ahead;
  // Once near, the far mark is behind: a first fix already inside 200 m says only that.
  if (distanceM <= kNearM) {
    m_farSaid = true;
    if (m_nearSaid) return std::nullopt;
    m_nearSaid = true;
    return kNearM;
  }
  if (distanceM <= kFarM && !m_farSaid) {
    m_farSaid = true;
    return kFarM;
  }
  return std::nullopt;
}

void ApproachWatch::reset() {
  m_ahead.reset();
  m_farSaid = m_nearSaid = false;
}

}  // namespace marvento
