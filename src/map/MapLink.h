#pragma once

#include "distance/StationPair.h"
#include "gps/GpsFix.h"

#include <QObject>
#include <QPointer>

#include <optional>
#include <utility>
#include <vector>

class QWidget;

namespace marvento {

class frmKarte;

// What the map follows of the main window: each computation, each fix, the rotator. It
// keeps the latest of each, so the window, opened the first time only when asked for, starts
// from where things stand.
class MapLink : public QObject {
  Q_OBJECT

 public:
  explicit MapLink(QWidget* mainWindow);
  ~MapLink() override;

  // Shows the window beside the main window, creating it the first time.
  void open();
  // The window, or nothing before the first open.
  frmKarte* window() const;

  void computed(const StationPair& pair);
  void fixTaken(const GpsFix& fix);
  void rotorAzimuth(std::optional<double> azimuth);
  void rotorTurned(double azimuth);
  // The edge of the own square that lies ahead, or nothing (standing, no course, no fix).
  void boundaryAhead(std::optional<std::pair<GeoPoint, GeoPoint>> edge);

 signals:
  // The user chose a place on the map as the remote station.
  void remoteChosen(marvento::GeoPoint place);

 private:
  void apply();

  QWidget* m_main;
  QPointer<frmKarte> m_window;
  StationPair m_pair;
  std::optional<GeoPoint> m_gps;
  std::vector<GeoPoint> m_track;
  std::optional<double> m_heading, m_sent;
  std::optional<std::pair<GeoPoint, GeoPoint>> m_edge;
};

}  // namespace marvento
