#!/bin/sh
# The fault matrix under AddressSanitizer and UBSan: every host library operation each screen
# calls made to fail, every host tool it runs made to exit 1, print garbage and hang.
# --short: the run of the tests; --only NAME: one scenario; --trace: what each scenario calls;
# --doc docs/faults.md: the outcome table for administrators.
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=1}"
export UBSAN_OPTIONS="${UBSAN_OPTIONS:-print_stacktrace=1:halt_on_error=1}"
exec build/lanyx_faults "$@"
