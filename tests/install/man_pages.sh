#!/bin/sh
# Each manual page renders without a single warning, and its NAME line makes a whatis entry.
set -u
failed=0
for page in "$@"; do
    out=$(groff -man -ww -z "$page" 2>&1)
    [ -z "$out" ] || { echo "FAIL: groff warns about $page: $out"; failed=1; }
    if command -v man >/dev/null 2>&1; then
        out=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l "$page" 2>&1 >/dev/null)
        [ -z "$out" ] || { echo "FAIL: man warns about $page: $out"; failed=1; }
    fi
    if command -v lexgrog >/dev/null 2>&1; then
        name=$(basename "$page" | sed 's/\.[0-9]$//')
        lexgrog "$page" | grep -q "\"$name - " ||
            { echo "FAIL: $page has no whatis entry for $name: $(lexgrog "$page")"; failed=1; }
    fi
done
exit "$failed"
