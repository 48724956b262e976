#!/bin/sh
# Fails, with the places, when a C++ file is not formatted as .clang-format says; with --fix formats
# the files instead.
set -eu
cd "$(dirname "$0")/.."
action='--dry-run -Werror'
[ "${1:-}" = --fix ] && action=-i
# shellcheck disable=SC2086  # two words
git ls-files -z --cached --others --exclude-standard -- '*.h' '*.cpp' |
  xargs -0 -r clang-format $action
