# Sourced by the other scripts: brings in Debian packages by name, only what is missing.

# ensure_packages <package>...
ensure_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "installing: ${missing[*]}"
    if ! "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
        "${missing[@]}" >/dev/null 2>&1; then
        "${as_root[@]}" apt-get update -q >/dev/null
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends \
            "${missing[@]}" >/dev/null
    fi
}

# What every build needs.
build_packages=(g++ cmake ninja-build binutils libeigen3-dev)
