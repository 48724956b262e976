#!/bin/sh
# Compiler launcher: compiles with clang what MinGW's g++ was asked to, for the same target and with
# the same headers. g++ cannot align the stack of that target for vectors of more than 16 bytes.
#   mingw-clang.sh G++ ARGUMENT...
set -eu
case " $* " in *" -fopenmp "*) exec "$@" ;; esac  # its header is g++'s own
headers=$("$1" -print-file-name=include)
target=$("$1" -dumpmachine)
shift
for argument; do
  shift
  # CMake passes this to every g++ of the target; clang has no such default to turn off.
  [ "$argument" = -fno-keep-inline-dllexport ] || set -- "$@" "$argument"
done
ccache=$(command -v ccache || true)
exec $ccache clang++ --target="$target" -nostdinc++ -isystem "$headers/c++" \
  -isystem "$headers/c++/$target" "$@"
