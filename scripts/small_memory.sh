#!/usr/bin/env bash
# Runs that read, save, import, export, edit, undo and save for recovery, in address spaces of six sizes:
# from the least in which the program starts to 64 MB more. Each must end with a message or as ever,
# never by a signal, and what was to be replaced must be the old file or the new one.
#   scripts/small_memory.sh PROGRAM [SIDE]      SIDE: of the mesh, a sheet of squares (default: 150)
set -euo pipefail
program=$(realpath "$1") side=${2:-150}
mores=(0 4 8 16 32 64)

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export TMPDIR=$scratch/tmp
mkdir tmp
echo old >old

awk -v n="$side" 'BEGIN {
    for (i = 0; i <= n; ++i) for (j = 0; j <= n; ++j) print "v", i / 7, j / 7, sin(i * j / 900)
    for (i = 0; i < n; ++i) for (j = 1; j <= n; ++j) {
        a = i * (n + 1) + j; print "f", a, a + 1, a + n + 2, a + n + 1 } }' >sheet.obj
for suffix in dxf 3ds gltf; do "$program" --convert sheet.obj "sheet.$suffix" >log; done

# name | steps | target
runs=(
    "read OBJ|sheet.obj --state|"
    "read DXF|sheet.dxf --state|"
    "import glTF|--command 2001 --answer sheet.gltf --answer no --state|"
    "import 3DS|--command 2001 --answer sheet.3ds --answer no --state|"
    "import DXF|--command 2001 --answer sheet.dxf --answer no --state|"
    "write OBJ|sheet.obj --command 259 --answer out.obj|out.obj"
    "write DXF|sheet.obj --command 257 --answer out.dxf|out.dxf"
    "write 3DS|sheet.obj --command 258 --answer out.3ds|out.3ds"
    "picture|sheet.obj --picture out.png|out.png"
    "export STL|sheet.obj --command 2002 --answer out.stl|out.stl"
    "boolean|sheet.obj --command 392 --answer 10 --answer 10 --answer 0 --answer 5 --answer 200 --answer 100 --default --default --default --command 290 --command 394 --default --state|"
    "fill all holes|sheet.obj --command 290 --command 1052 --answer 0 --state|"
    "thin out|sheet.obj --command 290 --command 329 --default --default --state|"
    "shaded picture|sheet.obj --command 333 --command 330 --picture out.png|out.png"
    "make a sphere|sheet.obj --command 392 --answer 10 --answer 10 --answer 0 --answer 5 --answer 200 --answer 100 --default --default --default --state|"
    "tools and undo|sheet.obj --command 290 --command 389 --command 398 --command 274 --command 1083 --default --default --command 279 --answer no --command 2010 --command 2010 --command 2011 --state|"
    "recovery|--state-folder state --recovery-seconds 0 sheet.obj --command 397 --command 389|"
)

prepare() {
    rm -rf out.* state
    mkdir state
    if [[ -n $1 ]]; then cp old "$1"; fi
}

kilobytes=20000
until (ulimit -v $kilobytes && "$program" --version >log 2>&1); do kilobytes=$((kilobytes + 1000)); done

done_runs=0 messages=0 wrong=0
for run in "${runs[@]}"; do
    IFS='|' read -r name steps target <<<"$run"
    prepare "$target"
    # shellcheck disable=SC2086
    "$program" --batch $steps >log 2>&1 || { tail -n 2 log && exit 1; }
    if [[ -n $target ]]; then mv "$target" good; fi
    for more in "${mores[@]}"; do
        prepare "$target"
        status=0
        # shellcheck disable=SC2086
        (ulimit -v $((kilobytes + 1024 * more)) && timeout 120 "$program" --batch $steps >log 2>errors
            exit $?) 2>/dev/null || status=$?
        done_runs=$((done_runs + 1))
        if ((status > 0)); then messages=$((messages + 1)); fi
        fault=""
        if ((status > 3)); then fault="status $status: $(tail -n 1 errors)"; fi
        if grep -q 'mesh fault' log; then fault="a mesh fault"; fi
        # A mesh that could not be read is another one to save.
        if [[ -n $target ]] && ! cmp -s "$target" old && ! cmp -s "$target" good \
            && ! grep -q 'tried to read' log; then
            fault="$target is damaged"
        fi
        if [[ -n $fault ]]; then
            echo "$name in $more MB more than the least: $fault"
            wrong=$((wrong + 1))
        fi
    done
done
echo "$done_runs runs in $((kilobytes / 1000)) to $((kilobytes / 1000 + mores[-1])) MB:" \
    "$messages ended with a message, $wrong wrongly"
((wrong == 0))
