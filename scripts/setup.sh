#!/usr/bin/env bash
# Brings in what is missing to build Lintora, and says so. Does nothing, quickly, when all is there.
#
#   scripts/setup.sh build|test|ci|package|bench|fuzz|engines …
set -euo pipefail

debian_packages() {
    case $1 in
    build) echo g++ cmake ninja-build pkg-config qt6-base-dev qt6-multimedia-dev qt6-translations-l10n libxml2-dev libicu-dev libopencc-dev libcli11-dev libssl-dev qtkeychain-qt6-dev libsecret-1-0 gstreamer1.0-plugins-base gstreamer1.0-plugins-good gstreamer1.0-libav fonts-noto-cjk ;;
    test) echo python3 libgtest-dev dbus-daemon pulseaudio fonts-noto-color-emoji gnome-keyring libgmock-dev locales openssl xauth xdotool xvfb xz-utils ;;
    engines) echo ffmpeg ;;
    ci) echo git clang clang-format clang-tidy ccache desktop-file-utils libgnustep-gui-dev libobjc-12-dev ;;
    package) echo appstream debootstrap desktop-file-utils dpkg-dev fakeroot imagemagick librsvg2-bin lintian openbox xdotool xvfb ;;
    bench) echo libbenchmark-dev ;;
    fuzz) echo clang libclang-rt-14-dev ;;
    *) echo "setup: 不认识的用途：$1" >&2 && return 2 ;;
    esac
}

brew_packages() {
    case $1 in
    build) echo cmake ninja pkg-config qt libxml2 icu4c opencc cli11 openssl qtkeychain ;;
    test) echo python googletest xz ;;
    engines) echo ffmpeg whisper-cpp llama.cpp ;;
    ci) echo clang-format llvm ccache ;;
    package) ;; # CPack and Qt's own tool do it
    bench) echo google-benchmark ;;
    fuzz) echo llvm ;;
    *) echo "setup: 不认识的用途：$1" >&2 && return 2 ;;
    esac
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

check_rights() {
    [ "$(id -u)" = 0 ] || command -v sudo >/dev/null && return
    echo "setup: 这里没有 sudo，请让管理员安装以上软件包：apt-get install --no-install-recommends $*" >&2
    exit 1
}

wanted=()
for purpose in "$@"; do
    if command -v apt-get >/dev/null; then
        packages=$(debian_packages "$purpose")
    elif command -v brew >/dev/null; then
        packages=$(brew_packages "$purpose")
    else
        echo "setup: 需要 apt（Debian/Ubuntu）或 Homebrew（macOS）" >&2
        exit 1
    fi
    read -ra words <<<"$packages"
    wanted+=("${words[@]}")
done

missing=()
if command -v apt-get >/dev/null; then
    installed=$(dpkg-query -W -f '${binary:Package} ${db:Status-Status}\n' | sed -n 's/:[a-z0-9]* installed$//p; s/ installed$//p')
    for package in "${wanted[@]}"; do
        grep -qxF -- "$package" <<<"$installed" || missing+=("$package")
    done
else
    for package in "${wanted[@]}"; do
        brew list --versions "$package" >/dev/null 2>&1 || missing+=("$package")
    done
fi
if [ ${#missing[@]} -gt 0 ]; then
    echo "安装缺少的软件包：${missing[*]}"
    if command -v apt-get >/dev/null; then
        check_rights "${missing[@]}"
        as_root apt-get -o DPkg::Lock::Timeout=550 -q update
        as_root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=550 -qq install --yes --no-install-recommends "${missing[@]}"
    else
        brew install "${missing[@]}"
    fi
fi

# The helper programs that no package of an older Debian brings.
case " $* " in *" engines "*) exec "$(dirname "$0")/engines.sh" ;; esac
