#!/usr/bin/env bash
# Builds and runs every test on the release preset, then the logic tests under
# the address and undefined-behaviour sanitizers (HERBORA_SANS_ASAN=1: not).
# The closing lines of ctest end the output when all went well.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/installer-paquets.sh base test
mkdir -p build

# The French locale and the offscreen platform are set test by test; what the
# caller's desktop wishes must not reach them.
unset DISPLAY WAYLAND_DISPLAY XDG_CURRENT_DESKTOP QT_STYLE_OVERRIDE QT_QPA_PLATFORMTHEME

eprouver() {
    local prereglage=$1
    echo "=== $prereglage : construction"
    scripts/construire.sh "$prereglage"
    echo "=== $prereglage : essais"
    ctest --preset "$prereglage" 2>&1 </dev/null | tee "build/$prereglage.essais.log"
}

eprouver release
if [ "${HERBORA_SANS_ASAN:-}" != 1 ]; then
    export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_stack_use_after_return=1}
    export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
    eprouver asan
    echo "=== asan : $(grep -E '^[0-9]+% tests passed' build/asan.essais.log)"
fi
echo "=== release"
grep -E '^Total Test time' build/release.essais.log
grep -E '^[0-9]+% tests passed' build/release.essais.log
