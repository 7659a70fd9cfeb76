#!/usr/bin/env bash
# Ends runs that save at random moments, N times (default 1,000) for each kind of save: one half is
# killed, the other gets a signal that asks for the end. What was to be replaced must be the old file
# or the new one, of a pair both, and after such a signal nothing else may lie there or in the folder
# for temporary files.
#   scripts/kill_saves.sh PROGRAM [N [SEED [KIND]]]
set -euo pipefail
program=$(realpath "$1") kills=${2:-1000} only=${4:-.}
RANDOM=${3:-1}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
export TMPDIR=$scratch/tmp
mkdir old good work tmp

# A wavy sheet: large enough that saving it takes most of the time.
awk 'BEGIN { n = 120
    for (i = 0; i <= n; ++i) for (j = 0; j <= n; ++j) print "v", i / 7, j / 7, sin(i * j / 900)
    for (i = 0; i < n; ++i) for (j = 1; j <= n; ++j) {
        a = i * (n + 1) + j; print "f", a, a + 1, a + n + 2, a + n + 1 } }' >new.obj
printf 'v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n' >small.obj

# The same with a material, red in one library and blue in the other: where the old one lies beside
# the target, the export makes a new one.
painted() { # mesh color
    mkdir "painted-$1"
    printf 'newmtl paint\nKd %s\n' "$2" >"painted-$1/out.mtl"
    { printf 'mtllib out.mtl\nusemtl paint\n' && cat "$1.obj"; } >"painted-$1/mesh.obj"
}
painted small "1 0 0"
painted new "0 0 1"

# kind | steps | the file to be replaced
kinds=(
    "write OBJ|--command 259 --answer work/out.obj|out.obj"
    "write DXF|--command 257 --answer work/out.dxf|out.dxf"
    "write 3DS|--command 258 --answer work/out.3ds|out.3ds"
    "save|--command 389 --command 2040|out.obj"
    "convert||out.obj"
    "picture|--picture work/out.png|out.png"
    "export STL|--command 2002 --answer work/out.stl|out.stl"
    "export glTF and its buffer|--command 2002 --answer work/out.gltf --answer yes|out.gltf out.bin"
    "export OBJ and its library|--command 2002 --answer work/out.obj --answer yes|out.obj out.mtl"
    "save an import and its library|--command 2040 --answer work/out.obj --answer yes|out.obj out.mtl"
)

save() { # kind steps, of $mesh
    case $1 in
    *import*) exec "$program" --batch --command 2001 --answer "painted-${mesh%.obj}/mesh.obj" --answer no ${2-} ;;
    *library) exec "$program" --batch "painted-${mesh%.obj}/mesh.obj" ${2-} ;;
    save) exec "$program" --batch work/out.obj ${2-} ;;
    convert) exec "$program" --convert "$mesh" work/out.obj ;;
    *) exec "$program" --batch "$mesh" ${2-} ;;
    esac
}

# The folder as it is before each save.
prepare() {
    rm -rf work tmp
    cp -r old work
    mkdir tmp
}

fail() {
    echo "$1" >&2
    exit 1
}

# Of what is there: "old", "new" or what is wrong. A pair may be new under a passing name.
holds() {
    local folder passing main=$1 second=${2-}
    for folder in old good; do
        if [[ -z $second ]]; then
            cmp -s "work/$main" "$folder/$main" && echo "$folder" && return
        else
            passing=$(grep -ao "out\.polyfab-new-[0-9]*\.${second##*.}" "work/$main" | head -n 1 || true)
            sed "s/${passing:-$second}/$second/" "work/$main" | cmp -s - "$folder/$main" || continue
            cmp -s "work/${passing:-$second}" "$folder/$second" && echo "$folder" && return
        fi
    done
    echo "neither the old nor the new file"
}

for row in "${kinds[@]}"; do
    IFS='|' read -r kind steps files <<<"$row"
    if [[ ! $kind =~ $only ]]; then continue; fi
    # shellcheck disable=SC2206
    names=($files)
    rm -rf old good work && mkdir work
    steps_of_old=${steps/ --answer yes/}
    mesh=small.obj
    if [[ $kind == save ]]; then cp new.obj work/out.obj; else (save "$kind" "$steps_of_old") >log || fail "$kind: $(cat log)"; fi
    mv work old
    mesh=new.obj
    prepare
    begun=$(date +%s%N)
    (save "$kind" "$steps") >log || fail "$kind: $(cat log)"
    for name in "${names[@]}"; do
        if cmp -s "work/$name" "old/$name"; then fail "$kind: $name is not to be told from the old one"; fi
    done
    lasts=$((($(date +%s%N) - begun) / 1000))
    cp -r work good
    declare -A count=([old]=0 [good]=0)
    writing=0
    for ((i = 1; i <= kills; ++i)); do
        prepare
        (save "$kind" "$steps") >log 2>&1 &
        child=$!
        # From a fifth of its time on, since it has to read the mesh first, to a little behind the end.
        sleep "$(awk -v most="$lasts" -v part="$RANDOM" 'BEGIN { printf "%.6f", most * (0.2 + 0.9 * part / 32768) / 1e6 }')"
        signal=$((i % 2 ? 9 : 15))
        kill -"$signal" "$child" 2>/dev/null || true
        wait "$child" 2>/dev/null || true
        found=$(holds "${names[@]}")
        if [[ $found != old && $found != good ]]; then fail "$kind, signal $signal: $found: $(ls -la work)"; fi
        count[$found]=$((count[$found] + 1))
        left=$(find work tmp -name '*polyfab-*' | wc -l)
        if ((left > 0)); then writing=$((writing + 1)); fi
        if ((left > 0 && signal == 15)); then fail "$kind: the signal left $(ls -A work tmp)"; fi
    done
    echo "$kind: $kills ended, ${count[old]} with the old file, ${count[good]} with the new one;" \
        "$writing of those killed were writing"
done
