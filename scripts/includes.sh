#!/usr/bin/env bash
# Checks every #include against the table of floors in docs/architecture.md: a folder may include its
# own files and what the table's last column allows.
#   scripts/includes.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

git grep -n '^#include "' -- '*.cpp' '*.h' ':!tests' ':!bench' ':!fuzz' ':!samples' |
    awk -F'|' '
function room(file,   best, r) { # the row that the file lives in: the longest name that it begins with
    for (r in floor) if (index(file, r) == 1 && length(r) > length(best)) best = r
    if (best == "") { print "includes: " file " stands in no row of the table"; bad = 1 }
    return best
}
FNR == NR {
    if ($2 !~ /^ [0-9]+ $/) next
    for (n = split($3, names, "`"); n > 1; n -= 2) { floor[names[n - 1]] = $2 + 0; may[names[n - 1]] = $5 }
    next
}
{
    split($0, part, ":"); split($0, quoted, "\"")
    from = room(part[1]); to = room(quoted[2]); rule = may[from]
    if (from == to || rule ~ /all/) next
    split(rule, half, "without"); low = high = -1
    if (match(half[1], /[0-9](-[0-9])?/)) {
        low = substr(half[1], RSTART, 1); high = substr(half[1], RSTART + RLENGTH - 1, 1)
    }
    allowed = floor[to] >= low && floor[to] <= high || index(half[1], "`" to "`")
    if (!allowed || index(half[2], "`" to "`")) { print part[1] ":" part[2] ": may not include " quoted[2]; bad = 1 }
}
END { exit bad }' docs/architecture.md -
