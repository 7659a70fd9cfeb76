#!/usr/bin/env bash
# Makes the pictures in tests/golden anew with the release build, and the list of what commands do.
# Look at each that changed before it is committed.
#   scripts/golden.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cmake --build --preset release --target display_tests editor_tests
POLYFAB_REFRESH_GOLDEN=1 build/release/tests/display_tests --gtest_filter='Golden.*'
POLYFAB_REFRESH_GOLDEN=1 build/release/tests/editor_tests --gtest_filter='EveryCommand.*'
git status --short tests/golden
