// The map window through the real widgets, offscreen: the readout against GeographicLib, a
// double-click into the main window's computation, the zoom, what the rendered view holds (also
// at device pixel ratio 2, with the grid line ahead, the track and the rotor) and the PDF as
// poppler reads it.

#include "app/frmMain.h"
#include "map/MapView.h"
#include "map/frmKarte.h"
#include "platform/Settings.h"
#include "support/ProgramFixture.h"
#include "support/Typing.h"

#include "locator/CoordsToLocator.h"

#include <GeographicLib/AzimuthalEquidistant.hpp>
#include <GeographicLib/Geodesic.hpp>

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QWheelEvent>
#include <QtTest>

#include <cmath>
#include <numbers>
#include <optional>

using namespace marvento;
using marvento::test::IsolatedUser;
using marvento::test::Program;

Q_DECLARE_METATYPE(marvento::GeoPoint)
using Fixes = QList<marvento::GeoPoint>;

namespace {

// The pointer over a pixel of the map. Sent as an event: QTest drops a move to where the
// pointer of an earlier window last was.
void hover(QWidget* view, QPoint pixel) {
  QMouseEvent move(QEvent::MouseMove, pixel, view->mapToGlobal(pixel), Qt::NoButton, Qt::NoButton,
                   Qt::NoModifier);
  QApplication::sendEvent(view, &move);
}

frmKarte* mapWindow() {
  for (QWidget* w : QApplication::topLevelWidgets()) {
    if (w->objectName() == u"frmKarte" && w->isVisible()) return qobject_cast<frmKarte*>(w);
  }
  return nullptr;
}

// The number in a caption such as " 6080,10 km" or "295,682 °".
double captionNumber(const QString& text) {
  static const QRegularExpression number(QStringLiteral("-?[0-9]+([.,][0-9]+)?"));
  const QString found = number.match(text).captured(0);
  return QString(found).replace(u',', u'.').toDouble();
}

struct Readout {
  QString locator;
  double km = 0;
  double bearing = 0;
};

// "JN58TD   1234 km   123,4 °"
Readout parseReadout(const QString& text) {
  const QStringList parts = text.split(QStringLiteral("   "), Qt::SkipEmptyParts);
  if (parts.size() < 3) return {};
  return {parts[0], captionNumber(parts[1]), captionNumber(parts[2])};
}

// The place at a pixel and its distance and bearing from the centre, from GeographicLib on
// the view's sphere; the pixel scale is the one the widget states.
Readout reference(const MapView& view, QPointF pixel) {
  const double r = view.projection().radiusKm();
  const GeographicLib::Geodesic sphere(r * 1000.0, 0.0);
  const GeographicLib::AzimuthalEquidistant ae(sphere);
  const GeoPoint c = view.projection().centre();
  const double s = view.pixelsPerKm();
  const double x = (pixel.x() - view.width() / 2.0) / s * 1000.0;
  const double y = -(pixel.y() - view.height() / 2.0) / s * 1000.0;
  double lat = 0, lon = 0, azi = 0, rk = 0;
  ae.Reverse(c.lat, c.lon, x, y, lat, lon, azi, rk);
  double s12 = 0, azi1 = 0, azi2 = 0;
  sphere.Inverse(c.lat, c.lon, lat, lon, s12, azi1, azi2);
  return {CoordsToLocator6(lon, lat), s12 / 1000.0, azi1 < 0 ? azi1 + 360.0 : azi1};
}

// Whether a pixel within radius of a point has nearly the colour, channel by channel.
bool inkNear(const QImage& image, QPointF at, QColor colour, int tolerance = 40, int radius = 1) {
  for (int dx = -radius; dx <= radius; ++dx) {
    for (int dy = -radius; dy <= radius; ++dy) {
      const QPoint p = at.toPoint() + QPoint(dx, dy);
      if (!image.rect().contains(p)) continue;
      const QColor c = image.pixelColor(p);
      if (std::abs(c.red() - colour.red()) <= tolerance &&
          std::abs(c.green() - colour.green()) <= tolerance &&
          std::abs(c.blue() - colour.blue()) <= tolerance) {
        return true;
      }
    }
  }
  return false;
}

// A map of its own, centred on a place and zoomed, shown offscreen.
void showMap(MapView& view, GeoPoint own, unsigned layers, double zoom) {
  view.resize(400, 400);
  view.setStations(own, std::nullopt, QStringLiteral("JO62"), {}, 6371.0);
  view.setLayers(layers);
  view.show();
  view.setZoom(zoom);
}

// The place a share of the way from a to b, by degrees (short segments: close to the great
// circle).
GeoPoint between(GeoPoint a, GeoPoint b, double f) {
  return {a.lat + (b.lat - a.lat) * f, a.lon + (b.lon - a.lon) * f};
}

}  // namespace

class tst_Karte : public QObject {
  Q_OBJECT

  std::optional<IsolatedUser> m_user;
  std::optional<Program> m_program;

  // The main window with a computed pair and the map opened by Ctrl+K.
  frmKarte* open(const QString& own = QStringLiteral("JO62QM"),
                 const QString& remote = QStringLiteral("FN42KI")) {
    m_program.emplace();
    frmMain* w = m_program->window();
    test::ComputeFrom(w, own, remote);
    w->activateWindow();
    QTest::keyClick(w, Qt::Key_K, Qt::ControlModifier);
    frmKarte* map = mapWindow();
    if (map) {
      map->resize(700, 640);
      QCoreApplication::processEvents();
    }
    return map;
  }

 private slots:
  void init() { m_user.emplace(); }
  void cleanup() {
    if (frmKarte* map = mapWindow()) map->close();
    m_program.reset();
    m_user.reset();
  }

  void hoverReadoutEqualsReference_data() {
    QTest::addColumn<QPointF>("offset");  // from the widget's centre, as a share of the radius
    QTest::newRow("centre") << QPointF(0, 0);
    QTest::newRow("north-east") << QPointF(0.3, -0.2);
    QTest::newRow("west, far") << QPointF(-0.8, 0.1);
    QTest::newRow("near the antipode") << QPointF(0.02, 0.97);
  }
  void hoverReadoutEqualsReference() {
    QFETCH(QPointF, offset);
    frmKarte* map = open();
    QVERIFY(map);
    MapView* view = map->picKarte;
    QCOMPARE(view->objectName(), QStringLiteral("picKarte"));
    // The whole earth fits the shorter side, the own station in the middle.
    const double rimPx = view->projection().antipodeKm() * view->pixelsPerKm();
    const double half = std::min(view->width(), view->height()) / 2.0;
    QVERIFY(rimPx <= half && rimPx > 0.9 * half);
    const QPointF pixel(view->width() / 2.0 + offset.x() * rimPx,
                        view->height() / 2.0 + offset.y() * rimPx);
    hover(view, pixel.toPoint());
    const Readout shown = parseReadout(map->lbKarteInfo->text());
    const Readout expected = reference(*view, QPointF(pixel.toPoint()));
    QCOMPARE(shown.locator, expected.locator);
    QVERIFY2(std::fabs(shown.km - expected.km) <= 0.5 + 1e-6, qPrintable(map->lbKarteInfo->text()));
    if (expected.km > 1) {
      QVERIFY2(std::fabs(std::remainder(shown.bearing - expected.bearing, 360.0)) <= 0.05 + 1e-6,
               qPrintable(map->lbKarteInfo->text()));
    }
  }

  void doubleClickComputesTheRemote_data() {
    QTest::addColumn<QPointF>("offset");
    QTest::newRow("south") << QPointF(0.05, 0.35);
    QTest::newRow("east") << QPointF(0.5, -0.1);
  }
  void doubleClickComputesTheRemote() {
    QFETCH(QPointF, offset);
    frmKarte* map = open();
    QVERIFY(map);
    MapView* view = map->picKarte;
    frmMain* w = m_program->window();
    const double rimPx = view->projection().antipodeKm() * view->pixelsPerKm();
    const QPoint pixel(int(view->width() / 2.0 + offset.x() * rimPx),
                       int(view->height() / 2.0 + offset.y() * rimPx));
    hover(view, pixel);
    const Readout readout = parseReadout(map->lbKarteInfo->text());
    QVERIFY2(!readout.locator.isEmpty(), qPrintable(map->lbKarteInfo->text()));
    const QString lgBefore = w->tbFremdLg->text();
    QTest::mouseDClick(view, Qt::LeftButton, {}, pixel);
    QVERIFY(w->tbFremdLg->text() != lgBefore);
    QVERIFY(!w->tbFremdBr->text().isEmpty());
    // The main window computed the pair: its figures are the readout's.
    QCOMPARE(w->tbFremdLoc->text().left(6), readout.locator);
    QVERIFY2(std::fabs(captionNumber(w->lblEntfernung->text()) - readout.km) <= 0.6,
             qPrintable(w->lblEntfernung->text() + " / " + map->lbKarteInfo->text()));
    QVERIFY2(std::fabs(captionNumber(w->lblRichtung->text()) - readout.bearing) <= 0.06,
             qPrintable(w->lblRichtung->text() + " / " + map->lbKarteInfo->text()));

    // The remote marker sits at the pixel, and the short path runs through it: path red
    // half way out and just short of the marker.
    view->setLayers(LayerStations);
    QCoreApplication::processEvents();
    const QImage image = view->grab().toImage();
    const QPointF centre(view->width() / 2.0, view->height() / 2.0);
    const QPointF dir =
        (QPointF(pixel) - centre) / std::hypot(pixel.x() - centre.x(), pixel.y() - centre.y());
    for (const QPointF at : {(centre + QPointF(pixel)) / 2, QPointF(pixel) - dir * 8}) {
      bool red = false;
      for (int dx = -1; dx <= 1; ++dx) {
        for (int dy = -1; dy <= 1; ++dy) {
          const QColor c = image.pixelColor(at.toPoint() + QPoint(dx, dy));
          red = red || (c.red() > 150 && c.green() < 110 && c.blue() < 110);
        }
      }
      QVERIFY2(red, qPrintable(QStringLiteral("no path at %1,%2").arg(at.x()).arg(at.y())));
    }
  }

  // Without a mouse: Shift+arrows move a cross, Enter takes its place.
  void keyboardCrossChoosesTheRemote() {
    frmKarte* map = open();
    QVERIFY(map);
    MapView* view = map->picKarte;
    frmMain* w = m_program->window();
    view->setFocus();
    for (int i = 0; i < 12; ++i) QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    for (int i = 0; i < 5; ++i) QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
    const Readout readout = parseReadout(map->lbKarteInfo->text());
    QVERIFY2(!readout.locator.isEmpty(), qPrintable(map->lbKarteInfo->text()));
    QTest::keyClick(view, Qt::Key_Return);
    QCOMPARE(w->tbFremdLoc->text().left(6), readout.locator);
    QVERIFY2(std::fabs(captionNumber(w->lblRichtung->text()) - readout.bearing) <= 0.06,
             qPrintable(w->lblRichtung->text() + " / " + map->lbKarteInfo->text()));
  }

  // The info line away from the map: both paths, or a word where there is no path. (The
  // same place twice is handed to the map directly: the main window stops on a box there.)
  void infoLineNamesThePaths() {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    frmKarte* map = open();
    QVERIFY(map);
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(map->picKarte, &leave);
    QCOMPARE(map->lbKarteInfo->text(),
             QStringLiteral("Kurzer Weg 6080 km, 295,7 °   Langer Weg 33929 km, 115,7 °"));
    const GeoPoint own = map->picKarte->projection().centre();
    map->picKarte->setStations(own, own, QStringLiteral("JO62QM"), QStringLiteral("JO62QM"),
                               6371.0);
    QCOMPARE(map->lbKarteInfo->text(), QStringLiteral("Gegenstation = eigene Station"));
    QLocale::setDefault(QLocale::c());
  }

  void zoomKeepsThePlaceUnderTheCursor() {
    frmKarte* map = open();
    QVERIFY(map);
    MapView* view = map->picKarte;
    const QPointF at(view->width() * 0.62, view->height() * 0.4);
    const std::optional<GeoPoint> before = view->placeAt(at);
    QVERIFY(before);
    for (int i = 0; i < 6; ++i) {
      QWheelEvent wheel(at, view->mapToGlobal(at), QPoint(), QPoint(0, 120), Qt::NoButton,
                        Qt::NoModifier, Qt::NoScrollPhase, false);
      QApplication::sendEvent(view, &wheel);
    }
    QVERIFY(view->zoom() > 3);
    const std::optional<GeoPoint> after = view->placeAt(at);
    QVERIFY(after);
    const QPointF back = view->pixelOf(*before);
    QVERIFY2(std::hypot(back.x() - at.x(), back.y() - at.y()) < 0.5,
             qPrintable(QStringLiteral("%1,%2").arg(back.x()).arg(back.y())));
    // Pos1 returns to the whole earth.
    QTest::keyClick(view, Qt::Key_Home);
    QCOMPARE(view->zoom(), 1.0);
  }

  // Land at land, sea at sea, also where a continent holds the antipode of the centre.
  void landAndSea_data() {
    QTest::addColumn<QString>("own");
    QTest::addColumn<GeoPoint>("land");
    QTest::addColumn<GeoPoint>("sea");
    QTest::newRow("Berlin, Sahara") << "JO62QM" << GeoPoint{23, 10} << GeoPoint{30, -40};
    QTest::newRow("Berlin, Siberia") << "JO62QM" << GeoPoint{62, 100} << GeoPoint{-20, 80};
    QTest::newRow("Fiji, antipode in Africa") << "RH91AA" << GeoPoint{15, 10} << GeoPoint{30, -40};
    QTest::newRow("Fiji, Australia") << "RH91AA" << GeoPoint{-25, 135} << GeoPoint{0, -140};
  }
  void landAndSea() {
    QFETCH(QString, own);
    QFETCH(GeoPoint, land);
    QFETCH(GeoPoint, sea);
    frmKarte* map = open(own, QStringLiteral("JJ00AA"));
    QVERIFY(map);
    MapView* view = map->picKarte;
    view->setLayers(LayerLand);
    QCoreApplication::processEvents();
    const QImage image = view->grab().toImage();
    const QColor landColour = image.pixelColor(view->pixelOf(land).toPoint());
    const QColor seaColour = image.pixelColor(view->pixelOf(sea).toPoint());
    QCOMPARE(landColour, QColor(238, 232, 205));
    QCOMPARE(seaColour, QColor(198, 222, 240));
  }

  void pdfHoldsTitleAndVectors() {
    frmKarte* map = open();
    QVERIFY(map);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("Karte.pdf"));
    QVERIFY(map->savePdf(path, QPageSize::A4, QPageLayout::Landscape));
    QProcess info;
    info.start(QStringLiteral("pdfinfo"), {path});
    QVERIFY(info.waitForFinished(20000));
    QCOMPARE(info.exitCode(), 0);
    QVERIFY(info.readAllStandardOutput().contains("Pages:           1"));
    QProcess text;
    text.start(QStringLiteral("pdftotext"), {path, QStringLiteral("-")});
    QVERIFY(text.waitForFinished(20000));
    const QString words = QString::fromUtf8(text.readAllStandardOutput());
    QVERIFY2(words.contains(QStringLiteral("Karte um JO62QM")), qPrintable(words.left(200)));
    // Vector paths, no picture of the map.
    QProcess images;
    images.start(QStringLiteral("pdfimages"), {QStringLiteral("-list"), path});
    QVERIFY(images.waitForFinished(20000));
    QCOMPARE(images.readAllStandardOutput().count('\n'), 2);  // the heading lines only

    const QString png = dir.filePath(QStringLiteral("Karte.png"));
    QVERIFY(map->savePng(png, QSize(640, 480)));
    QCOMPARE(QImage(png).size(), QSize(640, 480));
  }

  void layersAndPlaceAreRemembered() {
    frmKarte* map = open();
    QVERIFY(map);
    map->picKarte->setLayers(LayerAll & ~LayerGrid);
    map->close();
    QCOMPARE(GetMapSetting(MapSettingKey::Layers, {}).toUInt(), unsigned(LayerAll & ~LayerGrid));
    m_program->window()->mnuKarte->trigger();
    map = mapWindow();
    QVERIFY(map);
    QVERIFY(!(map->picKarte->layers() & LayerGrid));
  }

  // On a screen of device pixel ratio 2 the map is drawn at full device resolution. The ratio
  // is fixed when the application starts: the test runs again in a child at scale factor 2.
  void highDpiDrawsAtDeviceResolution_data() {
    // A point of a grid line between labels, where the line runs about vertical or horizontal.
    QTest::addColumn<GeoPoint>("onLine");
    QTest::addColumn<bool>("vertical");
    QTest::newRow("meridian") << GeoPoint{12.5, 0} << true;
    QTest::newRow("parallel") << GeoPoint{10, -5} << false;
  }
  void highDpiDrawsAtDeviceResolution() {
    QFETCH(GeoPoint, onLine);
    QFETCH(bool, vertical);
    if (!qEnvironmentVariableIsSet("MARVENTO_TEST_HIDPI")) {
      QProcess child;
      QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
      env.insert(QStringLiteral("QT_SCALE_FACTOR"), QStringLiteral("2"));
      env.insert(QStringLiteral("MARVENTO_TEST_HIDPI"), QStringLiteral("1"));
      child.setProcessEnvironment(env);
      child.setProcessChannelMode(QProcess::MergedChannels);
      child.start(
          QCoreApplication::applicationFilePath(),
          {QStringLiteral("%1:%2").arg(QTest::currentTestFunction(), QTest::currentDataTag())});
      QVERIFY(child.waitForFinished(120000));
      QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
               child.readAll().constData());
      return;
    }
    MapView view;
    showMap(view, GeoPoint{5, 10}, LayerGrid, 3);
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCOMPARE(view.devicePixelRatioF(), 2.0);
    const QImage sharp = view.grab().toImage();
    QCOMPARE(sharp.size(), view.size() * 2);
    // What a picture drawn at ratio 1 and stretched would show.
    QImage low(view.size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&low);
    view.render(painter, view.size());
    painter.end();
    const QImage stretched = low.scaled(sharp.size());
    // The device pixels across the line that carry ink, and where they lie.
    const QPointF at = view.pixelOf(onLine) * 2;
    const auto across = [&](const QImage& image) {
      int inked = 0;
      double sum = 0;
      for (int d = -8; d <= 8; ++d) {
        const QPoint p = at.toPoint() + (vertical ? QPoint(d, 0) : QPoint(0, d));
        if (!inkNear(image, p, Qt::white, 8, 0)) ++inked, sum += vertical ? p.x() : p.y();
      }
      return std::pair(inked, inked ? sum / inked : 0.0);
    };
    const auto [sharpInk, sharpMid] = across(sharp);
    const auto [stretchedInk, stretchedMid] = across(stretched);
    QVERIFY2(sharpInk > 0 && sharpInk < stretchedInk,
             qPrintable(QStringLiteral("%1 vs %2").arg(sharpInk).arg(stretchedInk)));
    QVERIFY2(std::fabs(sharpMid - (vertical ? at.x() : at.y())) <= 1.5,
             qPrintable(QString::number(sharpMid)));
  }

  // The grid line ahead of a rover lies on its segment, and goes when unset.
  void boundaryAheadFollowsTheSegment_data() {
    QTest::addColumn<GeoPoint>("from");
    QTest::addColumn<GeoPoint>("to");
    QTest::newRow("meridian") << GeoPoint{52, 12} << GeoPoint{53, 12};
    QTest::newRow("parallel") << GeoPoint{53, 12} << GeoPoint{53, 14};
  }
  void boundaryAheadFollowsTheSegment() {
    QFETCH(GeoPoint, from);
    QFETCH(GeoPoint, to);
    const QColor orange(255, 140, 0);
    MapView view;
    showMap(view, GeoPoint{52.5, 12.5}, LayerAll, 150);
    view.setBoundaryAhead(std::pair(from, to));
    QImage image = view.grab().toImage();
    for (double f = 0.05; f < 1; f += 0.1) {
      const QPointF at = view.pixelOf(between(from, to, f));
      QVERIFY2(inkNear(image, at, orange, 40, 2), qPrintable(QString::number(f)));
    }
    // Not beyond its ends.
    for (double f : {-0.3, 1.3})
      QVERIFY(!inkNear(image, view.pixelOf(between(from, to, f)), orange));
    view.setBoundaryAhead(std::nullopt);
    image = view.grab().toImage();
    for (double f = 0.05; f < 1; f += 0.1) {
      QVERIFY(!inkNear(image, view.pixelOf(between(from, to, f)), orange, 40, 2));
    }
  }

  // The track's line, and a mark at each fix that entered another square, on screen and in
  // an export at twice the size.
  void trackMarksEachSquareCrossed_data() {
    QTest::addColumn<Fixes>("fixes");
    QTest::addColumn<QList<int>>("marked");
    QTest::newRow("east into JO62")
        << Fixes{{52.5, 11.55}, {52.5, 11.75}, {52.5, 11.95}, {52.5, 12.15}, {52.5, 12.35}}
        << QList<int>{3};
    QTest::newRow("north and back") << Fixes{{52.6, 13.5},  {52.8, 13.5}, {53.05, 13.5},
                                             {53.25, 13.5}, {52.9, 13.5}, {52.7, 13.5}}
                                    << QList<int>{2, 4};
    QTest::newRow("across a corner")
        << Fixes{{52.7, 11.7}, {52.9, 11.9}, {53.1, 12.1}, {53.3, 12.3}} << QList<int>{2};
    QTest::newRow("inside one square")
        << Fixes{{52.2, 12.2}, {52.4, 12.5}, {52.6, 12.8}, {52.4, 13.1}} << QList<int>{};
  }
  void trackMarksEachSquareCrossed() {
    QFETCH(Fixes, fixes);
    QFETCH(QList<int>, marked);
    const QColor purple(120, 0, 160);
    MapView view;
    GeoPoint mean;
    for (const GeoPoint& fix : fixes)
      mean = {mean.lat + fix.lat / fixes.size(), mean.lon + fix.lon / fixes.size()};
    showMap(view, mean, LayerTrack, 300);
    for (const GeoPoint& fix : fixes) view.addFix(fix);
    QImage exported(view.size() * 2, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&exported);
    view.render(painter, exported.size());
    painter.end();
    for (const auto& [image, factor] :
         {std::pair(view.grab().toImage(), 1.0), std::pair(exported, 2.0)}) {
      // Clang 14 cannot capture a structured binding.
      const double scale = factor;
      const auto pixel = [&](GeoPoint p) { return view.pixelOf(p) * scale; };
      for (qsizetype i = 0; i < fixes.size(); ++i) {
        if (i > 0) {
          QVERIFY(inkNear(image, (pixel(fixes[i - 1]) + pixel(fixes[i])) / 2, purple));
        }
        // A mark outlines a square round the fix, the ring of pixels three away from it; the
        // line alone crosses that ring twice. The last fix carries the position dot instead.
        if (i + 1 == fixes.size()) continue;
        const QPoint at = pixel(fixes[i]).toPoint();
        int outline = 0;
        for (int dx = -3; dx <= 3; ++dx) {
          for (int dy = -3; dy <= 3; ++dy) {
            if (std::max(std::abs(dx), std::abs(dy)) == 3) {
              outline += inkNear(image, at + QPoint(dx, dy), purple, 130, 0);
            }
          }
        }
        QVERIFY2(
            (outline >= 16) == marked.contains(int(i)),
            qPrintable(QStringLiteral("fix %1 at scale %2: %3").arg(i).arg(scale).arg(outline)));
      }
    }
  }

  // The needle along the rotor's heading from the own station, north up; the bearing sent
  // as a line of its own; nothing with the layer off.
  void rotorNeedleAlongTheHeading_data() {
    QTest::addColumn<double>("heading");
    QTest::addColumn<double>("sent");
    QTest::newRow("north, sent south-west") << 0.0 << 240.0;
    QTest::newRow("north-east, sent north-west") << 45.0 << 300.0;
    QTest::newRow("south-south-west, sent south-east") << 200.0 << 140.0;
    QTest::newRow("just west of north") << 350.0 << 20.0;
  }
  void rotorNeedleAlongTheHeading() {
    QFETCH(double, heading);
    QFETCH(double, sent);
    const QColor blue(0, 90, 200);
    MapView view;
    const GeoPoint own{52.5, 13.4};
    showMap(view, own, LayerRotor, 1);
    const QPointF centre = view.pixelOf(own);
    const auto ray = [&](const QImage& image, double bearing, int tolerance) {
      int inked = 0, samples = 0;
      const QPointF dir(std::sin(bearing * std::numbers::pi / 180),
                        -std::cos(bearing * std::numbers::pi / 180));
      for (double r = 30; r <= 180; r += 4, ++samples) {
        inked += inkNear(image, centre + dir * r, blue, tolerance);
      }
      return double(inked) / samples;
    };
    view.setRotor(heading, std::nullopt);
    QImage image = view.grab().toImage();
    QCOMPARE(ray(image, heading, 40), 1.0);
    QCOMPARE(ray(image, heading + 12, 140), 0.0);
    QCOMPARE(ray(image, heading - 12, 140), 0.0);
    QCOMPARE(ray(image, sent, 140), 0.0);
    // The sent bearing: a thin broken line; the needle stays.
    view.setRotor(heading, sent);
    image = view.grab().toImage();
    QVERIFY(ray(image, sent, 140) > 0.3);
    QCOMPARE(ray(image, heading, 40), 1.0);
    // The rotor turns on: the needle moves, the sent line stays.
    view.setRotor(heading + 90, std::nullopt);
    image = view.grab().toImage();
    QCOMPARE(ray(image, heading + 90, 40), 1.0);
    QCOMPARE(ray(image, heading, 140), 0.0);
    QVERIFY(ray(image, sent, 140) > 0.3);
    view.setLayers(0);
    image = view.grab().toImage();
    QCOMPARE(ray(image, heading + 90, 140), 0.0);
    QCOMPARE(ray(image, sent, 140), 0.0);
    // The link reports no heading: the needle goes.
    view.setLayers(LayerRotor);
    view.setRotor(std::nullopt, std::nullopt);
    QCOMPARE(ray(view.grab().toImage(), heading + 90, 140), 0.0);
  }
};

QTEST_MAIN(tst_Karte)
#include "tst_Karte.moc"
