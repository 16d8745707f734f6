#!/usr/bin/env bash
# clang-tidy on the sources that differ from HEAD (or from $BASE), or on
# FICHIERS="…". A file takes 15 to 30 seconds, hence not on all of them.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/installer-paquets.sh tidy
if [ -n "${FICHIERS:-}" ]; then
    read -r -a fichiers <<<"$FICHIERS"
else
    mapfile -t fichiers < <({
        git diff --name-only --diff-filter=d "${BASE:-HEAD}" -- '*.cpp'
        git ls-files --others --exclude-standard -- '*.cpp'
    } | sort -u)
fi
if [ ${#fichiers[@]} -eq 0 ]; then
    echo "Aucun fichier à examiner (FICHIERS=\"…\" ou BASE=… en désigne)."
    exit 0
fi

scripts/construire.sh dev help >/dev/null
# clang cannot read the precompiled headers of g++: it reads the header itself.
mkdir -p build/tidy
sed -E 's/-Winvalid-pch//g; s#-include [^ ]*/CMakeFiles/[^ ]*/cmake_pch\.hxx#-include '"$PWD"'/cmake/pch_core.h#g' \
    build/dev/compile_commands.json >build/tidy/compile_commands.json
exec clang-tidy --quiet -p build/tidy "${fichiers[@]}"
