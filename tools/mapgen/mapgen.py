#!/usr/bin/env python3
"""Turns the Natural Earth TopoJSON of the npm package world-atlas (countries-110m.json,
countries-50m.json) into the compact form the map reads: little-endian float32 lon/lat
polylines in three sections.

    magic  b"MVMAP1\\0\\0"
    3 x section: uint32 line count, then per line uint32 point count and that many
                 (float32 lon, float32 lat) pairs
    sections: outer land rings, holes in the land (lakes, inland seas), country borders
              (the arcs that two countries share, each once). Every ring has land on its
              right, and the rings together are the coastlines.

Usage: mapgen.py <world-atlas package folder> <output folder>
Only the standard library is used, so the tool runs wherever python3 does.
"""
import json
import os
import struct
import sys


def decode_arcs(topo):
    sx, sy = topo["transform"]["scale"]
    tx, ty = topo["transform"]["translate"]
    arcs = []
    for arc in topo["arcs"]:
        x = y = 0
        points = []
        for dx, dy in arc:
            x += dx
            y += dy
            points.append((x * sx + tx, y * sy + ty))
        arcs.append(points)
    return arcs


def arc_points(arcs, index):
    # A negative index ~i means arc i reversed.
    return list(reversed(arcs[~index])) if index < 0 else arcs[index]


def ring(arcs, indices):
    points = []
    for i in indices:
        part = arc_points(arcs, i)
        # Consecutive arcs share their joining point.
        points.extend(part[1:] if points else part)
    return points


def polygons(geometry):
    if geometry["type"] == "Polygon":
        return [geometry["arcs"]]
    if geometry["type"] == "MultiPolygon":
        return geometry["arcs"]
    return []


def land_rings(topo, arcs):
    outer, holes = [], []
    for geometry in topo["objects"]["land"]["geometries"]:
        for polygon in polygons(geometry):
            for n, indices in enumerate(polygon):
                (holes if n else outer).append(ring(arcs, indices))
    return outer, holes


def shared_borders(topo, arcs):
    owners = {}
    for n, geometry in enumerate(topo["objects"]["countries"]["geometries"]):
        for polygon in polygons(geometry):
            for indices in polygon:
                for i in indices:
                    owners.setdefault(i if i >= 0 else ~i, set()).add(n)
    return [arcs[i] for i, who in sorted(owners.items()) if len(who) >= 2]


def section(lines):
    out = [struct.pack("<I", len(lines))]
    for line in lines:
        out.append(struct.pack("<I", len(line)))
        out.append(struct.pack("<%df" % (2 * len(line)), *[v for p in line for v in p]))
    return b"".join(out)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    source, target = sys.argv[1], sys.argv[2]
    os.makedirs(target, exist_ok=True)
    for scale in ("110m", "50m"):
        with open(os.path.join(source, "countries-%s.json" % scale), encoding="utf-8") as f:
            topo = json.load(f)
        arcs = decode_arcs(topo)
        outer, holes = land_rings(topo, arcs)
        rings = outer + holes
        data = b"MVMAP1\0\0" + section(outer) + section(holes) + section(shared_borders(topo, arcs))
        with open(os.path.join(target, "ne%s.bin" % scale), "wb") as f:
            f.write(data)
        print("ne%s.bin: %d rings, %d bytes" % (scale, len(rings), len(data)))


if __name__ == "__main__":
    main()
