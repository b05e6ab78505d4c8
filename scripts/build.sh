#!/bin/sh
# Configures and builds into build/: warnings are errors, sanitizers on (LANYX_SANITIZE=OFF to drop).
set -eu
cd "$(dirname "$0")/.."
SANITIZE="${LANYX_SANITIZE:-ON}"
# ccache, when present, only speeds up rebuilds on a developer's machine.
LAUNCHER=""
if command -v ccache >/dev/null; then LAUNCHER="-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"; fi
cmake -S . -B build -G Ninja -DLANYX_WERROR=ON -DLANYX_SANITIZE="$SANITIZE" $LAUNCHER >/dev/null
cmake --build build -j "$(nproc)"
