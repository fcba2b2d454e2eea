#!/usr/bin/env bash
# Fails when a source file is not as clang-format 14 would write it, or holds a byte outside ASCII.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
mapfile -t files < <(git ls-files '*.h' '*.cpp' '*.c')
clang-format-14 --dry-run -Werror "${files[@]}"
if LC_ALL=C grep -nP '[^\x00-\x7F]' "${files[@]}"; then
    echo "sources are ASCII" >&2
    exit 1
fi
echo "${#files[@]} files are formatted"
