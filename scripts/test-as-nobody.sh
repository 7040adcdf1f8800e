#!/usr/bin/env bash
# Runs the tests that a preset has built as a user without rights: scripts/test-as-nobody.sh PRESET [ctest's arguments]
# For the administrator, whose own run skips what permissions mean to others. Nothing is written into the build folder.
# Ends with 77 where that user cannot read the build folder.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
build=$PWD/build/$1
shift
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
chmod 755 "$home"
# Programs are asked for their tests by who may write down the answer.
ctest --test-dir "$build" -N >/dev/null
# The lists of tests name programs and each other by their whole paths; ctest leaves its log beside the copy.
(cd "$build" && find . -name CTestTestfile.cmake -exec cp --parents {} "$home" \;)
mkdir "$home/tmp"
chown -R nobody "$home"
nobody=(setpriv --reuid nobody --regid "$(id -g nobody)" --clear-groups
    env -u XDG_RUNTIME_DIR HOME="$home" TMPDIR="$home/tmp")
if ! "${nobody[@]}" test -r "$build/CTestTestfile.cmake"; then
    echo "跳过：nobody 读不到 $build，请把项目放到人人可读的位置。" >&2
    exit 77
fi
(cd "$home" && "${nobody[@]}" ctest --test-dir "$home" --output-on-failure -j "$(getconf _NPROCESSORS_ONLN)" \
    -LE '^case$' -E 'arrows|guide|packaging' "$@") # which read the sources, with whatever Python the administrator has
