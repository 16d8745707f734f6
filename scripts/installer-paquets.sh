#!/usr/bin/env bash
# Installs the Debian packages that a group of targets needs, and says nothing
# when all of them are there. docs/DEPENDENCIES.md gives the reason for each.
#
#   scripts/installer-paquets.sh base|run|test|bench|fuzz|format|tidy|manuel|paquet|essai-paquet …
#   scripts/installer-paquets.sh --liste GROUPE…     prints the names, one a line
#
# "a|b" is one need that either package meets (names differ between releases).
set -euo pipefail

paquets_du_groupe() {
    case "$1" in
    base)
        echo g++ cmake ninja-build ccache mold \
            qt6-base-dev qt6-base-dev-tools "qt6-svg-dev|libqt6svg6-dev" \
            libsqlite3-dev libexiv2-dev libgif-dev libgtest-dev
        ;;
    run)
        echo breeze-icon-theme fonts-dejavu-core qt6-translations-l10n
        # Qt reaches a Wayland session without X only through this plug-in.
        if [ -n "${WAYLAND_DISPLAY:-}" ]; then echo qt6-wayland; fi
        ;;
    test)
        echo breeze-icon-theme fonts-dejavu-core qt6-translations-l10n sqlite3 file \
            gdal-bin gpsbabel libreoffice-calc libxml2-utils poppler-utils mdbtools libimage-exiftool-perl
        ;;
    bench) echo libbenchmark-dev gdal-bin mdbtools libimage-exiftool-perl libvips-tools imagemagick ;;
    fuzz) echo clang "libclang-rt-dev|libclang-rt-14-dev" llvm ;;
    format) echo clang-format git ;;
    tidy) echo clang-tidy git ;;
    manuel) echo cmark-gfm ;;
    paquet) echo dpkg-dev file gzip git ;;
    essai-paquet) echo desktop-file-utils appstream lintian debootstrap libxml2-utils man-db groff shared-mime-info libglib2.0-bin ;;
    *)
        echo "installer-paquets.sh : groupe inconnu : $1" >&2
        exit 2
        ;;
    esac
}

installe() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# True when one of the alternatives "a|b" is installed.
besoin_couvert() {
    local nom
    for nom in ${1//|/ }; do
        if installe "$nom"; then return 0; fi
    done
    return 1
}

# The first of the alternatives that the package lists know.
choix() {
    local nom
    for nom in ${1//|/ }; do
        if apt-cache show "$nom" >/dev/null 2>&1; then
            echo "$nom"
            return
        fi
    done
    echo "${1%%|*}"
}

liste_seule=
if [ "${1:-}" = --liste ]; then
    liste_seule=oui
    shift
fi

besoins=()
for groupe in "$@"; do
    # Two steps, so that an unknown group ends the script.
    noms=$(paquets_du_groupe "$groupe")
    for nom in $noms; do besoins+=("$nom"); done
done

if [ -n "$liste_seule" ]; then
    printf '%s\n' "${besoins[@]}" | sort -u
    exit 0
fi

if ! command -v dpkg-query >/dev/null; then
    echo "Ce système n'a pas de paquets Debian ; il faut l'équivalent de : ${besoins[*]}" >&2
    exit 0
fi

manquants=()
for besoin in "${besoins[@]}"; do
    if ! besoin_couvert "$besoin"; then manquants+=("$besoin"); fi
done
if [ ${#manquants[@]} -eq 0 ]; then exit 0; fi

devant=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "Il manque des paquets et sudo n'est pas là. Comme administrateur :" >&2
        echo "    apt-get install ${manquants[*]%%|*}" >&2
        exit 1
    fi
    devant=(sudo)
fi

echo "Installation des paquets manquants : ${manquants[*]}"
journal=$(mktemp)
trap 'rm -f "$journal"' EXIT
# An update that fails is not the end: the lists that are there may do.
"${devant[@]}" apt-get -qq update >"$journal" 2>&1 || cat "$journal" >&2

a_installer=()
for besoin in "${manquants[@]}"; do a_installer+=("$(choix "$besoin")"); done
if ! "${devant[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get -qq install -y --no-install-recommends "${a_installer[@]}" >"$journal" 2>&1; then
    cat "$journal" >&2
    echo "Installation impossible : ${a_installer[*]}" >&2
    exit 1
fi
