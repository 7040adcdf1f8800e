#!/usr/bin/env bash
# Configures a preset once and builds it: scripts/build.sh PRESET [TARGET…]
# Says nothing when there is nothing to do.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
preset=$1
shift
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
build=(cmake --build --preset "$preset" ${1:+--target "$@"})
[[ $("${build[@]}" -- -n 2>/dev/null) == *"no work to do"* ]] || "${build[@]}"
