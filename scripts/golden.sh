#!/usr/bin/env bash
# Makes the pictures in tests/golden anew with the release build. Look at each that changed before
# it is committed.
#   scripts/golden.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cmake --build --preset release --target display_tests
POLYFAB_REFRESH_GOLDEN=1 build/release/tests/display_tests --gtest_filter='Golden.*'
git status --short tests/golden
