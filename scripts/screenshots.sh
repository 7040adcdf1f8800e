#!/usr/bin/env bash
# Draws the window's main states into docs/images/, or into the folder that is named.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset dev >/dev/null
cmake --build build/dev --target lintora_screenshots
QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-/tmp} build/dev/scripts/screenshots/lintora_screenshots "$@"
