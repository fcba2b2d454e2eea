#!/usr/bin/env bash
# Builds the module and runs every test. Needs a Debian 12 machine and nothing else: what is missing is
# installed by package name. A second run only builds what changed.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source scripts/packages.sh

ensure_packages "${build_packages[@]}" libgtest-dev pkg-config
cmake --preset release
cmake --build --preset release --parallel "$(nproc)"
ctest --preset release
