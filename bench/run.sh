#!/bin/sh
# Prints the table of members, sizes, times and ratios. Arguments go to peers.py.
set -eu
here=$(dirname "$0")
exec /usr/bin/python3 "$here/peers.py" "$here/../build/release/bin" "$@"
