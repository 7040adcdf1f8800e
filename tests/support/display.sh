# For scripts that test programs with a mouse: a display of their own, and an end that leaves nothing behind. To be
# sourced. Ends the script with status 77 where a tool is missing.
#
# Sets folder, a scratch folder; what is in pids is ended with the script. Where that fails, the end of each *.out in
# the folder is shown.

for tool in Xvfb xdotool; do
    command -v "$tool" >/dev/null || { echo "skipped: $tool is missing"; exit 77; }
done

folder=$(mktemp -d)
pids=()
finish() {
    local status=$?
    [ $status -eq 0 ] || tail -n 30 "$folder"/*.out >&2 || true
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
export DISPLAY=:$number QT_QPA_PLATFORM=xcb XDG_RUNTIME_DIR=$folder/run
mkdir -m 700 "$folder/run"
# Without a bus a first connection starts one, for which a program may wait for ever.
export DBUS_SESSION_BUS_ADDRESS=unix:path=$folder/run/none
