#!/bin/sh
# Configures and builds Marvento in build/ (or the folder given as $BUILD_DIR), with warnings
# as errors: the project's own builds keep the code warning-free. Arguments go to cmake and
# come after the defaults here, e.g. -DMARVENTO_BUILD_BENCH=ON.
set -e
cd "$(dirname "$0")/.."
. tools/ccache.sh
build="${BUILD_DIR:-build}"
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMARVENTO_WERROR=ON \
  -DMARVENTO_BUILD_BENCH=OFF "$@" >/dev/null
cmake --build "$build" -j "$(nproc)"
