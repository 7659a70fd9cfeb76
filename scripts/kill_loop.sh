#!/usr/bin/env bash
# Kills an editing script at random moments, N times (default 200), and looks at what the next start
# brings back: it must be the mesh after the last step that the script had told of, or after the
# step that it was at. With a pause between saves, in seconds, a thread writes them, and it may be
# the mesh after any step before.
#   scripts/kill_loop.sh PROGRAM [N [SEED [MESH.obj [PAUSE]]]]
set -euo pipefail
program=$1
kills=${2:-200}
RANDOM=${3:-1}
mesh=${4:-$(dirname "${BASH_SOURCE[0]}")/../samples/gear.obj}
pause=${5:-0}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
state=$scratch/state
mkdir "$state"

# Commands that ask nothing and change the mesh; the duplicating one comes twice at most.
changes=(1084 1055 397 386 280 386 1084 397)

make_script() {
    printf '%s\n' "$mesh" --dump
    local i
    for i in {1..24}; do
        local command=${changes[RANDOM % ${#changes[@]}]}
        if ((i % 10 == 5)); then command=389; fi
        printf '%s\n' --command "$command" --dump
    done
}

# The dumps of a run that went so far; of a line that was cut off nothing.
dumps() { head -n "$(wc -l <"$1")" "$1" | grep -a '^{"event":"dump"' || true; }

fail() {
    echo "kill $1: $2" >&2
    exit 1
}

early=0 late=0 same=0 newer=0 older=0
for ((i = 1; i <= kills; ++i)); do
    if ((i % 20 == 1)); then
        make_script >"$scratch/args.txt"
        "$program" --batch "@$scratch/args.txt" >"$scratch/whole.txt" || true
        dumps "$scratch/whole.txt" >"$scratch/states.txt"
        begun=$(date +%s%N)
        "$program" --batch --state-folder "$state" --recovery-seconds "$pause" "@$scratch/args.txt" \
            >"$scratch/saved.txt" || true
        lasts=$((($(date +%s%N) - begun) / 1000))
        cmp "$scratch/whole.txt" "$scratch/saved.txt"
    fi
    "$program" --batch --state-folder "$state" --recovery-seconds "$pause" "@$scratch/args.txt" \
        >"$scratch/killed.txt" 2>"$scratch/errors.txt" &
    child=$!
    sleep "$(printf '%d.%06d' $((RANDOM * 32768 + RANDOM)) 0 | awk -v most="$lasts" \
        '{ printf "%.6f", ($1 / 1073741824) * most / 1e6 }')"
    kill -KILL "$child" 2>/dev/null || true
    wait "$child" 2>/dev/null || true
    told=$(dumps "$scratch/killed.txt" | wc -l)

    status=0
    "$program" --batch --state-folder "$state" --answer yes --dump \
        >"$scratch/back.txt" 2>"$scratch/errors.txt" || status=$?
    left=$(ls -A "$state" | grep '^recovery' || true)
    if [[ -n $left ]]; then fail "$i" "left behind: $left"; fi
    if ! grep -q '"event":"question"' "$scratch/back.txt"; then
        # The whole script was done, or nothing at all.
        all=$(wc -l <"$scratch/states.txt")
        if ((pause == 0 && told > 0 && told < all)); then fail "$i" "nothing came back after $told steps"; fi
        if ((told == 0)); then early=$((early + 1)); else late=$((late + 1)); fi
        continue
    fi
    if ((status != 0)); then fail "$i" "status $status: $(cat "$scratch/errors.txt")"; fi
    dumps "$scratch/back.txt" >"$scratch/found.txt"
    if ((told > 0)) && sed -n "${told}p" "$scratch/states.txt" | cmp -s - "$scratch/found.txt"; then
        same=$((same + 1))
    elif sed -n "$((told + 1))p" "$scratch/states.txt" | cmp -s - "$scratch/found.txt"; then
        newer=$((newer + 1))
    elif ((pause > 0)) && grep -qxFf "$scratch/found.txt" <(head -n "$told" "$scratch/states.txt"); then
        older=$((older + 1))
    else
        fail "$i" "after $told steps another mesh came back"
    fi
done
echo "$kills kills: $same brought back the last step told, $newer the one after it," \
    "$older an older one; $early came before the first step was told, $late after the last save"
