#!/bin/sh
# Runs the fuzz targets (all, or those named) for FUZZ_SECONDS each, 30 unless told otherwise, as
# many at a time as there are processors. They start from the seeds in fuzz/corpus and from what
# earlier runs left in build/fuzz/corpus. Fails when one has a finding; its input then lies in
# build/fuzz/findings.
set -eu
cd "$(dirname "$0")/.."
bin=build/fuzz/bin
export FUZZ_SECONDS="${FUZZ_SECONDS:-30}"
export ASAN_OPTIONS=strict_string_checks=1:detect_stack_use_after_return=1
export UBSAN_OPTIONS=print_stacktrace=1

if [ "${1:-}" = --one ]; then
  found=build/fuzz/corpus/$2
  log=build/fuzz/$2.log
  mkdir -p "$found" build/fuzz/findings
  status=0
  "$bin/$2_fuzz" -max_total_time="$FUZZ_SECONDS" -timeout=20 -rss_limit_mb=3000 \
    -print_final_stats=1 -artifact_prefix="build/fuzz/findings/$2-" "$found" "fuzz/corpus/$2" \
    > "$log" 2>&1 || status=$?
  runs=$(awk '/number_of_executed_units/ { print $2 }' "$log")
  if [ $status = 0 ]; then
    echo "$2: ${runs:-?} runs in $FUZZ_SECONDS s, nothing found"
  else
    tail -n 60 "$log"
    echo "$2: FINDING after ${runs:-?} runs"
  fi
  exit $status
fi

[ $# -gt 0 ] || set -- $(cd fuzz && ls -- *_fuzz.cpp | sed 's/_fuzz\.cpp$//')
printf '%s\n' "$@" | xargs -P "$(nproc)" -I{} "$0" --one {}
