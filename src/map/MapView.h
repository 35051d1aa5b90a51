#pragma once

#include "map/AzimuthalProjection.h"
#include "map/MapData.h"
#include "map/MapGeometry.h"

#include <QHash>
#include <QPainterPath>
#include <QPixmap>
#include <QStaticText>
#include <QWidget>

#include <optional>
#include <utility>

class QThread;
class QTimer;

namespace marvento {

// The layers the user can switch off, one bit each.
enum MapLayer : unsigned {
  LayerLand = 1u << 0,
  LayerCoast = 1u << 1,
  LayerBorders = 1u << 2,
  LayerRings = 1u << 3,
  LayerGrid = 1u << 4,
  LayerStations = 1u << 5,
  LayerRotor = 1u << 6,
  LayerTrack = 1u << 7,
  LayerNight = 1u << 8,
  LayerAll = (1u << 9) - 1,
};

// Lets screen readers see the map as a picture with a text alternative; once per process.
void InstallMapAccessible();

// The map (picKarte): an azimuthal equidistant view centred on the own station. The static
// layers are projected once per centre, painted once per view into a pixmap, and the moving
// parts (cursor, rotor needle, track) drawn over it each frame.
class MapView : public QWidget {
  Q_OBJECT

 public:
  explicit MapView(QWidget* parent = nullptr);
  ~MapView() override;

  void setStations(std::optional<GeoPoint> own, std::optional<GeoPoint> remote,
                   const QString& ownLocator, const QString& remoteLocator, double radiusKm);
  void addFix(GeoPoint position);
  void setRotor(std::optional<double> heading, std::optional<double> sent);
  // The grid line ahead of a rover, highlighted; unset removes it.
  void setBoundaryAhead(std::optional<std::pair<GeoPoint, GeoPoint>> segment);
  void setLayers(unsigned layers);
  unsigned layers() const { return m_layers; }
  // 1 is the whole earth; larger values zoom in.
  void setZoom(double zoom, std::optional<QPointF> about = {});
  double zoom() const { return m_zoom; }
  void wholeEarth();

  const AzimuthalProjection& projection() const { return m_projection; }
  // Widget pixel to the place there (unset beyond the outer circle), and back.
  std::optional<GeoPoint> placeAt(QPointF pixel) const;
  QPointF pixelOf(GeoPoint place) const;
  // The info line's text for a place: locator, distance and bearing from the own station.
  QString readout(GeoPoint place) const;
  // The info line's text when the cursor is not over the map: the paths.
  QString pathInfo() const;
  // The own station's locator, or where the map is centred without one.
  QString centreName() const;
  // Paints the whole view, every layer, at the given size (PNG, PDF, benchmarks).
  void render(QPainter& painter, QSize size);
  // The km-to-pixel scale of the view.
  double pixelsPerKm() const;
  // What a screen reader reads for the picture: the stations, the path and what lies under
  // the keyboard cursor.
  QString textAlternative() const;

 signals:
  void hovered(const QString& text);
  void pointChosen(marvento::GeoPoint place);
  // The keyboard cursor moved: its readout, for a screen reader to speak.
  void keyCursorRead(const QString& text);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  // A projected ring or line with its bounds, so that a zoomed view paints only what it
  // shows. rim: the area reaches round the antipode to the outer circle.
  struct Shape {
    QPolygonF km;
    QRectF box;
    bool rim = false;
    // km thinned to the view's pixel scale, kept while views of that scale follow.
    QPolygonF thin;
    double thinKm = -1;
  };
  // The land projected for one centre, ring by ring as views need it. The rings larger than a
  // hemisphere are projected out to a reach of their own (bigReachKm) and again when a view
  // reaches further.
  struct Geometry {
    std::vector<Shape> land, holes, coast, borders;
    std::vector<Shape> bigLand, bigHoles, bigCoast;
    std::vector<char> ringDone, borderDone;
    double reachKm = -1;  // every ring and line that comes this near the centre is projected
    double bigReachKm = -1;
  };
  // A ring larger than a hemisphere: the caps of its runs, and a place known to lie inside or
  // outside its area, from which the side of any other centre follows.
  struct BigRing {
    std::size_t ring = 0;
    std::vector<SphereCap> runCaps;
    UnitVector knownAt;
    bool knownHolds = false;
  };
  // What a scale's data needs beyond its points: a cap round each ring and line, so that a view
  // that cannot reach one skips its projection, and the big rings.
  struct DataIndex {
    std::vector<SphereCap> rings, borders;
    std::vector<BigRing> big;
  };
  // One scale of the data with its index; read in any thread.
  struct Scale {
    MapData data;
    DataIndex index;
  };
  static Scale loadScale(bool fine);
  Scale& scale(bool fine);
  Geometry& geometry(bool fine, double reachKm);
  void invalidate();
  QTransform kmToPixel(QSizeF size) const;
  void paintStatic(QPainter& painter, QSizeF size);
  void paintMoving(QPainter& painter, QSizeF size);
  void drawLine(QPainter& painter, const GeoLine& line, const QTransform& t, double stepDeg);
  void drawGrid(QPainter& painter, const QTransform& t, QSizeF size);
  void drawRingsAndScale(QPainter& painter, const QTransform& t, QSizeF size);
  void moveKeyCursor(QPoint delta);

  AzimuthalProjection m_projection;
  std::optional<GeoPoint> m_own, m_remote;
  QString m_ownLocator, m_remoteLocator;
  std::optional<double> m_rotorHeading, m_rotorSent;
  std::optional<std::pair<GeoPoint, GeoPoint>> m_boundary;
  GeoLine m_track;
  // The track projected as far as it has been drawn, and the fixes at which it entered a new
  // square: a long run is not projected and looked up again every frame.
  std::vector<QPolygonF> m_trackKm;
  std::size_t m_trackProjected = 0;
  std::vector<std::pair<std::size_t, QString>> m_trackSquares;
  unsigned m_layers = LayerAll;
  double m_zoom = 1.0;
  QPointF m_panKm;  // the projected point at the widget's centre
  std::optional<QPointF> m_cursor;
  std::optional<QPointF> m_keyCursor;
  std::optional<QPointF> m_dragFrom;
  std::optional<Scale> m_coarseScale, m_fineScale;
  // Reads the finer data while the window shows the coarse one, so that the first zoom past
  // a continent's size does not wait for it; m_fineLoaded is read once the loader has ended.
  QThread* m_fineLoader = nullptr;
  std::optional<Scale> m_fineLoaded;
  std::optional<Geometry> m_coarse, m_fine;
  // The grid's lines projected for a stretch of the earth at a sampling step, kept while pans
  // and zooms stay inside it.
  struct GridCache {
    int level = -1;
    double step = 0, south = 0, north = 0, west = 0, east = 0;
    std::vector<Shape> lines;
  };
  std::optional<GridCache> m_grid;
  // The grid's labels laid out once: a view shows hundreds, and a redraw would lay out each.
  QHash<QString, QStaticText> m_gridLabels;
  QPixmap m_cache;
  bool m_cacheValid = false;
  QTimer* m_minute = nullptr;
};

}  // namespace marvento
