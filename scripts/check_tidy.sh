#!/usr/bin/env bash
# Runs the chosen clang-tidy checks over the library's sources, with the compile commands of the clang build.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mapfile -t files < <(git ls-files 'platform/*.cpp' 'frame/*.cpp' 'geometry/*.cpp' 'statistics/*.cpp' 'containers/*.cpp' 'transform/*.cpp' \
    'array/*.cpp' 'polygon/*.cpp' 'triangulation/*.cpp' 'curves/*.cpp' 'signal/*.cpp' 'fitting/*.cpp' \
    | grep -v '_windows\.cpp$')
printf '%s\n' "${files[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy-14 --quiet -p build/clang 2>/dev/null
echo "${#files[@]} files pass clang-tidy"
