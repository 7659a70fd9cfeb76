#!/usr/bin/env bash
# Lets single calls of the program fail in each command that is ready, one after the other: the run
# must end with a message or as ever, never by a signal, and leave a sound mesh.
#   scripts/fault_commands.sh PROGRAM INJECTOR [MOST [EACH]]
#     MOST: calls tried of a kind in a command (default: all); EACH: only every EACH-th command
set -euo pipefail
program=$(realpath "$1") injector=$(realpath "$2") most=${3:-1000000} each=${4:-1}
samples=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../samples")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export TMPDIR=$scratch
cp "$samples/gear.obj" mesh.obj

# All faces selected, one of them current, and a file that tells the injector to begin.
start=(mesh.obj --command 290 --command 349 --mouse 256,256,left --mouse 256,256 --command 358
    --command 415 --answer begin.txt)
# Names a mesh that is damaged.
end=(--command 259 --answer end.obj)

# Steps that answer what the command asks, found by asking; nothing for one that can't be answered.
answers() { # command
    local found=() question status
    while ((${#found[@]} < 60)); do
        status=0
        "$program" --batch "${start[@]}" --command "$1" "${found[@]}" >log 2>/dev/null || status=$?
        if ((status != 3)); then
            echo "${found[@]}"
            return
        fi
        question=$(tail -n 1 log)
        case $question in
        *'"event":"prompt"'*) for _ in $(grep -o '"answer":null' <<<"$question"); do found+=(--default); done ;;
        *'"event":"file","mode":"open"'*) found+=(--answer mesh.obj) ;;
        *'"event":"file"'*) found+=(--answer "out.$(suffix "$1")") ;;
        *) found+=(--answer yes) ;;
        esac
    done
    return 1
}

suffix() {
    case $1 in 257) echo dxf ;; 258) echo 3ds ;; 2002) echo stl ;; 415 | 1073) echo txt ;; *) echo obj ;; esac
}

total=0 wrong=0
try() { # command call steps...
    local command=$1 call=$2 n times step=1 status
    shift 2
    n=1
    # A short run tries other allocations in each command.
    if [[ $call == malloc ]] && ((most < 40)); then n=$((1 + command % 40)); fi
    for ((times = 1; times <= most; n += step, ++times)); do
        rm -f triggered
        status=0
        (POLYFAB_FAULT=$call:$n POLYFAB_FAULT_FILE=triggered POLYFAB_FAULT_FROM=begin.txt \
            LD_PRELOAD=$injector timeout 60 "$program" --batch "$@" >log 2>errors; exit $?) \
            2>/dev/null || status=$?
        if ! grep -q 1 triggered; then break; fi
        total=$((total + 1))
        if ((status > 3)) || grep -q 'mesh fault' log; then
            echo "command $command: $call $n fails: status $status: $(tail -n 1 errors)"
            wrong=$((wrong + 1))
        fi
        if ((times >= 20)); then step=$((1 + n / 20)); fi # of later ones fewer and fewer
    done
}

commands=0 tried=0
while IFS=$'\t' read -r command _ _ ready; do
    if [[ $ready != ready ]] || ((++commands % each != 0)); then continue; fi
    tried=$((tried + 1))
    if ! steps=$(answers "$command"); then
        echo "command $command: asks without end" >&2
        exit 1
    fi
    for call in malloc open write fsync rename close; do
        # shellcheck disable=SC2086
        try "$command" "$call" "${start[@]}" --command "$command" $steps "${end[@]}"
    done
done < <("$program" --help-commands)
echo "$tried commands, $total faults, $wrong of them end wrongly"
((tried > 0 && total > 0 && wrong == 0))
