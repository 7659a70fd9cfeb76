#!/usr/bin/env bash
# Installs what is missing, builds the release preset and runs all tests. The last lines are the
# test runner's own summary.
#   ./test.sh [CTEST-OPTION ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

scripts/install.sh build test
scripts/build.sh release
# One test wants a locale with decimal commas; a plain system has none.
export LOCPATH=$PWD/build/locale
if [[ ! -f $LOCPATH/de_DE.UTF-8/LC_NUMERIC ]]; then
    mkdir -p "$LOCPATH"
    localedef -i de_DE -f UTF-8 "$LOCPATH/de_DE.UTF-8"
fi
echo "== tests"
exec ctest --preset release --parallel "$(nproc)" "$@"
