#!/bin/sh
# build.sh PRESET [TARGET...]: configures and builds. Silent unless something fails.
set -eu
cd "$(dirname "$0")/.."
preset=$1
shift

log=build/$preset.log
mkdir -p build
echo "building ($preset)" >&2
cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
cmake --build --preset "$preset" ${*:+--target "$@"} >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
