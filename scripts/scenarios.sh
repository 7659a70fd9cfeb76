#!/usr/bin/env bash
# Writes into tests/scenarios what the release build shows at each step now. Look at each line that
# changed before it is committed.
#   scripts/scenarios.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

cmake --build --preset release --target scenarios_tests
POLYFAB_REFRESH_SCENARIOS=1 build/release/tests/scenarios_tests || true
git diff --stat tests/scenarios
