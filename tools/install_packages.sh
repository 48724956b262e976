#!/bin/sh
# Installs the Debian packages named in the given files (one a line, # starts a comment); leaves
# apt alone when all of them are there.
set -eu
missing=
for package in $(cat "$@" | sed 's/#.*//'); do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null) || status=
  [ "$status" = installed ] || missing="$missing $package"
done
[ -n "$missing" ] || exit 0

echo "Installing:$missing"
as_root=
[ "$(id -u)" = 0 ] || as_root=sudo
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -q
# shellcheck disable=SC2086  # a list of words
$as_root apt-get install -q -y --no-install-recommends -o DPkg::Lock::Timeout=300 $missing
