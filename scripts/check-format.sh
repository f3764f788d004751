#!/bin/bash
# Fails where clang-format would set a source differently (--fix lets it), and for tabs, blanks at line ends, and files that do not end
# with one line feed. Lines that it cannot break end at 160 characters.
set -euo pipefail
cd "$(dirname "$0")/.."

bad=0
complain() { echo "$1"; bad=1; }
mapfile -t sources < <(git ls-files -- '*.cpp' '*.h')
mapfile -t files < <(git ls-files -- '*.cpp' '*.h' '*.cmake' '*CMakeLists.txt' '*.sh' run test .ci/run)
[ "${1:-}" != --fix ] || clang-format -i "${sources[@]}"
hits=$(clang-format --dry-run -Werror "${sources[@]}" 2>&1 | grep error || true)
[ -z "$hits" ] || complain "$hits"
hits=$(grep -nP '\t| +$|^.{161,}' "${files[@]}" || true)
[ -z "$hits" ] || complain "$hits"
for file in "${files[@]}"; do
    [ -z "$(tail -c1 "$file")" ] || complain "$file: no line feed at the end"
    [ "$(tail -c2 "$file" | od -An -tx1)" != " 0a 0a" ] || complain "$file: blank lines at the end"
done
[ $bad = 0 ] && echo "formatting: all files as they should be"
exit $bad
