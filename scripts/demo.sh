#!/bin/sh
# Builds lanyx, makes a fresh simulated host from the default profile and starts the console on it.
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh
ROOT="${LANYX_DEMO_ROOT:-$PWD/roots/demo}"
rm -rf "$ROOT"
build/hostsim create "$ROOT" --profile "${LANYX_PROFILE:-default}"
echo
echo "Simulated host in $ROOT"
echo "Log in with F2 as: root   password: lanyx-Root1"
echo "Records land in $ROOT/var/log/syslog.log, notad.log and audit.log."
printf "Press Enter to start the console... "
read -r _
export ASAN_OPTIONS="${ASAN_OPTIONS:-detect_leaks=0}"
LANYX_HOST_ROOT="$ROOT" exec build/lanyx
