#!/usr/bin/env bash
# The memory that the program takes for a recording of three hours, beside its helpers: the real audio converter, and a
# recogniser that writes a cue for each second without listening.
#
#   bench/long-recording.sh LINTORA_CLI
set -euo pipefail
cli=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work TMPDIR=$work VELMORA_SUBTITLE_HELPERS=$work/AI
. "$(dirname "$0")/measure.sh"

mkdir "$work/AI"
ln -s "$(command -v ffmpeg)" "$work/AI/ffmpeg-audio"
python3 - "$work" <<'PYTHON'
import json, struct, sys
segments = [{"offsets": {"from": s * 1000, "to": s * 1000 + 900}, "text": " Words of a line, number %d" % s}
            for s in range(10_800)]
json.dump({"transcription": segments}, open(sys.argv[1] + "/segments.json", "w"))
# Silence, which takes no room on the disk.
rate, size = 16_000, 10_800 * 16_000 * 2
with open(sys.argv[1] + "/three-hours.wav", "wb") as wav:
    wav.write(b"RIFF" + struct.pack("<I", size + 36) + b"WAVEfmt " + struct.pack("<IHHIIHH", 16, 1, 1, rate, rate * 2, 2, 16))
    wav.write(b"data" + struct.pack("<I", size))
    wav.truncate(44 + size)
PYTHON
cat >"$work/AI/whisper-cli" <<'SCRIPT'
#!/bin/sh
while [ "$1" != -of ]; do shift; done
cp "${0%/*}/../segments.json" "$2.json"
sleep 0.5
SCRIPT
chmod +x "$work/AI/whisper-cli"
program "$cli" transcribe "$work/three-hours.wav" --model-file "$work/segments.json" -o "$work/out.srt"
echo "cues: $(grep -c -- '-->' "$work/out.srt")"
tell_peak
