#!/bin/sh
# Random keys on every screen under AddressSanitizer and UBSan: 10,000 per screen unless
# --keys says otherwise; the seed is printed, and --seed repeats a run (--only NAME: one screen).
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
exec build/lanyx_soak --keys 10000 "$@"
