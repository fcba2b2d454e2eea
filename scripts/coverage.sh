#!/usr/bin/env bash
# Measures the line coverage of the library's own code by the tests, and fails below the floor.
#   scripts/coverage.sh           summary per file and the total
#   scripts/coverage.sh --html    also pages under build/coverage/html
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
ensure_packages "${build_packages[@]}" libgtest-dev gcovr
floor=97

cmake --preset coverage
cmake --build --preset coverage --parallel "$(nproc)"
find build/coverage -name '*.gcda' -delete
ctest --preset coverage
options=(--root . --exclude 'tests/' --exclude 'build/' --exclude 'bench/' --exclude 'examples/'
    --exclude-unreachable-branches --gcov-ignore-parse-errors --fail-under-line "$floor" build/coverage)
if [ "${1:-}" = --html ]; then
    mkdir -p build/coverage/html
    options+=(--html-details build/coverage/html/index.html)
fi
gcovr "${options[@]}"
