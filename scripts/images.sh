#!/usr/bin/env bash
# Takes the pictures of the record editor in docs/images anew from the demo project: its modes, its states.
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
for image in fiche fiche-sombre fiche-verticale fiche-condensee fiche-liste fiche-erreurs fiche-verrouillee; do
    cp "$travail/images/$image.png" docs/images/
done
