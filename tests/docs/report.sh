#!/usr/bin/env bash
# A report tells the structure of what it is given, and no word of it: report.sh PROJECT LINTORA-CLI
set -euo pipefail
project=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir -p "$folder/tools" "$folder/scripts" "$folder/王小明/Library/Application Support/Lintora" "$folder/机密"
ln -s "$2" "$folder/tools/lintora-cli"
cp "$project/scripts/report.sh" "$folder/scripts"
export HOME=$folder/王小明 PATH=$folder/tools:$PATH LC_ALL=C.UTF-8
cd "$folder/机密"

printf '1\n00:00:01,000 --> 00:00:02,000\n绝密 Zebra\n13800138000\n5\n\n' | cat - "$project/docs/sample.srt" >台词.srt
lintora-cli titles "$project/docs/sample.srt" --rate 25 --name 绝密 -o 项目.fcpxml
sed 's/ ref="subeffect1"//' 项目.fcpxml >有错.fcpxml
cat >坏的.fcpxml <<'END'
<?xml version="1.0"?><!-- 绝密 --><fcpxml version='1.10'><asset id="r2" src="file:///Volumes/Zebra/a.mov" name='绝密 > Zebra' duration="10/25s"/>
<text><![CDATA[绝密 <b>Zebra</b>]]></text><Zebra绝密 start="绝密 1s"/><md key="Zebra" value="13800138000"/> Zebra < 绝密 <title name="绝密
END
cat >"$HOME/Library/Application Support/Lintora/Draft.json" <<'END'
{"items":[{"id":1,"start":40,"end":900,"text":"绝密 \"Zebra\":台词"}],"source":"Zebra.srt","options":{"font":"Zebra"}}
END
mkdir "$HOME/Library/Application Support/Lintora/Recent"
echo 台词 >"$HOME/Library/Application Support/Lintora/Recent/20261122 绝密.json"
"$folder/scripts/report.sh" -o "$folder/report" 台词.srt 项目.fcpxml 有错.fcpxml 坏的.fcpxml 没有.srt >/dev/null

failures=0
for secret in 绝密 Zebra 13800138000 机密 王小明 台词 欢迎 助手 落在 "$folder" "$(hostname)"; do
    ! grep -nF "$secret" "$folder/report" || { echo "failed: tells $secret"; failures=1; }
done
for told in "$("$2" --version)" '00:00:06,000 --> 00:00:08,960' '<title name=' 'offset="13/25s"' 'duration="10/25s"' '{"items":[{"id":1,"start":40' \
    '"rule":"dtd.required"' '字字 xxxxx' 00000000000 'Recent/ 1 个文件' 读不到; do
    grep -qF -- "$told" "$folder/report" || { echo "failed: does not tell $told"; failures=1; }
done
exit $failures
