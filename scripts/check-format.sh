#!/bin/bash
# Fails for tabs, blanks at line ends, lines over 160 characters, and files that do not end with one line feed. How a line is broken below
# that is the author's care: tables and aligned comments stay as they were set.
set -euo pipefail
cd "$(dirname "$0")/.."

bad=0
complain() { echo "$1"; bad=1; }
mapfile -t files < <(git ls-files -- '*.cpp' '*.h' '*.cmake' '*CMakeLists.txt' '*.sh' run test .ci/run)
hits=$(grep -nP '\t| +$|^.{161,}' "${files[@]}" || true)
[ -z "$hits" ] || complain "$hits"
for file in "${files[@]}"; do
    [ -z "$(tail -c1 "$file")" ] || complain "$file: no line feed at the end"
    [ "$(tail -c2 "$file" | od -An -tx1)" != " 0a 0a" ] || complain "$file: blank lines at the end"
done
[ $bad = 0 ] && echo "formatting: all files as they should be"
exit $bad
