#!/bin/bash
# Runs `zel thumbnail` over the example models, the packaged test models and the kept native inputs of the fuzzers: a file is drawn (exit
# code 0) or refused in one line (exit code 3). Anything else is a fault.
set -euo pipefail
cd "$(dirname "$0")/.."

export ZEL=$PWD/build/release/bin/zel
folder=$(mktemp -d)
export folder
trap 'rm -rf "$folder"' EXIT

# Its line tells the exit code; more follows when that is a fault.
draw()
{
    local file=$1 target=$folder/$BASHPID.png code=0 message reading=()
    [[ $file != fuzz/* ]] || reading=(--read-as 3dif)
    message=$(timeout 120 "$ZEL" --quiet "${reading[@]}" thumbnail --size 64 "$file" "$target" 2>&1 >/dev/null) || code=$?
    case $code in
        0) [ -s "$target" ] || echo "FAULT $file: no picture" ;;
        3) [ "$(grep -c . <<<"$message")" = 1 ] || echo "FAULT $file: not one line on standard error: $message" ;;
        *) echo "FAULT $file: exit code $code: $message" ;;
    esac
    rm -f "$target"
    echo "$code"
}
export -f draw

find examples/models /usr/share/assimp/models* fuzz/corpus/native fuzz/corpus/draw -type f -print0 |
    xargs -0 -P "$(nproc)" -n 1 bash -c 'draw "$1"' _ >"$folder/codes"
if grep FAULT "$folder/codes"; then exit 1; fi
drawn=$(grep -c '^0$' "$folder/codes")
[ "$drawn" -ge 350 ] || { echo "drawing: only $drawn files are drawn"; exit 1; }
echo "drawing: $drawn drawn, $(grep -c '^3$' "$folder/codes") refused"
