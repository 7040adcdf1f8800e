# For the scripts beside this one: times and the memory of the program alone. The rounds are in $rounds.

now() { date +%s%N; }

peak=0 # KiB
# program PROGRAM ARGUMENTS…: runs it and notes the highest peak of its own process, without its helpers.
program() {
    local pid kib
    "$@" >/dev/null 2>&1 &
    pid=$!
    while kib=$(sed -n 's/^VmHWM:[^0-9]*\([0-9]*\).*/\1/p' "/proc/$pid/status" 2>/dev/null) && [ -n "$kib" ]; do
        [ "$kib" -gt "$peak" ] && peak=$kib
        sleep 0.02
    done
    wait $pid || true # a model this small may be refused; the time is the same
}

# in_turn NAME COMMAND NAME COMMAND: the shortest of the rounds of both, in milliseconds, and the second by the first.
in_turn() {
    local -a shortest=('' '')
    local begin took i k
    for ((i = 0; i < rounds; ++i)); do
        for k in 0 1; do
            begin=$(now)
            if [ $k = 0 ]; then $2; else $4; fi
            took=$((($(now) - begin) / 1000000))
            [ -z "${shortest[k]}" ] || [ "$took" -lt "${shortest[k]}" ] && shortest[k]=$took
        done
    done
    echo "$1: ${shortest[0]} ms · $3: ${shortest[1]} ms · $((shortest[1] * 100 / shortest[0])) %"
}

tell_peak() { echo "program's own peak memory: $((peak / 1024)) MiB"; }
