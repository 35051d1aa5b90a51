#include "contest/Wgs84.h"

#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

#include <cmath>

namespace marvento {
namespace {

// Distances and bearings against GeographicLib's own command-line solver, GeodSolve, for
// pairs across the whole globe: the same point, short hops, the poles, the date line and
// nearly antipodal points, where a wrong order of latitude and longitude or a bearing
// left negative would show.
TEST(Wgs84, AgreesWithGeodSolve) {
  const QString solver = QStandardPaths::findExecutable(QStringLiteral("GeodSolve"));
  if (solver.isEmpty()) GTEST_SKIP() << "GeodSolve (geographiclib-tools) is not installed";
  std::vector<std::pair<GeoPoint, GeoPoint>> pairs = {
      {{52.520833, 13.375}, {52.520833, 13.375}},
      {{52.520833, 13.375}, {52.5625, 13.458333}},
      {{52.520833, 13.375}, {51.395833, -0.125}},
      {{52.520833, 13.375}, {-33.9, 151.2}},
      {{0, 0}, {0.5, 179.7}},
      {{0, 0}, {-0.1, -179.9}},
      {{89.99, 10}, {-89.99, -170}},
      {{90, 0}, {45, 45}},
      {{-90, 0}, {-45, -135}},
      {{10, 179.9}, {10, -179.9}},
      {{-41.3, 174.8}, {64.1, -21.9}},
      {{35.7, 139.7}, {40.7, -74.0}},
  };
  // A grid of further pairs, spread over latitudes and longitudes.
  for (int i = 0; i < 24; ++i) {
    const double a = -85 + 7.3 * i, b = -179 + 14.9 * i;
    pairs.push_back({{a, b}, {-a * 0.6 + 3, std::fmod(b + 123.4 + 540, 360) - 180}});
  }
  QByteArray input;
  for (const auto& [p, q] : pairs)
    input += QByteArray::number(p.lat, 'g', 17) + ' ' + QByteArray::number(p.lon, 'g', 17) + ' ' +
             QByteArray::number(q.lat, 'g', 17) + ' ' + QByteArray::number(q.lon, 'g', 17) + '\n';
  QProcess geod;
  geod.start(solver, {QStringLiteral("-i"), QStringLiteral("-p"), QStringLiteral("9")});
  ASSERT_TRUE(geod.waitForStarted());
  geod.write(input);
  geod.closeWriteChannel();
  ASSERT_TRUE(geod.waitForFinished(30000));
  const QList<QByteArray> lines = geod.readAllStandardOutput().trimmed().split('\n');
  ASSERT_EQ(lines.size(), static_cast<qsizetype>(pairs.size()));
  for (size_t i = 0; i < pairs.size(); ++i) {
    const QList<QByteArray> f = lines[i].simplified().split(' ');
    ASSERT_EQ(f.size(), 3) << lines[i].constData();
    const double azi = f[0].toDouble(), metres = f[2].toDouble();
    const Wgs84Path p = Wgs84Inverse(pairs[i].first, pairs[i].second);
    SCOPED_TRACE(lines[i].constData());
    EXPECT_NEAR(p.km * 1000, metres, 1e-6);
    EXPECT_GE(p.bearing, 0);
    EXPECT_LT(p.bearing, 360);
    if (metres > 1) {
      EXPECT_NEAR(std::remainder(p.bearing - azi, 360.0), 0, 1e-8);
    }
  }
}

}  // namespace
}  // namespace marvento
