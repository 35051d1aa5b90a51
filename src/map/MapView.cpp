#include "map/MapView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QStringList>

#include "locator/CoordsToLocator.h"

#include <QDateTime>
#include <QFile>
#include <QKeyEvent>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace marvento {

namespace {

// Below this span the map switches to the finer data.
constexpr double kFineSpanKm = 6000.0;
const QColor kSea(198, 222, 240);
const QColor kLand(238, 232, 205);
const QColor kCoast(90, 110, 130);
const QColor kBorder(150, 140, 120);
const QColor kGrid(40, 90, 160, 110);
const QColor kRings(80, 80, 80, 120);
const QColor kPath(200, 30, 30);

std::optional<MapData> loadData(const QString& name) {
  QFile file(QStringLiteral(":/map/") + name);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  return ParseMapData(file.readAll());
}

// The outer circle, clockwise with north up.
void addRim(QPainterPath& path, double rim, bool clockwise) {
  const int n = 360;
  for (int i = 0; i <= n; ++i) {
    const double a = (clockwise ? i : -i) * 2 * std::numbers::pi / n;
    const QPointF p(rim * std::sin(a), rim * std::cos(a));
    if (i == 0) {
      path.moveTo(p);
    } else {
      path.lineTo(p);
    }
  }
  path.closeSubpath();
}

void addLine(QPainterPath& path, const KmLine& line) {
  path.moveTo(line.front());
  for (std::size_t i = 1; i < line.size(); ++i) path.lineTo(line[i]);
}

// The area on the right of a ring; where the antipode is in that area (rightSide) or on the
// left (a hole), the rest of the disc outside the ring.
void addArea(QPainterPath& path, const AzimuthalProjection& projection, const GeoLine& ring,
             double stepDeg, bool rightSide) {
  const KmRing r = ProjectRing(projection, ring, stepDeg);
  if (r.points.size() < 3) return;
  addLine(path, r.points);
  path.closeSubpath();
  if (r.anticlockwise == rightSide) addRim(path, projection.antipodeKm(), rightSide);
}

// The line without the points closer than minStep to the last one kept; the ends stay.
QPolygonF thinnedTo(const QPolygonF& line, double minStep) {
  QPolygonF out;
  out.reserve(line.size());
  const double d2 = minStep * minStep;
  for (qsizetype i = 0; i < line.size(); ++i) {
    const QPointF p = line[i];
    if (i > 0 && i + 1 < line.size()) {
      const QPointF d = p - out.back();
      if (d.x() * d.x() + d.y() * d.y() < d2) continue;
    }
    out << p;
  }
  return out;
}

QPolygonF polygon(const KmLine& line) {
  return QPolygonF(QList<QPointF>(line.begin(), line.end()));
}

// A closed polygon cut to a rectangle (Sutherland and Hodgman): the area inside the rectangle
// stays the same, so filling the result fills what the view shows of the whole.
QPolygonF clipped(const QPolygonF& polygon, const QRectF& rect) {
  QPolygonF current = polygon;
  for (int edge = 0; edge < 4 && !current.isEmpty(); ++edge) {
    const auto inside = [&](QPointF p) {
      switch (edge) {
        case 0: return p.x() >= rect.left();
        case 1: return p.x() <= rect.right();
        case 2: return p.y() >= rect.top();
        default: return p.y() <= rect.bottom();
      }
    };
    const auto cross = [&](QPointF a, QPointF b) {
      const double t = edge < 2
                           ? ((edge == 0 ? rect.left() : rect.right()) - a.x()) / (b.x() - a.x())
                           : ((edge == 2 ? rect.top() : rect.bottom()) - a.y()) / (b.y() - a.y());
      return a + (b - a) * t;
    };
    QPolygonF next;
    next.reserve(current.size());
    for (qsizetype i = 0; i < current.size(); ++i) {
      const QPointF a = current[i], b = current[(i + 1) % current.size()];
      const bool ina = inside(a), inb = inside(b);
      if (ina) next << a;
      if (ina != inb) next << cross(a, b);
    }
    current = std::move(next);
  }
  return current;
}

// Whether two boxes share a point. QRectF::intersects misses a box of no width or height: the
// bounds of a grid line or a coast that runs exactly north-south or east-west on the map.
bool overlaps(const QRectF& a, const QRectF& b) {
  return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom() &&
         b.top() <= a.bottom();
}

// The part of the segment a-b inside a rectangle (Liang and Barsky), and how far along the
// segment it starts; unset when none is inside.
std::optional<std::pair<QLineF, double>> clippedSegment(QPointF a, QPointF b, const QRectF& r) {
  const QPointF d = b - a;
  double lo = 0, hi = 1;
  const double p[] = {-d.x(), d.x(), -d.y(), d.y()};
  const double q[] = {a.x() - r.left(), r.right() - a.x(), a.y() - r.top(), r.bottom() - a.y()};
  for (int i = 0; i < 4; ++i) {
    if (p[i] == 0) {
      if (q[i] < 0) return std::nullopt;
      continue;
    }
    const double f = q[i] / p[i];
    if (p[i] < 0) {
      lo = std::max(lo, f);
    } else {
      hi = std::min(hi, f);
    }
  }
  if (lo > hi) return std::nullopt;
  return std::pair{QLineF(a + d * lo, a + d * hi), std::hypot(d.x(), d.y()) * lo};
}

// How near and how far a view's pixels lie from a point (pixels): a circle round it crosses
// the view only with a radius in between.
std::pair<double, double> reachOfView(QPointF c, const QRectF& view) {
  const double dx = std::max({view.left() - c.x(), 0.0, c.x() - view.right()});
  const double dy = std::max({view.top() - c.y(), 0.0, c.y() - view.bottom()});
  double far = 0;
  for (const QPointF corner :
       {view.topLeft(), view.topRight(), view.bottomLeft(), view.bottomRight()})
    far = std::max(far, std::hypot(corner.x() - c.x(), corner.y() - c.y()));
  return {std::hypot(dx, dy), far};
}

// The part of a circle round c (pixels) that a view can show. A circle many times the view's
// size is nearly straight there, and Qt would flatten (and dash) the whole of it.
QPolygonF arcInView(QPointF c, double r, const QRectF& view) {
  const double mid = std::atan2(view.center().y() - c.y(), view.center().x() - c.x());
  double lo = 0, hi = 0;
  for (const QPointF corner :
       {view.topLeft(), view.topRight(), view.bottomLeft(), view.bottomRight()}) {
    const double a = std::remainder(std::atan2(corner.y() - c.y(), corner.x() - c.x()) - mid,
                                    2 * std::numbers::pi);
    lo = std::min(lo, a);
    hi = std::max(hi, a);
  }
  // Points no further apart than keeps the chord within a quarter pixel of the circle.
  const double step = std::min(std::numbers::pi / 360, std::sqrt(2.0 / r));
  const int n = std::clamp(static_cast<int>(std::ceil((hi - lo) / step)), 2, 20000);
  QPolygonF arc;
  arc.reserve(n + 1);
  for (int i = 0; i <= n; ++i) {
    const double a = mid + lo + (hi - lo) * i / n;
    arc << c + QPointF(std::cos(a), std::sin(a)) * r;
  }
  return arc;
}

// A circle as a line: whole while it is not much larger than the view, else the part in view.
void drawCircle(QPainter& painter, QPointF c, double r, const QRectF& view) {
  if (r < 4 * std::hypot(view.width(), view.height())) {
    painter.drawEllipse(c, r, r);
  } else {
    painter.drawPolyline(arcInView(c, r, view));
  }
}

// Numbers in the machine's decimal sign, without thousands separators (as the main window).
QString number(double value, int decimals) {
  QLocale locale;
  locale.setNumberOptions(QLocale::OmitGroupSeparator);
  return locale.toString(value, 'f', decimals);
}

QString km(double value) {
  return number(value, value < 10 ? 2 : value < 100 ? 1 : 0);
}

}  // namespace

MapView::MapView(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("picKarte"));
  setMouseTracking(true);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(200, 200);
  setAttribute(Qt::WA_OpaquePaintEvent);
  // The grey line moves on: a new view each minute.
  m_minute = new QTimer(this);
  m_minute->setInterval(60000);
  connect(m_minute, &QTimer::timeout, this, [this] {
    if (m_layers & LayerNight) invalidate();
  });
  m_minute->start();
}

MapView::~MapView() {
  if (m_fineLoader) m_fineLoader->wait();
}

void MapView::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (m_fineLoader || m_fineScale) return;
  m_fineLoader = QThread::create([this] { m_fineLoaded = loadScale(true); });
  m_fineLoader->setParent(this);
  m_fineLoader->start(QThread::LowPriority);
}

MapView::Scale& MapView::scale(bool fine) {
  std::optional<Scale>& slot = fine ? m_fineScale : m_coarseScale;
  if (!slot && fine && m_fineLoader) {
    m_fineLoader->wait();
    slot = std::move(m_fineLoaded);
    m_fineLoaded.reset();
  }
  if (!slot) slot = loadScale(fine);
  return *slot;
}

namespace {

UnitVector unit(GeoPoint p) {
  return ToUnitLine({p}).front();
}

double angle(UnitVector a, UnitVector b) {
  return std::acos(std::clamp(a.x * b.x + a.y * b.y + a.z * b.z, -1.0, 1.0));
}

std::vector<SphereCap> capsOf(const std::vector<UnitLine>& lines) {
  std::vector<SphereCap> caps;
  caps.reserve(lines.size());
  for (const UnitLine& line : lines) caps.push_back(CapOf(line.data(), line.size()));
  return caps;
}

}  // namespace

MapView::Scale MapView::loadScale(bool fine) {
  Scale scale;
  scale.data = loadData(fine ? QStringLiteral("ne50m.bin") : QStringLiteral("ne110m.bin"))
                   .value_or(MapData{});
  const MapData& d = scale.data;
  DataIndex& index = scale.index;
  index.rings = capsOf(d.outer);
  const std::vector<SphereCap> holes = capsOf(d.holes);
  index.rings.insert(index.rings.end(), holes.begin(), holes.end());
  index.borders = capsOf(d.borders);
  // The big rings' sides seen from the north pole, so that no view has to project one whole.
  const GeoPoint pole{90, 0};
  const AzimuthalProjection fromPole(pole);
  for (std::size_t i = 0; i < index.rings.size(); ++i) {
    if (index.rings[i].radius < std::numbers::pi / 2) continue;
    const bool outer = i < d.outer.size();
    const UnitLine& ring = d.ring(i);
    index.big.push_back({i, RingRunCaps(ring), unit(pole),
                         ProjectRing(fromPole, ring, 1.0).areaHoldsCentre(outer)});
  }
  return scale;
}

MapView::Geometry& MapView::geometry(bool fine, double reachKm) {
  Scale& sc = scale(fine);
  const MapData& d = sc.data;
  DataIndex& index = sc.index;
  const std::size_t rings = d.ringCount();
  std::optional<Geometry>& slot = fine ? m_fine : m_coarse;
  if (!slot) {
    slot = Geometry{};
    slot->ringDone.assign(rings, 0);
    slot->borderDone.assign(d.borders.size(), 0);
    for (const BigRing& big : index.big) slot->ringDone[big.ring] = 1;
  }
  Geometry& g = *slot;
  if (reachKm <= g.reachKm) return g;
  const double step = 1.0;
  const double rim = m_projection.antipodeKm();
  const QRectF disc(-rim, -rim, 2 * rim, 2 * rim);
  const UnitVector centre = unit(m_projection.centre());
  const double reach = reachKm / m_projection.radiusKm();
  // Whether any point of the cap comes within the reach of the centre.
  const auto near = [&](const SphereCap& cap) {
    return cap.radius >= std::numbers::pi / 2 || angle(centre, cap.mid) - cap.radius <= reach;
  };
  // Lines go in short runs, so that a zoomed view strokes only the runs it shows.
  const auto runs = [&](std::vector<Shape>& out, const std::vector<KmLine>& pieces) {
    constexpr std::size_t kRun = 96;
    for (const KmLine& piece : pieces) {
      for (std::size_t from = 0; from + 1 < piece.size(); from += kRun) {
        const std::size_t to = std::min(piece.size(), from + kRun + 1);
        Shape shape{polygon(KmLine(piece.begin() + long(from), piece.begin() + long(to))),
                    {},
                    false,
                    {},
                    -1};
        shape.box = shape.km.boundingRect();
        out.push_back(std::move(shape));
      }
    }
  };
  const auto area = [&](std::vector<Shape>& out, const KmRing& r, bool rimSide) {
    if (r.points.size() < 3) return;
    Shape shape{polygon(r.points), {}, rimSide, {}, -1};
    shape.box = shape.rim ? disc : shape.km.boundingRect();
    out.push_back(std::move(shape));
  };
  std::vector<KmLine> pieces;
  for (std::size_t i = 0; i < rings; ++i) {
    if (g.ringDone[i] || !near(index.rings[i])) continue;
    g.ringDone[i] = 1;
    const bool outer = i < d.outer.size();
    pieces.clear();
    // The coastline comes from the same projection as the area it bounds.
    const KmRing r = ProjectRing(m_projection, d.ring(i), step, &pieces);
    area(outer ? g.land : g.holes, r, r.anticlockwise == outer);
    runs(g.coast, pieces);
  }
  if (reachKm > g.bigReachKm) {
    // Half as far again as the view reaches, so that zooming out a little and panning keep it.
    const double bigReach = std::min(1.5 * reachKm, 2 * rim);
    g.bigLand.clear();
    g.bigHoles.clear();
    g.bigCoast.clear();
    for (BigRing& big : index.big) {
      const bool outer = big.ring < d.outer.size();
      const UnitLine& ring = d.ring(big.ring);
      pieces.clear();
      // Which side of the ring the centre lies on follows from the place whose side is known;
      // from that place's far side, where no short arc leads, the ring is projected whole.
      const bool reachable = angle(big.knownAt, centre) < std::numbers::pi - 0.01;
      const bool holdsCentre =
          reachable && big.knownHolds != AreaSideChanges(ring, big.knownAt, centre);
      const RingReach cut{bigReach, &big.runCaps};
      const KmRing r = ProjectRing(m_projection, ring, step, &pieces, reachable ? &cut : nullptr);
      // The area reaches round the antipode when it holds the centre and the ring as drawn
      // does not turn round the centre, or the other way round.
      bool rimSide = holdsCentre != (r.windingAtCentre != 0);
      if (!r.cut) {
        rimSide = r.anticlockwise == outer;
        big.knownAt = centre;
        big.knownHolds = r.areaHoldsCentre(outer);
      }
      area(outer ? g.bigLand : g.bigHoles, r, rimSide);
      runs(g.bigCoast, pieces);
    }
    g.bigReachKm = bigReach;
  }
  for (std::size_t i = 0; i < d.borders.size(); ++i) {
    if (g.borderDone[i] || !near(index.borders[i])) continue;
    g.borderDone[i] = 1;
    runs(g.borders, ProjectLine(m_projection, d.borders[i], step));
  }
  g.reachKm = reachKm;
  return g;
}

void MapView::invalidate() {
  m_cacheValid = false;
  update();
}

void MapView::setStations(std::optional<GeoPoint> own, std::optional<GeoPoint> remote,
                          const QString& ownLocator, const QString& remoteLocator,
                          double radiusKm) {
  const GeoPoint centre = own.value_or(GeoPoint{});
  if (!(centre == m_projection.centre() && radiusKm == m_projection.radiusKm()) ||
      own.has_value() != m_own.has_value()) {
    const AzimuthalProjection next(centre, radiusKm);
    if (!(next.centre() == m_projection.centre()) || next.radiusKm() != m_projection.radiusKm()) {
      m_projection = next;
      m_trackKm.clear();
      m_trackProjected = 0;
      m_coarse.reset();
      m_fine.reset();
      m_grid.reset();
      m_panKm = {};
    }
  }
  m_own = own;
  m_remote = remote;
  m_ownLocator = ownLocator;
  m_remoteLocator = remoteLocator;
  invalidate();
  if (!m_cursor) emit hovered(pathInfo());
}

void MapView::addFix(GeoPoint position) {
  if (!m_track.empty() && m_track.back() == position) return;
  const QString square = CoordsToLocator6(position.lon, position.lat).left(4);
  if (!m_track.empty() &&
      square != CoordsToLocator6(m_track.back().lon, m_track.back().lat).left(4))
    m_trackSquares.emplace_back(m_track.size(), square);
  m_track.push_back(position);
  update();
}

void MapView::setRotor(std::optional<double> heading, std::optional<double> sent) {
  m_rotorHeading = heading;
  if (sent) m_rotorSent = sent;
  update();
}

void MapView::setBoundaryAhead(std::optional<std::pair<GeoPoint, GeoPoint>> segment) {
  m_boundary = segment;
  update();
}

void MapView::setLayers(unsigned layers) {
  m_layers = layers & LayerAll;
  invalidate();
}

double MapView::pixelsPerKm() const {
  const double base = std::min(width(), height()) / 2.0 / (m_projection.antipodeKm() * 1.02);
  return base * m_zoom;
}

void MapView::setZoom(double zoom, std::optional<QPointF> about) {
  const double base = std::min(width(), height()) / 2.0 / (m_projection.antipodeKm() * 1.02);
  // From the whole earth down to about 20 km across the shorter side.
  const double most = std::max(1.0, std::min(width(), height()) / 20.0 / base);
  zoom = std::clamp(zoom, 1.0, most);
  const QPointF at = about.value_or(QPointF(width() / 2.0, height() / 2.0));
  const QPointF kmAt = kmToPixel(size()).inverted().map(at);
  m_zoom = zoom;
  if (m_zoom <= 1.0) {
    m_panKm = {};
  } else {
    const double s = pixelsPerKm();
    m_panKm =
        QPointF(kmAt.x() - (at.x() - width() / 2.0) / s, kmAt.y() + (at.y() - height() / 2.0) / s);
  }
  invalidate();
}

void MapView::wholeEarth() {
  m_zoom = 1.0;
  m_panKm = {};
  invalidate();
}

QTransform MapView::kmToPixel(QSizeF size) const {
  const double base =
      std::min(size.width(), size.height()) / 2.0 / (m_projection.antipodeKm() * 1.02);
  const double s = base * m_zoom;
  return QTransform(s, 0, 0, -s, size.width() / 2.0 - m_panKm.x() * s,
                    size.height() / 2.0 + m_panKm.y() * s);
}

std::optional<GeoPoint> MapView::placeAt(QPointF pixel) const {
  const QPointF k = kmToPixel(size()).inverted().map(pixel);
  if (std::hypot(k.x(), k.y()) > m_projection.antipodeKm()) return std::nullopt;
  GeoPoint p;
  m_projection.Reverse(k.x(), k.y(), p.lat, p.lon);
  return p;
}

QPointF MapView::pixelOf(GeoPoint place) const {
  double x = 0, y = 0;
  m_projection.Forward(place.lat, place.lon, x, y);
  return kmToPixel(size()).map(QPointF(x, y));
}

QString MapView::readout(GeoPoint place) const {
  double d = 0, bearing = 0;
  m_projection.Inverse(place.lat, place.lon, d, bearing);
  QString text = QStringLiteral("%1   %2 km   %3 °")
                     .arg(CoordsToLocator6(place.lon, place.lat), km(d), number(bearing, 1));
  if (m_projection.centreAtPole()) text += QStringLiteral("   (Pol: 0°-Meridian oben)");
  return text;
}

QString MapView::centreName() const {
  if (!m_own) return QStringLiteral("0° 0°");
  return m_ownLocator.isEmpty() ? CoordsToLocator6(m_own->lon, m_own->lat) : m_ownLocator;
}

QString MapView::pathInfo() const {
  QString text;
  double d = 0, bearing = 0;
  if (m_remote) m_projection.Inverse(m_remote->lat, m_remote->lon, d, bearing);
  if (m_remote && d <= 1e-6) {
    text = QStringLiteral("Gegenstation = eigene Station");
  } else if (m_remote) {
    const double longKm = 2 * m_projection.antipodeKm() - d;
    text = QStringLiteral("Kurzer Weg %1 km, %2 °   Langer Weg %3 km, %4 °")
               .arg(km(d), number(bearing, 1), km(longKm),
                    number(std::fmod(bearing + 180.0, 360.0), 1));
  } else {
    text = QStringLiteral("Mitte %1").arg(centreName());
  }
  if (m_projection.centreAtPole()) text += QStringLiteral("   (Pol: 0°-Meridian oben)");
  return text;
}

void MapView::drawLine(QPainter& painter, const GeoLine& line, const QTransform& t,
                       double stepDeg) {
  for (const KmLine& piece : ProjectLine(m_projection, line, stepDeg)) {
    QPolygonF poly;
    poly.reserve(qsizetype(piece.size()));
    for (const QPointF& p : piece) poly << t.map(p);
    painter.drawPolyline(poly);
  }
}

void MapView::drawGrid(QPainter& painter, const QTransform& t, QSizeF size) {
  const double s = t.m11();
  // The finest level whose cells are at least 20 pixels high, room for their labels: fields (10°),
  // squares (1°), subsquares (2.5').
  const double kmPerDeg = m_projection.radiusKm() * kDeg;
  const int level = s * kmPerDeg / 24.0 >= 20 ? 2 : s * kmPerDeg >= 20 ? 1 : 0;
  double south = -90, north = 90, west = -180, east = 180;
  if (level > 0) {
    // The view's bounds in degrees, from points round its edge.
    const QTransform back = t.inverted();
    GeoPoint mid;
    const QPointF midKm = back.map(QPointF(size.width() / 2, size.height() / 2));
    m_projection.Reverse(midKm.x(), midKm.y(), mid.lat, mid.lon);
    double lo = 0, hi = 0;
    south = north = mid.lat;
    bool rimInView = false;
    for (int i = 0; i <= 64; ++i) {
      const double f = (i % 16) / 16.0;
      const int side = i / 16;
      const QPointF px = side == 0   ? QPointF(f * size.width(), 0)
                         : side == 1 ? QPointF(size.width(), f * size.height())
                         : side == 2 ? QPointF((1 - f) * size.width(), size.height())
                                     : QPointF(0, (1 - f) * size.height());
      const QPointF k = back.map(px);
      rimInView = rimInView || std::hypot(k.x(), k.y()) >= m_projection.antipodeKm();
      GeoPoint p;
      m_projection.Reverse(k.x(), k.y(), p.lat, p.lon);
      south = std::min(south, p.lat);
      north = std::max(north, p.lat);
      const double d = std::remainder(p.lon - mid.lon, 360.0);
      lo = std::min(lo, d);
      hi = std::max(hi, d);
    }
    const QRectF view(QPointF(0, 0), size);
    double px = 0, py = 0;
    m_projection.Forward(90, 0, px, py);
    const bool northPole = view.contains(t.map(QPointF(px, py)));
    m_projection.Forward(-90, 0, px, py);
    const bool southPole = view.contains(t.map(QPointF(px, py)));
    if (northPole) north = 90;
    if (southPole) south = -90;
    if (!rimInView && !northPole && !southPole && hi - lo < 300) {
      west = NormalisedLongitude(mid.lon + lo);
      east = NormalisedLongitude(mid.lon + hi);
    }
    if (rimInView) south = -90, north = 90;
  }
  // Grid lines bend gently: a point every dozen to two dozen pixels is smooth enough. The step
  // and the stretch go in coarse units, so that the projected lines serve the neighbouring
  // views too.
  const double step =
      std::min(2.0, std::exp2(std::ceil(std::log2(std::clamp(12.0 / (s * kmPerDeg), 0.002, 2.0)))));
  const double unit = level == 0 ? 20.0 : level == 1 ? 10.0 : 1.0;
  const double gSouth = std::max(-90.0, std::floor(south / unit) * unit);
  const double gNorth = std::min(90.0, std::ceil(north / unit) * unit);
  const double gWest = std::floor((west + 180.0) / unit) * unit - 180.0;
  const double gEast = std::ceil((east + 180.0) / unit) * unit - 180.0;
  if (!m_grid || m_grid->level != level || m_grid->step != step || m_grid->south != gSouth ||
      m_grid->north != gNorth || m_grid->west != gWest || m_grid->east != gEast) {
    GridCache grid{level, step, gSouth, gNorth, gWest, gEast, {}};
    for (const UnitLine& line : GridLines(level, gSouth, gNorth, gWest, gEast, step)) {
      // The lines come sampled at the step already: nothing to divide.
      for (const KmLine& piece : ProjectLine(m_projection, line, 2 * step)) {
        Shape shape{polygon(piece), {}, false, {}, -1};
        shape.box = shape.km.boundingRect();
        grid.lines.push_back(std::move(shape));
      }
    }
    m_grid = std::move(grid);
  }
  const QRectF viewKm = t.inverted().mapRect(QRectF(QPointF(0, 0), size));
  QPainterPath lines;
  for (const Shape& shape : m_grid->lines) {
    if (overlaps(shape.box, viewKm)) lines.addPolygon(shape.km);
  }
  painter.save();
  painter.setTransform(t, true);
  painter.strokePath(lines, QPen(kGrid, 0));
  painter.restore();
  // Labels in the cells' middles.
  const double dLon = level == 0 ? 20.0 : level == 1 ? 2.0 : 2.0 / 24.0;
  const double dLat = dLon / 2;
  const int chars = level == 0 ? 2 : level == 1 ? 4 : 6;
  QFont f = painter.font();
  f.setPointSizeF(level == 0 ? 7 : 8);
  painter.setFont(f);
  painter.setPen(kGrid.darker(150));
  const QRectF view(QPointF(0, 0), size);
  double lonSpan = east - west;
  if (lonSpan <= 0) lonSpan += 360;
  const double firstLon = -180 + std::floor((west + 180) / dLon) * dLon;
  const double firstLat = -90 + std::floor((south + 90) / dLat) * dLat;
  // Where more cells show than a few hundred labels, every second (third, ...) row and column
  // of the grid keeps its label, so that the labels stay spread over the view and in place
  // while it pans.
  const double midLat = (south + north) / 2;
  const double cellPx = s * kmPerDeg * dLat * s * kmPerDeg * dLon *
                        std::max(0.2, std::cos(std::clamp(midLat, -80.0, 80.0) * kDeg));
  const int stride =
      level == 0
          ? 1
          : std::max(1, int(std::ceil(std::sqrt(size.width() * size.height() / cellPx / 300))));
  int drawn = 0;
  for (double lat = firstLat; lat < north && drawn < 1000; lat += dLat) {
    if (std::lround((lat + 90) / dLat) % stride != 0) continue;
    for (double lon = firstLon; lon < firstLon + lonSpan + dLon && drawn < 1000; lon += dLon) {
      if (std::lround((lon + 180) / dLon) % stride != 0) continue;
      const GeoPoint c{lat + dLat / 2, NormalisedLongitude(lon + dLon / 2)};
      if (c.lat > 90 || c.lat < -90) continue;
      double x = 0, y = 0;
      m_projection.Forward(c.lat, c.lon, x, y);
      const QPointF p = t.map(QPointF(x, y));
      if (!view.contains(p)) continue;
      const QString name = CoordsToLocator6(c.lon, c.lat).left(chars);
      auto label = m_gridLabels.find(name);
      if (label == m_gridLabels.end()) {
        label = m_gridLabels.insert(name, QStaticText(name));
        label->setTextFormat(Qt::PlainText);
        label->prepare(QTransform(), f);
      }
      const QSizeF extent = label->size();
      painter.drawStaticText(p - QPointF(extent.width() / 2, extent.height() / 2), *label);
      ++drawn;
    }
  }
}

void MapView::drawRingsAndScale(QPainter& painter, const QTransform& t, QSizeF size) {
  const double s = t.m11();
  const QPointF centre = t.map(QPointF(0, 0));
  const double spanKm = std::min(size.width(), size.height()) / s;
  const double spacing = RingSpacingKm(spanKm / 2);
  painter.setPen(QPen(kRings, 0, Qt::DotLine));
  painter.setBrush(Qt::NoBrush);
  const double rim = m_projection.antipodeKm();
  // Only the rings that cross the view.
  const QPointF viewKm = t.inverted().map(QPointF(size.width() / 2, size.height() / 2));
  const double nearKm = std::max(0.0, std::hypot(viewKm.x(), viewKm.y()) - spanKm);
  const double farKm = std::hypot(viewKm.x(), viewKm.y()) + spanKm;
  const QRectF view(QPointF(0, 0), size);
  const auto [nearPx, farPx] = reachOfView(centre, view);
  for (double r = std::max(spacing, std::floor(nearKm / spacing) * spacing);
       r < std::min(rim, farKm) && r < spacing * 500; r += spacing) {
    if (r * s < nearPx || r * s > farPx) continue;
    drawCircle(painter, centre, r * s, view);
    painter.drawText(centre + QPointF(3, -r * s - 2), km(r) + QStringLiteral(" km"));
  }
  painter.setPen(QPen(kCoast, 0));
  if (rim * s >= nearPx && rim * s <= farPx) drawCircle(painter, centre, rim * s, view);

  // Bearing ticks where each direction from the own station leaves the view.
  painter.setPen(QPen(Qt::black, 0));
  for (int b = 0; b < 360; b += 10) {
    const QPointF dir(std::sin(b * kDeg), -std::cos(b * kDeg));
    // Distance along dir from the centre to the view's edge.
    double tmax = 1e9;
    for (double edge : {dir.x() > 0   ? (view.right() - centre.x()) / dir.x()
                        : dir.x() < 0 ? (view.left() - centre.x()) / dir.x()
                                      : 1e9,
                        dir.y() > 0   ? (view.bottom() - centre.y()) / dir.y()
                        : dir.y() < 0 ? (view.top() - centre.y()) / dir.y()
                                      : 1e9}) {
      if (edge > 0) tmax = std::min(tmax, edge);
    }
    if (tmax >= 1e9 || !view.adjusted(-1, -1, 1, 1).contains(centre)) continue;
    const double len = b % 30 == 0 ? 12 : 6;
    painter.drawLine(centre + dir * tmax, centre + dir * (tmax - len));
    if (b % 30 == 0) {
      const QPointF at = centre + dir * (tmax - 24);
      painter.drawText(QRectF(at.x() - 20, at.y() - 8, 40, 16), Qt::AlignCenter,
                       QString::number(b) + QStringLiteral("°"));
    }
  }

  // Scale bar in the bottom left corner.
  const double barKm = RingSpacingKm(spanKm / 2);
  const double barPx = barKm * s;
  const QPointF a(12, size.height() - 14);
  painter.setPen(QPen(Qt::black, 2));
  painter.drawLine(a, a + QPointF(barPx, 0));
  painter.drawLine(a, a - QPointF(0, 5));
  painter.drawLine(a + QPointF(barPx, 0), a + QPointF(barPx, -5));
  painter.drawText(a + QPointF(0, -7), km(barKm) + QStringLiteral(" km"));
}

void MapView::paintStatic(QPainter& painter, QSizeF size) {
  const QTransform t = kmToPixel(size);
  const double s = t.m11();
  painter.fillRect(QRectF(QPointF(0, 0), size), palette().window());
  painter.setRenderHint(QPainter::Antialiasing);
  const double rim = m_projection.antipodeKm();
  const QRectF viewPx(QPointF(0, 0), size);
  const QPointF centrePx = t.map(QPointF(0, 0));
  const double rimPx = rim * s;
  const QColor sea = (m_layers & LayerLand) ? kSea : Qt::white;
  // The earth's disc; a view inside it needs no clip, and the edge of a disc much larger than
  // the view is drawn only where it passes.
  if (reachOfView(centrePx, viewPx).second <= rimPx) {
    painter.fillRect(viewPx, sea);
  } else {
    QPainterPath discPx;
    if (rimPx < 4 * std::hypot(size.width(), size.height())) {
      QPainterPath disc;
      addRim(disc, rim, true);
      discPx = t.map(disc);
    } else {
      QPolygonF sector = arcInView(centrePx, rimPx, viewPx);
      sector << centrePx;
      discPx.addPolygon(sector);
      discPx.closeSubpath();
    }
    painter.setClipPath(discPx);
    painter.fillPath(discPx, sea);
  }
  const bool fine = std::min(size.width(), size.height()) / s < kFineSpanKm;
  // Only the shapes that reach into the view, gathered into one path per layer.
  const QRectF viewKm = t.inverted().mapRect(QRectF(QPointF(0, 0), size));
  // The farthest the view reaches from the centre, with a margin for the strokes.
  double reachKm = 0;
  for (const QPointF& corner :
       {viewKm.topLeft(), viewKm.topRight(), viewKm.bottomLeft(), viewKm.bottomRight()}) {
    reachKm = std::max(reachKm, std::hypot(corner.x(), corner.y()));
  }
  reachKm = std::min(reachKm * 1.05 + 4.0 / s, 2 * rim);
  Geometry& g = geometry(fine, reachKm);
  // Points closer than half a pixel add nothing to the picture; the tolerance goes in powers
  // of two so that zooming and panning reuse the thinned shapes.
  const double thinKm = std::exp2(std::floor(std::log2(0.5 / s)));
  const auto thinned = [&](Shape& shape) -> const QPolygonF& {
    if (shape.thinKm != thinKm) {
      shape.thinKm = thinKm;
      shape.thin = thinnedTo(shape.km, thinKm);
      shape.thin.squeeze();
    }
    return shape.thin;
  };
  const QRectF margin = viewKm.adjusted(-viewKm.width() * 0.05, -viewKm.height() * 0.05,
                                        viewKm.width() * 0.05, viewKm.height() * 0.05);
  const auto gather = [&](std::initializer_list<std::vector<Shape>*> lists, bool area,
                          bool clockwiseRim) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (std::vector<Shape>* shapes : lists)
      for (Shape& shape : *shapes) {
        if (!overlaps(shape.box, viewKm)) continue;
        const QPolygonF& km = thinned(shape);
        if (!area) {
          path.addPolygon(km);
          continue;
        }
        // A large area mostly outside the view is cut to it first.
        const bool cut = !viewKm.contains(shape.box) && km.size() > 64;
        path.addPolygon(cut ? clipped(km, margin) : km);
        path.closeSubpath();
        if (shape.rim) addRim(path, rim, clockwiseRim);
      }
    return path;
  };
  painter.save();
  painter.setTransform(t, true);
  if (m_layers & LayerLand) {
    painter.setRenderHint(QPainter::Antialiasing, !(m_layers & LayerCoast));
    painter.fillPath(gather({&g.land, &g.bigLand}, true, true), kLand);
    painter.fillPath(gather({&g.holes, &g.bigHoles}, true, false), kSea);
  }
  painter.setRenderHint(QPainter::Antialiasing);
  if (m_layers & LayerCoast) {
    painter.strokePath(gather({&g.coast, &g.bigCoast}, false, true), QPen(kCoast, 0));
  }
  if (m_layers & LayerBorders) {
    painter.strokePath(gather({&g.borders}, false, true), QPen(kBorder, 0, Qt::DashLine));
  }
  painter.restore();
  if (m_layers & LayerNight) {
    QPainterPath night;
    night.setFillRule(Qt::WindingFill);
    addArea(night, m_projection, Terminator(QDateTime::currentDateTimeUtc()), 2.0, true);
    // Cut to the view first: zoomed in, the night's edge and the outer circle run far outside.
    const QRectF margin = viewPx.adjusted(-4, -4, 4, 4);
    QPainterPath inView;
    inView.setFillRule(Qt::WindingFill);
    for (const QPolygonF& part : night.toSubpathPolygons(t))
      inView.addPolygon(clipped(part, margin));
    painter.fillPath(inView, QColor(0, 0, 40, 45));
  }
  if (m_layers & LayerGrid) drawGrid(painter, t, size);
  painter.setClipping(false);
  if (m_layers & LayerRings) drawRingsAndScale(painter, t, size);

  if (m_layers & LayerStations) {
    double apartKm = 0, apartBearing = 0;
    if (m_remote) m_projection.Inverse(m_remote->lat, m_remote->lon, apartKm, apartBearing);
    // The same place twice has no path and no direction.
    if (m_remote && m_own && apartKm > 1e-6) {
      // Zoomed in, the paths run thousands of view widths beyond it; Qt would lay out every
      // dash of that. Cut to the view, the dashes keep their place along the line.
      const PathLines paths = GreatCirclePaths(m_projection, *m_remote);
      const QRectF margin = viewPx.adjusted(-8, -8, 8, 8);
      const auto draw = [&](const KmLine& line, QPen pen) {
        for (std::size_t i = 1; i < line.size(); ++i) {
          const auto part = clippedSegment(t.map(line[i - 1]), t.map(line[i]), margin);
          if (!part) continue;
          pen.setDashOffset(part->second / pen.widthF());
          painter.setPen(pen);
          painter.drawLine(part->first);
        }
      };
      draw(paths.shortPath, QPen(kPath, 2));
      for (const KmLine& piece : paths.longPath) draw(piece, QPen(kPath, 1.5, Qt::DashLine));
    }
    const auto marker = [&](GeoPoint p, const QString& name, bool own) {
      double x = 0, y = 0;
      m_projection.Forward(p.lat, p.lon, x, y);
      const QPointF at = t.map(QPointF(x, y));
      painter.setPen(QPen(Qt::black, 1.5));
      painter.setBrush(own ? QColor(30, 120, 30) : kPath);
      if (own) {
        painter.drawEllipse(at, 4.5, 4.5);
      } else {
        painter.drawRect(QRectF(at - QPointF(4, 4), QSizeF(8, 8)));
      }
      painter.setBrush(Qt::NoBrush);
      painter.drawText(at + QPointF(7, -6), name);
    };
    if (m_own) marker(*m_own, m_ownLocator, true);
    if (m_remote) marker(*m_remote, m_remoteLocator, false);
  }
}

void MapView::paintMoving(QPainter& painter, QSizeF size) {
  const QTransform t = kmToPixel(size);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPointF centre = t.map(QPointF(0, 0));
  if ((m_layers & LayerTrack) && !m_track.empty()) {
    if (m_trackProjected < m_track.size()) {
      // Only the fixes since the last frame, joined to the line drawn so far.
      const std::size_t from = m_trackProjected == 0 ? 0 : m_trackProjected - 1;
      const GeoLine added(m_track.begin() + long(from), m_track.end());
      for (const KmLine& piece : ProjectLine(m_projection, added, 0.5)) {
        if (from > 0 && !m_trackKm.empty() && m_trackKm.back().back() == piece.front()) {
          m_trackKm.back().append(QList<QPointF>(piece.begin() + 1, piece.end()));
        } else {
          m_trackKm.push_back(polygon(piece));
        }
      }
      m_trackProjected = m_track.size();
    }
    // In this drawing's transform, not the widget's: an export has a size of its own.
    const auto pixel = [&](GeoPoint p) {
      double x = 0, y = 0;
      m_projection.Forward(p.lat, p.lon, x, y);
      return t.map(QPointF(x, y));
    };
    painter.setPen(QPen(QColor(120, 0, 160), 2));
    // A run of hours holds thousands of fixes a pixel apart; the pen joins only those it shows.
    for (const QPolygonF& piece : m_trackKm) painter.drawPolyline(thinnedTo(t.map(piece), 0.5));
    // Each square entered, marked where the track entered it.
    for (const auto& [fix, square] : m_trackSquares) {
      const QPointF at = pixel(m_track[fix]);
      painter.drawRect(QRectF(at - QPointF(3, 3), QSizeF(6, 6)));
      painter.drawText(at + QPointF(6, 12), square);
    }
    painter.setBrush(QColor(120, 0, 160));
    painter.drawEllipse(pixel(m_track.back()), 4, 4);
    painter.setBrush(Qt::NoBrush);
  }
  if (m_boundary) {
    painter.setPen(QPen(QColor(255, 140, 0), 3));
    drawLine(painter, {m_boundary->first, m_boundary->second}, t, 0.01);
  }
  if ((m_layers & LayerRotor) && (m_rotorHeading || m_rotorSent)) {
    const double len = std::hypot(size.width(), size.height());
    const auto ray = [&](double bearing) {
      return centre + QPointF(std::sin(bearing * kDeg), -std::cos(bearing * kDeg)) * len;
    };
    if (m_rotorSent) {
      painter.setPen(QPen(QColor(0, 90, 200), 1, Qt::DashDotLine));
      painter.drawLine(centre, ray(*m_rotorSent));
    }
    if (m_rotorHeading) {
      painter.setPen(QPen(QColor(0, 90, 200), 3));
      painter.drawLine(centre, ray(*m_rotorHeading));
    }
  }
  const std::optional<QPointF> cursor = m_keyCursor ? m_keyCursor : m_cursor;
  if (cursor) {
    painter.setPen(QPen(Qt::black, 1));
    painter.drawLine(*cursor - QPointF(8, 0), *cursor + QPointF(8, 0));
    painter.drawLine(*cursor - QPointF(0, 8), *cursor + QPointF(0, 8));
  }
}

void MapView::render(QPainter& painter, QSize size) {
  paintStatic(painter, size);
  paintMoving(painter, size);
}

void MapView::paintEvent(QPaintEvent*) {
  const qreal dpr = devicePixelRatioF();
  if (!m_cacheValid || m_cache.size() != size() * dpr) {
    m_cache = QPixmap(size() * dpr);
    m_cache.setDevicePixelRatio(dpr);
    QPainter p(&m_cache);
    paintStatic(p, size());
    m_cacheValid = true;
  }
  QPainter painter(this);
  painter.drawPixmap(0, 0, m_cache);
  paintMoving(painter, size());
}

void MapView::resizeEvent(QResizeEvent*) {
  m_cacheValid = false;
}

void MapView::mouseMoveEvent(QMouseEvent* event) {
  const QPointF pos = event->position();
  if (m_dragFrom) {
    const QPointF d = pos - *m_dragFrom;
    m_dragFrom = pos;
    const double s = pixelsPerKm();
    m_panKm -= QPointF(d.x() / s, -d.y() / s);
    invalidate();
  }
  m_cursor = pos;
  m_keyCursor.reset();
  const std::optional<GeoPoint> place = placeAt(pos);
  emit hovered(place ? readout(*place) : pathInfo());
  update();
}

void MapView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) m_dragFrom = event->position();
}

void MapView::mouseReleaseEvent(QMouseEvent*) {
  m_dragFrom.reset();
}

void MapView::mouseDoubleClickEvent(QMouseEvent* event) {
  m_dragFrom.reset();
  if (const std::optional<GeoPoint> place = placeAt(event->position())) emit pointChosen(*place);
}

void MapView::wheelEvent(QWheelEvent* event) {
  const double steps = event->angleDelta().y() / 120.0;
  if (steps != 0) setZoom(m_zoom * std::pow(1.25, steps), event->position());
}

void MapView::leaveEvent(QEvent*) {
  m_cursor.reset();
  emit hovered(pathInfo());
  update();
}

void MapView::moveKeyCursor(QPoint delta) {
  QPointF at = m_keyCursor.value_or(m_cursor.value_or(QPointF(width() / 2.0, height() / 2.0)));
  at += delta * 8;
  at.setX(std::clamp(at.x(), 0.0, double(width() - 1)));
  at.setY(std::clamp(at.y(), 0.0, double(height() - 1)));
  m_keyCursor = at;
  const std::optional<GeoPoint> place = placeAt(at);
  const QString text = place ? readout(*place) : QStringLiteral("außerhalb der Karte");
  emit hovered(place ? text : pathInfo());
  emit keyCursorRead(text);
  update();
}

QString MapView::textAlternative() const {
  QStringList parts;
  parts << QStringLiteral("Karte um %1").arg(centreName());
  if (m_remote && !m_remoteLocator.isEmpty()) {
    parts << QStringLiteral("Gegenstation %1").arg(m_remoteLocator);
  }
  parts << pathInfo();
  if (m_keyCursor) {
    if (const std::optional<GeoPoint> place = placeAt(*m_keyCursor)) {
      parts << QStringLiteral("Fadenkreuz: %1").arg(readout(*place));
    }
  }
  return parts.join(QStringLiteral(". "));
}

namespace {

// The map is one picture to a screen reader, whose name says what it is and whose
// description carries what a sighted user reads off it.
class MapAccessible : public QAccessibleWidget {
 public:
  explicit MapAccessible(QWidget* w) : QAccessibleWidget(w, QAccessible::Graphic) {}
  QString text(QAccessible::Text t) const override {
    const auto* map = static_cast<const MapView*>(widget());
    if (t == QAccessible::Description) {
      const QString keys = map->accessibleDescription();
      return keys.isEmpty() ? map->textAlternative()
                            : map->textAlternative() + QStringLiteral(". ") + keys;
    }
    if (t == QAccessible::Name && map->accessibleName().isEmpty()) {
      return QStringLiteral("Karte");
    }
    return QAccessibleWidget::text(t);
  }
};

QAccessibleInterface* mapAccessible(const QString& className, QObject* object) {
  if (className == QLatin1String("marvento::MapView") && object && object->isWidgetType()) {
    return new MapAccessible(static_cast<QWidget*>(object));
  }
  return nullptr;
}

}  // namespace

void InstallMapAccessible() {
  static const bool installed = [] {
    QAccessible::installFactory(&mapAccessible);
    return true;
  }();
  (void)installed;
}

void MapView::keyPressEvent(QKeyEvent* event) {
  QPoint delta;
  switch (event->key()) {
    case Qt::Key_Left: delta = {-1, 0}; break;
    case Qt::Key_Right: delta = {1, 0}; break;
    case Qt::Key_Up: delta = {0, -1}; break;
    case Qt::Key_Down: delta = {0, 1}; break;
    case Qt::Key_Plus: setZoom(m_zoom * 1.5, m_keyCursor); return;
    case Qt::Key_Minus: setZoom(m_zoom / 1.5, m_keyCursor); return;
    case Qt::Key_Home: wholeEarth(); return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      if (m_keyCursor) {
        if (const std::optional<GeoPoint> place = placeAt(*m_keyCursor)) emit pointChosen(*place);
      }
      return;
    default: QWidget::keyPressEvent(event); return;
  }
  if (event->modifiers() & Qt::ShiftModifier) {
    moveKeyCursor(delta);
  } else {
    // An arrow pans by a tenth of the view.
    const double s = pixelsPerKm();
    m_panKm += QPointF(delta.x(), -delta.y()) * (std::min(width(), height()) / 10.0 / s);
    invalidate();
  }
}

}  // namespace marvento
