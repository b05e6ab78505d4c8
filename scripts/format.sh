#!/bin/sh
# Formats every C++ file of the repository with .clang-format; with --check, only reports the
# files that differ and fails (CI runs it so).
set -eu
cd "$(dirname "$0")/.."
files=$(git ls-files '*.cpp' '*.hpp' '*.h')
if [ "${1:-}" = "--check" ]; then
    # shellcheck disable=SC2086
    clang-format --dry-run --Werror $files
else
    # shellcheck disable=SC2086
    clang-format -i $files
fi
