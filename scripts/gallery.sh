#!/bin/sh
# Draws every screen the menus lead to into docs/screens/ (SVG), with an index.
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
BUILD="${BUILD:-build-gallery}"
[ -f "$BUILD/CMakeCache.txt" ] || cmake -S . -B "$BUILD" -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$BUILD" --target lanyx_gallery -j "$(nproc)"
rm -rf docs/screens
mkdir -p docs/screens
"$BUILD/lanyx_gallery" docs/screens
