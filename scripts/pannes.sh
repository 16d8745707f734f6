#!/usr/bin/env bash
# Sweeps every file-changing call of every operation through every mode of
# failure. FAULTS_ARGS goes to the driver (for instance --operation optimiser).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/construire.sh release herbora_faults herbora_faults_driver herbora-cli
# shellcheck disable=SC2086  # several arguments are meant to be split
exec build/release/bin/herbora_faults_driver --complet ${FAULTS_ARGS:-}
