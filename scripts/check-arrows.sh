#!/bin/bash
# Checks every #include of ours against the table of rooms: an include points only to a room that its own may see.
set -euo pipefail
cd "$(dirname "$0")/.."

# room -> rooms whose headers it may include, itself among them
declare -A sees=(
    [tools]="tools"
    [windows]="windows tools"
    [files]="files windows tools"
    [images]="images files windows tools"
    [geometry]="geometry tools"
    [channels]="channels geometry tools"
    [scene]="scene channels geometry images files windows tools"
    [meshops]="meshops scene channels geometry images files windows tools"
    [io]="io meshops scene channels geometry images files windows tools"
    [render]="render scene channels geometry images files windows tools"
    [viewer]="viewer render io meshops scene channels geometry images files windows tools"
)
bad=0

while IFS=: read -r file line text; do
    room=${file#src/}; room=${room%%/*}
    target=$(sed -E 's/.*"([^"]*)".*/\1/' <<<"$text")
    if [[ $target != */* ]]; then
        echo "$file:$line: names no room: \"$target\""; bad=1
        continue
    fi
    [[ " ${sees[$room]-} " == *" ${target%%/*} "* ]] || { echo "$file:$line: $room may not include \"$target\""; bad=1; }
    [[ -f src/$target ]] || { echo "$file:$line: no such header: \"$target\""; bad=1; }
done < <(git ls-files -- 'src/*/*.cpp' 'src/*/*.h' | xargs grep -nE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' /dev/null)

# only render includes GL
while IFS= read -r hit; do echo "$hit: only render includes GL"; bad=1; done \
    < <(git ls-files -- 'src/*' | grep -v '^src/render/' | xargs grep -nE '#[[:space:]]*include[[:space:]]*<(GL|EGL)/' /dev/null || true)

# the edge uses the public headers alone, and the library nothing of the edge
while IFS= read -r hit; do echo "$hit: the edge uses public headers only"; bad=1; done \
    < <(git ls-files -- 'platform/*' 'plugins/*' 'apps/*' 'python/*' 'examples/*' | grep -E '\.(cpp|h)$' |
        xargs -r grep -nE '#[[:space:]]*include[[:space:]]*"(\.\./)*src/' /dev/null || true)

[[ $bad == 0 ]] && echo "arrows: every include points the right way"
exit $bad
