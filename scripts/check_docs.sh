#!/usr/bin/env bash
# Builds the reference from the public headers; a warning of Doxygen is a failure.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
source scripts/packages.sh
ensure_packages doxygen
mkdir -p build/docs
doxygen docs/Doxyfile
echo "reference written to build/docs/html/index.html"
