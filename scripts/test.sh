#!/bin/sh
# Installs what is missing, builds with sanitizers and warnings as errors, runs every test.
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/format.sh --check
scripts/build.sh
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
cd build
ctest --output-on-failure -j "$(nproc)" --timeout 600
