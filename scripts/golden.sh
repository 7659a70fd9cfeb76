#!/usr/bin/env bash
# Makes the pictures and texts in tests/golden anew with the release build. Look at each that
# changed before it is committed.
#   scripts/golden.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cmake --build --preset release --target display_tests editor_tests formats_tests
POLYFAB_REFRESH_GOLDEN=1 build/release/tests/display_tests --gtest_filter='Golden.*'
POLYFAB_REFRESH_GOLDEN=1 build/release/tests/editor_tests --gtest_filter='EveryCommand.*'
POLYFAB_REFRESH_GOLDEN=1 build/release/tests/formats_tests --gtest_filter='Written.*'
git status --short tests/golden
