#!/usr/bin/env bash
# The Windows module: cross-compiles it, runs every test under Wine, packs build/windows/VELQUAD-<version>-win64.zip,
# and builds and runs an outside project against what is in the archive.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
ensure_packages "${build_packages[@]}" g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64 googletest wine64 unzip

cmake --preset windows
cmake --build --preset windows --parallel "$(nproc)"
scripts/wine_run.sh --start
trap 'scripts/wine_run.sh --stop' EXIT
ctest --preset windows --parallel "$(nproc)"

cpack --preset windows
work=build/windows/package-check
rm -rf "$work"
mkdir -p "$work"
unzip -q build/windows/VELQUAD-*-win64.zip -d "$work/unpacked"
prefix=$(echo "$PWD/$work/unpacked"/VELQUAD-*)
for file in bin/VELQUAD.dll lib/libVELQUAD.dll.a include/velquad/velquad.h lib/cmake/VELQUAD/VELQUADConfig.cmake \
    share/doc/velquad/LICENSE share/doc/velquad/third-party/mingw-w64-x86-64-dev.txt; do
    [ -s "$prefix/$file" ] || { echo "the archive lacks $file" >&2; exit 1; }
done
cmake -S tests/consumer -B "$work/consumer" -G Ninja -DVELQUAD_DIR="$prefix/lib/cmake/VELQUAD" \
    -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows-toolchain.cmake" -DCMAKE_EXE_LINKER_FLAGS=-static >/dev/null
cmake --build "$work/consumer" >/dev/null
cp "$prefix/bin/VELQUAD.dll" "$work/consumer"
scripts/wine_run.sh "$work/consumer/consumer.exe"
echo "the archive serves a Windows project: $(ls build/windows/VELQUAD-*-win64.zip)"
