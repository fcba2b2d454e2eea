#!/usr/bin/env bash
# Installs the release build into a fresh directory, moves it, and builds an outside project against it, once by
# find_package and once by pkg-config. Both programs must run and give the same output.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
ensure_packages "${build_packages[@]}" pkg-config

work=build/install-check
rm -rf "$work"
mkdir -p "$work"
cmake --install build/release --prefix "$work/first" >/dev/null
mv "$work/first" "$work/moved"
prefix=$PWD/$work/moved

cmake -S tests/consumer -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
"$work/cmake/consumer" | tee "$work/cmake.txt"

libdir=$(dirname "$(find "$prefix" -name velquad.pc -printf '%h\n')")
export PKG_CONFIG_PATH=$libdir/pkgconfig
# shellcheck disable=SC2046
g++ -std=c++17 -Wall -Wextra -Werror tests/consumer/consumer.cpp -o "$work/by-pkg-config" \
    $(pkg-config --cflags --libs velquad)
LD_LIBRARY_PATH=$libdir "$work/by-pkg-config" | cmp - "$work/cmake.txt"
echo "the installed package serves CMake and pkg-config"
