#!/bin/sh
# One session of the console under valgrind's memcheck: no error, nothing definitely lost.
# Built without sanitizers, in the packages' build folder (LANYX_MEMCHECK_BUILD names another).
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
BUILD="${LANYX_MEMCHECK_BUILD:-build-package}"
[ -f "$BUILD/CMakeCache.txt" ] ||
    cmake -S . -B "$BUILD" -G Ninja -DCMAKE_BUILD_TYPE=Release -DLANYX_SANITIZE=OFF >/dev/null
cmake --build "$BUILD" -j "$(nproc)" --target lanyx_memcheck
exec "$BUILD/lanyx_memcheck"
