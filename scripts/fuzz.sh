#!/usr/bin/env bash
# Builds the fuzz targets and runs each for SECONDS (default 45). An input that breaks one is kept
# in build/fuzz/ and named in the output.
#   scripts/fuzz.sh [SECONDS [TARGET]]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
seconds=${1:-45}

scripts/install.sh build fuzz
targets=()
for source in fuzz/${2:-*_fuzz}.cpp; do targets+=("$(basename "$source" .cpp)"); done
scripts/quiet.sh "configuring build/fuzz" cmake --preset fuzz
scripts/quiet.sh "building build/fuzz" \
    cmake --build build/fuzz --parallel "$(nproc)" --target polyfab "${targets[@]}"

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
for target in "${targets[@]}"; do
    corpus=$scratch/$target
    mkdir "$corpus"
    seeds=()
    if [[ -d fuzz/corpus/${target%_fuzz} ]]; then seeds=("fuzz/corpus/${target%_fuzz}"); fi
    echo "== fuzzing: $target for $seconds s"
    fuzz/large_seeds.sh build/fuzz/polyfab "$target" "$corpus"
    # A little more than a piece in which files are read.
    if ! "build/fuzz/fuzz/$target" "-max_total_time=$seconds" -timeout=60 -max_len=1114112 \
        -print_final_stats=1 "-artifact_prefix=build/fuzz/$target-" \
        "$corpus" "${seeds[@]}" >"$scratch/log" 2>&1; then
        tail -n 100 "$scratch/log"
        exit 1
    fi
    grep -E 'number_of_executed_units|peak_rss_mb' "$scratch/log"
done
