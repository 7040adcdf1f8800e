#!/usr/bin/env bash
# Checks the macOS sources on Linux, against GNUstep's AppKit: misspelt selectors and constants, wrong types of arguments.
#
#   scripts/check-objective-cpp.sh [FILE.mm …]    all of ours when none is named
set -euo pipefail
cd "$(dirname "$0")/.."

# With GCC's directory for its Objective-C headers only, which clang does not bring.
objc=$(dirname "$(g++ -print-libgcc-file-name)")/include
read -ra qt <<<"$(pkg-config --cflags Qt6Gui | sed 's/-I/-isystem /g')"
sources=("$@")
[ ${#sources[@]} -gt 0 ] || mapfile -t sources < <(git ls-files --cached --others --exclude-standard -- '*.mm')
[ ${#sources[@]} -gt 0 ] || { echo "check-objective-cpp: 没有找到 .mm 源文件" >&2; exit 1; }

for source in "${sources[@]}"; do
    clang++ -x objective-c++ -fsyntax-only -std=c++20 -fPIC -I. -Iscripts/objective-cpp -include system.h "${qt[@]}" \
        -isystem /usr/include/GNUstep -idirafter "$objc" \
        -DGNUSTEP -DGNUSTEP_BASE_LIBRARY=1 -DGNU_GUI_LIBRARY=1 -DGNU_RUNTIME=1 -D_NATIVE_OBJC_EXCEPTIONS \
        -fobjc-exceptions -fobjc-runtime=gcc -fconstant-string-class=NSConstantString \
        -DQT_NO_CAST_FROM_ASCII -DQT_NO_CAST_TO_ASCII -DQT_NO_KEYWORDS \
        -Wall -Wextra -Wconversion -Wshadow -Wold-style-cast -Werror -Wno-deprecated-anon-enum-enum-conversion \
        "$source"
done
