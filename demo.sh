#!/usr/bin/env bash
# Builds the library, installs it into build/demo/prefix, builds example host applications against the installed
# package, and lets them measure a picture, put it together from tiles, and correct a lens.
#
#     ./demo.sh                     a photograph of coins, or drawn pictures when that cannot be had
#     ./demo.sh my.png [options]    outlines in a picture of your own; for options see examples/outline/main.cpp
#
# On Debian and its relatives, missing tools are installed from the distribution. Everything else stays within
# build/demo and out. A second run only builds what has changed.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
demo=$root/build/demo
log=$demo/demo.log
mkdir -p "$demo"
: >"$log"

say() { printf '%s\n' "$*"; }

# Runs a command with its output kept in the log, and shows the log's end when it fails.
quietly() {
    if ! "$@" >>"$log" 2>&1; then
        tail -n 40 "$log" >&2
        say "demo: failed: $* (the whole story is in $log)" >&2
        exit 1
    fi
}

aptOptions=(-o Acquire::Retries=1 -o Acquire::http::Timeout=20)

asRoot() {
    if [ "$(id -u)" -eq 0 ]; then
        env DEBIAN_FRONTEND=noninteractive "$@"
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@"
    fi
}

updateLists() { asRoot apt-get "${aptOptions[@]}" update >>"$log" 2>&1; }

# Whether the package lists know all of these packages.
areListed() {
    local package
    for package in "$@"; do
        apt-cache show "$package" >/dev/null 2>&1 || return 1
    done
}

installPackages() {
    local install=(apt-get "${aptOptions[@]}" install -y --no-install-recommends "$@")
    areListed "$@" || updateLists || true
    asRoot "${install[@]}" >>"$log" 2>&1 && return
    # Lists that are there but too old name files that are gone.
    updateLists || true
    quietly asRoot "${install[@]}"
}

installMissingTools() {
    local missing=()
    command -v g++ >/dev/null || missing+=(g++)
    command -v cmake >/dev/null || missing+=(cmake)
    command -v ninja >/dev/null || missing+=(ninja-build)
    command -v pkg-config >/dev/null || missing+=(pkg-config)
    pkg-config --exists libpng 2>/dev/null || missing+=(libpng-dev)
    pkg-config --exists eigen3 2>/dev/null || missing+=(libeigen3-dev)
    [ "${#missing[@]}" -gt 0 ] || return 0
    if ! command -v apt-get >/dev/null; then
        say "demo: please install what these packages hold: ${missing[*]}" >&2
        exit 1
    fi
    if [ "$(id -u)" -ne 0 ] && ! command -v sudo >/dev/null; then
        say "demo: please have these packages installed: ${missing[*]}" >&2
        exit 1
    fi
    say "Installing ${missing[*]} ..."
    installPackages "${missing[@]}"
}

buildLibrary() {
    say "Building the library ..."
    quietly cmake -S "$root" -B "$demo/library" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_INSTALL_PREFIX="$demo/prefix" -DVELQUAD_BUILD_TESTS=OFF -DVELQUAD_WARNINGS_AS_ERRORS=OFF
    quietly cmake --build "$demo/library"
    quietly cmake --install "$demo/library"
}

buildExample() { # NAME
    say "Building the example $1 against the installed package ..."
    quietly cmake -S "$root/examples/$1" -B "$demo/$1" -G Ninja -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_PREFIX_PATH="$demo/prefix" -DBUILD_TESTING=OFF
    quietly cmake --build "$demo/$1"
}

picturePackage=python3-skimage
picture=$demo/picture/coins.png

# Downloads the package into the current directory, without installing it.
downloadPicturePackage() {
    local options=("${aptOptions[@]}")
    [ "$(id -u)" -ne 0 ] || options+=(-o APT::Sandbox::User=root)
    apt-get "${options[@]}" download "$picturePackage" >>"$log" 2>&1
}

# Takes the photograph out of a Debian package of sample pictures. Fails when that cannot be had.
fetchPicture() {
    [ ! -s "$picture" ] || return 0
    command -v apt-get >/dev/null && command -v dpkg-deb >/dev/null || return 1
    say "Fetching a photograph from the package $picturePackage ..."
    local work=$demo/picture/unpacked found
    rm -rf "$work"
    mkdir -p "$work"
    areListed "$picturePackage" || updateLists || true
    (cd "$work" && { downloadPicturePackage || { updateLists && downloadPicturePackage; }; }) || return 1
    dpkg-deb -x "$work/$picturePackage"_*.deb "$work" >>"$log" 2>&1 || return 1
    found=$(find "$work" -path '*/skimage/data/coins.png' -print -quit)
    [ -n "$found" ] || return 1
    mv "$found" "$picture" || return 1
    rm -rf "$work"
}

installMissingTools
buildLibrary
buildExample outline

if [ "$#" -gt 0 ]; then
    "$demo/outline/outline" --out "$root/out" "$@"
    say "Open $root/out/index.html in a browser."
    exit
fi

buildExample mosaic
buildExample lens
if fetchPicture; then
    "$demo/outline/outline" --out "$root/out" "$picture"
    "$demo/mosaic/mosaic" --out "$root/out/mosaic" "$picture"
else
    rm -rf "$demo/picture/unpacked"
    say "No photograph can be had (no package $picturePackage); the examples draw pictures of their own."
    "$demo/outline/outline" --out "$root/out" --phantom
    "$demo/mosaic/mosaic" --out "$root/out/mosaic"
fi
"$demo/lens/lens" --out "$root/out/lens"
say "Open $root/out/index.html, $root/out/mosaic/index.html and $root/out/lens/index.html in a browser."
