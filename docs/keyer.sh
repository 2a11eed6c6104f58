#!/usr/bin/env bash
# Makes the pictures of keyer.md anew, and its tables of figures: runs the commands of the page, then what its tables say.
#
# VFIL is the built command.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
vfil=${VFIL:-$root/build/release/bin/vfil}
page=$root/docs/keyer.md
pictures=$root/docs/keyer
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$pictures" "$work/out"
rm -f "$pictures"/*.jpg
ln -s "$root/media" "$work/media"
cd "$work"
plate=media/greenscreen-cup-plate.png
key=(--key-color-at "30,30,20")

# Lines of the page between two markers, by those of standard input.
replace() {
    awk -v name="$1" -v file=/dev/stdin '
        $0 == "<!-- " name " -->" { print; while ((getline line < file) > 0) print line; inside = 1; next }
        $0 == "<!-- end -->" { inside = 0 }
        !inside' "$page" >new
    cp new "$page"
}

# The commands of the page.
while read -r line; do
    words=()
    eval "words=(${line#./run vfil})"
    "$vfil" "${words[@]}" >/dev/null 2>&1 || { echo "fails: $line" >&2; exit 1; }
done < <(awk '/^```$/ { inside = 0 } inside { print } /^```sh$/ { inside = 1 }' "$page")

# show NAME FILE ARGUMENT...: a picture of the page, of the cup alone.
show() {
    "$vfil" copy "$2" --roi 95,45,190,195 -o "$pictures/$1.jpg" --quiet "${@:3}"
}
show plate "$plate"
for name in matte over spilt unspilt sectorspill difference; do
    show "$name" "out/$name.png"
done
for name in cup video videomatte sector; do
    show "$name" "out/$name.mpg" --frames 4:5
done

{
    echo '| command | mean squared error | edge | screen left | solid lost |'
    echo '|---|---|---|---|---|'
    while read -r line; do
        read -ra words <<<"$line"
        "$vfil" "${words[0]}" "$plate" "${key[@]}" "${words[@]:1}" -o score.png --quiet
        "$vfil" score score.png media/greenscreen-cup-matte.png |
            awk -v line="$line" '/squared/ { a = $4 } /edge/ { b = $6 } /screen left/ { c = $3 } /solid lost/ { d = $3 }
                END { printf "| `%s` | %.0f | %.0f | %s %% | %s %% |\n", line, a, b, c, d }'
    done <<'LINES'
linear-keyer --threshold 0 --softness 0.25
linear-keyer --threshold -0.02 --softness 0.25
linear-keyer --threshold 0 --softness 0.2
blue-green-keyer --c0 4 --c1 1 --c2 0.25
blue-green-keyer --c0 3.2 --c1 0.8 --c2 0
chroma-keyer --angle-tolerance 120 --lift 0 --gain 1
chroma-keyer --angle-tolerance 140 --lift 0 --gain 0.6
LINES
} | replace scores

{
    echo '| options | what they do | map |'
    echo '|---|---|---|'
    while IFS='|' read -r name options text; do
        read -ra words <<<"$options"
        "$vfil" chroma-keyer "$plate" "${key[@]}" --output-chroma-map "${words[@]}" --roi 0,0,160,160 \
            -o "$pictures/map-$name.jpg" --quiet
        echo "| \`$options\` | $text | ![map](keyer/map-$name.jpg) |"
    done <<'LINES'
narrow|--angle-tolerance 20 --lift 0 --gain 0.2|a sector of 21 degrees: only the very hue of the screen
wide|--angle-tolerance 100 --lift 0 --gain 0.2|a wide one: shades of the screen, wrinkles, edges mixed with the subject's colours
lift|--angle-tolerance 100 --lift 0.5 --gain 0.2|the tip moves from grey to the key colour: pale colours stay
gain|--angle-tolerance 100 --lift 0 --gain 1|a steep edge: the matte falls to black within a short way
none|--angle-tolerance 100 --lift 0 --gain 0|gain 0: nothing becomes black but the farthest colours
LINES
} | replace maps
