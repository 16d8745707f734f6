#!/usr/bin/env bash
# Builds the program and opens the demo project, or the file $FICHIER. Without
# a display the same start runs offscreen and leaves pictures of the windows.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/installer-paquets.sh base run
scripts/construire.sh release herbora herbora-cli

programmes=build/release/bin
fichier=${FICHIER:-}
if [ -z "$fichier" ]; then
    fichier=build/demo/herbier-demo.hbx
    if [ ! -e "$fichier" ]; then
        echo "Création du projet de démonstration : $fichier"
        # Half a demo project must not be taken for a whole one by the next start.
        trap 'rm -rf build/demo' EXIT
        mkdir -p build/demo
        "$programmes/herbora-cli" demo "$fichier"
        trap - EXIT
    fi
fi

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec "$programmes/herbora" "$fichier"
fi

captures=build/captures
echo "Aucun écran (ni DISPLAY ni WAYLAND_DISPLAY) : les fenêtres sont dessinées hors écran."
rm -rf "$captures"
mkdir -p "$captures"
QT_QPA_PLATFORM=offscreen "$programmes/herbora" --captures "$captures" "$fichier"
if [ -z "$(find "$captures" -name '*.png' -size +0 -print -quit)" ]; then
    echo "Aucune image n'a été produite dans $captures" >&2
    exit 1
fi
"$programmes/herbora-cli" infos "$fichier" --json >"$captures/arbre.json"
"$programmes/herbora-cli" sql "$fichier" --csv \
    'SELECT Individus.[Numéro], Collecteurs.[Collecteur], Individus.[DateRécolte], Taxons.[Nom Complet], Localités.[Nom Entier]
     FROM (((Individus LEFT JOIN Collecteurs ON Individus.[ID Collecteurs]=Collecteurs.[ID Collecteurs])
     LEFT JOIN Déterminations ON Individus.[ID Déterminations]=Déterminations.[ID Déterminations])
     LEFT JOIN Taxons ON Déterminations.[ID Taxons]=Taxons.[ID Taxons])
     LEFT JOIN Localités ON Individus.[ID Localités]=Localités.[ID Localités]
     ORDER BY Individus.[ID Individus]' >"$captures/individus.csv"
echo "Images et exports :"
find "$PWD/$captures" -type f | sort
