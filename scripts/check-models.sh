#!/bin/bash
# check-models.sh [PRESET]: runs `zel info` of that build over the example models and over the packaged test models. A file either reads (exit
# code 0) or is refused in one line (exit code 3); anything else is a fault, and so is a reader that takes fewer files than it did.
set -euo pipefail
cd "$(dirname "$0")/.."

zel=$PWD/build/${1:-release}/bin/zel
least=334    # 333 of the package and one example
read=0 refused=0
while IFS= read -r -d '' file; do
    code=0
    message=$(timeout 60 "$zel" info --json --quiet "$file" 2>&1 >/dev/null) || code=$?
    lines=$(grep -c . <<<"$message" || true)
    case $code in
        0) read=$((read + 1)) ;;
        3) refused=$((refused + 1)); [ "$lines" = 1 ] || { echo "$file: not one line on standard error:"; echo "$message"; exit 1; } ;;
        *) echo "$file: exit code $code: $message"; exit 1 ;;
    esac
done < <(find examples/models /usr/share/assimp/models* -type f -print0)
echo "models: $read read, $refused refused"
[ "$read" -ge "$least" ] || { echo "models: $least were read before"; exit 1; }
