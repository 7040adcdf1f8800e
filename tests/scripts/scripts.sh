#!/usr/bin/env bash
# What ./run and the scripts behind it say and do, in a copy of the project whose programs only tell how they were called.
# Usage: scripts.sh PROJECT
set -euo pipefail
project=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
top="$folder/the project"
tools=$folder/tools
mkdir -p "$top/scripts" "$top/build/release/cli" "$top/build/release/app" "$top/docs" "$tools" "$folder/elsewhere"
cp "$project/run" "$top"
cp "$project/scripts/build.sh" "$project/scripts/setup.sh" "$top/scripts"
touch "$top/build/release/build.ninja"

program() { printf '#!/bin/bash\n%s\n' "$2" >"$1" && chmod +x "$1"; }
program "$tools/cmake" '[ -z "${WORK-}" ] && [ "${*: -1}" = -n ] && echo "ninja: no work to do." || echo "[1/1] Building"'
program "$tools/dpkg-query" 'for each in ${INSTALLED-}; do echo "$each installed"; done'
program "$tools/apt-get" 'echo "apt-get $*"'
program "$tools/id" 'echo 1000'
for tool in bash cat dirname env grep readlink sed uname; do ln -s "$(command -v $tool)" "$tools/$tool"; done
program "$top/scripts/engines.sh" ':'
program "$top/build/release/cli/lintora-cli" '[ "$1" = titles ] || [ $# = 1 ] || [ "$2" != --help ] || exit 2; echo "cli $*"'
program "$top/build/release/app/lintora" 'echo "window $*"'
ln -s "$top/run" "$folder/elsewhere/lintora"
all=$(sed -n 's/^ *build) echo \(g++.*\) ;;/\1/p' "$project/scripts/setup.sh")

failures=0
# expect WHAT EXPECTED COMMAND…: output and errors together are as expected
expect() {
    local what=$1 expected=$2 found
    shift 2
    found=$(cd "$folder/elsewhere" && env -i PATH="$tools" "$@" 2>&1) || true
    [[ $found == $expected ]] || { echo "failed: $what: $found"; failures=1; }
}

run=(INSTALLED="$all ffmpeg" "$folder/elsewhere/lintora")
expect "a command says nothing but its result" "cli titles a.srt" "${run[@]}" titles a.srt
expect "a build that has work to do says so" "[[]1/1] Building?cli --help" WORK=1 "${run[@]}" --help
expect "an unknown command is left to the command line" "cli titel x.srt" "${run[@]}" titel x.srt
expect "files need a display" "*没有显示器*" "${run[@]}" 访谈.srt
expect "files open in the window" "window 访谈.srt" DISPLAY=:9 "${run[@]}" 访谈.srt
mkdir "$folder/elsewhere/titles" && touch "$folder/elsewhere/访谈"
expect "a command is no folder of its name" "cli titles a.srt" DISPLAY=:9 "${run[@]}" titles a.srt
expect "a file need not have an extension" "window 访谈" DISPLAY=:9 "${run[@]}" 访谈

setup=(INSTALLED="${all/libicu-dev/}" "$top/scripts/setup.sh" build)
expect "who may not install hears what to ask for" "*请让管理员安装*apt-get install*libicu-dev" "${setup[@]}"
program "$tools/sudo" '"$@"'
expect "who may does" "*apt-get * install *libicu-dev" "${setup[@]}"
exit $failures
