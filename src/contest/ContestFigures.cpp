#include "contest/ContestFigures.h"

#include "contest/IaruPoints.h"
#include "contest/Wgs84.h"
#include "locator/CoordsToLocator.h"

#include <QLabel>
#include <QLocale>

namespace marvento {

namespace {

// The 6-character square of a station: from its locator, or where it was entered as
// coordinates, from its position.
std::optional<ContestSquare> squareOf(const QString& locator, const std::optional<GeoPoint>& at) {
  if (auto s = SquareOf(locator.trimmed())) return s;
  if (at) return SquareOf(CoordsToLocator6(at->lon, at->lat));
  return std::nullopt;
}

}  // namespace

ContestFigures::ContestFigures(QLabel* points, QLabel* wgs84, QObject* parent)
    : QObject(parent), m_points(points), m_wgs84(wgs84) {}

QString ContestFigures::pointsText(const StationPair& pair) {
  if (!pair.solved) return {};
  const auto own = squareOf(pair.ownLocator, pair.own);
  const auto remote = squareOf(pair.remoteLocator, pair.remote);
  if (!own || !remote) return {};
  return QStringLiteral("QSO-Punkte (IARU): %1").arg(IaruPoints(*own, *remote));
}

QString ContestFigures::wgs84Text(const StationPair& pair) {
  if (!pair.solved || !pair.own || !pair.remote) return {};
  const Wgs84Path p = Wgs84Inverse(*pair.own, *pair.remote);
  const QLocale locale;
  if (pair.reverse) {
    // As F3 shows it: the opposite of the bearing.
    double back = p.bearing + 180.0;
    if (back >= 360.0) back -= 360.0;
    return QStringLiteral("WGS84: %1 km, Gegenrichtung %2°")
        .arg(locale.toString(p.km, 'f', 3), locale.toString(back, 'f', 2));
  }
  return QStringLiteral("WGS84: %1 km, Richtung %2°")
      .arg(locale.toString(p.km, 'f', 3), locale.toString(p.bearing, 'f', 2));
}

void ContestFigures::show(const StationPair& pair) {
  m_points->setText(pointsText(pair));
  m_wgs84->setText(wgs84Text(pair));
}

}  // namespace marvento
