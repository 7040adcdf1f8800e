#!/usr/bin/env bash
# Configures a preset once and builds it: scripts/build.sh PRESET [TARGET…]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
cmake --build --preset "$preset" ${1:+--target "$@"}
