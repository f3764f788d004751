#!/bin/bash
# check-kill.sh [COUNT]: kills a program that saves native files over one another at COUNT random moments. Whatever the moment, the file is
# the former one or the new one, whole, and nothing lies beside it.
set -euo pipefail
cd "$(dirname "$0")/.."

count=${1:-200}
saver=$PWD/build/release/bin/native_saver
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$saver" refs "$folder"

inside=0 strays=0
for ((i = 0; i < count; i++)); do
    cp "$folder/a.3dif" "$folder/target.3dif"
    coproc "$saver" loop "$folder/target.3dif"
    pid=$COPROC_PID
    read -r _ <&"${COPROC[0]}"
    sleep "$(printf '0.%03d' $((RANDOM % 150)))"
    kill -STOP "$pid"
    # what is being written has no name
    if find "/proc/$pid/fd" -printf '%l\n' | grep "^$folder/.*(deleted)$" >/dev/null; then inside=$((inside + 1)); fi
    kill -KILL "$pid"
    wait "$pid" 2>/dev/null || true
    cmp -s "$folder/target.3dif" "$folder/a.3dif" || cmp -s "$folder/target.3dif" "$folder/b.3dif" ||
        { echo "kill $i: the file is neither the former nor the new one"; exit 1; }
    strays=$(find "$folder" -name '.zel-*' | wc -l)
done
# A file has a name of its own for some microseconds before it takes its place.
[ "$strays" -le 1 ] || { echo "kill: $strays files stay beside the target"; exit 1; }
[ "$inside" -gt 0 ] || { echo "kill: none of $count fell inside a save"; exit 1; }
echo "kill: $count times, $inside of them inside a save; the file was always whole, $strays files stayed beside it"
