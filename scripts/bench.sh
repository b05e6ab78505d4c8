#!/bin/sh
# Builds without sanitizers into build-bench/ and runs the benchmarks: the text layer's hot paths,
# the network menu and adapter list on a host of 256 NICs, then start-up, peak memory and idle CPU
# of the console beside a minimal curses program.
set -eu
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
cmake -S . -B build-bench -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLANYX_WERROR=ON -DLANYX_SANITIZE=OFF >/dev/null
cmake --build build-bench -j "$(nproc)" --target lanyx_bench lanyx_network_bench \
    lanyx_startup_bench
build-bench/lanyx_bench
# Medians of five runs: the machine is shared, and single runs of a few milliseconds scatter.
build-bench/lanyx_network_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
build-bench/lanyx_startup_bench "${1:-10}"
