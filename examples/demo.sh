#!/usr/bin/env bash
# Composites the bundled pictures and clips into a folder (default out/), and puts inputs and results on one sheet.
#
# VFIL is the built command; the program of the contact sheet lies beside it.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
vfil=${VFIL:-$root/build/release/bin/vfil}
sheet=$(dirname "$vfil")/example_contactsheet
out=${1:-out}
media=$root/media

cat_fur=$media/cat-fur-rgb8.png
tulips=$media/tulips-softalpha-rgba8.png
cup=$media/greenscreen-cup-plate.png
matte=$media/greenscreen-cup-matte.png
room=$media/room-rgb16.png
sensor=$media/sensor-64-rgb16.png
dog=$media/dog-480x270p30.mp4
interlaced=$media/dog-352x288i25-tff-422.mpg

mkdir -p "$out"
results=()

# make NAME ARGUMENT...: runs the tool and remembers its result for the sheet.
make() {
    local result=$out/$1
    shift
    "$vfil" "$@" -o "$result"
    results+=("$result")
}

# make_clip NAME FRAME ARGUMENT...: the same for a clip, of which the sheet shows one frame.
make_clip() {
    local clip=$out/$1 frame=$2
    shift 2
    "$vfil" "$@" -o "$clip"
    make "$(basename "$clip").png" convert "$clip" --frames "$frame:$((frame + 1))"
}

make over.png over "$cat_fur" "$tulips"
make over-half-offset.png over "$cat_fur" "$tulips" --extra-transparency 0.5 --input-offset 120,-60
make over-region.png over "$cat_fur" "$tulips" --roi 100,60,250,200 --output-offset 20,20 --default-color 1,0.8,0.2,1
make in.png in "$tulips" "$cat_fur"
make out.png out "$tulips" "$cat_fur"
make atop.png atop "$tulips" "$cat_fur" --extra-transparency 0.6 --input-offset 0,100
make xor.png xor "$cat_fur" "$tulips" --input-offset 150,-100
make add.png add "$cat_fur" "$tulips"
make mult.png mult "$cat_fur" "$tulips"
make diff.png diff "$cat_fur" "$cup" --alpha-mode full
make darker.png darker "$cat_fur" "$cup"
make non-add.png non-add "$cat_fur" "$cup"
make col.png col "$cat_fur" "$tulips" --channels rgb
make composite-mask.png composite "$cat_fur" "$cup" --mask "$matte"
make invert-mask.png invert "$cup" --mask "$matte"
make over-fields.png over "$cat_fur" "$tulips" --fields even
make grayscale.png grayscale "$tulips"
make room-lighter16.png lighter "$room" "$sensor" --input-offset 118,78
make room-mult16.png mult "$room" "$room"
make_clip dog-over.mp4 6 over "$dog" "$tulips" --input-offset 220,-230
make_clip dog-interlaced.mpg 6 over "$interlaced" "$tulips" --input-offset 150,-260

"$sheet" "$out/contact-sheet.png" "$cat_fur" "$tulips" "$cup" "$matte" "$room" "$sensor" "${results[@]}"

echo
echo "$out/contact-sheet.png shows, five in a row from the top left:"
number=0
for picture in "$cat_fur" "$tulips" "$cup" "$matte" "$room" "$sensor" "${results[@]}"; do
    number=$((number + 1))
    printf '  %2d  %s\n' "$number" "$(basename "$picture")"
done
