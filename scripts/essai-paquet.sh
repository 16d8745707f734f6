#!/usr/bin/env bash
# Installs the package in a clean Debian, uses it, removes it, and looks at what is left. Needs root (or sudo) for
# debootstrap and chroot. The clean system is kept under $HERBORA_RACINE (default: build/racine) as an archive, so that
# only the first run downloads it.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/installer-paquets.sh paquet essai-paquet
paquet=$(find build/release/paquet -maxdepth 1 -name 'herbora_*.deb' 2>/dev/null | head -n 1)
if [ -z "$paquet" ]; then paquet=$(scripts/paquet.sh | tail -n 1); fi
en_root=()
if [ "$(id -u)" != 0 ]; then en_root=(sudo); fi

echo "=== fichiers du bureau"
contenu=$(mktemp -d)
racine=${HERBORA_RACINE:-$PWD/build/racine}
terminer() {
    rm -rf "$contenu"
    for point in proc dev; do
        if mountpoint -q "$racine/systeme/$point"; then "${en_root[@]}" umount "$racine/systeme/$point"; fi
    done
    "${en_root[@]}" rm -rf "$racine/systeme"
}
trap terminer EXIT
dpkg-deb -x "$paquet" "$contenu"
desktop-file-validate "$contenu"/usr/share/applications/*.desktop
appstreamcli validate --no-net "$contenu"/usr/share/metainfo/*.xml
xmllint --noout "$contenu"/usr/share/mime/packages/*.xml
LC_ALL=C.UTF-8 MANROFFSEQ='' man --warnings -E UTF-8 -l "$contenu"/usr/share/man/man1/*.gz >/dev/null
lintian --fail-on error "$paquet"

echo "=== système neuf"
mkdir -p "$racine"
if [ ! -e "$racine/base.tar" ]; then
    "${en_root[@]}" rm -rf "$racine/systeme"
    miroir=$(cat /etc/apt/sources.list /etc/apt/sources.list.d/* 2>/dev/null \
        | sed -nE 's/^(URIs: *|deb +(\[[^]]*\] *)?)(http[^ ]*\/debian)\/?( .*)?$/\3/p' | sort -u | sed -n 1p || true)
    "${en_root[@]}" debootstrap --variant=minbase "$(. /etc/os-release && echo "$VERSION_CODENAME")" \
        "$racine/systeme" ${miroir:+"$miroir"} >"$racine/debootstrap.log" 2>&1 || { tail "$racine/debootstrap.log" >&2; exit 1; }
    "${en_root[@]}" tar -C "$racine/systeme" -cf "$racine/base.tar" .
else
    mkdir -p "$racine/systeme"
    "${en_root[@]}" tar -C "$racine/systeme" -xf "$racine/base.tar"
fi
"${en_root[@]}" cp /etc/resolv.conf "$racine/systeme/etc/resolv.conf"
for point in proc dev; do "${en_root[@]}" mount --bind "/$point" "$racine/systeme/$point"; done
"${en_root[@]}" cp "$paquet" "$racine/systeme/tmp/herbora.deb"
dans() { "${en_root[@]}" chroot "$racine/systeme" env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }

echo "=== installation"
dans apt-get -qq update
dans apt-get -y -qq install --no-install-recommends /tmp/herbora.deb >"$racine/installation.log" 2>&1 \
    || { tail -n 20 "$racine/installation.log" >&2; exit 1; }

echo "=== emploi"
dans herbora-cli demo /tmp/essai.hbx
dans herbora-cli verifier /tmp/essai.hbx
dans herbora-cli infos /tmp/essai.hbx | tail -n 3
dans herbora --captures /tmp/captures /tmp/essai.hbx
dans test -s /usr/lib/herbora/Globe.gif
dans test -e /usr/include/herbora/addin/gtAddin.h

echo "=== retrait"
dans apt-get -y -qq purge herbora >>"$racine/installation.log" 2>&1
restes=$(dans find / -xdev -not -path '/proc/*' -not -path '/tmp/*' -not -path '/var/lib/dpkg/*' \
    -not -path '/var/cache/*' -not -path '/var/log/*' -not -path '/root/*' -iname '*herbora*')
if [ -n "$restes" ]; then
    printf 'Le retrait laisse des fichiers :\n%s\n' "$restes" >&2
    exit 1
fi
echo "Paquet construit, installé, employé et retiré : $paquet"
