#!/usr/bin/env bash
# Takes the pictures of docs/images anew from the demo project.
#
#   scripts/images.sh [PRESET]
set -euo pipefail
cd "$(dirname "$0")/.."

prereglage=${1:-release}
programmes=build/$prereglage/bin
travail=$(mktemp -d)
trap 'rm -rf "$travail"' EXIT
"$programmes/herbora-cli" demo "$travail/herbier-demo.hbx" >/dev/null
QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 \
    "$programmes/herbora" --captures "$travail/images" "$travail/herbier-demo.hbx" >"$travail/journal" 2>&1 \
    || { cat "$travail/journal" >&2; exit 1; }
cp "$travail/images/individus.png" docs/images/fenetre-principale.png
cp "$travail/images/individus-sombre.png" docs/images/fenetre-principale-sombre.png
for image in docs/images/*.png; do
    case "$image" in *fenetre-principale*) continue ;; esac
    cp "$travail/images/$(basename "$image")" "$image"
done
