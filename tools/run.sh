#!/bin/sh
# Installs what is missing, builds Marvento and starts it.
set -e
cd "$(dirname "$0")/.."
sh tools/deps.sh
sh tools/build.sh
exec build/src/marvento "$@"
