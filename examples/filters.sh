#!/usr/bin/env bash
# Runs every filter of filters.txt on a picture of 8 bits, on one of 16 and on an interlaced 4:2:2 clip, into a folder
# (default out/filters), and puts the results on one sheet, a column an input. What takes 8 bits alone skips the second.
#
# VFIL is the built command; the program of the contact sheet lies beside it.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
vfil=${VFIL:-$root/build/release/bin/vfil}
sheet=$(dirname "$vfil")/example_contactsheet
out=${1:-out/filters}
media=$root/media
clip=$media/dog-352x288i25-tff-422.mpg

mkdir -p "$out"
results=()
number=0
while read -r line; do
    case $line in '#'* | '') continue ;; esac
    words=()
    eval "words=($line)"
    number=$((number + 1))
    name=$(printf '%02d-%s' "$number" "${words[0]}")
    arguments=("${words[@]:1}")
    "$vfil" "${words[0]}" "$media/cat-fur-rgb8.png" "${arguments[@]}" -o "$out/$name-8.png" --quiet
    results+=("$out/$name-8.png")
    if [[ $line == *'--type box'* ]]; then
        echo "$name: 8 bits alone"
    else
        "$vfil" "${words[0]}" "$media/room-rgb16.png" "${arguments[@]}" -o "$out/$name-16.png" --quiet
        results+=("$out/$name-16.png")
    fi
    "$vfil" "${words[0]}" "$clip" "${arguments[@]}" -o "$out/$name.mpg" --quiet
    "$vfil" convert "$out/$name.mpg" --frames 4:5 -o "$out/$name-clip.png" --quiet
    results+=("$out/$name-clip.png")
    echo "$name: ${words[*]}"
done <"$root/examples/filters.txt"
"$sheet" "$out/contact-sheet.png" "${results[@]}"
echo "$out/contact-sheet.png shows them in this order, five in a row"
