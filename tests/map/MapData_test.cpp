#include "map/MapData.h"

#include <QtEndian>

#include <gtest/gtest.h>

#include <cmath>

namespace marvento {
namespace {

// The compact form: a marker, then outer rings, holes and borders, each a count of lines and
// every line a count of points, lon and lat as little-endian floats.
QByteArray compact(const std::vector<std::vector<GeoLine>>& parts) {
  QByteArray out("MVMAP1\0\0", 8);
  const auto u32 = [&out](quint32 v) {
    char b[4];
    qToLittleEndian(v, b);
    out.append(b, 4);
  };
  const auto f32 = [&out](float v) {
    char b[4];
    qToLittleEndian(v, b);
    out.append(b, 4);
  };
  for (const auto& lines : parts) {
    u32(quint32(lines.size()));
    for (const GeoLine& line : lines) {
      u32(quint32(line.size()));
      for (const GeoPoint& p : line) {
        f32(float(p.lon));
        f32(float(p.lat));
      }
    }
  }
  return out;
}

TEST(MapData, ReadsTheCompactFormAndRefusesAnythingElse) {
  const GeoLine ring = {{10, 20}, {10, 30}, {0, 30}};
  const QByteArray good = compact({{ring}, {}, {{{-33.5, 151.25}, {-34, 151}}}});
  const auto data = ParseMapData(good);
  ASSERT_TRUE(data);
  ASSERT_EQ(data->ringCount(), 1u);
  ASSERT_EQ(data->borders.size(), 1u);
  const UnitVector& v = data->ring(0)[1];
  EXPECT_NEAR(std::asin(v.z) / kDeg, 10, 1e-5);
  EXPECT_NEAR(std::atan2(v.y, v.x) / kDeg, 30, 1e-5);

  QByteArray marker = good;
  marker[5] = '2';
  QByteArray countTooLarge = good;
  countTooLarge[8] = 2;  // two outer rings announced, one there
  for (const QByteArray& bad :
       {QByteArray(), good.left(7), marker, good.chopped(1), good + '\0', countTooLarge}) {
    EXPECT_FALSE(ParseMapData(bad)) << bad.size() << " bytes";
  }
}

}  // namespace
}  // namespace marvento
