#!/usr/bin/env bash
# Makes the manual's pictures of the objects that can be made, docs/objects/*.png, with the release
# build.
#   scripts/maker_pictures.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
editor=${POLYFAB:-build/release/polyfab}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir -p docs/objects

# picture NAME STEPS: what the window shows at the end, fitted to the panes.
picture() {
    local name=$1
    shift
    "$editor" --batch --size "${size:-560x280}" "$@" --keydown 36 --picture "docs/objects/$name.png" >/dev/null
}

# made ID NAME FIELDS ANSWERS: one object; the fields without an answer keep their defaults.
made() {
    local id=$1 name=$2 fields=$3 steps=() answer i
    shift 3
    for answer in "$@"; do steps+=(--answer "$answer"); done
    for ((i = $#; i < fields; ++i)); do steps+=(--default); done
    picture "$name" "${mesh[@]}" --command 1030 --command "$id" "${steps[@]}" "${after[@]}"
}

mesh=() after=()
made 392 sphere 9
made 401 cylinder 12 0 -1 0 .7 1 -.5 1 .4 24
made 414 rounded-cylinder 12 -1 -.5 0 1 .7 .5 .5 24 6
made 412 torus 13 0 0 0 .5 1 .7
made 1036 sparks 13 0 0 0 1 .6 .3 150
made 1068 spiral 10 0 0 0 .2 4
size=1120x300 made 283 rifle 8 0 0 0 1 .12 -.35

# A face with four corners as the current one: the mouse is in the middle of the left pane.
printf '%s\n' 'v 0 1.2 0' 'v -.9 -.9 .2' 'v 0 -.4 0' 'v .9 -.9 -.2' 'f 1 2 3 4' >"$scratch/arrow.obj"
click=(--command 349 --mouse 140,120,left --mouse 140,120 --command 358)
mesh=("$scratch/arrow.obj" "${click[@]}")
made 1054 pipe 5 .12
# The outline of half a goblet, which stands beside the axis.
printf '%s\n' 'v 0 0 0' 'v .6 0 0' 'v .6 .08 0' 'v .1 .2 0' 'v .08 .8 0' 'v .5 1.1 0' 'v .6 1.8 0' \
    'v .5 1.8 0' 'v .42 1.2 0' 'v 0 .95 0' 'f 1 2 3 4 5 6 7 8 9 10' >"$scratch/goblet.obj"
click=(--command 349 --mouse 100,170,left --mouse 100,170 --command 358)
mesh=("$scratch/goblet.obj" "${click[@]}")
after=(--command 297 --command 364 --mouse 140,100,left --mouse 140,126,left --mouse 140,126 --command 358)
made 1038 spin 12 0 0 0 0 1 0 300 25
