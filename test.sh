#!/usr/bin/env bash
# Builds the module and runs every test. Needs a Debian 12 machine and nothing else: what is missing is
# installed by package name. A second run only builds what changed.
#   ./test.sh             for this system
#   ./test.sh --windows   for 64-bit Windows, cross-compiled and run under Wine; packs the module too
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
case "${1:-}" in
    "") ;;
    --windows) exec scripts/test_windows.sh ;;
    *) echo "usage: $0 [--windows]" >&2 && exit 2 ;;
esac
source scripts/packages.sh

ensure_packages "${build_packages[@]}" libgtest-dev pkg-config
cmake --preset release
cmake --build --preset release --parallel "$(nproc)"
ctest --preset release
