#!/bin/bash
# Installs the release build into an empty folder, builds a host against it, by find_package and by pkg-config, and looks at what desktops get.
set -euo pipefail
cd "$(dirname "$0")/.."

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
log=$stage/log
{
    cmake --install build/release --prefix "$stage/usr"

    cmake -S tests/install -B "$stage/by-cmake" -G Ninja -DCMAKE_PREFIX_PATH="$stage/usr"
    cmake --build "$stage/by-cmake"

    config=$(find "$stage/usr" -name 3dzel.pc -printf '%h')
    flags=$(PKG_CONFIG_PATH=$config pkg-config --cflags --libs 3dzel)
    # shellcheck disable=SC2086  # a list of flags
    g++ -std=c++20 tests/install/host.cpp $flags -o "$stage/by-pkg-config"
} >"$log" 2>&1 || { cat "$log"; exit 1; }

libraries=$(dirname "$(find "$stage/usr" -name lib3dzel.so)")
for host in "$stage/by-cmake/host" "$stage/by-pkg-config"; do
    LD_LIBRARY_PATH=$libraries "$host"
done
"$stage/usr/bin/zel" info --quiet --json examples/models/pavilion.dae >/dev/null
desktop-file-validate "$stage/usr/share/applications/3dzel-viewer.desktop"
appstreamcli validate --no-net "$stage/usr/share/metainfo/3dzel-viewer.metainfo.xml" >/dev/null
update-mime-database "$stage/usr/share/mime" 2>/dev/null
for type in $(sed -n 's/^MimeType=//p' "$stage/usr/share/applications/3dzel-viewer.desktop" | tr ';' ' '); do
    [ -f "$stage/usr/share/mime/$type.xml" ] || [ -f "/usr/share/mime/$type.xml" ] || { echo "no kind of file is $type"; exit 1; }
done
echo "install: hosts build and run against the installed package"
