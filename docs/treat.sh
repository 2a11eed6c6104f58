#!/usr/bin/env bash
# Makes the pictures of treat.md anew, and its tables of figures: runs the commands of the page on a test card that it
# paints, then what its tables say.
#
# VFIL is the built command.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
vfil=${VFIL:-$root/build/release/bin/vfil}
page=$root/docs/treat.md
pictures=$root/docs/treat
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

mkdir -p "$pictures" "$work/out"
rm -f "$pictures"/*.jpg
ln -s "$root/media" "$work/media"
ln -s "$root/examples" "$work/examples"
cd "$work"
raw=(--in-format yuv422-709 --in-size 640x360)

# The card, as Cb Y Cr Y of BT.709, from the top: bars of 75 and of 100 per cent; those of 75 per cent with the chroma of
# 98; luma from 0 to 255; all hues, then pairs of opposite hues in turn.
LC_ALL=C awk '
    function put(number) { printf("%c", number < 0 ? 0 : number > 255 ? 255 : int(number + 0.5)) }
    BEGIN {
        split("1 1 0 0 1 1 0 0", red); split("1 1 1 1 0 0 0 0", green); split("1 0 1 0 1 0 1 0", blue)
        for (y = 0; y < 360; ++y) for (x = 0; x < 640; x += 2) {
            bar = int(x / 80) + 1
            r = red[bar]; g = green[bar]; b = blue[bar]
            luma = 0.2126 * r + 0.7152 * g + 0.0722 * b
            cb = (b - luma) / 1.8556; cr = (r - luma) / 1.5748
            level = y < 90 || y >= 180 ? 0.75 : 1; chroma = y < 180 ? level : 0.98
            left = right = 16 + 219 * level * luma; cb *= 224 * chroma; cr *= 224 * chroma
            if (y >= 240) { left = x / 639 * 255; right = (x + 1) / 639 * 255; cb = cr = 0 }
            if (y >= 300) {
                angle = x / 320 * 6.2831853; far = x < 320 ? 112 : int(x / 2) % 2 ? 70 : -70
                left = right = 126; cb = far * cos(angle); cr = far * sin(angle)
            }
            put(128 + cb); put(left); put(128 + cr); put(right)
        }
    }' >card.raw
LC_ALL=C awk 'BEGIN { srand(1); for (i = 0; i < 640 * 360 * 2; ++i) printf "%c", int(rand() * 256) }' >noise.raw

# The commands of the page.
while read -r line; do
    words=()
    eval "words=(${line#./run vfil})"
    "$vfil" "${words[@]}" >/dev/null 2>&1 || { echo "fails: $line" >&2; exit 1; }
done < <(awk '/^```$/ { inside = 0 } inside { print } /^```sh$/ { inside = 1 }' "$page")

# Lines of the page between two markers, by those of standard input.
replace() {
    awk -v name="$1" -v file=/dev/stdin '
        $0 == "<!-- " name " -->" { print; while ((getline line < file) > 0) print line; inside = 1; next }
        $0 == "<!-- end -->" { inside = 0 }
        !inside' "$page" >new
    cp new "$page"
}

# shrink NAME FILE: a picture of the page.
shrink() {
    "$vfil" pan-zoom "$2" --fit 320x180 --size fit -o "$pictures/$1.jpg" --quiet
}

# card NAME FILE: the same of 4:2:2.
card() {
    "$vfil" convert "$2" "${raw[@]}" -o card.png --quiet
    shrink "$1" card.png
}

number=0
{
    echo '| command | after |'
    echo '|---|---|'
    while read -r line; do
        words=()
        eval "words=($line)"
        number=$((number + 1))
        "$vfil" color-correction media/cat-fur-rgb8.png --roi 110,70,200,150 "${words[@]}" \
            -o "$pictures/correction-$number.jpg" --quiet
        echo "| \`$line\` | ![corrected](treat/correction-$number.jpg) |"
    done <<'LINES'
--saturation 100
--hue 90
--hue 180
--saturation 0
--saturation 220
--gain 60
--offset 25
--lut examples/tables/warm.txt
--rgba-lut examples/tables/contrast.cube
LINES
} | replace corrections

for name in linear radial square; do
    shrink "$name" "out/$name.png"
done

card card card.raw
"$vfil" legalize card.raw "${raw[@]}" --mode show-illegal -o shown.raw --quiet
card card-illegal shown.raw

# show COLUMN FILE: of a report's only line.
show() {
    awk -F, -v column="$1" 'NR == 1 { for (i = 1; i <= NF; ++i) if ($i == column) found = i } NR == 2 { print $found }' "$2"
}

# shares FILE SIDE: what of it is outside by more than a code, and how far.
shares() {
    printf '%.1f %%, %.1f' "$(show "$2_beyond_one_code_share" "$1" | awk '{ print $1 * 100 }')" "$(show "$2_worst_codes" "$1")"
}

judge() {
    for chroma in own mean; do
        "$vfil" legalize "$1" "${raw[@]}" "${@:2}" --report "$chroma.csv" --report-chroma $chroma --quiet
    done
}

for source in card noise; do
    {
        echo '| mode | strict: by its own chroma | by the mean chroma | not strict: by its own chroma | by the mean chroma |'
        echo '|---|---|---|---|---|'
        judge $source.raw
        before="$(shares own.csv before) | $(shares mean.csv before)"
        echo "| as it was | $before | $before |"
        for mode in clip adjust-gain adjust-saturation adjust-luminance-saturation; do
            line="| \`$mode\`"
            for strict in --strict-pairs --no-strict-pairs; do
                judge $source.raw --mode $mode $strict
                line+=" | $(shares own.csv after) | $(shares mean.csv after)"
            done
            echo "$line |"
        done
    } | replace "judged-$source"
done

for mode in clip adjust-gain adjust-saturation adjust-luminance-saturation; do
    "$vfil" legalize card.raw "${raw[@]}" --mode $mode -o legal.raw --quiet
    card "card-$mode" legal.raw
done

# What codecs make of legal frames.
"$vfil" color-correction media/dog-352x288i25-tff-422.mpg --saturation 250 --gain 115 -o rich.mkv --codec ffv1 --quiet
{
    echo '| written as | of its pixels outside by more than a code, worst |'
    echo '|---|---|'
    while IFS='|' read -r name options; do
        read -ra words <<<"$options"
        "$vfil" legalize rich.mkv -o "$name" "${words[@]}" --quiet
        "$vfil" legalize "$name" --json >record 2>/dev/null
        awk '/"total"/ { inside = 1 } /"after"/ && inside { exit } inside && /"beyondOneCode"/ { beyond = 1 }
            inside && beyond && /"share"/ { share = $2; beyond = 0 } inside && /"codes"/ { codes = $2 }
            END { printf "%.2f %%, %.1f\n", share * 100, codes }' record >line
        echo "| \`-o $name $options\` | $(cat line) |"
    done <<'LINES'
legal.mkv|--codec ffv1
legal.mov|--codec prores_ks --codec-option profile=3
legal.mpg|--codec mpeg2video --codec-option b=15M
legal.mp4|--codec libx264
LINES
} | replace codecs
