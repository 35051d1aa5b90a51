#pragma once

#include "map/MapGeometry.h"

#include <QByteArray>

#include <optional>

namespace marvento {

// The land, coastlines and country borders of one scale of Natural Earth, as tools/mapgen
// writes them, as unit vectors ready to project. Every ring has land on its right; outer
// rings and holes together are the coastlines.
struct MapData {
  std::vector<UnitLine> outer, holes, borders;
  // The outer rings first, then the holes.
  std::size_t ringCount() const { return outer.size() + holes.size(); }
  const UnitLine& ring(std::size_t i) const {
    return i < outer.size() ? outer[i] : holes[i - outer.size()];
  }
};

// Reads the compact form; unset when the bytes are not one (wrong marker, cut short).
std::optional<MapData> ParseMapData(const QByteArray& bytes);

}  // namespace marvento
