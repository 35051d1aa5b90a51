#include "map/MapData.h"

#include <QtEndian>

#include <cstring>

namespace marvento {

std::optional<MapData> ParseMapData(const QByteArray& bytes) {
  static constexpr char kMagic[8] = {'M', 'V', 'M', 'A', 'P', '1', 0, 0};
  if (bytes.size() < 8 || std::memcmp(bytes.constData(), kMagic, 8) != 0) return std::nullopt;
  const auto* p = reinterpret_cast<const uchar*>(bytes.constData());
  qsizetype at = 8;
  const qsizetype size = bytes.size();
  const auto u32 = [&](quint32& v) {
    if (size - at < 4) return false;
    v = qFromLittleEndian<quint32>(p + at);
    at += 4;
    return true;
  };
  MapData data;
  for (auto* lines : {&data.outer, &data.holes, &data.borders}) {
    quint32 count = 0;
    if (!u32(count)) return std::nullopt;
    for (quint32 i = 0; i < count; ++i) {
      quint32 n = 0;
      if (!u32(n) || (size - at) / 8 < qsizetype(n)) return std::nullopt;
      GeoLine line(n);
      for (quint32 k = 0; k < n; ++k) {
        const float lon = qFromLittleEndian<float>(p + at);
        const float lat = qFromLittleEndian<float>(p + at + 4);
        at += 8;
        line[k] = {lat, lon};
      }
      lines->push_back(ToUnitLine(line));
    }
  }
  if (at != size) return std::nullopt;
  return data;
}

}  // namespace marvento
