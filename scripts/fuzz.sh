#!/usr/bin/env bash
# Builds the fuzzers with clang and runs each for some seconds (30 unless told), starting from its corpus.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
ensure_packages "${build_packages[@]}" clang-14 libclang-rt-14-dev
seconds=${1:-30}

cmake --preset fuzz
cmake --build --preset fuzz --parallel "$(nproc)"
for fuzzer in build/fuzz/fuzz/*_fuzz; do
    corpus=build/fuzz/corpus/$(basename "$fuzzer")
    mkdir -p "$corpus"
    "$fuzzer" -max_total_time="$seconds" -timeout=10 -print_final_stats=1 -verbosity=0 \
        -artifact_prefix=build/fuzz/ "$corpus"
done
