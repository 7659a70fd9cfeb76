#!/usr/bin/env bash
# Installs what is missing, builds the release preset and runs all tests. The last lines are the
# test runner's own summary.
#   ./test.sh [CTEST-OPTION ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

scripts/install.sh build test
scripts/build.sh release
echo "== tests"
exec ctest --preset release --parallel "$(nproc)" "$@"
