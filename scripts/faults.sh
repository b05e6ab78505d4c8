#!/bin/sh
# The fault matrix under AddressSanitizer and UBSan: every host library operation each screen
# calls made to fail, every host tool it runs made to exit 1, print garbage and hang.
# --short: the run of the tests; --only NAME: one scenario; --trace: what each scenario calls;
# --doc docs/faults.md: the outcome table for administrators.
exec "$(dirname "$0")/sanitized.sh" lanyx_faults "$@"
