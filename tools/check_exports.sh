#!/bin/sh
# check_exports.sh LIBRARY: fails unless the library (.so or .dll) exports exactly the functions
# hosts look up by name. The list stands here a second time, beside that of the build, so that a
# slip in either shows.
set -eu
expected='CreateMDNumericObjectPtr
GetDebugModePtr
TCAllVectorsBase_GetMinMax
VELA_CRT_OBJ
VectorSourceDataRangeHolder_CheckRemoveValidRangePtr
safe_pow'

case $1 in
  *.dll)
    # Each name stands in the table of export names as "[ordinal] name", sometimes with its RVA.
    actual=$(x86_64-w64-mingw32-objdump -p "$1" |
      awk '/^\[Ordinal\/Name Pointer\] Table/ { table = 1; next }
           table && /^[ \t]*\[/ { print $NF; next }
           table { exit }') ;;
  *)
    actual=$(nm -D --defined-only "$1" | awk '{ print $NF }') ;;
esac
actual=$(printf '%s\n' "$actual" | LC_ALL=C sort)

if [ "$actual" != "$expected" ]; then
  echo "$1 exports other names than it should (< expected, > found):" >&2
  folder=$(mktemp -d)
  printf '%s\n' "$expected" >"$folder/expected"
  printf '%s\n' "$actual" >"$folder/actual"
  diff "$folder/expected" "$folder/actual" >&2 || true
  rm -r "$folder"
  exit 1
fi
echo "$1 exports its six functions and nothing else"
