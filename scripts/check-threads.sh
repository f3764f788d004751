#!/bin/bash
# Saving, reading and drawing on several threads at once under the thread sanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/build.sh tsan library_tests
export TSAN_OPTIONS=suppressions=$PWD/tests/support/threads.supp:print_suppressions=0
build/tsan/bin/library_tests --gtest_filter='Threads.*' --gtest_brief=1
