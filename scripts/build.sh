#!/usr/bin/env bash
# Configures and builds a preset, quietly unless it fails. What follows the preset goes to the
# configuration.
#   scripts/build.sh release
#   scripts/build.sh release -B build/product -DPOLYFAB_TESTS=OFF
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"
preset=$1
shift
folder=build/$preset
if [[ ${1-} == -B ]]; then folder=$2; fi

scripts/quiet.sh "configuring $folder" cmake --preset "$preset" "$@"
scripts/quiet.sh "building $folder" cmake --build "$folder" --parallel "$(nproc)"
