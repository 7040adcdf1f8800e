#!/usr/bin/env bash
# Gathers what a report of a fault needs, and nothing of what is said in it: versions, the system, the structure of
# documents, the log. Texts, names, paths and addresses are replaced; read it before it goes out.
#
#   report.sh [-o FILE] [DOCUMENT…]    DOCUMENT: .srt, .fcpxml, .fcpxmld or a session; the draft is taken along
set -uo pipefail
own=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}" 2>/dev/null || echo "$0")")" && pwd)
out=lintora-report-$(date +%Y%m%d-%H%M%S).txt
if [ "${1-}" = -o ]; then
    [ $# -ge 2 ] || { echo "用法：report.sh [-o 文件] [文档…]" >&2; exit 2; }
    out=$2
    shift 2
fi

# The command line beside this script: in the bundle, installed, in a checkout, or wherever the path says.
for cli in "$own/../MacOS/lintora-cli" "$own/../../bin/lintora-cli" "$own/../build/release/cli/lintora-cli" \
    "$(command -v lintora-cli || true)"; do
    [ ! -x "$cli" ] || break
done

# mask KIND: what may be told of standard input. What is not known to be harmless becomes 字 (Chinese), x (letters), 0.
mask() {
    perl -CSD -0777 -e '
        use strict; use utf8;
        my $kind = shift; $_ = <STDIN> // ""; s/\r\n?/\n/g;
        sub veil { my $t = shift; $t =~ s/\p{Han}/字/g; $t =~ s/(?![字])\p{L}|\p{M}/x/g; $t =~ s/\p{N}/0/g; $t =~ s/[^字x0\s]/./g; $t }
        # Attributes of documents whose values are places, sizes and references.
        my %known = map { $_ => 1 } qw(version id ref offset start duration lane format frameDuration width height tcStart
            tcFormat enabled audioLayout audioRate hasVideo hasAudio audioSources audioChannels audioDuration srcEnable
            srcCh srcID key time amount fontSize fontColor strokeColor strokeWidth position scale alignment active);
        sub tag {
            my $t = shift;
            my ($name) = $t =~ m{^<(/?[a-z][a-z-]{0,30})(?=[\s/>])} or return "<?>";
            my $r = "<$name";
            while ($t =~ /([A-Za-z_:][\w:.-]*)\s*=\s*("[^"]*"|\x27[^\x27]*\x27)/g) {
                my ($a, $v) = ($1, $2);
                $a = veil($a) unless $a =~ /^[A-Za-z-]{1,30}$/;
                $v = substr($v, 1, -1);
                my $plain = $known{$a} && $v =~ m{^[\d./s,: +-]*$|^r\d+$|^(?:sub)?(?:style|effect)\d+$|^ts\d+$|^(?:NDF|DF|mono|stereo|left|center|right|\d+k)$};
                $r .= " $a=\"" . ($plain ? $v : veil($v)) . "\"";
            }
            $r . ($t =~ m{/>$} ? "/>" : ">");
        }
        if ($kind eq "xml") {
            s/\G(<!--.*?(?:-->|\z)|<!\[CDATA\[.*?(?:\]\]>|\z)|<[!?][^>]*(?:>|\z)|<(?:[^"\x27>]|"[^"]*"|\x27[^\x27]*\x27)*>|<[^<]*|[^<]+)/
                my $p = $1; $p =~ m{^<!|^<\?} ? "<!…>" : $p =~ m{^<.*>$}s ? tag($p) : $p =~ m{\S} ? veil($p) : $p/gse;
        } elsif ($kind eq "json") {
            s/"((?:[^"\\]|\\.)*)"(\s*:)?/my ($s, $k) = ($1, $2 \/\/ ""); ($k && $s =~ m{^[A-Za-z]{1,30}$} ? "\"$s\"" : "\"" . veil($s) . "\"") . $k/gse;
        } elsif ($kind eq "srt") {
            my $time = qr{[\d:,.]+ --> [\d:,.]+};
            s/^(?!$time$|\d+\n$time$)(.+)$/veil($1)/gme;
        } else { # lines of a log
            s{"[^"\n]*"|\x27[^\x27\n]*\x27|“[^”\n]*”}{"…"}g; s{\S*[/\\@]\S*}{…}g; s/[^\x00-\x7f…]+/…/g;
        }
        print;' "$1"
}

heading() { printf '\n== %s\n' "$*"; }

describe_system() {
    date -u +%Y-%m-%dT%H:%M:%SZ
    "$cli" --version 2>&1
    uname -srm
    if command -v sw_vers >/dev/null; then
        sw_vers
        echo "Final Cut Pro $(defaults read "/Applications/Final Cut Pro.app/Contents/Info" CFBundleShortVersionString 2>/dev/null || echo 没有找到)"
        sysctl -n machdep.cpu.brand_string hw.memsize
    else
        sed -n 's/^PRETTY_NAME=//p' /etc/os-release
        sed -n 's/^MemTotal: */memory /p' /proc/meminfo
        echo "desktop ${XDG_CURRENT_DESKTOP:-?}, session ${XDG_SESSION_TYPE:-?}, locale ${LC_ALL:-${LANG:-?}}"
    fi
}

describe_engines() {
    local folder program
    for folder in ${VELMORA_SUBTITLE_HELPERS:+"$VELMORA_SUBTITLE_HELPERS"} "$own/AI" "$own/../../lib/lintora/AI" \
        "${XDG_DATA_HOME:-$HOME/.local/share}/lintora/AI" "$own/../build/AI"; do
        for program in ffmpeg-audio whisper-cli llama-server; do
            [ ! -x "$folder/$program" ] || echo "$program: 有"
        done
    done | sort -u
    "$cli" models 2>&1
}

describe_data() {
    local data="$HOME/Library/Application Support/Lintora" entry
    # The program's own names; what lies inside the folders is named by the user.
    for entry in "$data"/*; do
        if [ -d "$entry" ]; then
            echo "${entry##*/}/ $(find "$entry" -type f | wc -l) 个文件，$(du -sk "$entry" | cut -f 1) KB"
        elif [ -f "$entry" ]; then
            echo "${entry##*/} $(wc -c <"$entry") 字节"
        fi
    done | sed -n '/^[A-Za-z0-9.-]*\/\{0,1\} /p'
    df -k "$HOME" | awk 'NR == 2 { print "可用空间 " $4 " KB" }'
}

describe_document() {
    local file=$1
    [ ! -d "$file" ] || file=$file/Info.fcpxml
    [ -f "$file" ] || { echo "读不到"; return; }
    wc -c <"$file"
    case $file in
    *.srt) mask srt <"$file" ;;
    *.fcpxml)
        "$cli" validate "$file" --json 2>/dev/null | grep -oE '"(line|rule|severity)":("[a-z.-]+"|[0-9]+)' | paste -sd ' ' -
        echo "validate: 状态 ${PIPESTATUS[0]}"
        mask xml <"$file"
        ;;
    *) mask json <"$file" ;;
    esac
}

describe_log() {
    if command -v sw_vers >/dev/null; then
        log show --last 1d --style compact --predicate 'subsystem == "local.lintora.workflow"' 2>/dev/null
        find "$HOME/Library/Logs/DiagnosticReports" -name 'lintora*' -mtime -7 2>/dev/null | sed 's/.*lintora/崩溃报告 lintora/'
    else
        journalctl --user --quiet --since '1 day ago' --no-hostname -o short-iso -t lintora 2>/dev/null
    fi | tail -n 300 | mask log
}

{
    echo "Lintora 报告。文字、名称、路径和地址已替换。"
    heading 系统
    describe_system
    heading 本地引擎和模型
    describe_engines
    heading 数据
    describe_data
    number=0
    for document in "$HOME/Library/Application Support/Lintora/Draft.json" "$@"; do
        heading "文档 $number，类型 ${document##*.}，状态 $([ -r "$document" ] && echo 可读 || echo 不可读)"
        describe_document "$document"
        number=$((number + 1))
    done
    heading 日志
    describe_log
} >"$out" || exit 1
echo "已写入 $out。发出之前，请先看一遍。"
