#!/usr/bin/env bash
# What the program adds to its helper when it makes the peaks of a recording: one hour of AAC, against the helper that
# decodes the same samples for nobody, in turn. Then the memory of one hour against that of three.
#
# Measured on 2 cores at 2.6 GHz: 78 % of the helper's time through a pipe (it was 115 %), 104 % of its time with nobody
# to read it; 107 % of that one's processor time. 20 MiB for one hour and 24 for three, of which the program takes 17 to
# do nothing (it was 23 and 34).
#
#   bench/peaks-share.sh LINTORA_CLI [ROUNDS]
set -euo pipefail
cli=$(realpath "$1") rounds=${2:-3}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work TMPDIR=$work VELMORA_SUBTITLE_HELPERS=$work/AI
. "$(dirname "$0")/measure.sh"

mkdir "$work/AI"
ln -s "$(command -v ffmpeg)" "$work/AI/ffmpeg-audio"
# Speech-like: two seconds of noise, one of quiet.
ffmpeg -nostdin -loglevel error -f lavfi -i "anoisesrc=a=0.3:r=48000:d=60" -af "volume='if(lt(mod(t,3),2),1,0.001)':eval=frame" \
    -ac 2 -c:a aac -b:a 128k "$work/minute.m4a"
for hours in 1 3; do
    for ((i = 0; i < 60 * hours; ++i)); do echo "file '$work/minute.m4a'"; done >"$work/list"
    ffmpeg -nostdin -loglevel error -f concat -safe 0 -i "$work/list" -c copy "$work/$hours.m4a"
done

by_hand() {
    ffmpeg -nostdin -hide_banner -nostats -loglevel error -i "$work/1.m4a" -map 0:a:0 -vn \
        -af aresample=16000:async=1:first_pts=0 -ac 1 -c:a pcm_s16le -f s16le pipe:1 | cat >"$work/null"
}
ln -s /dev/null "$work/null"
by_program() {
    rm -rf "$work/Library"
    program "$cli" peaks "$work/1.m4a"
}
from_cache() { program "$cli" peaks "$work/1.m4a"; }

in_turn "peaks of one hour: helper by hand" by_hand "program" by_program
in_turn "helper by hand" by_hand "kept" from_cache
program "$cli" --help
echo "doing nothing: $(tell_peak)"
for hours in 1 3; do
    peak=0
    rm -rf "$work/Library"
    program "$cli" peaks "$work/$hours.m4a"
    echo "$hours h: $(tell_peak)"
done
