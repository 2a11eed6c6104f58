#!/usr/bin/env bash
# Makes the tables and pictures of field.md anew: clips of known fields, what is measured of them, and how near deinterlaced
# clips come to what they were woven of. Fails when a verdict is wrong. Needs the command ffmpeg, with x264.
#
# VFIL is the built command. --verdicts stops behind the first table.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
vfil=${VFIL:-$root/build/release/bin/vfil}
page=$root/docs/field.md
media=$root/media
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

ff() { ffmpeg -v fatal -nostdin -y "$@"; }

# Lines of the page between two markers, by those of standard input.
replace() {
    awk -v name="$1" -v file=/dev/stdin '
        $0 == "<!-- " name " -->" { print; while ((getline line < file) > 0) print line; inside = 1; next }
        $0 == "<!-- end -->" { inside = 0 }
        !inside' "$page" >new
    cp new "$page"
}

# still PICTURE SIDE: a picture that stays, SIDE pixels wide; n is its frame.
still() { echo "movie=$media/$1,format=gbrp,scale=$2:-2,loop=-1:1,setpts=N/TB/50"; }
# window WxH X Y: what of it is seen, in half pixels, by expressions of n.
window() { echo "crop=2*${1%x*}:2*${1#*x}:'$2':'$3':exact=1,scale=${1%x*}:${1#*x}:flags=area,setsar=1"; }
pan() { echo "$(still "$1" $((${2%x*} * 27 / 10))),$(window "$2" "$3" "$4")"; }

cat=cat-fur-rgb8.png tulips=tulips-softalpha-rgba8.png room=room-rgb16.png cup=greenscreen-cup-plate.png
top=tinterlace=interleave_top bottom=tinterlace=interleave_bottom
mpeg2=(-c:v mpeg2video -pix_fmt yuv422p -q:v 3 -flags +ildct+ilme)
mpeg2top=("${mpeg2[@]}" -top 1) mpeg2bottom=("${mpeg2[@]}" -top 0)
x264=(-c:v libx264 -preset veryfast -pix_fmt yuv420p -crf 20)
x264top=("${x264[@]}" -flags +ildct -top 1) x264bottom=("${x264[@]}" -flags +ildct -top 0)

# clip TRUTH CLAIM FILE RATE FRAMES FILTER ENCODING...: a clip whose fields are TRUTH and that says CLAIM.
table=()
clip() {
    local truth=$1 claim=$2 file=$3 rate=$4 frames=$5 filter=$6
    local field=prog
    [ "$claim" = progressive ] || field=${claim:0:1}ff
    ff -f lavfi -i "$filter,setpts=N/TB/($rate),setfield=$field" -r "$rate" -frames:v "$frames" "${@:7}" "$file"
    table+=("$truth $claim $file")
}

clip top top pal-top.mpg 25 40 "$(pan $cat 720x576 '4*n' '10+n'),$top" "${mpeg2top[@]}"
clip bottom bottom pal-bottom.mpg 25 40 "$(pan $tulips 720x576 '400-3*n' 50),$bottom" "${mpeg2bottom[@]}"
clip bottom bottom ntsc.dv 30000/1001 40 "$(pan $room 720x480 '5*n' 100),$bottom" -c:v dvvideo -pix_fmt yuv411p
clip top top ntsc-top.mp4 30000/1001 40 "$(pan $cup 720x480 '3*n' n),$top" "${x264top[@]}"
clip top top hd-top.mp4 25 25 "$(pan $cat 1920x1080 '8*n' '2*n'),$top" "${x264top[@]}"
clip progressive progressive pal-progressive.mp4 25 40 "$(pan $cat 720x576 '4*n' '10+n')" "${x264[@]}"
clip progressive top progressive-as-top.mpg 25 40 "$(pan $tulips 720x576 '400-6*n' 50)" "${mpeg2top[@]}"
clip top bottom top-as-bottom.mpg 25 40 "$(pan $room 720x576 '200+2*n' 50),$top" "${mpeg2bottom[@]}"
clip bottom top bottom-as-top.mp4 25 40 "$(pan $cat 720x576 '200+2*n' 10),$bottom" "${x264top[@]}"
clip top progressive top-as-progressive.mp4 25 40 "$(pan $tulips 720x576 '50+6*n' '200-n'),$top" "${x264[@]}"
clip unknown top still.mpg 25 40 "$(pan $cat 720x576 200 50)" "${mpeg2top[@]}"
clip unknown bottom still-noise.mpg 25 40 "$(pan $room 720x576 200 50),noise=alls=20:allf=t,$bottom" "${mpeg2bottom[@]}"
clip unknown progressive still-noise.mp4 25 40 "$(pan $room 720x576 200 50),noise=alls=25:allf=t" "${x264[@]}"
cut() { # FIELDS X: two pictures in turn, each of them FIELDS long
    echo "$(pan $cat 720x576 "$2" 10)[a];$(pan $tulips 720x576 "$2" 90)[b];[a][b]overlay=enable='lt(mod(n,2*$1),$1)'"
}
clip unknown progressive slides.mp4 25 60 "$(cut 8 100)" "${x264[@]}"
clip progressive progressive cuts-progressive.mp4 25 60 "$(cut 6 '100+2*n')" "${x264[@]}"
clip top top cuts-top.mpg 25 60 "$(cut 13 '100+2*n'),$top" "${mpeg2top[@]}"
clip top top noise-top.mpg 25 40 "$(pan $cup 720x576 '2*n' 30),noise=alls=30:allf=t,$top" "${mpeg2top[@]}"
clip progressive progressive noise-progressive.mp4 25 40 "$(pan $cup 720x576 '4*n' 30),noise=alls=30:allf=t" "${x264[@]}"
clip progressive progressive fade-progressive.mp4 25 50 "$(pan $tulips 720x576 200 50),fade=in:0:25,fade=out:25:25" "${x264[@]}"
clip bottom bottom fade-bottom.mpg 25 50 "$(pan $tulips 720x576 200 50),fade=in:0:50,fade=out:50:50,$bottom" "${mpeg2bottom[@]}"
slow() { echo "$(still $cat 3888),crop=2880:2304:'400+n':40:exact=1,scale=720:576:flags=area,setsar=1"; }
clip top top slow-top.mpg 25 50 "$(slow),$top" "${mpeg2top[@]}"
clip progressive progressive slow-progressive.mp4 25 50 "$(slow)" "${x264[@]}"
clip bottom bottom slow-noise-bottom.mpg 25 50 "$(slow),noise=alls=16:allf=t,$bottom" "${mpeg2bottom[@]}"
object="$(pan $cat 720x576 200 10)[a];$(still $cup 90)[b];[a][b]overlay=x='100+2*n':y=300"
clip bottom bottom object-bottom.mpg 25 50 "$object,$bottom" "${mpeg2bottom[@]}"
clip top top scroll-top.mpg 25 40 "$(pan $tulips 720x576 200 '3*n'),$top" "${mpeg2top[@]}"
clip top top shake-top.mpg 25 50 "$(pan $room 720x576 '200+40*sin(n/7)' '80+25*sin(n/5)'),$top" "${mpeg2top[@]}"
clip top top low-rate-top.mpg 25 50 "$(pan $cat 720x576 '4*n' '10+n'),$top" "${mpeg2top[@]}" -q:v 20
clip mixed top telecine.mpg 30000/1001 60 "$(pan $cat 720x480 '6*n' 50),telecine=top:23" "${mpeg2top[@]}"
half() { echo "$(pan $cat 720x576 "$1" 10)$2,trim=end_frame=30,setpts=N/TB/25"; }
clip mixed top half.mpg 25 60 "$(half '3*n' ,$top)[a];$(half '6*n' '')[b];[a][b]concat" "${mpeg2top[@]}"
clip mixed top spliced.mpg 25 60 "$(half '3*n' ,$top)[a];$(half '3*n' ,$bottom)[b];[a][b]concat" "${mpeg2top[@]}"
clip bottom bottom dog-bottom.mp4 15000/1001 6 "movie=$media/dog-480x270p30.mp4,crop=480:256,$bottom" "${x264bottom[@]}"
table+=("top top $media/dog-352x288i25-tff-422.mpg" "progressive progressive $media/dog-480x270p30.mp4")

{
    echo '| clip | true | says | measured | pairs: progressive, top, bottom, between |'
    echo '|---|---|---|---|---|'
    for line in "${table[@]}"; do
        read -r truth claim file <<<"$line"
        "$vfil" fields "$file" --json >found
        value() { sed -n "s/^ *\"$1\": \"*\([^\",]*\).*/\1/p" found | head -n 1; }
        [ "$(value measured)" = "$truth" ] && [ "$(value claimed)" = "$claim" ] || echo "wrong: $line" >&2
        echo "| ${file##*/} | $truth | $claim | $(value measured) | $(value progressive), $(value top), $(value bottom), $(value undecided) |"
    done
} >lines 2>wrong
cat lines
[ ! -s wrong ] || { cat wrong >&2; exit 1; }
[ "${1:-}" != --verdicts ] || exit 0
replace verdicts <lines

# Clips of twice the rate, woven and taken apart again.
lossless=(-c:v ffv1 -pix_fmt yuv422p)
truth() { ff "${@:2}" -r 50 "${lossless[@]}" "$1.truth.mkv"; }
drawn() { truth "$1" -f lavfi -i "$2" -frames:v 40; }
drawn still "$(pan $cat 352x288 100 10)"
drawn panning "$(pan $cat 352x288 '3*n' '5+n')"
drawn mixed "$(pan $cat 352x288 100 10)[a];$(still $cup 90)[b];[a][b]overlay=x='20+3*n':y=100"
drawn noisy "$(pan $cat 352x288 100 10),noise=alls=12:allf=t"
truth dog -i "$media/dog-480x270p30.mp4" -an -vf crop=480:256,setpts=N/TB/50
truth top-fields -i "$media/dog-352x288i25-tff-422.mpg" -an -vf field=top,setpts=N/TB/50

# quality OUT TRUTH: the peak signal to noise ratio of luma, in dB, of the rows that were made.
quality() {
    local even="select='not(mod(n,2))',field=bottom,settb=1/25,setpts=N" odd="select='mod(n,2)',field=top,settb=1/25,setpts=N"
    ff -i "$1" -i "$2" -lavfi "[0]split[a][b];[1]split[c][d];[a]${even}[e];[c]${even}[f];[b]${odd}[g];[d]${odd}[h];
        [e][f]psnr=stats_file=even;[g][h]psnr=stats_file=odd" -f null -
    sed 's/.*mse_y:\([0-9.]*\).*/\1/' even odd |
        awk '{ s += $1; n++ } END { if (s == 0) print "exact"; else printf "%.1f\n", 10 * log(65025 * n / s) / log(10) }'
}
{
    echo '| clip | duplicate | interpolate | adaptive | bwdif | yadif | w3fdif |'
    echo '|---|---|---|---|---|---|---|'
    for name in still panning mixed noisy dog top-fields; do
        ff -i "$name.truth.mkv" -vf "$top,setfield=tff" -r 25 "${lossless[@]}" -field_order tt "$name.woven.mkv"
        line="| $name |"
        for type in duplicate interpolate adaptive; do
            "$vfil" deinterlace "$name.woven.mkv" -o "$name.$type.mkv" --type "$type" --quiet
            line+=" $(quality "$name.$type.mkv" "$name.truth.mkv") |"
        done
        for filter in bwdif=send_field:tff yadif=send_field:tff w3fdif; do
            ff -i "$name.woven.mkv" -vf "$filter" "${lossless[@]}" other.mkv
            line+=" $(quality other.mkv "$name.truth.mkv") |"
        done
        echo "$line"
    done
} >lines
cat lines
replace qualities <lines

# A part of the mixed clip, enlarged: where the cup moves over what stays.
mkdir -p "$root/docs/field"
rm -f "$root/docs/field"/*.jpg
for picture in woven:10:11 duplicate:20:21 interpolate:20:21 adaptive:20:21; do
    IFS=: read -r name first end <<<"$picture"
    "$vfil" copy "mixed.$name.mkv" -o part.png --frames "$first:$end" --roi 75,95,100,80 --quiet
    "$vfil" pan-zoom part.png -o "$root/docs/field/$name.jpg" --scale 3 --interpolation nearest --size fit --quiet
done
