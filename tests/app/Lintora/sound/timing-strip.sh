#!/usr/bin/env bash
# Drags borders of cues in the strip with the mouse of a display of its own: what moves, what stops it, that it is one
# step, and that Escape takes it back.
#
#   timing-strip.sh STRIP_PEER      status 77: skipped
set -euo pipefail

peer=$1
for tool in Xvfb xdotool; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool is missing"; exit 77; }
done

folder=$(mktemp -d)
pids=()
finish() {
    local status=$?
    [ $status -eq 0 ] || tail -n 30 "$folder/peer.out" >&2 || true
    for pid in "${pids[@]}"; do kill -KILL "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$folder"
}
trap finish EXIT
trap 'exit 130' INT TERM

fail() { echo "failed: $*" >&2; exit 1; }

# Tries until it succeeds, for half a minute at most. Nothing is taken to have happened because time has passed.
until_true() {
    local deadline=$((SECONDS + 30))
    until "$@"; do
        [ $SECONDS -lt $deadline ] || return 1
        sleep .02
    done
}

# Xvfb writes the number of a display that was free, once it takes connections.
mkfifo "$folder/display"
Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$folder/display" >"$folder/xvfb.out" 2>&1 &
pids+=($!)
read -r -t 30 number <"$folder/display" || fail "no display"
export DISPLAY=:$number QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$folder/run HOME=$folder
mkdir -m 700 "$folder/run"
# Without a bus a first connection starts one, for which a program may wait for ever.
export DBUS_SESSION_BUS_ADDRESS=unix:path=$folder/run/none

# What the program has said since it was last forgotten.
forgotten=0
forget() { forgotten=$(wc -l <"$folder/peer.out"); }
has_said() { tail -n +$((forgotten + 1)) "$folder/peer.out" | grep -q -- "$1"; }
says() { until_true has_said "$1" || fail "it does not say: $1"; }

printf '%d\n00:00:%02d,000 --> 00:00:%02d,000\n字幕\n\n' 1 1 2 2 2 3 3 4 5 >"$folder/cues.srt"
: >"$folder/peer.out"
"$peer" "$folder" "$folder/cues.srt" >>"$folder/peer.out" 2>&1 &
pids+=($!)
says '^ready'
x() { sed -n "s/^x $1 //p" "$folder/peer.out" | head -n 1; }
y=$(sed -n 's/^y //p' "$folder/peer.out")

# Without a window manager nobody else gives the window the keyboard.
window=$(xdotool search --onlyvisible --class strip_peer | head -n 1)
xdotool windowfocus "$window"

# hold FROM TO: presses at one place and has the strip see the pointer at the other.
hold() {
    xdotool mousemove "$1" "$y"
    forget
    xdotool mousedown 1
    says '^pressed'
    xdotool mousemove $((($1 + $2) / 2)) "$y"
    says "^moved $((($1 + $2) / 2))"
    xdotool mousemove "$2" "$y"
    says "^moved $2"
}

drag() {
    hold "$@"
    xdotool mouseup 1
}

steps() { tail -n +$((forgotten + 1)) "$folder/peer.out" | grep -c '^times' || true; }

echo "== a border between two cues goes with both, as one step"
drag "$(x 2000)" "$(x 2600)"
says '^times 1000-2600 2600-3000 4000-5000'
says '^let go'
[ "$(steps)" = 1 ] || fail "$(steps) steps"
forget
xdotool key ctrl+z
says '^times 1000-2000 2000-3000 4000-5000'

echo "== a border stops at the neighbour"
drag "$(x 4000)" "$(x 1500)"
says '^times 1000-2000 2000-3000 3000-5000'
forget
xdotool key ctrl+z
says '^times 1000-2000 2000-3000 4000-5000'

echo "== Escape takes a drag back"
hold "$(x 5000)" "$(x 6000)"
xdotool key Escape
xdotool mouseup 1
says '^let go'
[ "$(steps)" = 0 ] || fail "something was changed"

echo "== a cue goes as a whole"
drag "$(x 4500)" "$(x 5100)"
says '^times 1000-2000 2000-3000 4600-5600'
echo "all dragged"
