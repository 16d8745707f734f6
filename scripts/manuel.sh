#!/usr/bin/env bash
# Takes the pictures of the manual from the demo project, so that they show the program as it is, and makes its pages
# as HTML for the package (build/PRESET/manuel).
#
#   scripts/manuel.sh [--sans-images] [PRESET]
set -euo pipefail
cd "$(dirname "$0")/.."

images=1
if [ "${1:-}" = --sans-images ]; then
    images=0
    shift
fi
prereglage=${1:-release}
programmes=build/$prereglage/bin
pages=docs/manuel

if [ "$images" = 1 ]; then
    scripts/installer-paquets.sh base run
    scripts/construire.sh "$prereglage" herbora herbora-cli
    travail=$(mktemp -d)
    trap 'rm -rf "$travail"' EXIT
    "$programmes/herbora-cli" demo "$travail/herbier-demo.hbx" >/dev/null
    QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 \
        "$programmes/herbora" --captures "$travail/images" "$travail/herbier-demo.hbx" >"$travail/journal" 2>&1 \
        || { cat "$travail/journal" >&2; exit 1; }
    mkdir -p "$pages/images"
    for image in $(grep -hoE 'images/[a-z0-9-]+\.png' "$pages"/*.md | sort -u); do
        if [ ! -s "$travail/$image" ]; then
            echo "L'image $image du manuel n'a pas été prise." >&2
            exit 1
        fi
        cp "$travail/$image" "$pages/$image"
    done
fi

scripts/installer-paquets.sh manuel
sortie=build/$prereglage/manuel
rm -rf "$sortie"
mkdir -p "$sortie/images"
cp "$pages"/images/*.png "$sortie/images/"
for page in "$pages"/*.md; do
    titre=$(sed -n '1s/^# *//p' "$page")
    {
        cat <<HTML
<!DOCTYPE html>
<html lang="fr">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>$titre</title>
<link rel="stylesheet" href="manuel.css">
</head>
<body>
<nav><a href="index.html">Sommaire</a></nav>
<main>
HTML
        cmark-gfm --extension table "$page" | sed -E 's/href="([a-z0-9-]+)\.md"/href="\1.html"/g'
        printf '</main>\n</body>\n</html>\n'
    } >"$sortie/$(basename "$page" .md).html"
done
cp packaging/manuel.css "$sortie/"
echo "$PWD/$sortie/index.html"
