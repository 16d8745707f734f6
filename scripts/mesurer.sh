#!/usr/bin/env bash
# Builds the benchmarks and runs them one after the other. BENCH_ARGS goes to
# each (for instance --benchmark_filter=Seek); results stay under build/mesures.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/construire.sh bench
mkdir -p build/mesures
trouve=
for programme in build/bench/bin/herbora_bench*; do
    [ -x "$programme" ] || continue
    trouve=oui
    nom=$(basename "$programme")
    # shellcheck disable=SC2086  # several arguments are meant to be split
    "$programme" ${BENCH_ARGS:-} \
        --benchmark_out="build/mesures/$nom.json" --benchmark_out_format=json
done
if [ -z "$trouve" ]; then
    echo "Aucun programme herbora_bench* dans build/bench/bin" >&2
    exit 1
fi
