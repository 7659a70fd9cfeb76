#!/usr/bin/env bash
# Checks that every source file is laid out as .clang-format says, or with --fix lays it out.
#   scripts/format.sh [--fix]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

how=(--dry-run -Werror)
if [[ ${1-} == --fix ]]; then how=(-i); fi
find . -path ./build -prune -o -path ./.git -prune -o \
    \( -name '*.cpp' -o -name '*.h' \) -type f -print0 | xargs -0 clang-format-14 "${how[@]}"
