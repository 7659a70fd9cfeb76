#!/usr/bin/env bash
# Runs clang-tidy over sources of the release build: all of them, which takes minutes, those whose
# path matches PATTERN, or the N (default 20) that were touched last: what is not committed yet, then
# the newest commits. Of a header it is the source beside it.
#   scripts/tidy.sh [PATTERN]
#   scripts/tidy.sh --touched [N]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The commits are counted back from the newest one, not from a branch: a fresh or shallow clone knows
# no other.
touched() {
    git diff --name-only HEAD
    git ls-files --others --exclude-standard
    git log -n 100 --format= --name-only
}

sources() {
    if [[ ${1-} == --touched ]]; then
        touched | sed 's/\.h$/.cpp/' | awk '!seen[$0]++' |
            while read -r file; do if [[ -f $file ]]; then echo "$file"; fi; done |
            awk -v most="${2-20}" '/\.cpp$/ && !/^fuzz\// && ++n <= most'
    else
        git ls-files --cached --others --exclude-standard -- '*.cpp' ':!fuzz' |
            awk -v pattern="${1-.}" '$0 ~ pattern'
    fi
}

scripts/install.sh build test tidy
scripts/quiet.sh "configuring build/release" cmake --preset release
sources "$@" | tr '\n' '\0' | xargs -0 -r -n 1 -P "$(nproc)" clang-tidy --quiet -p build/release
