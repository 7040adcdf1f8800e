#!/usr/bin/env bash
# Drags between two programs on a display of its own, with the mouse: what arrives, under which types, and that a program
# survives when what it drags goes away meanwhile.
#
#   drag-and-drop.sh DRAG_PEER PROJECT.fcpxml      status 77: skipped
set -euo pipefail

peer=$1
project=$2
. "$(dirname "$0")/../../../support/display.sh"

# start NAME ARGS…: what it says goes to NAME.out. Sets pid and place.
start() {
    local name=$1
    shift
    : >"$folder/$name.out"
    "$peer" "$@" >>"$folder/$name.out" 2>&1 &
    pid=$!
    pids+=("$pid")
    forget "$name" 0
    says "$name" '^ready '
    place=$(sed -n 's/^ready //p' "$folder/$name.out")
}

stop() { { kill -KILL "$1" && wait "$1"; } 2>/dev/null || true; }

# What a program has said since it was last forgotten.
declare -A forgotten
forget() { forgotten[$1]=${2:-$(wc -l <"$folder/$1.out")}; }
has_said() { tail -n +$((forgotten[$1] + 1)) "$folder/$1.out" | grep -- "$2" >"$folder/matches"; }
says() { until_true has_said "$1" "$2" || fail "$1 does not say: $2"; }

step=0
nudge() { step=$((step % 5 + 1)); xdotool mousemove $(($1 + step)) $(($2 + step)); }
enters() { xdotool mousemove 5 880; nudge "$1" "$2"; has_said source '^entered'; }
has_begun() { nudge "$1" "$2"; has_said source '[bB]egin'; }
hovers() { nudge "$1" "$2"; has_said target '^hovering'; }
is_welcome() { nudge "$1" "$2"; has_said source '^would [1-9]'; }

# begin X Y: takes up what lies there.
begin() {
    forget source
    until_true enters "$1" "$2" || fail "the source does not notice the pointer"
    xdotool mousedown 1
    says source '^pressed'
    until_true has_begun $(($1 + 20)) "$2" || fail "no drag begins"
}

# drop X Y: lets go of it there, once the target has noticed and the source has heard what the target would do.
drop() {
    until_true hovers "$1" "$2" || fail "the target does not notice"
    until_true is_welcome "$1" "$2" || fail "the source does not hear from the target"
    xdotool mouseup 1
}

# drag X0 Y0 X1 Y1: from source to target. Each stage waits until the programs have noticed the one before.
drag() {
    begin "$1" "$2"
    if [ $# -eq 4 ]; then drop "$3" "$4"; else xdotool mouseup 1; fi
}

cues() {
    for i in $(seq "$1"); do
        printf '%d\n00:00:%02d,000 --> 00:00:%02d,900\n字幕 %d\n\n' "$i" "$i" "$i" "$i"
    done
}

types="$(for minor in 14 13 12 11 10 9 8; do echo "com.apple.finalcutpro.xml.v1-$minor"; done; echo com.apple.finalcutpro.xml)"

echo "== a card reaches another program under every type, with the same bytes"
mkdir "$folder/card" "$folder/sink"
cues 40 >"$folder/card/cues.srt"
cues 3 >"$folder/card/other.srt"
start target sink "$folder/sink" 700 300; sink=$pid; to=$place
start source card "$folder/card" 100 300; card=$pid; from=$place
drag $from $to
says target '^dropped'
says source '^message 已发送字幕片段，请在 FCP 中检查位置'
grep -q 'Begin subtitle drag: cues=40 bytes='"$(stat -c %s "$folder/card/payload")"'$' "$folder/source.out" || fail "log of the beginning"
grep -q 'End subtitle drag: operation=1$' "$folder/source.out" || fail "log of the end"
[ "$(cat "$folder/sink/formats")" = "$types" ] || fail "types: $(cat "$folder/sink/formats")"
[ -s "$folder/card/payload" ] || fail "no document"
for i in 0 1 2 3 4 5 6 7; do cmp "$folder/card/payload" "$folder/sink/$i"; done

echo "== a card that is let go beside a target says so, and can be dragged again"
drag $from
says source '^message 未放入时间线，请把字幕卡片拖到 FCP 时间线区域'
forget target
drag $from $to
says target '^dropped'
says source 'operation=1$'
stop "$card"

for loss in track card model; do
    echo "== the drag outlives its $loss"
    forget target
    rm -f "$folder/sink"/* "$folder/card/Draft.json"
    start source card "$folder/card" 100 300 "$loss"; card=$pid; from=$place
    begin $from
    says source "^lost $loss"
    drop $to
    says target '^dropped'
    cmp "$folder/card/payload" "$folder/sink/7"
    says source 'End subtitle drag: operation=1'
    # It is still there, and still handles events: a stray click must not end it either.
    xdotool mousemove $from click 1
    kill -0 "$card" 2>/dev/null || fail "the program is gone"
    stop "$card"
done
stop "$sink"

echo "== a file dragged out of a file manager is loaded"
mkdir "$folder/area"
cues 7 >"$folder/我的 字幕.srt"
start target area "$folder/area" 700 300; area=$pid; to=$place
start source browser "$folder" 100 300 "$folder/我的 字幕.srt"; browser=$pid; from=$place
drag $from $to
says target '^cues 7'
says source 'operation=1$' # never a move, for which the source would delete the file
stop "$browser"

echo "== a project dragged out of the browser is read"
forget target
start source browser "$folder" 100 300 "$project"; from=$place
drag $from $to
says target '^message 已'
says source 'operation=1$'
kill -0 "$area" || fail "the program is gone"
echo "all arrived"
