#pragma once

#include "distance/StationPair.h"

#include <QObject>

class QLabel;

namespace marvento {

// The contest figures under the main window's results: the IARU points of the two stations'
// 6-character squares and the distance and bearing on the WGS84 ellipsoid. Fed with each
// computation the window reports; empty while the window shows no result.
class ContestFigures : public QObject {
  Q_OBJECT

 public:
  ContestFigures(QLabel* points, QLabel* wgs84, QObject* parent = nullptr);

  void show(const StationPair& pair);

  // The texts for a pair, empty when there is nothing to show.
  static QString pointsText(const StationPair& pair);
  static QString wgs84Text(const StationPair& pair);

 private:
  QLabel* m_points;
  QLabel* m_wgs84;
};

}  // namespace marvento
