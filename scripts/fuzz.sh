#!/usr/bin/env bash
# Builds the fuzz targets with clang and runs each for FUZZ_SECONDES seconds.
# What is found lies in build/trouvailles; the corpus that grows in build/corpus.
# Seeds come from tests/fuzz/corpus/<target>, a dictionary from tests/fuzz/<target>.dict.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/construire.sh fuzz
mkdir -p build/trouvailles
echec=0
trouve=
for programme in build/fuzz/bin/herbora_fuzz_*; do
    [ -x "$programme" ] || continue
    trouve=oui
    nom=$(basename "$programme")
    court=${nom#herbora_fuzz_}
    corpus=build/corpus/$court
    mkdir -p "$corpus"
    dossiers=("$corpus")
    if [ -d "tests/fuzz/corpus/$court" ]; then dossiers+=("tests/fuzz/corpus/$court"); fi
    options=(-max_total_time="${FUZZ_SECONDES:-600}" -timeout=20 -rss_limit_mb=4096
        -print_final_stats=1 -artifact_prefix="build/trouvailles/$court-")
    if [ -f "tests/fuzz/$court.dict" ]; then options+=(-dict="tests/fuzz/$court.dict"); fi
    echo "=== $nom : ${FUZZ_SECONDES:-600} s"
    if ! "$programme" "${options[@]}" "${dossiers[@]}" >"build/$nom.log" 2>&1; then
        tail -n 60 "build/$nom.log" >&2
        echec=1
    fi
    grep -E '^(stat::|Done)' "build/$nom.log" || true
done
if [ -z "$trouve" ]; then
    echo "Aucun programme herbora_fuzz_* dans build/fuzz/bin" >&2
    exit 1
fi
exit $echec
