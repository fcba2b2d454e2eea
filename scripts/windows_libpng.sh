#!/usr/bin/env bash
# Debian has no libpng for Windows, so this builds one from Debian's own source of the package, as a static library:
#   scripts/windows_libpng.sh <directory>     leaves include/ and lib/libpng.a there; does nothing when they are there
# Fails, with one line that says why, when the source cannot be had.
set -euo pipefail
prefix=$(mkdir -p "$1" && cd "$1" && pwd)
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
[ ! -s "$prefix/lib/libpng.a" ] || exit 0
ensure_packages libz-mingw-w64-dev

# The machine's own package lists are left alone: the source lists are kept beside the download. The release's own
# archive is enough; later ones change only what the tests' pictures do not need.
work=$prefix/work
rm -rf "$work"
mkdir -p "$work/parts" "$work/lists/partial" "$work/cache/archives/partial"
for list in /etc/apt/sources.list.d/*.sources; do
    [ -s "$list" ] || continue
    awk -v RS= -v ORS='\n\n' '!/security/' "$list" | sed 's/^Types:.*/Types: deb-src/' >"$work/parts/$(basename "$list")"
done
if [ -s /etc/apt/sources.list ]; then
    sed -n '/security/d; s/^deb /deb-src /p' /etc/apt/sources.list >"$work/parts/machine.list"
fi
apt_source() {
    apt-get -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$work/parts" \
        -o Dir::State::Lists="$work/lists" -o Dir::Cache="$work/cache" -o APT::Sandbox::User= "$@"
}
if ! (cd "$work" && apt_source update -q && apt_source source --download-only libpng1.6) >"$work/log" 2>&1; then
    echo "the source package libpng1.6 cannot be had" >&2
    exit 1
fi
mkdir "$work/source"
tar -xf "$work"/libpng1.6_*.orig.tar.* -C "$work/source" --strip-components=1
cmake -S "$work/source" -B "$work/build" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$PWD/cmake/windows-toolchain.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DPNG_SHARED=OFF -DPNG_TESTS=OFF -DCMAKE_INSTALL_PREFIX="$prefix" >>"$work/log" 2>&1
cmake --build "$work/build" --target install >>"$work/log" 2>&1
