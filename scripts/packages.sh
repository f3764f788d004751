#!/bin/sh
# Installs the packages of packages.txt that are missing. As root or with sudo; does nothing when all are there.
set -eu
cd "$(dirname "$0")/.."

missing=
for package in $(grep -v '^#' packages.txt); do
    status=$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

sudo=
[ "$(id -u)" = 0 ] || sudo=sudo
echo "installing:$missing" >&2
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get -qq update >&2
# shellcheck disable=SC2086  # a list of names
$sudo apt-get -qq install -y --no-install-recommends $missing >&2
