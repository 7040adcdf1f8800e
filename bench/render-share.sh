#!/usr/bin/env bash
# What the program adds to its helper when it renders a timeline: 250 pieces over one hour, against the same runs of the
# helper by hand, in turn.
#
#   bench/render-share.sh LINTORA_CLI [ROUNDS]
#
# Prints the best wall-clock times and the program's own peak memory, without its helper.
# Measured on 2 quiet cores (Release, best of 3): 18.5 s by hand, 19.4 s = 104 %; 18 MiB.
set -euo pipefail
cli=$(realpath "$1") rounds=${2:-3}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work TMPDIR=$work/tmp VELMORA_SUBTITLE_HELPERS=$work/AI
. "$(dirname "$0")/measure.sh"

mkdir "$work/AI" "$work/tmp"
for rate in 44100 48000; do
    ffmpeg -nostdin -loglevel error -f lavfi -i "sine=f=440:r=$rate" -t 300 -ac 2 "$work/$rate.wav"
done
python3 - "$work" <<'PYTHON'
import sys
work = sys.argv[1]
assets = "".join(f"<asset id='r{rate}' hasAudio='1' duration='300s'><media-rep src='file://{work}/{rate}.wav'/></asset>"
                 for rate in (44100, 48000))
clips = "".join(f"<asset-clip ref='r{(44100, 48000)[i % 2]}' offset='{i * 144}/10s' start='{i}s' duration='10s'/>"
                for i in range(250))
open(work + "/film.fcpxml", "w").write(
    "<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE fcpxml><fcpxml version='1.11'><resources>"
    f"<format id='f' frameDuration='1/25s' width='1920' height='1080'/>{assets}</resources><project name='Film'>"
    f"<sequence format='f' duration='3600s'><spine>{clips}</spine></sequence></project></fcpxml>")
PYTHON

# What the program asks of its helper, once, for the runs by hand.
cat >"$work/AI/ffmpeg-audio" <<'SCRIPT'
#!/bin/sh
{ printf '%s\n' "$@"; echo; } >>"${0%/*}/../asked"
exec ffmpeg "$@"
SCRIPT
chmod +x "$work/AI/ffmpeg-audio"
"$cli" render "$work/film.fcpxml" -o "$work/out.wav" -q
ln -sf "$(command -v ffmpeg)" "$work/AI/ffmpeg-audio"

by_hand() {
    local -a run=()
    local argument
    mkdir -p "$work/by-hand"
    while IFS= read -r argument; do
        if [ -n "$argument" ]; then
            run+=("${argument/#"$work"\/tmp\/VELMORA-Subtitle-*\//$work/by-hand/}")
        else
            ffmpeg "${run[@]}" </dev/null
            run=()
        fi
    done <"$work/asked"
    rm -r "$work/by-hand"
}

by_program() { program "$cli" render "$work/film.fcpxml" -o "$work/out.wav"; }

in_turn "render: helper by hand" by_hand "program" by_program
tell_peak
