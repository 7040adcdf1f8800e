#!/usr/bin/env bash
# Installs a package into a fresh Debian 12, uses it there as an ordinary user, and removes it without a trace:
#
#   scripts/test-package.sh PACKAGE [FOLDER]    pictures of the window and lists of files go to FOLDER
#
# Needs root, the network and 1.5 GB; minutes. The fresh system is thrown away afterwards.
# Ends with 77 where there is no Debian mirror to take it from.
set -euo pipefail
package=$(realpath "$1")
evidence=$(realpath -m "${2:-$(dirname "$package")/evidence}")
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
scripts/setup.sh package >&2
mkdir -p "$evidence"
mirror=$(apt-get indextargets --format '$(ORIGIN) $(LABEL) $(REPO_URI)' 'Created-By: Packages' |
    sed -n 's/^Debian Debian //p' | head -n 1)
[ -n "$mirror" ] || { echo "跳过：这台机器没有 Debian 软件源" >&2; exit 77; }

tree=$(mktemp -d)
chmod 755 "$tree"
started=()
# Processes of the fresh system, by the program that they run.
running() { find /proc -maxdepth 2 -name exe -lname "$tree/*" 2>/dev/null | cut -d / -f 3; }
clean_up() {
    kill "${started[@]}" $(running) 2>/dev/null || true
    umount -l "$tree/proc" "$tree/dev" 2>/dev/null || true
    rm -rf --one-file-system "$tree"
}
trap clean_up EXIT

say() { echo "== $*"; }
fail() { echo "failed: $*" >&2; exit 1; }
inside() { chroot "$tree" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
editor() {
    chroot --userspec=editor "$tree" /usr/bin/env -i PATH=/usr/bin:/bin HOME=/home/editor LC_ALL=C.UTF-8 \
        DISPLAY="$display" "$@"
}
# within SECONDS COMMAND…: until it succeeds
within() {
    local end=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do [ $SECONDS -lt $end ] || fail "still not: $*"; sleep 0.2; done
}
# A list of all files but those that any installation of anything changes.
list_files() {
    (cd "$tree" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./home -o -path ./tmp -o -path ./var/cache \
        -o -path ./var/log -o -path ./var/lib/apt -o -path ./var/lib/dpkg \) -prune -o -print | sort)
}

say "a fresh system"
debootstrap --variant=minbase --include=ca-certificates bookworm "$tree" "$mirror" >"$evidence/debootstrap.log" ||
    { tail -n 5 "$evidence/debootstrap.log" >&2; exit 1; }
mount -t proc proc "$tree/proc"
mount --rbind /dev "$tree/dev"
mount --make-rslave "$tree/dev"
cp /etc/resolv.conf "$tree/etc"
cp "$package" "$tree/tmp"
# What any desktop has: it opens files and links by what packages say of themselves.
inside apt-get -q update >"$evidence/apt.log"
inside apt-get -qq install --yes --no-install-recommends desktop-file-utils shared-mime-info libglib2.0-bin fontconfig \
    >>"$evidence/apt.log" 2>&1
inside useradd --create-home editor
list_files >"$evidence/before.txt"
inside dpkg-query -W -f '${Package}\n' | sort >"$evidence/packages-before.txt"

say "installing"
inside apt-get -qq install --yes "/tmp/$(basename "$package")" >>"$evidence/apt.log" 2>&1
inside dpkg -L lintora >"$evidence/installed.txt"
version=$(inside dpkg-query -W -f '${Version}' lintora)
for program in lintora lintora-cli; do
    [ "$(inside $program --version)" = "$program $version" ] || fail "$program tells another version than $version"
done

say "the command line"
display=none
cp docs/sample.srt "$tree/home/editor/访谈.srt"
editor lintora-cli titles /home/editor/访谈.srt -o /home/editor/访谈.fcpxml
editor lintora-cli validate --strict /home/editor/访谈.fcpxml
editor sh -c 'cd && ffmpeg -loglevel error -f lavfi -i sine -t 1 tone.wav && echo x >model.bin'
missing=$(editor lintora-cli transcribe /home/editor/tone.wav --model-file /home/editor/model.bin --details 2>&1) &&
    fail "recognised without a recogniser"
[[ $missing == *本地引擎不完整*whisper-cli* ]] || fail "does not say that the recogniser is missing: $missing"

say "the window"
mkfifo "$tree/number"
Xvfb -displayfd 3 -screen 0 1000x900x24 -nolisten tcp -ac 3>"$tree/number" 2>/dev/null & started+=($!)
display=:$(head -n 1 "$tree/number")
rm "$tree/number"
DISPLAY=$display openbox >/dev/null 2>&1 & started+=($!)
titles() { DISPLAY=$display xdotool search --onlyvisible --name 'VELMORA 字幕助手' getwindowname; }
picture() { DISPLAY=$display import -window root "$evidence/$1.png"; }
draft='/home/editor/Library/Application Support/Lintora/Draft.json'
says() { editor lintora-cli session "$draft" --json | grep -qF "$1"; }

editor gio open /home/editor/访谈.srt & started+=($!)
within 60 titles
within 30 says 每一条都落在帧上
titles | tee "$evidence/title.txt"
picture file

say "a link"
sessions='Library/Containers/local.lintora.workflow.extension/Data/Library/Application Support/Lintora/Sessions'
session="/home/editor/$sessions/0B0C6A1E-6D7C-4C66-9C0A-3E6A3C5B0F11.json"
editor mkdir -p "$(dirname "$session")"
editor sh -c 'lintora-cli session "$1" --json | sed s/每一条都落在帧上/由链接打开/g >"$2"' - "$draft" "$session"
link=$(editor lintora-cli session --make-link "$session")
editor gio open "$link"
within 30 says 由链接打开
[ "$(titles | wc -l)" = 1 ] || fail "the link opened a second window"
picture link

say "its end"
DISPLAY=$display xdotool search --onlyvisible --name 'VELMORA 字幕助手' windowactivate
# From the keyboard, not to the window, which may be gone before the keys are let go.
DISPLAY=$display xdotool key --delay 100 ctrl+q
ended() { [ -z "$(running)" ]; }
within 30 ended

say "removing"
inside apt-get -qq purge --yes lintora >>"$evidence/apt.log" 2>&1
[ -z "$(list_files | grep -i lintora)" ] || fail "left behind: $(list_files | grep -i lintora)"
! grep -rIl lintora "$tree"/usr/share/applications "$tree"/usr/share/mime "$tree"/var/lib/dpkg/info || fail "still registered"
inside apt-get -qq -o APT::AutoRemove::SuggestsImportant=false autoremove --purge --yes >>"$evidence/apt.log" 2>&1
inside dpkg-query -W -f '${Package}\n' | sort | diff "$evidence/packages-before.txt" - || fail "packages stayed"
list_files | diff "$evidence/before.txt" - >"$evidence/left.txt" || true
say "done; what its libraries left behind: $(grep -c '^>' "$evidence/left.txt" || true) files, $evidence/left.txt"
