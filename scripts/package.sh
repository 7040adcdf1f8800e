#!/usr/bin/env bash
# Builds the Debian package, and holds it against Debian's rules: scripts/package.sh [FOLDER]
# It lies in build/packages, or in the folder that is named. Built twice, in whatever folders, it is the same to the byte:
# nothing in it knows where it was built or when, and every file in it bears the day of the release.
set -euo pipefail
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
folder=$(realpath -m "${1:-build/packages}")
scripts/setup.sh build package >&2

newest=$(grep -m 1 '^## ' CHANGELOG.md)
[[ $newest =~ ^##\ [0-9.]+\ \(([0-9-]+)\)$ ]] || {
    echo "package: CHANGELOG.md 最上面的标题须是要发布的版本和日期，例如 ## 0.1.0 (2026-11-22)，而不是：$newest" >&2
    exit 1
}
SOURCE_DATE_EPOCH=$(date -u -d "${BASH_REMATCH[1]}" +%s)
export SOURCE_DATE_EPOCH LC_ALL=C.UTF-8 TZ=UTC
umask 022

scripts/build.sh release >&2
appstreamcli validate --no-net build/release/packaging/linux/local.lintora.workflow.metainfo.xml >&2
desktop-file-validate packaging/linux/local.lintora.workflow.desktop
mkdir -p "$folder"
(cd "$folder" && cpack --config "$OLDPWD/build/release/CPackConfig.cmake" >&2)
rm -rf "$folder/_CPack_Packages"
package=$(ls -t "$folder"/lintora_*.deb | head -n 1)
lintian --fail-on error --tag-display-limit 0 --allow-root "$package" >&2
sha256sum "$package"
