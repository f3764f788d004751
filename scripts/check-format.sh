#!/bin/sh
# Fails when a C++ file is not formatted as .clang-format says.
set -eu
cd "$(dirname "$0")/.."
git ls-files -- '*.cpp' '*.h' | xargs clang-format --dry-run -Werror
echo "formatting: all files as they should be"
