#!/usr/bin/env bash
# Makes gallery.md and its pictures anew: every line of examples/filters.txt, before and after.
#
# VFIL is the built command.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
vfil=${VFIL:-$root/build/release/bin/vfil}
pictures=$root/docs/gallery
region=110,70,200,150

# make NAME OPERATOR ARGUMENT...
make() {
    "$vfil" "$2" "$root/media/cat-fur-rgb8.png" --roi "$region" "${@:3}" -o "$pictures/$1" --quiet
}

mkdir -p "$pictures"
rm -f "$pictures"/*.jpg
make before.jpg copy

# The sentence of help that says what an operator does.
summary() {
    "$vfil" help "$1" | sed -n 3p
}

{
    cat <<'TEXT'
# Filters, before and after

Made by `docs/gallery.sh` from `examples/filters.txt`. What filters have in common is told with the [windows](frame.md#windows);
`vfil help OPERATOR` explains the options.

Before:

![a cat's face](gallery/before.jpg)

| command | after |
|---|---|
TEXT
    number=0
    while read -r line; do
        case $line in '#'* | '') continue ;; esac
        words=()
        eval "words=($line)"
        number=$((number + 1))
        name=$(printf '%02d-%s.jpg' "$number" "${words[0]}")
        make "$name" "${words[@]}"
        echo "| \`$line\`<br>$(summary "${words[0]}") | ![${words[0]}](gallery/$name) |"
    done <"$root/examples/filters.txt"
} >"$root/docs/gallery.md"
