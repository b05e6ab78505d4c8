#!/bin/sh
# Installs what is missing, builds with sanitizers and warnings as errors, makes and checks the
# Debian packages, runs a session under valgrind and every test. The packages come first so that the test summary ends the run.
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/format.sh --check
scripts/build.sh
scripts/package.sh
# A session under valgrind, on the packages' build (no sanitizers there).
scripts/memcheck.sh
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
cd build
ctest --output-on-failure -j "$(nproc)" --timeout 600
