#!/usr/bin/env bash
# Takes every sample through the release build without a window: read, write, read back, write
# again. Nothing may be reported, no point or face may be lost, and once the materials stand in the
# order in which the file uses them (after the first pass) the text may not change any more.
#   scripts/smoke.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
editor=build/release/polyfab

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
fail() { echo "smoke: $*" >&2; exit 1; }
convert() { scripts/quiet.sh "converting $(basename "$1")" "$editor" --convert "$1" "$2"; }
lines() { grep -cE "^$1 " "$2" || true; }

for sample in samples/*.obj; do
    echo "== sample $sample"
    convert "$sample" "$scratch/1.obj"
    convert "$scratch/1.obj" "$scratch/2.obj"
    convert "$scratch/2.obj" "$scratch/3.obj"
    for kind in v vt vn f; do
        [[ $(lines $kind "$sample") == $(lines $kind "$scratch/1.obj") ]] \
            || fail "$sample: the number of $kind lines changed"
    done
    cmp <(grep '^v' "$scratch/1.obj") <(grep '^v' "$scratch/2.obj") \
        || fail "$sample: points changed when read back"
    cmp "$scratch/2.obj" "$scratch/3.obj" || fail "$sample: the text changed when read back"
    "$editor" --batch "$sample" --picture "$scratch/picture.png" >/dev/null
    [[ -s $scratch/picture.png ]] || fail "$sample: no picture"
done

echo "== files without faces"
printf 'v 1 2 3\n' >"$scratch/none.obj"
printf 'solid\nendsolid\n' >"$scratch/none.stl"
printf '0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n1\n0\nENDSEC\n0\nEOF\n' >"$scratch/none.dxf"
for suffix in obj stl dxf; do
    echo old >"$scratch/old.obj"
    status=0
    "$editor" --convert "$scratch/none.$suffix" "$scratch/old.obj" >"$scratch/log" || status=$?
    ((status == 1)) || fail "$suffix: it was converted"
    grep -q "none.$suffix has no faces that I can read" "$scratch/log" || fail "nothing is said of it"
    [[ $(cat "$scratch/old.obj") == old ]] || fail "the old file was replaced"
done
