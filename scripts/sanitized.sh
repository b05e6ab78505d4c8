#!/bin/sh
# Builds as scripts/test.sh does and runs one of its programs from build/ with the sanitizer
# settings of the tests: scripts/sanitized.sh PROGRAM [ARGS...]
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
program="$1"
shift
exec "build/$program" "$@"
