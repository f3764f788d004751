#!/bin/bash
# Reads the packaged test models, saves them natively, reads them again, and compares every field.
set -euo pipefail
cd "$(dirname "$0")/.."

folders=$(echo /usr/share/assimp/models*)
ZEL_MODELS=${folders// /:} timeout 500 build/release/bin/plugins_tests --gtest_brief=1 --gtest_filter='NativeTrip.*'
