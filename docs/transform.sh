#!/usr/bin/env bash
# Makes the pictures of transform.md anew: runs the commands of the page, then cuts what it shows, enlarged four times.
#
# VFIL is the built command.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
vfil=${VFIL:-$root/build/release/bin/vfil}
page=$root/docs/transform.md
pictures=$root/docs/transform
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$pictures" "$work/out"
rm -f "$pictures"/*.jpg
ln -s "$root/media" "$work/media"
cd "$work"

# Rings that are finer the further out they are: two pixels a ring at the middle of each edge.
LC_ALL=C awk 'BEGIN { for (y = 0; y < 600; ++y) for (x = 0; x < 600; ++x)
    printf "%c", int(128.5 + 126 * cos(3.14159265 / 600 * ((x - 299.5) ^ 2 + (y - 299.5) ^ 2))) }' >rings.raw
"$vfil" convert rings.raw --in-format mono8 --in-size 600x600 -o rings.png --quiet

# The commands of the page.
while read -r line; do
    words=()
    eval "words=(${line#./run vfil})"
    "$vfil" "${words[@]}" >/dev/null 2>&1 || { echo "fails: $line" >&2; exit 1; }
done < <(awk '/^```$/ { inside = 0 } inside { print } /^```sh$/ { inside = 1 }' "$page")

# crop NAME FILE X,Y: a piece of 60 x 60 pixels at 400 per cent.
crop() {
    "$vfil" copy "$2" --roi "$3,60,60" -o crop.png --quiet
    "$vfil" affine crop.png --scale 4 --interpolation nearest --size fit --default-color 0,0,0 \
        -o "$pictures/$1.jpg" --quiet
}

for kind in nearest bilinear prefiltered auto; do
    "$vfil" affine rings.png --scale 0.25 --size fit --interpolation $kind --default-color 0,0,0 -o small.png --quiet
    crop "rings-small-$kind" small.png 45,45
    "$vfil" affine media/cat-fur-rgb8.png --scale 0.25 --rotate 17 --size fit --interpolation $kind --default-color 0,0,0 -o small.png --quiet
    crop "cat-small-$kind" small.png 25,22
done
for kind in nearest bilinear auto area; do
    "$vfil" affine rings.png --rotate 17 --interpolation $kind --default-color 0,0,0 -o turned.png --quiet
    crop "rings-turned-$kind" turned.png 400,270
    "$vfil" affine media/cat-fur-rgb8.png --rotate 17 --interpolation $kind --default-color 0,0,0 -o turned.png --quiet
    crop "cat-turned-$kind" turned.png 120,140
done
for name in turned floor framed; do
    "$vfil" pan-zoom "out/$name.png" --fit 225x150 --default-color 0.5,0.5,0.5 -o "$pictures/$name.jpg" --quiet
done
