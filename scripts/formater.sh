#!/usr/bin/env bash
# Lays out the sources with clang-format: all of them, or the files named.
# --verifier changes nothing and fails when something would change.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/installer-paquets.sh format
options=(-i)
if [ "${1:-}" = --verifier ]; then
    options=(--dry-run --Werror)
    shift
fi
if [ $# -gt 0 ]; then
    exec clang-format "${options[@]}" "$@"
fi
git ls-files -z --cached --others --exclude-standard -- '*.h' '*.cpp' |
    xargs -0 -r clang-format "${options[@]}"
