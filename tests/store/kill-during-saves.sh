#!/usr/bin/env bash
# Kills a program that saves its draft without pause at random moments. Each time a complete draft must be there that
# holds every change whose saving was reported as finished.
# Usage: kill-during-saves.sh WRITER [MOMENTS [--typing]]; WRITER DRAFT writes, WRITER --read DRAFT prints the newest change
# in it. WRITER --typing DRAFT reports every change when it is made, and the last but one must be there.
set -euo pipefail
writer=$1 moments=${2:-200} typing=${3:-}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
draft=$folder/Draft.json
present=0

for ((moment = 1; moment <= moments; moment++)); do
    : >"$folder/saved"
    "$writer" $typing "$draft" >"$folder/saved" 2>"$folder/errors" &
    pid=$!
    # The first time as long as it takes, for slow builds start slowly.
    for ((wait = 0; moment == 1 && wait < 400; wait++)); do
        [[ $(wc -l <"$folder/saved") -gt 1 ]] && break
        sleep 0.05
    done
    sleep "0.$(printf '%03d' $((RANDOM % (${typing:+300}+120))))"
    if ! kill -KILL "$pid" 2>/dev/null; then
        echo "moment $moment: the writer had ended: $(cat "$folder/errors")"
        exit 1
    fi
    wait "$pid" 2>/dev/null || true
    # The last line may be half-written.
    saved=$(sed -n '$!p' "$folder/saved" | tail -n 1)
    if [[ ! -e $draft ]]; then
        [[ -z $saved ]] && continue
        echo "moment $moment: no draft, though change $saved was saved"
        exit 1
    fi
    if ! found=$("$writer" --read "$draft") || [[ -z $found ]]; then
        echo "moment $moment: the draft cannot be read"
        exit 1
    fi
    [[ -n $saved && -n $typing ]] && saved=$((saved - 1))
    if ((found < ${saved:-0} || found < present)); then
        echo "moment $moment: the draft holds change $found, but change ${saved:-$present} was saved"
        exit 1
    fi
    present=$found
    if compgen -G "$folder/Draft-unreadable-*" >/dev/null; then
        echo "moment $moment: a draft was set aside"
        exit 1
    fi
done
((present > 0)) || { echo "nothing was ever saved"; exit 1; }
echo "$moments moments, $present changes, $(find "$folder" -name 'Draft.json.*' | wc -l) half-written files left beside"
