#!/usr/bin/env bash
# Makes the manual's pictures of the repair tools, docs/tools/*-before.png and *-after.png, with the
# release build.
#   scripts/tool_pictures.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
editor=${POLYFAB:-build/release/polyfab}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p docs/tools

# picture NAME MESH COMMON -- STEPS: the mesh before and after the steps, both with the common ones
# (what the display shows) in force.
picture() {
    local name=$1 mesh=$2 common=$3
    shift 4
    # shellcheck disable=SC2086
    "$editor" --batch --size 560x280 "$mesh" $common --picture "docs/tools/$name-before.png" \
        "$@" --picture "docs/tools/$name-after.png" >/dev/null
}

# surface ROWS COLUMNS CORNERS POINTS: a curved, tilted surface of quads as an OBJ file. CORNERS: how
# each quad is written ("quad", "triangles"), POINTS: "shared", or "own" ones for each face.
surface() {
    awk -v rows="$1" -v columns="$2" -v corners="$3" -v points="$4" -v bumps="${5:-0}" '
    function height(i, k) {
        # Noise of no particular kind, the same in every run.
        return 0.35 * sin(i * 0.7) * cos(k * 0.6) + bumps * (((i * 7 + k * 13) % 11) / 11 - 0.5)
    }
    function place(i, k,   x, y, z) {
        x = k / columns * 2 - 1; z = i / rows * 2 - 1; y = height(i, k)
        return sprintf("v %.4f %.4f %.4f", x + 0.35 * z, 0.75 * y - 0.55 * z + 0.2 * x, 0.75 * z + 0.55 * y)
    }
    function face(list, n,   i, line, part) {
        split(list, part, " ")
        line = "f"
        for (i = 1; i <= n; ++i) {
            if (points == "own") { print place(int(part[i] / 1000), part[i] % 1000); line = line " " ++made }
            else line = line " " int(part[i] / 1000) * (columns + 1) + part[i] % 1000 + 1
        }
        print line
    }
    BEGIN {
        if (points == "shared") for (i = 0; i <= rows; ++i) for (k = 0; k <= columns; ++k) print place(i, k)
        for (i = 0; i < rows; ++i) for (k = 0; k < columns; ++k) {
            print "g", (i >= rows / 4 && i < rows * 3 / 4 && k >= columns / 4 && k < columns * 3 / 4 ? "patch" : "rest")
            a = i * 1000 + k; b = a + 1000; c = b + 1; d = a + 1
            if (corners == "quad") face(a " " b " " c " " d, 4)
            else { face(a " " b " " c, 3); face(a " " c " " d, 3) }
        }
    }'
}

surface 8 10 quad own >"$scratch/apart.obj"
surface 8 10 triangles shared >"$scratch/triangles.obj"
surface 12 14 quad shared >"$scratch/quads.obj"
surface 12 14 quad shared 0.25 >"$scratch/rough.obj"
printf '%s\n' 'v -1 -.9 .1' 'v -.2 -1 .3' 'v .8 -.8 .4' 'v 1 0 .2' 'v .7 .8 0' 'v -.1 1 -.2' 'v -.9 .5 -.2' \
    'f 1 2 3 4 5 6 7' >"$scratch/polygon.obj"
# An L, a star, an arrow and a bent quad.
printf '%s\n' 'v -1.9 -.9 0' 'v -.4 -.9 0' 'v -.4 -.4 0' 'v -1.3 -.4 0' 'v -1.3 .8 0' 'v -1.9 .8 0' \
    'v .6 1 0' 'v .4 .3 .1' 'v -.4 .2 0' 'v .2 -.2 .1' 'v 0 -.9 0' 'v .6 -.4 .1' 'v 1.2 -.9 0' \
    'v 1 -.2 .1' 'v 1.6 .2 0' 'v .8 .3 .1' 'v -1 .1 0' 'v -.2 .7 0' 'v -1 1 0' 'v -.7 .7 0' \
    'v 1.5 -.9 0' 'v 2.3 -.8 .5' 'v 2.4 .1 0' 'v 1.7 0 .6' \
    'f 1 2 3 4 5 6' 'f 16 15 14 13 12 11 10 9 8 7' 'f 17 18 19 20' 'f 21 22 23 24' >"$scratch/bad.obj"

# A box of one quad a side and a ball, both turned.
awk '
    function put(x, y, z) { printf "v %.4f %.4f %.4f\n", x + 0.35 * z, 0.9 * y - 0.4 * z + 0.2 * x, 0.8 * z + 0.4 * y }
    BEGIN {
        for (i = 0; i < 8; ++i) put(i % 2 * 1.4 - 1, int(i / 2) % 2 * 1.4 - 0.9, int(i / 4) * 1.4 - 0.9)
        print "f 1 3 4 2\nf 5 6 8 7\nf 1 2 6 5\nf 3 7 8 4\nf 1 5 7 3\nf 2 4 8 6"
        n = 14; m = 24; pi = atan2(0, -1)
        for (i = 0; i <= n; ++i) for (k = 0; k < m; ++k)
            put(0.4 + 0.62 * sin(pi * i / n) * cos(2 * pi * k / m), 0.45 + 0.62 * cos(pi * i / n),
                0.4 - 0.62 * sin(pi * i / n) * sin(2 * pi * k / m))
        for (i = 0; i < n; ++i) for (k = 0; k < m; ++k) {
            a = 9 + i * m + k; b = 9 + i * m + (k + 1) % m
            if (i == 0) print "f", 9, a + m, b + m
            else if (i == n - 1) print "f", a, 9 + n * m, b
            else print "f", a, a + m, b + m, b
        }
    }' >"$scratch/bodies.obj"

patch="--command 291 --command 378 --mouse 140,140,left --mouse 140,140 --command 358"

picture weld "$scratch/apart.obj" "--command 323" -- --command 390 --default
picture boolean "$scratch/bodies.obj" "--command 354 --command 349 --mouse 100,190,left --mouse 100,190 --command 358" -- \
    --command 394 --answer d
picture weld-by-edges "$scratch/rough.obj" "" -- --command 317 --answer .22
picture detriangularize "$scratch/triangles.obj" "" -- --command 268 --answer 30
picture triangularize "$scratch/quads.obj" "" -- --command 274
picture break-up "$scratch/polygon.obj" "" -- --command 344
picture split-bad "$scratch/bad.obj" "" -- --command 395 --default
picture split-by-box "$scratch/quads.obj" "" -- --command 406 --answer 5 --command 407 --answer 5
picture fill-holes "$scratch/quads.obj" "$patch --command 299 --answer yes --command 290" -- \
    --command 1052 --answer 40
picture thin-out samples/shell.obj "" -- --command 329 --answer 30 --answer 0
picture thicken "$scratch/quads.obj" "$patch" -- \
    --command 372 --answer .3 --answer .1 --answer 30 --answer no --answer cancel
picture smoothing "$scratch/rough.obj" "" -- --command 371 --command 371 --command 371
picture parts samples/gear.obj "" -- --command 279 --answer yes --answer 30 \
    --command 381 --mouse 100,60,left --mouse 100,60
picture block samples/shell.obj "" -- --command 282 --answer -1 --answer 1 --answer -6.3 --answer -6 \
    --answer -1 --answer 1 --answer base --default
