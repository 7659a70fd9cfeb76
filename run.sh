#!/usr/bin/env bash
# Installs what is missing, builds the editor and opens it on FILE (or on a sample). Where there is
# no display the same is done without a window: the mesh is read, drawn to out/NAME.png and written
# to out/NAME.obj.
#   ./run.sh [FILE]
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

file=${1:-$root/samples/shell.obj}
if [[ $file != /* ]]; then file=$PWD/$file; fi
if [[ ! -f $file ]]; then
    echo "run: there is no file $file" >&2
    exit 2
fi

needed=(build run)
if [[ -n ${WAYLAND_DISPLAY-} ]]; then needed+=(wayland); fi
"$root/scripts/install.sh" "${needed[@]}"
"$root/scripts/build.sh" release -B build/product -DPOLYFAB_TESTS=OFF -DPOLYFAB_BENCH=OFF
editor=$root/build/product/polyfab

if [[ -n ${DISPLAY-}${WAYLAND_DISPLAY-} ]]; then exec "$editor" "$file"; fi

echo "== no display: reading, drawing and writing $file without a window"
mkdir -p "$root/out"
name=$(basename "$file")
picture=$root/out/${name%.*}.png
mesh=$root/out/${name%.*}.obj
status=0
"$editor" --batch "$file" --state --picture "$picture" --command 259 --answer "$mesh" || status=$?
if ((status != 0)); then
    echo "run: the editor reported a failure (status $status)" >&2
    exit "$status"
fi
echo "picture: $picture"
echo "mesh:    $mesh"
