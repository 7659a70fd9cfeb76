#!/usr/bin/env bash
# All that a change must pass; CI runs nothing else. The release tests come last, so that their
# summary ends the output.
#   scripts/check.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

scripts/install.sh build test format tidy fuzz
echo "== format"
scripts/format.sh
scripts/quiet.sh "includes between folders" scripts/includes.sh
scripts/build.sh release
scripts/quiet.sh "clang-tidy over the sources touched last" scripts/tidy.sh --touched
scripts/smoke.sh
scripts/commands.sh --check
scripts/build.sh asan
scripts/quiet.sh "tests under AddressSanitizer and UndefinedBehaviorSanitizer" \
    ctest --preset asan --parallel "$(nproc)"
scripts/fuzz.sh 30
exec ./test.sh
