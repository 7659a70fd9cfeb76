#!/usr/bin/env bash
# Runs a command and says only that it runs; when it fails, shows all that it printed.
#   scripts/quiet.sh "what it is" COMMAND [ARGUMENT ...]
set -uo pipefail
what=$1
shift
echo "== $what"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
"$@" >"$log" 2>&1 </dev/null
status=$?
if ((status != 0)); then
    cat "$log"
    echo "== $what: failed (status $status): $*" >&2
fi
exit "$status"
