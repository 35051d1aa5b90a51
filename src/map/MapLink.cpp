#include "map/MapLink.h"

#include "locator/LocatorToCoords.h"
#include "map/MapView.h"
#include "map/frmKarte.h"
#include "platform/Settings.h"

#include <QScreen>
#include <QWidget>

namespace marvento {

MapLink::MapLink(QWidget* mainWindow) : QObject(mainWindow), m_main(mainWindow) {}

frmKarte* MapLink::window() const {
  return m_window.data();
}

MapLink::~MapLink() {
  delete m_window;
}

void MapLink::open() {
  if (!m_window) {
    m_window = new frmKarte(nullptr);
    const bool placed = !GetMapSetting(MapSettingKey::Geometry, {}).isEmpty();
    if (!placed && m_main) {
      // Beside the main window, on the right.
      m_window->move(m_main->frameGeometry().topRight() + QPoint(8, 0));
    }
    connect(m_window->picKarte, &MapView::pointChosen, this, &MapLink::remoteChosen);
    for (const GeoPoint& p : m_track) m_window->picKarte->addFix(p);
    apply();
    bool ok = false;
    const double zoom = GetMapSetting(MapSettingKey::Zoom, QStringLiteral("1")).toDouble(&ok);
    if (ok) m_window->picKarte->setZoom(zoom);
  }
  m_window->show();
  m_window->raise();
  m_window->activateWindow();
}

void MapLink::apply() {
  if (!m_window) return;
  // Centred on the own station of the last computation, else the receiver's position, else
  // the home locator, else 0° 0°.
  std::optional<GeoPoint> own = m_pair.own;
  QString ownLocator = m_pair.ownLocator;
  if (!own && m_gps) own = m_gps;
  if (!own) {
    const QString home = GetSetting(SettingKey::MyHomeLoc, {}).trimmed().toUpper();
    const LocatorDecode d = DecodeLocator(home);
    if (!home.isEmpty() && d.status != LocatorDecode::BadHead) {
      own = GeoPoint{d.Br, d.Lg};
      ownLocator = home;
    }
  }
  const std::optional<GeoPoint> remote = m_pair.own ? m_pair.remote : std::nullopt;
  m_window->picKarte->setStations(own, remote, ownLocator, m_pair.remoteLocator,
                                  m_pair.radiusKm.value_or(6371.0));
  m_window->picKarte->setRotor(m_heading, m_sent);
  m_window->picKarte->setBoundaryAhead(m_edge);
}

void MapLink::boundaryAhead(std::optional<std::pair<GeoPoint, GeoPoint>> edge) {
  m_edge = edge;
  if (m_window) m_window->picKarte->setBoundaryAhead(m_edge);
}

void MapLink::computed(const StationPair& pair) {
  m_pair = pair;
  apply();
}

void MapLink::fixTaken(const GpsFix& fix) {
  m_gps = fix.position;
  m_track.push_back(fix.position);
  if (m_window) m_window->picKarte->addFix(fix.position);
  if (!m_pair.own) apply();
}

void MapLink::rotorAzimuth(std::optional<double> azimuth) {
  m_heading = azimuth;
  if (m_window) m_window->picKarte->setRotor(m_heading, m_sent);
}

void MapLink::rotorTurned(double azimuth) {
  m_sent = azimuth;
  if (m_window) m_window->picKarte->setRotor(m_heading, m_sent);
}

}  // namespace marvento
