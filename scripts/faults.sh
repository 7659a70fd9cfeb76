#!/usr/bin/env bash
# Lets single calls of the program fail, one after the other, in runs that read, save, import, export,
# undo and save for recovery: each must end with a message or as ever, never by a signal, and what was
# to be replaced must be the old file or the new one. Then kills runs at the same calls.
#   scripts/faults.sh PROGRAM INJECTOR [MOST [NAME]]
#     MOST: calls tried of a kind in a run (default: all); NAME: only the runs with this in their name
set -euo pipefail
program=$(realpath "$1") injector=$(realpath "$2") most=${3:-1000000} only=${4-}
samples=$(realpath "$(dirname "${BASH_SOURCE[0]}")/../samples")

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export TMPDIR=$scratch/tmp
mkdir tmp dead old good

# A small mesh, in each format, is what is to be replaced; the other has a material with a colour.
printf 'v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\nf 1 2 3\nf 1 2 4\n' >small.obj
printf 'newmtl paint\nKd 1 0 0\n' >paint.mtl
{ printf 'mtllib paint.mtl\nusemtl paint\n' && cat "$samples/shell.obj"; } >new.obj
for suffix in gltf dxf 3ds; do "$program" --convert small.obj "small.$suffix" >log; done
sed 's/^usemtl.*/usemtl paint/' new.obj >red.obj
"$program" --convert red.obj red.glb >log
(cd old && "$program" --convert ../small.obj out.gltf >log && cp ../small.obj out.obj && echo old >out.mtl)
# What a killed run has saved for recovery.
(POLYFAB_FAULT=rename:3:kill LD_PRELOAD=$injector "$program" --batch --state-folder dead \
    --recovery-seconds 0 new.obj --command 397 --command 386 >log 2>&1; exit $?) 2>/dev/null || true
all='"liveFaces":'$(grep -c '^f' new.obj),

# name | arguments of the run | target | the second file of a pair
runs=(
    "read|--batch new.obj --state|"
    "save OBJ|--batch new.obj --command 259 --answer out.obj|out.obj"
    "save DXF|--batch new.obj --command 257 --answer out.dxf|out.dxf"
    "save 3DS|--batch new.obj --command 258 --answer out.3ds|out.3ds"
    "save|--batch out.obj --command 389 --command 2040|out.obj"
    "save an import|--batch --command 2001 --answer red.glb --answer no --command 2040 --answer out.obj --answer yes|out.obj|out.mtl"
    "picture|--batch new.obj --picture out.png|out.png"
    "import|--batch --command 2001 --answer small.gltf --answer no --state|"
    "import DXF|--batch --command 2001 --answer small.dxf --answer no --state|"
    "import 3DS|--batch --command 2001 --answer small.3ds --answer no --state|"
    "child: import glTF|--batch --command 2001 --answer small.gltf --answer no --state|"
    "child: import DXF|--batch --command 2001 --answer small.dxf --answer no --state|"
    "child: import 3DS|--batch --command 2001 --answer small.3ds --answer no --state|"
    "export STL|--batch new.obj --command 2002 --answer out.stl|out.stl"
    "export glTF|--batch new.obj --command 2002 --answer out.gltf --answer yes|out.gltf|out.bin"
    "child: export glTF|--batch new.obj --command 2002 --answer out.gltf --answer yes|out.gltf|out.bin"
    "convert|--convert new.obj out.obj|out.obj"
    "edit and undo|--batch new.obj --command 386 --command 397 --command 1084 --command 2010 --command 2011 --state|"
    "recovery|--batch --state-folder state --recovery-seconds 0 new.obj --command 397 --command 386|"
    "bring back|--batch --state-folder state --answer yes --state|"
)
calls=(malloc open write fsync rename close)

prepare() { # target
    rm -rf out.* state tmp triggered
    mkdir tmp
    cp -r dead state
    if [[ $name == recovery ]]; then rm -r state && mkdir state; fi
    if [[ -n $1 ]]; then
        [[ -e old/$1 ]] || echo old >"old/$1"
        cp old/"${1%.*}".* .
    fi
}

# Of what the target, or the pair, holds: "old", "new" or nonsense. A pair may be new under a passing
# name.
holds() { # target second
    local folder passing
    for folder in old good; do
        passing=""
        if [[ -n $2 ]]; then passing=$(grep -ao "out\.polyfab-new-[0-9]*\.${2##*.}" "$1" | head -n 1 || true); fi
        sed "s/${passing:-$1}/${2:-$1}/" "$1" | cmp -s - "$folder/$1" || continue
        if [[ -z $2 ]] || cmp -s "${passing:-$2}" "$folder/$2"; then echo "${folder/good/new}" && return; fi
    done
    # Without a font, say.
    if [[ $1 == *.png && $(tail -c 8 "$1" | head -c 4) == IEND ]]; then echo new && return; fi
    echo "nonsense: $1"
}

# A mesh that does not come back now must do so at the next start.
isLost() {
    [[ $name == "bring back" ]] && ! grep -q "$all" log \
        && ! "$program" --batch --state-folder state --answer yes --state 2>&1 | grep -q "$all"
}

fail() {
    echo "$1" >&2
    exit 1
}

total=0 wrong=0
complain() {
    echo "$1"
    wrong=$((wrong + 1))
}

try() { # call kill
    local n tried step=1 status found where="" # behind the first calls fewer and fewer are tried
    if [[ $name == child* ]]; then where=child; fi
    for ((n = 1, tried = 1; tried <= most; n += step, ++tried)); do
        prepare "$target"
        status=0
        # shellcheck disable=SC2086
        (POLYFAB_FAULT=$1:$n$2 POLYFAB_FAULT_FILE=triggered POLYFAB_FAULT_IN=$where LD_PRELOAD=$injector \
            timeout 60 "$program" $arguments >log 2>errors; exit $?) 2>/dev/null || status=$?
        if ! grep -q 1 triggered; then break; fi
        total=$((total + 1))
        if ((status > 3)) && [[ -z $2 ]]; then complain "$name: $1 $n fails: status $status: $(tail -n 1 errors)"; fi
        if grep -aq 'mesh fault' log; then complain "$name: $1 $n fails: a mesh fault"; fi
        # A mesh that could not be read, or not whole, is another one to save.
        if [[ -n $target ]] && ! grep -aqE "tried to read|can't get enough memory" log; then
            found=$(holds "$target" "$second")
            if [[ $found != old && $found != new ]]; then complain "$name: $1 $n$2: $found"; fi
        fi
        if isLost; then complain "$name: $1 $n fails: the mesh is lost"; fi
        if ((tried >= 20)); then step=$((1 + n / 20)); fi
    done
}

for run in "${runs[@]}"; do
    IFS='|' read -r name arguments target second <<<"$run"
    if [[ $name != *$only* ]]; then continue; fi
    prepare "$target"
    # shellcheck disable=SC2086
    "$program" $arguments >log 2>errors || fail "$name: $(cat errors)"
    if [[ -n $target ]]; then cp out.* good; fi
    if isLost; then fail "$name: no mesh to bring back"; fi
    before=$total
    for call in "${calls[@]}"; do
        try "$call" ""
        if [[ -n $target && $call != malloc && $name != child* ]]; then try "$call" ":kill"; fi
    done
    echo "$name: $((total - before)) faults"
done
echo "$total faults, $wrong of them end wrongly"
((wrong == 0 && total > 0))
