#!/bin/sh
# Runs a Windows program under Wine: wine.sh PROGRAM [ARGUMENT...]
# The Wine prefix is private to this source tree (build/wine) and made on first use. The Wine
# server outlives each program by a few seconds, so a series of programs pays its start once.
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || { echo "wine.sh: $wine is missing: apt-get install wine64" >&2; exit 127; }

export WINEPREFIX="$root/build/wine"
export WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="  # no offer to install .NET or a browser
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY

ready="$WINEPREFIX/.ready"
if [ ! -e "$ready" ]; then
  mkdir -p "$WINEPREFIX"
  (
    flock 9
    [ -e "$ready" ] && exit 0
    # Services started here must hold neither the lock nor the caller's pipes.
    "$wine" wineboot -i </dev/null >"$WINEPREFIX/boot.log" 2>&1 9>&-
    touch "$ready"
  ) 9>"$WINEPREFIX/.lock" || {
    echo "wine.sh: the Wine prefix could not be made:" >&2
    cat "$WINEPREFIX/boot.log" >&2
    exit 127
  }
fi
exec "$wine" "$@"
