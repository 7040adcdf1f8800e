#!/usr/bin/env bash
# Playback without an audio device, then with one that nobody hears.
#
#   playback.sh PLAYBACK_TESTS
set -euo pipefail
for program in ffmpeg pulseaudio; do
    command -v "$program" >/dev/null || { echo "$program 未安装，跳过" && exit 77; }
done
gst=$(find /usr/lib -name libgstlibav.so -print -quit)
[ -n "$gst" ] || { echo "gstreamer1.0-libav 未安装，跳过" && exit 77; }

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_RUNTIME_DIR=$home/run QT_QPA_PLATFORM=offscreen
unset PULSE_SERVER DBUS_SESSION_BUS_ADDRESS
mkdir -m 700 "$XDG_RUNTIME_DIR"
# What the platform's sound libraries keep to the end of the program is theirs.
printf 'leak:%s\n' libpulse libglib-2.0 libgstreamer >"$home/leaks"
export LSAN_OPTIONS=suppressions=$home/leaks:print_suppressions=0
# Pictures and positions are held against the clock, and the clock of a busy machine stumbles: a second time decides.
held() { "$@" || { echo "once more" && "$@"; }; }
held "$1"

trap 'pulseaudio --kill || true; rm -rf "$home"' EXIT
pulseaudio --daemonize=yes --exit-idle-time=-1 -n -L "module-null-sink sink_name=null" -L "module-native-protocol-unix" 2>/dev/null
export LINTORA_NULL_SINK=1
held "$1"
