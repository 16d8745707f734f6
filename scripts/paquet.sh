#!/usr/bin/env bash
# Makes the Debian package from the release build: build/release/paquet/herbora_*.deb
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/installer-paquets.sh base run paquet
scripts/manuel.sh --sans-images release >/dev/null
scripts/construire.sh release contents
rm -rf build/release/paquet
# Reproducible: the times inside are those of the last change.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || date +%s)
export SOURCE_DATE_EPOCH
(cd build/release && cpack -G DEB >paquet.log 2>&1) || { cat build/release/paquet.log >&2; exit 1; }
find "$PWD/build/release/paquet" -maxdepth 1 -name '*.deb'
