#!/usr/bin/env bash
# Lets single calls of the program fail, one after the other, in runs that read, save, import, export,
# undo and save for recovery: each must end with a message or as ever, never by a signal, and what was
# to be replaced must be the old file or the new one. Then kills runs at the same calls.
#   scripts/faults.sh PROGRAM INJECTOR [MOST]      MOST: calls tried of a kind in a run (default: all)
set -euo pipefail
program=$(realpath "$1") injector=$(realpath "$2") most=${3:-1000000}
samples=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../samples")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export TMPDIR=$scratch/tmp
mkdir tmp state

# A small mesh, saved in each format, is what is to be replaced: its points tell it from the new one.
printf 'v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 2 3\nf 1 2 4\n' >small.obj
cp "$samples/shell.obj" new.obj
"$program" --batch small.obj --command 2002 --answer small.gltf >log

# name | arguments of the run | target
runs=(
    "read|new.obj --state|"
    "save OBJ|new.obj --command 259 --answer out.obj|out.obj"
    "save DXF|new.obj --command 257 --answer out.dxf|out.dxf"
    "picture|new.obj --picture out.png|out.png"
    "import|--command 2001 --answer small.gltf --answer no --state|"
    "export STL|new.obj --command 2002 --answer out.stl|out.stl"
    "export glTF|new.obj --command 2002 --answer out.gltf --answer yes|out.gltf"
    "edit and undo|new.obj --command 386 --command 397 --command 1084 --command 2010 --command 2011 --state|"
    "recovery|--state-folder state new.obj --command 397 --command 386|"
)
calls=(malloc open write fsync rename close)

prepare() {
    rm -rf out.* state tmp triggered
    mkdir state tmp
    case ${1##*.} in
    gltf) "$program" --batch small.obj --command 2002 --answer out.gltf >log ;;
    ?*) printf 'old' >"$1" ;;
    esac
}

# Of what the target holds: "old", "new" or nonsense.
holds() {
    if [[ $1 == *.gltf ]]; then
        "$program" --batch --command 2001 --answer "$1" --answer no --state >back 2>&1 || true
        points=$(grep -o '"np":[0-9]*' back | head -n 1)
        case $points in '"np":4') echo old ;; '"np":0' | '') echo "nonsense: $(cat back)" ;; *) echo new ;; esac
    elif [[ $(head -c 4 "$1") == old ]]; then
        echo old
    elif cmp -s "$1" "good.${1##*.}"; then
        echo new
    elif [[ $1 == *.png && $(tail -c 8 "$1" | head -c 4) == IEND ]]; then # without a font, say
        echo new
    else
        echo "nonsense: $1"
    fi
}

fail() {
    echo "$1" >&2
    exit 1
}

total=0 signals=0
try() { # name arguments target call kill
    local n tried step=1 status found # behind the first calls fewer and fewer are tried
    for ((n = 1, tried = 1; tried <= most; n += step, ++tried)); do
        prepare "$3"
        status=0
        # shellcheck disable=SC2086
        (POLYFAB_FAULT=$4:$n$5 POLYFAB_FAULT_FILE=triggered LD_PRELOAD=$injector \
            timeout 60 "$program" --batch $2 >log 2>errors; exit $?) 2>/dev/null || status=$?
        if [[ ! -e triggered ]]; then break; fi
        total=$((total + 1))
        if ((status > 3)) && [[ -z $5 ]]; then
            echo "$1: $4 $n fails: status $status: $(tail -n 1 errors)"
            signals=$((signals + 1))
        fi
        # A mesh that could not be read is another one to save.
        if [[ -n $3 ]] && ! grep -q 'tried to read' log; then
            found=$(holds "$3")
            if [[ $found != old && $found != new ]]; then
                echo "$1: $4 $n$5: $found"
                signals=$((signals + 1))
            fi
        fi
        if ((tried >= 20)); then step=$((1 + n / 20)); fi
    done
}

for run in "${runs[@]}"; do
    IFS='|' read -r name arguments target <<<"$run"
    prepare "$target"
    # shellcheck disable=SC2086
    "$program" --batch $arguments >log 2>errors || fail "$name: $(cat errors)"
    if [[ -n $target ]]; then cp "$target" "good.${target##*.}"; fi
    before=$total
    for call in "${calls[@]}"; do
        try "$name" "$arguments" "$target" "$call" ""
        if [[ -n $target && $call != malloc ]]; then try "$name" "$arguments" "$target" "$call" ":kill"; fi
    done
    echo "$name: $((total - before)) faults"
done
echo "$total faults, $signals of them end wrongly"
((signals == 0))
