#!/bin/sh
# Random keys on every screen under AddressSanitizer and UBSan: 10,000 per screen unless
# --keys says otherwise; the seed is printed, and --seed repeats a run (--only NAME: one screen).
exec "$(dirname "$0")/sanitized.sh" lanyx_soak --keys 10000 "$@"
