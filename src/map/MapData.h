#pragma once

#include "map/MapGeometry.h"

#include <QByteArray>

#include <optional>

namespace marvento {

// The land, coastlines and country borders of one scale of Natural Earth, as tools/mapgen
// writes them. Every ring has land on its right; outer rings and holes together are the
// coastlines.
struct MapData {
  std::vector<GeoLine> outer;
  std::vector<GeoLine> holes;
  std::vector<GeoLine> borders;
  // The same lines as unit vectors, for projecting.
  std::vector<UnitLine> outerUnit, holesUnit, bordersUnit;
  std::size_t pointCount() const;
};

// Reads the compact form; unset when the bytes are not one (wrong marker, cut short).
std::optional<MapData> ParseMapData(const QByteArray& bytes);

}  // namespace marvento
