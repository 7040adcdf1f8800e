#!/usr/bin/env bash
# Drags borders of cues in the strip with the mouse of a display of its own: what moves, what stops it, that it is one
# step, and that Escape takes it back.
#
#   timing-strip.sh STRIP_PEER      status 77: skipped
set -euo pipefail

peer=$1
. "$(dirname "$0")/../../../support/display.sh"
export HOME=$folder

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
forget
xdotool key ctrl+z
says '^times 1000-2000 2000-3000 4000-5000'

echo "== a border stands on a frame, and with the key that lets go where the pointer is"
end_at() {
    drag "$(x 5000)" $(($(x 5700) + 1))
    says '^times 1000-2000 2000-3000 4000-57[0-9][0-9]'
    tail -n +$((forgotten + 1)) "$folder/peer.out" | sed -n 's/^times .*-//p' | tail -n 1
}
# Thirty a second, to whole milliseconds.
is_on_frame() {
    local away=$((($1 * 30 + 500) / 1000 * 1000 / 30 - $1))
    [ $away -ge -1 ] && [ $away -le 1 ]
}
snapped=$(end_at)
is_on_frame "$snapped" || fail "$snapped is on no frame"
forget
xdotool key ctrl+z
says '^times 1000-2000 2000-3000 4000-5000'
xdotool keydown alt
free=$(end_at)
xdotool keyup alt
! is_on_frame "$free" || fail "$free is on a frame"
echo "all dragged"
