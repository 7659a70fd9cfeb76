#!/usr/bin/env bash
# Makes seeds of about 1 MiB for a fuzz target, at the limits that small ones never reach: the pieces
# in which files are read, the lengths of lines, the corners of a face. They are made anew for each
# run, since a repository is no place for them. Nothing for targets that have no such limits.
#   fuzz/large_seeds.sh PROGRAM TARGET FOLDER      PROGRAM: polyfab, which converts
set -euo pipefail
program=$(realpath "$1") target=$2 folder=$3

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# Lines of each length about the limit for them, of each kind that has arguments.
long_obj_lines() {
    awk 'function pad(text, length_) { return sprintf("%-" length_ "s", text) }
    BEGIN {
        print "v 0 0 0\nv 1 0 0\nv 0 1 0"
        for (n = 1020; n <= 1026; ++n) {
            print pad("v 1 2 3", n - 2) " 4"; print pad("f 1 2 3", n - 2) " 1"; print pad("#", n) "x"
            print pad("g", n - 1) "x"; name = pad("usemtl ", n); gsub(/ /, "n", name)
            print "usemtl " substr(name, 8)
        }
        for (n = 340; n <= 400; n += 20) { line = "f"; for (i = 0; i < n; ++i) line = line " " i % 3 + 1; print line }
        line = "f"; for (i = 0; i < 33000; ++i) line = line " " i % 3 + 1; print line
    }'
}

# A sheet of squares whose text ends a little behind 1 MiB.
sheet() {
    awk -v n=138 'BEGIN {
        for (i = 0; i <= n; ++i) for (j = 0; j <= n; ++j)
            printf "v %.5f %.5f %.5f\nvt %.6f 0.5\n", i / 7, j / 7, sin(i * j / 900), i / n
        for (i = 0; i < n; ++i) for (j = 1; j <= n; ++j) {
            a = i * (n + 1) + j; print "f", a "/" a, a + 1 "/" a, a + n + 2, a + n + 1 } }'
}

# A seed: a first byte, then a file, up to a length. A cut through a number or a name is welcome.
seed() { # name byte file [length]
    { printf "\\x$2" && head -c "${4-1114111}" "$3"; } >"$folder/$1"
}

converted() { # suffix
    sheet >"$scratch/sheet.obj"
    "$program" --convert "$scratch/sheet.obj" "$scratch/sheet.$1" >/dev/null
    echo "$scratch/sheet.$1"
}

case $target in
obj_fuzz)
    long_obj_lines >"$scratch/lines"
    sheet >"$scratch/sheet"
    seed lines 00 "$scratch/lines"
    seed sheet 01 "$scratch/sheet"
    # The lines about the limit stand where a piece ends.
    { head -c 1045000 /dev/zero | tr '\0' '\n' && cat "$scratch/lines"; } >"$scratch/behind"
    seed behind 00 "$scratch/behind"
    ;;
dxf_fuzz) seed sheet 00 "$(converted dxf)" ;;
drawing_fuzz) head -c 1114111 "$(converted dxf)" >"$folder/sheet" ;;
threeds_fuzz)
    seed sheet 00 "$(converted 3ds)"
    seed walk 02 "$(converted 3ds)" # past the reader's limit of 64 KiB
    ;;
stream_fuzz) seed tables 03 <(sheet) ;;
child_fuzz)
    seed obj 06 <(sheet)
    seed dxf 09 "$(converted dxf)"
    seed 3ds 07 "$(converted 3ds)"
    ;;
esac
