#!/usr/bin/env bash
# Brings the three helper programs (ffmpeg-audio, whisper-cli, llama-server) to where the program looks for them: from a
# checkout into build/AI, installed into the user's own folder. Does nothing, quickly, when they are there.
#
#   engines.sh [FOLDER]    needs ffmpeg, which scripts/setup.sh engines brings, and, to unpack others, gcc and binutils
#
# Debian releases that package the recogniser and the language model's server have them installed. Older ones get them
# unpacked from Debian's unstable suite into FOLDER/engines, beside the libraries and the loader that they need: the
# system's own packages and package lists are left alone. VERSIONS tells what was unpacked.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
folder=${XDG_DATA_HOME:-$HOME/.local/share}/lintora/AI
[ ! -f CMakeLists.txt ] || folder=$PWD/build/AI
folder=${1:-$folder}
own=$folder/engines

programs=(whisper-cli llama-server)
# A whole transcription service on this machine, for tests of the online road.
extra=(whisper-server)

has_all() {
    [ -x "$folder/ffmpeg-audio" ] && [ -x "$folder/whisper-cli" ] && [ -x "$folder/llama-server" ]
}

# link NAME PROGRAM: gives an installed program the name that a helper has.
link() {
    local found
    found=$(command -v "$2") && ln -sf "$found" "$folder/$1"
}

link_installed() {
    link ffmpeg-audio ffmpeg || true
    local program
    for program in "${programs[@]}" "${extra[@]}"; do
        [ -x "$folder/$program" ] || link "$program" "$program" || true
    done
}

as_root() {
    if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# Whether the machine's own release has both packages.
is_packaged() {
    [ "$(apt-cache policy whisper.cpp-tools llama.cpp-tools 2>/dev/null | grep -c 'Candidate: [^(]')" = 2 ]
}

# An apt whose lists, status and cache are all in $state.
private_apt() {
    local tool=$1
    shift
    "$tool" -q -o Dir::State="$state" -o Dir::State::status="$state/status" -o Dir::Cache="$state/cache" \
        -o Dir::Etc::sourcelist="$state/sources.list" -o Dir::Etc::sourceparts=/dev/null \
        -o Acquire::Languages=none -o APT::Sandbox::User="$(id -un)" "$@"
}

# The engines' own libraries, whose package names change with their versions.
libraries_of() {
    private_apt apt-cache depends --no-recommends --no-suggests "$@" |
        sed -nE 's/^ *\|?Depends: (lib(whisper|llama|ggml)[^ ]*)$/\1/p' | sort -u
}

# Empty stand-ins for FFmpeg's libraries. whisper-cli links them for formats that it is never given: it gets a WAV.
make_stand_ins() {
    local library version symbols
    readelf -W -V "${programs[@]/#/$own/}" "${extra[@]/#/$own/}" 2>/dev/null |
        sed -nE 's/.*File: (lib(av|sw)[a-z]+\.so\.[0-9]+).*/F \1/p; s/.*Name: (LIB(AV|SW)[A-Z]*_[0-9]+).*/V \1/p' |
        awk '$1 == "F" { file = $2 } $1 == "V" { print file, $2 }' | sort -u >"$state/stand-ins"
    while read -r library version; do
        symbols=$(readelf -W --dyn-syms "$own/whisper-cli" "$own/whisper-server" |
            sed -nE "s/.* ([a-z0-9_]+)@$version( .*)?$/\1/p" | sort -u)
        for symbol in $symbols; do echo "void $symbol(void) { __builtin_trap(); }"; done >"$state/stand-in.c"
        echo "$version { global: $(printf '%s; ' $symbols) local: *; };" >"$state/stand-in.map"
        gcc -shared -fPIC -w -o "$own/$library" -Wl,-soname,"$library" -Wl,--version-script="$state/stand-in.map" \
            "$state/stand-in.c"
    done <"$state/stand-ins"
}

# A wrapper that becomes the program: same process id, signals go straight through.
write_wrapper() {
    cat >"$folder/$1" <<WRAPPER
#!/bin/sh
own=\${0%/*}/engines
exec "\$own/$loader" --library-path "\$own" "\$own/$1" "\$@"
WRAPPER
    chmod +x "$folder/$1"
}

unpack_from_unstable() {
    state=$(mktemp -d)
    trap 'rm -rf "$state"' EXIT
    mkdir -p "$state"/{lists,cache/archives,debs,root}
    touch "$state/status"
    # The mirror that this machine uses already, for its own release.
    local mirror
    mirror=$(apt-get indextargets --format '$(ORIGIN) $(LABEL) $(REPO_URI)' 'Created-By: Packages' |
        sed -n 's/^Debian Debian //p' | head -n 1)
    [ -n "$mirror" ] || return 1
    echo "deb $mirror sid main" >"$state/sources.list"
    private_apt apt-get update >&2

    local -a packages
    mapfile -t packages < <(libraries_of whisper.cpp-tools llama.cpp-tools)
    mapfile -t -O ${#packages[@]} packages < <(libraries_of "${packages[@]}")
    packages+=(whisper.cpp-tools llama.cpp-tools libc6 libgcc-s1 libstdc++6 libgomp1 libssl3t64 zlib1g libzstd1)
    mapfile -t packages < <(printf '%s\n' "${packages[@]}" | sort -u)
    (cd "$state/debs" && private_apt apt-get download "${packages[@]}" >&2)
    local package
    for package in "$state"/debs/*.deb; do dpkg-deb -x "$package" "$state/root"; done

    rm -rf "$own"
    mkdir -p "$own"
    cp "${programs[@]/#/$state/root/usr/bin/}" "${extra[@]/#/$state/root/usr/bin/}" "$own"
    # One flat folder: the backends are looked for beside the running program, and that is the loader.
    find "$state/root/usr/lib" \( -name '*.so' -o -name '*.so.*' \) -not -path '*/gconv/*' -exec cp -P {} "$own" \;
    loader=$(cd "$own" && ls ld-linux*.so.* | head -n 1)
    make_stand_ins
    for program in "${programs[@]}" "${extra[@]}"; do write_wrapper "$program"; done
    (cd "$state/debs" && for package in *.deb; do
        echo "$(dpkg-deb -f "$package" Package) $(dpkg-deb -f "$package" Version) sha256:$(sha256sum "$package" | cut -d ' ' -f 1)"
    done) >"$folder/VERSIONS"
}

# Whether the programs start at all: a loader without one of its libraries does not get that far.
try_out() {
    "$folder/whisper-cli" --help >/dev/null 2>&1 && "$folder/llama-server" --version >/dev/null 2>&1
}

has_all && exit 0
mkdir -p "$folder"
link_installed
if ! has_all && [ -x "$folder/ffmpeg-audio" ] && command -v apt-get >/dev/null; then
    echo "准备本地引擎：${programs[*]}" >&2
    if is_packaged; then
        as_root env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=550 -qq install --yes \
            --no-install-recommends whisper.cpp-tools llama.cpp-tools
        link_installed
    elif ! (unpack_from_unstable) || ! try_out; then
        rm -rf "$own" "${programs[@]/#/$folder/}" "${extra[@]/#/$folder/}"
    fi
fi
has_all || {
    echo "setup: 本地引擎不齐全（ffmpeg-audio、whisper-cli、llama-server）：转写、翻译和校对暂不可用，其余功能不受影响。" >&2
    exit 1
}
