#!/usr/bin/env bash
# The Windows module: cross-compiles it, runs every test under Wine, packs build/windows/VELQUAD-<version>-win64.zip,
# and builds and runs an outside project and the examples against what is in the archive.
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

# Wraps a Windows program so that a shell test runs it like any other.
wrap() { # PROGRAM
    printf '#!/usr/bin/env bash\nexec %q %q "$@"\n' "$PWD/scripts/wine_run.sh" "$PWD/$1.exe" >"$1"
    chmod +x "$1"
}

# The examples, with their own tests.
if ! scripts/windows_libpng.sh build/windows-libpng; then
    echo "the examples are not run under Wine"
    exit 0
fi
png=$PWD/build/windows-libpng
for example in outline gallery lens mosaic; do
    cmake -S "examples/$example" -B "$work/$example" -G Ninja -DVELQUAD_DIR="$prefix/lib/cmake/VELQUAD" \
        -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows-toolchain.cmake" -DCMAKE_EXE_LINKER_FLAGS=-static \
        -DPNG_LIBRARY="$png/lib/libpng.a" -DPNG_PNG_INCLUDE_DIR="$png/include" \
        -DZLIB_LIBRARY=/usr/x86_64-w64-mingw32/lib/libz.a >/dev/null
    cmake --build "$work/$example" >/dev/null
    cp "$prefix/bin/VELQUAD.dll" "$work/$example"
    programs=()
    for program in "$work/$example"/*.exe; do
        wrap "${program%.exe}"
        programs+=("${program%.exe}")
    done
    # The program itself comes first, what makes its test pictures second.
    mapfile -t programs < <(printf '%s\n' "${programs[@]}" | sort -r)
    "examples/$example/test.sh" "${programs[@]}"
    echo "the example $example passes its tests under Wine"
done
