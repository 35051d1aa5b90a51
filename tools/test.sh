#!/bin/sh
# Installs what is missing, builds Marvento with its tests and runs every test.
set -e
cd "$(dirname "$0")/.."
sh tools/deps.sh
sh tools/build.sh
cd build
QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j "$(nproc)" --timeout 600
