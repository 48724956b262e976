#!/bin/sh
# Prints the table of members, sizes, times and ratios. Arguments go to peers.py; --windows, as the
# first, adds the column of the Windows build.
set -eu
here=$(dirname "$0")
build=$here/../build
if [ "${1:-}" = --windows ]; then
  shift
  set -- --windows "$build/windows/bin" "$@"
fi
exec /usr/bin/python3 "$here/peers.py" "$build/release/bin" "$@"
