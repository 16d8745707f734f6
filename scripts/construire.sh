#!/usr/bin/env bash
# Configures a preset and builds targets of it (all when none is named).
#
#   scripts/construire.sh PRESET [TARGET…]
#
# HERBORA_WERROR=ON makes warnings errors; the choice stays with the build
# folder until it is given again. HERBORA_TRAVAUX sets the number of jobs.
set -euo pipefail
cd "$(dirname "$0")/.."

prereglage=$1
shift

case "$prereglage" in
bench) scripts/installer-paquets.sh base bench ;;
fuzz) scripts/installer-paquets.sh base fuzz ;;
*) scripts/installer-paquets.sh base ;;
esac

# A translation unit over Qt takes up to a gigabyte: no more jobs than memory bears.
travaux=$(nproc)
memoire=$(awk '/^MemAvailable/ { print int($2 / 1048576) }' /proc/meminfo)
if [ "$memoire" -lt "$travaux" ]; then travaux=$memoire; fi
if [ "$travaux" -lt 1 ]; then travaux=1; fi
export CMAKE_BUILD_PARALLEL_LEVEL=${HERBORA_TRAVAUX:-$travaux}

mkdir -p build
journal=build/$prereglage.configuration.log
options=()
if [ -n "${HERBORA_WERROR:-}" ]; then options+=("-DHERBORA_WERROR=$HERBORA_WERROR"); fi
if ! cmake --preset "$prereglage" "${options[@]}" >"$journal" 2>&1; then
    cat "$journal" >&2
    exit 1
fi

cibles=()
if [ $# -gt 0 ]; then cibles=(--target "$@"); fi
# On a terminal ninja rewrites one line; elsewhere a line for each step is noise.
if [ -t 1 ]; then
    exec cmake --build --preset "$prereglage" "${cibles[@]}"
fi
journal=build/$prereglage.construction.log
if ! cmake --build --preset "$prereglage" "${cibles[@]}" >"$journal" 2>&1; then
    grep -vE '^\[[0-9]+/[0-9]+\] (Building|Linking|Automatic|Generating)' "$journal" >&2 || true
    exit 1
fi
grep -E 'warning:' "$journal" || true
