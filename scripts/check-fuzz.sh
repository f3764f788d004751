#!/bin/bash
# check-fuzz.sh [RUNS]: builds the fuzz targets, and runs each over its kept inputs and RUNS more that it makes of them. What it finds stays in
# build/fuzz/found. To keep new inputs: build/fuzz/bin/X_fuzz -merge=1 fuzz/corpus/X FOLDER.
set -euo pipefail
cd "$(dirname "$0")/.."

runs=${1:-20000}
export LSAN_OPTIONS=suppressions=$PWD/tests/support/leaks.supp:print_suppressions=0
scripts/build.sh fuzz fuzz_targets
mkdir -p build/fuzz/found
for program in build/fuzz/bin/*_fuzz; do
    subject=$(basename "$program" _fuzz)
    inputs=$(mktemp -d)
    these=$runs
    kept=("fuzz/corpus/$subject")
    case $subject in
        import) these=0 ;;    # new inputs find faults of the packaged library, which are not ours to mend
        worker) these=$((runs / 40)); kept=(fuzz/corpus/import) ;;    # that is why they are read in a process of their own
        draw) these=$((runs / 20)); kept+=(fuzz/corpus/native) ;;    # a picture takes longer than a reading
    esac
    dictionary=
    [ ! -f "fuzz/$subject.dict" ] || dictionary=-dict=fuzz/$subject.dict
    log=build/fuzz/$subject.log
    # shellcheck disable=SC2086  # absent when there is none
    "$program" -runs="$these" -seed=1 -timeout=10 -rss_limit_mb=1500 -malloc_limit_mb=256 -max_len=65536 $dictionary \
        -artifact_prefix=build/fuzz/found/ "$inputs" "${kept[@]}" >"$log" 2>&1 || { tail -60 "$log"; exit 1; }
    echo "fuzz: $subject, $(ls "${kept[@]}" | wc -l) kept inputs and $these runs"
    rm -rf "$inputs"
done
