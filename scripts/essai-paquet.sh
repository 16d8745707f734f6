#!/usr/bin/env bash
# Makes the package, looks at what is in it, installs it in a clean Debian, uses it, removes it, and looks at what is
# left. The clean system is kept under $HERBORA_RACINE (default: build/racine) as an archive, with the packages it was
# given, so that only the first run downloads them.
#
#   scripts/essai-paquet.sh [--si-possible]
#
# The clean system needs root (or sudo) and, the first time, a network. Without them the trial fails; --si-possible says
# so and leaves out what cannot be done, as .ci/run does. HERBORA_PAQUET names a package that is there already.
set -euo pipefail
cd "$(dirname "$0")/.."

si_possible=
if [ "${1:-}" = --si-possible ]; then si_possible=oui; fi
# What cannot be tried here: left out, or a failure.
impossible() {
    echo "Essai du paquet impossible ici : $*" >&2
    if [ -n "$si_possible" ]; then
        echo "=== essai du paquet : sauté ($*)"
        exit 0
    fi
    exit 1
}

scripts/installer-paquets.sh paquet
scripts/installer-paquets.sh essai-paquet || impossible "il manque des outils"
paquet=${HERBORA_PAQUET:-}
if [ -z "$paquet" ]; then
    echo "=== paquet"
    paquet=$(scripts/paquet.sh | tail -n 1)
fi

racine=${HERBORA_RACINE:-$PWD/build/racine}
systeme=$racine/systeme
contenu=$(mktemp -d)
en_root=()
if [ "$(id -u)" != 0 ]; then en_root=(sudo -n); fi
terminer() {
    rm -rf "$contenu"
    for point in var/cache/apt/archives proc dev; do
        if mountpoint -q "$systeme/$point"; then "${en_root[@]}" umount "$systeme/$point"; fi
    done
    # Nothing of this machine may still be mounted in what is removed.
    if [ -d "$systeme" ] && ! grep -q " $systeme/" /proc/mounts; then "${en_root[@]}" rm -rf "$systeme"; fi
}
trap terminer EXIT

echo "=== contenu"
dpkg-deb -x "$paquet" "$contenu"
for fichier in bin/herbora bin/herbora-cli lib/herbora/herbora lib/herbora/herbora-cli lib/herbora/Globe.gif \
    lib/herbora/addins/Dendrometrie.so lib/herbora/manuel/index.md lib/herbora/structures/herbier.json \
    include/herbora/addin/gtAddin.h share/doc/herbora/examples/dendrometrie/Dendrometrie.cpp \
    share/doc/herbora/manuel/index.html share/man/man1/herbora.1.gz share/man/man1/herbora-cli.1.gz \
    share/applications/org.herbora.Herbora.desktop share/metainfo/org.herbora.Herbora.metainfo.xml \
    share/mime/packages/org.herbora.Herbora.xml share/icons/hicolor/scalable/apps/org.herbora.Herbora.svg \
    share/icons/hicolor/scalable/mimetypes/application-x-herbora-project.svg; do
    if [ ! -s "$contenu/usr/$fichier" ]; then
        echo "Le paquet n'a pas de /usr/$fichier" >&2
        exit 1
    fi
done
desktop-file-validate "$contenu"/usr/share/applications/*.desktop
appstreamcli validate --no-net "$contenu"/usr/share/metainfo/*.xml
xmllint --noout "$contenu"/usr/share/mime/packages/*.xml "$contenu"/usr/share/icons/hicolor/scalable/*/*.svg
LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings -E UTF-8 -l "$contenu"/usr/share/man/man1/*.gz >/dev/null
lintian --fail-on error "$paquet"
# The project is known by its content, whatever it is called.
XDG_DATA_DIRS=$contenu/usr/share:/usr/share update-mime-database "$contenu/usr/share/mime"
"$contenu/usr/lib/herbora/herbora-cli" demo "$contenu/sans-suffixe" >/dev/null
genre=$(XDG_DATA_DIRS="$contenu/usr/share:/usr/share" XDG_DATA_HOME="$contenu" gio info -a standard::content-type "$contenu/sans-suffixe")
case "$genre" in
*application/x-herbora-project*) ;;
*)
    echo "Le contenu d'un projet n'est pas reconnu : $genre" >&2
    exit 1
    ;;
esac
# The example is what an author of add-ins begins with: it is built from the package alone.
cmake -S "$contenu/usr/share/doc/herbora/examples/dendrometrie" -B "$contenu/complement" -G Ninja \
    -DCMAKE_PREFIX_PATH="$contenu/usr" >"$contenu/journal" 2>&1 \
    && cmake --build "$contenu/complement" >>"$contenu/journal" 2>&1 || { cat "$contenu/journal" >&2; exit 1; }

if [ "$(id -u)" != 0 ] && ! sudo -n true 2>/dev/null; then impossible "ni root ni sudo pour un système neuf"; fi
echo "=== système neuf"
"${en_root[@]}" mkdir -p "$racine/archives/partial"
if [ ! -e "$racine/base.tar" ]; then
    "${en_root[@]}" rm -rf "$systeme"
    miroir=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null \
        | sed -nE 's/^(URIs: *|deb +(\[[^]]*\] *)?)(http[^ ]*\/debian)\/?( .*)?$/\3/p' | sort -u | sed -n 1p || true)
    if ! "${en_root[@]}" debootstrap --variant=minbase "$(. /etc/os-release && echo "$VERSION_CODENAME")" \
        "$systeme" ${miroir:+"$miroir"} >"$contenu/debootstrap.log" 2>&1; then
        tail "$contenu/debootstrap.log" >&2
        impossible "debootstrap n'aboutit pas"
    fi
    "${en_root[@]}" tar -C "$systeme" -cf "$racine/base.tar.tmp" .
    "${en_root[@]}" mv "$racine/base.tar.tmp" "$racine/base.tar"
else
    "${en_root[@]}" rm -rf "$systeme"
    "${en_root[@]}" mkdir -p "$systeme"
    "${en_root[@]}" tar -C "$systeme" -xf "$racine/base.tar"
fi
"${en_root[@]}" cp /etc/resolv.conf "$systeme/etc/resolv.conf"
for point in proc dev; do
    "${en_root[@]}" mount --bind "/$point" "$systeme/$point" || impossible "rien ne se monte dans le système neuf"
done
"${en_root[@]}" mount --bind "$racine/archives" "$systeme/var/cache/apt/archives"
"${en_root[@]}" cp "$paquet" "$systeme/tmp/herbora.deb"
dans() { "${en_root[@]}" chroot "$systeme" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }

echo "=== installation"
if ! dans apt-get -qq update >"$contenu/apt.log" 2>&1; then
    cat "$contenu/apt.log" >&2
    impossible "les listes de paquets ne se lisent pas"
fi
if ! dans apt-get -y -qq -o APT::Keep-Downloaded-Packages=true install --no-install-recommends /tmp/herbora.deb \
    >"$contenu/apt.log" 2>&1; then
    tail -n 20 "$contenu/apt.log" >&2
    # What is not downloaded says nothing of the package; anything else does.
    if grep -q '^E: .*fetch' "$contenu/apt.log"; then impossible "les paquets dont il dépend ne se téléchargent pas"; fi
    exit 1
fi

echo "=== emploi"
dans herbora-cli demo /tmp/essai.hbx
dans herbora-cli verifier /tmp/essai.hbx
dans herbora-cli infos /tmp/essai.hbx | tail -n 3
if ! dans herbora --captures /tmp/captures /tmp/essai.hbx >"$contenu/captures.log" 2>&1; then
    cat "$contenu/captures.log" >&2
    exit 1
fi
echo "$(dans find /tmp/captures -name '*.png' -size +0 | wc -l) images des fenêtres"

echo "=== retrait"
dans apt-get -y -qq purge herbora >>"$contenu/apt.log" 2>&1
restes=$(dans find / -xdev -not -path '/proc/*' -not -path '/tmp/*' -not -path '/var/lib/dpkg/*' \
    -not -path '/var/cache/*' -not -path '/var/log/*' -not -path '/root/*' -iname '*herbora*')
if [ -n "$restes" ]; then
    printf 'Le retrait laisse des fichiers :\n%s\n' "$restes" >&2
    exit 1
fi
echo "Paquet installé, employé et retiré : $paquet"
