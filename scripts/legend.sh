#!/usr/bin/env bash
# Makes the manual's picture of how things are drawn, docs/legend.png, with the release build.
#   scripts/legend.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
editor=${POLYFAB:-build/release/polyfab}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# A tilted tube of three rings of six faces, open at both ends. The lowest ring is a group of its own,
# one face of it is turned over, and one of the next ring is left out.
awk 'BEGIN {
    pi = atan2(0, -1)
    for (i = 0; i <= 3; ++i) for (k = 0; k < 6; ++k) {
        r = 0.5 + 0.2 * i; x = r * cos(k * pi / 3 + 0.5); z = r * sin(k * pi / 3 + 0.5); y = 0.8 * i
        printf "v %.4f %.4f %.4f\n", x, 0.9 * y - 0.44 * z, 0.44 * y + 0.9 * z
    }
    for (i = 0; i < 3; ++i) {
        print "g", (i == 0 ? "lower" : "upper")
        for (k = 0; k < 6; ++k) {
            a = 6 * i + k + 1; b = 6 * i + (k + 1) % 6 + 1
            if (i == 1 && k == 1) continue
            if (i == 0 && k == 2) print "f", a, b, b + 6, a + 6
            else print "f", a, a + 6, b + 6, b
        }
    }
}' >"$scratch/tube.obj"

# Presses: select the upper group; a current face, edge and vertex; the two settable points.
press() { echo "--mouse $1,$2,left --mouse $1,$2"; }
settable() { echo "--keydown ctrl --keydown $1 $(press "$2" "$3") --keyup $1 --keyup ctrl"; }
# shellcheck disable=SC2046
"$editor" --batch --size 900x450 "$scratch/tube.obj" --command 360 \
    --command 378 $(press 100 120) \
    --command 349 $(press 290 185) --command 348 $(press 281 233) --command 353 $(press 355 59) \
    --command 358 $(settable 1 400 60) $(settable 2 400 380) \
    --command 382 --command 346 --command 323 --command 373 --command 1031 --command 1032 \
    --picture docs/legend.png >/dev/null
