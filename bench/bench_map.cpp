// The map: a frame in which only the moving parts change against a full redraw; a full redraw
// (after a new centre, and after a zoom or pan) against replaying the same drawing already
// projected; against re-projecting a 4096x2048 world raster pixel by pixel; the first open
// with its data; the memory that opening takes. World view and a Europe view at 1:50m, all at
// 1280x960, in one run.

#include "map/MapView.h"
#include "map/frmKarte.h"

#include <benchmark/benchmark.h>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QPicture>

#include <cmath>
#include <ctime>
#include <memory>

namespace marvento {
namespace {

const QSize kSize(1280, 960);
const GeoPoint kOwn{52.52, 13.40};
const GeoPoint kRemote{42.36, -71.06};

// Europe: about 4000 km across the shorter side, on the finer data.
double zoomFor(int view) {
  return view == 0 ? 1.0 : 2 * 20015.0 / 4000.0;
}

std::unique_ptr<MapView> makeView(int view) {
  auto v = std::make_unique<MapView>();
  v->resize(kSize);
  v->setStations(kOwn, kRemote, QStringLiteral("JO62QM"), QStringLiteral("FN42KI"), 6371.0);
  v->setZoom(zoomFor(view));
  v->setRotor(290.0, 295.7);
  for (int i = 0; i < 50; ++i) v->addFix({52.0 + i * 0.01, 13.0 + i * 0.02});
  return v;
}

long residentKb() {
  QFile status(QStringLiteral("/proc/self/status"));
  if (!status.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : status.readAll().split('\n')) {
    if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').value(0).toLong();
  }
  return 0;
}

// A full redraw after a new centre: the own station moves between Berlin and Munich, the land
// is projected again, then every layer painted.
void BM_FullRedrawNewCentre(benchmark::State& state) {
  auto v = makeView(int(state.range(0)));
  QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
  const GeoPoint centres[] = {{48.14, 11.58}, kOwn};
  int i = 0;
  for (auto _ : state) {
    v->setStations(centres[i++ % 2], kRemote, QStringLiteral("JO62QM"), QStringLiteral("FN42KI"),
                   6371.0);
    QPainter p(&image);
    v->render(p, kSize);
  }
}
BENCHMARK(BM_FullRedrawNewCentre)->Arg(0)->Arg(1)->ArgName("europe")->Unit(benchmark::kMillisecond);

// A full redraw after a zoom, pan or resize: the land keeps its projection, the view's
// transform, grid, rings, paths and grey line are worked out again.
void BM_FullRedrawZoom(benchmark::State& state) {
  auto v = makeView(int(state.range(0)));
  QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
  {
    QPainter first(&image);
    v->render(first, kSize);  // the centre's projection, once
  }
  for (auto _ : state) {
    QPainter p(&image);
    v->render(p, kSize);
  }
}
BENCHMARK(BM_FullRedrawZoom)->Arg(0)->Arg(1)->ArgName("europe")->Unit(benchmark::kMillisecond);

// The same drawing with nothing left to project: recorded once, replayed.
void BM_PaintPreProjected(benchmark::State& state) {
  auto v = makeView(int(state.range(0)));
  QPicture picture;
  {
    QPainter p(&picture);
    v->render(p, kSize);
  }
  QImage image(kSize, QImage::Format_ARGB32_Premultiplied);
  for (auto _ : state) {
    QPainter p(&image);
    p.drawPicture(0, 0, picture);
  }
}
BENCHMARK(BM_PaintPreProjected)->Arg(0)->Arg(1)->ArgName("europe")->Unit(benchmark::kMillisecond);

// The widget's own paint: the static layers from the cached pixmap and the moving parts
// (a new fix, the needle) over it, against the same paint with the cache rebuilt.
void BM_WidgetFrame(benchmark::State& state) {
  auto v = makeView(int(state.range(0)));
  const bool full = state.range(1) != 0;
  v->show();
  QCoreApplication::processEvents();
  v->repaint();
  int i = 0;
  for (auto _ : state) {
    ++i;
    if (full) {
      v->setLayers(v->layers());  // the static layers painted again
    } else {
      v->addFix({52.6 + i * 1e-5, 13.9});
      v->setRotor(290.0 + (i % 10), 295.7);
    }
    v->repaint();
  }
}
BENCHMARK(BM_WidgetFrame)
    ->Args({0, 0})
    ->Args({0, 1})
    ->Args({1, 0})
    ->Args({1, 1})
    ->ArgNames({"europe", "full"})
    ->Unit(benchmark::kMillisecond);

// The longest the event loop is held by one step of a user who zooms in from the whole earth
// to about 20 km across, pans, and zooms out again by keyboard: each key press with the paint
// it brings, on the clock and in processor time (the clock also counts waiting for the
// processor on a busy machine). A fresh map each round, so that each round reads the finer
// data again.
void BM_ZoomPanStall(benchmark::State& state) {
  double longest = 0, longestCpu = 0, total = 0;
  int steps = 0;
  const auto cpuMs = [] {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
  };
  for (auto _ : state) {
    MapView v;
    v.resize(kSize);
    v.setStations(kOwn, kRemote, QStringLiteral("JO62QM"), QStringLiteral("FN42KI"), 6371.0);
    v.show();
    QCoreApplication::processEvents();
    const auto press = [&](int key, int times) {
      for (int i = 0; i < times; ++i) {
        QElapsedTimer held;
        held.start();
        const double cpuBefore = cpuMs();
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&v, &event);
        QCoreApplication::processEvents();
        const double ms = double(held.nsecsElapsed()) / 1e6;
        longest = std::max(longest, ms);
        longestCpu = std::max(longestCpu, cpuMs() - cpuBefore);
        total += ms;
        ++steps;
      }
    };
    press(Qt::Key_Plus, 19);
    press(Qt::Key_Right, 20);
    press(Qt::Key_Down, 20);
    press(Qt::Key_Minus, 19);
    press(Qt::Key_Plus, 8);
    press(Qt::Key_Left, 30);
    press(Qt::Key_Home, 1);
  }
  state.counters["longest_ms"] = longest;
  state.counters["longest_cpu_ms"] = longestCpu;
  state.counters["mean_ms"] = total / std::max(1, steps);
}
BENCHMARK(BM_ZoomPanStall)->Unit(benchmark::kMillisecond)->Iterations(3);

// The peers' way: every pixel of the view projected back and looked up in a world raster.
void BM_RasterReproject(benchmark::State& state) {
  auto v = makeView(int(state.range(0)));
  QImage world(4096, 2048, QImage::Format_RGB32);
  for (int y = 0; y < world.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(world.scanLine(y));
    for (int x = 0; x < world.width(); ++x) line[x] = qRgb(x & 255, y & 255, (x ^ y) & 255);
  }
  QImage image(kSize, QImage::Format_RGB32);
  const double s = v->pixelsPerKm();
  const AzimuthalProjection& projection = v->projection();
  for (auto _ : state) {
    for (int y = 0; y < kSize.height(); ++y) {
      auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
      for (int x = 0; x < kSize.width(); ++x) {
        const double kx = (x - kSize.width() / 2.0) / s, ky = -(y - kSize.height() / 2.0) / s;
        if (std::hypot(kx, ky) > projection.antipodeKm()) {
          line[x] = 0;
          continue;
        }
        double lat = 0, lon = 0;
        projection.Reverse(kx, ky, lat, lon);
        const int wx = std::min(4095, int((lon + 180.0) / 360.0 * 4096));
        const int wy = std::min(2047, int((90.0 - lat) / 180.0 * 2048));
        line[x] = world.pixel(wx, wy);
      }
    }
    benchmark::DoNotOptimize(image.bits());
  }
}
BENCHMARK(BM_RasterReproject)->Arg(0)->Arg(1)->ArgName("europe")->Unit(benchmark::kMillisecond);

// Opening the window the first time: window, data read and projected, first paint.
void BM_FirstOpen(benchmark::State& state) {
  long grown = 0;
  for (auto _ : state) {
    const long before = residentKb();
    auto window = std::make_unique<frmKarte>();
    window->resize(kSize);
    window->picKarte->setStations(kOwn, kRemote, QStringLiteral("JO62QM"), QStringLiteral("FN42KI"),
                                  6371.0);
    window->show();
    QCoreApplication::processEvents();
    window->picKarte->repaint();
    grown = std::max(grown, residentKb() - before);
    state.PauseTiming();
    window.reset();
    state.ResumeTiming();
  }
  state.counters["rss_growth_MB"] = double(grown) / 1024.0;
}
BENCHMARK(BM_FirstOpen)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace marvento

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
