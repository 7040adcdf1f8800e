#!/usr/bin/env bash
# The memory that a fresh process takes to put a script of 40,000 characters onto three hours of words, a character each, as
# the recogniser writes them; and to put one line onto its own, which is the program with its dictionaries.
#
#   bench/script-timing-memory.sh LINTORA_CLI
set -euo pipefail
cli=$(realpath "$1")
goal=64 # MiB, for the work itself
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work TMPDIR=$work
. "$(dirname "$0")/measure.sh"

python3 - "$work" <<'PYTHON'
import json, random, sys

WORD_MS = 270
rng = random.Random(5)


def character():
    return chr(rng.randrange(0x4E00, 0x9000))


def damaged(said):
    """What is heard of it: one in twenty is missing, one in twenty is another."""
    chance = rng.random()
    return "" if chance < 0.05 else character() if chance < 0.1 else said


def write(name, lines):
    heard = [damaged(each) for line in lines for each in line]
    tokens = [{"text": text, "offsets": {"from": i * WORD_MS, "to": (i + 1) * WORD_MS}, "id": i, "p": 0.9}
              for i, text in enumerate(heard) if text]
    segment = {"offsets": {"from": 0, "to": len(heard) * WORD_MS}, "text": "", "tokens": tokens}
    json.dump({"transcription": [segment]}, open(f"{sys.argv[1]}/{name}.json", "w"), ensure_ascii=False)
    open(f"{sys.argv[1]}/{name}.txt", "w").write("\n".join(lines))


lines = []
while sum(map(len, lines)) < 40_000:
    lines.append("".join(character() for _ in range(rng.randint(6, 30))))
write("long", lines)
write("short", ["".join(character() for _ in range(30))])
PYTHON
for length in short long; do
    peak=0
    program "$cli" time "$work/$length.txt" --words "$work/$length.json" -o "$work/$length.srt"
    eval "$length=$((peak / 1024))"
    echo "$length: $(grep -c -- '-->' "$work/$length.srt") cues, $((peak / 1024)) MiB"
done
echo "for the work: $((long - short)) MiB (goal: $goal)"
[ $((long - short)) -le $goal ]
