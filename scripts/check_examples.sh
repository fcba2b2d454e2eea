#!/usr/bin/env bash
# Builds the examples against the package that the demo installed, and runs their own tests.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
prefix=$PWD/build/demo/prefix
for example in examples/*/CMakeLists.txt; do
    folder=$(dirname "$example")
    work=build/examples/$(basename "$folder")
    cmake -S "$folder" -B "$work" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" -DEXAMPLE_WARNINGS_AS_ERRORS=ON >/dev/null
    cmake --build "$work" >/dev/null
    ctest --test-dir "$work" --output-on-failure --no-tests=ignore
done
# The mosaic and the gallery with a photograph, where the demo could get one.
picture=build/demo/picture/coins.png
for example in mosaic gallery; do
    [ ! -s "$picture" ] || "examples/$example/test.sh" "build/examples/$example/$example" "$picture"
done
