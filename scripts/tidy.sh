#!/usr/bin/env bash
# Runs clang-tidy over the sources of the release build (all of them, or those whose path matches
# PATTERN). Takes minutes, so it is not part of check.sh.
#   scripts/tidy.sh [PATTERN]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install.sh build test tidy
scripts/quiet.sh "configuring build/release" cmake --preset release
find . -path ./build -prune -o -name '*.cpp' -type f -print0 \
    | { grep -zZE -- "${1-.}" || true; } | { grep -zZv '^./fuzz/' || true; } \
    | xargs -0 -n 1 -P "$(nproc)" clang-tidy --quiet -p build/release
