#!/bin/sh
# Configures and builds into build/: warnings are errors, sanitizers on (LANYX_SANITIZE=OFF to drop).
set -eu
cd "$(dirname "$0")/.."
SANITIZE="${LANYX_SANITIZE:-ON}"
cmake -S . -B build -G Ninja -DLANYX_WERROR=ON -DLANYX_SANITIZE="$SANITIZE" >/dev/null
cmake --build build -j "$(nproc)"
