#!/usr/bin/env bash
# Runs the benchmarks of every room.
#   scripts/benchmark.sh [filter]   medians of five repetitions
#   scripts/benchmark.sh --smoke    each benchmark once, as briefly as possible: they must run, times do not matter
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
ensure_packages "${build_packages[@]}" libbenchmark-dev

[ -f build/bench/build.ninja ] || cmake --preset bench
cmake --build --preset bench --parallel "$(nproc)"
if [ "${1:-}" = --smoke ]; then
    options=(--benchmark_min_time=0.0001 --benchmark_format=console)
else
    options=(--benchmark_repetitions=5 --benchmark_report_aggregates_only=true --benchmark_filter="${1:-.}")
fi
for program in build/bench/bench/*/*_bench; do
    "$program" "${options[@]}"
done
