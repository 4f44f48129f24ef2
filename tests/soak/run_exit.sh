#!/usr/bin/env bash
# Runs soak_exit <runs> times: each run must exit with status 0 and print no
# line of question marks (a log line written after the text machinery went).
#   run_exit.sh <soak_exit> <address> <runs>
set -u
program="$1" address="$2" runs="$3"
for ((i = 1; i <= runs; ++i)); do
  output="$("$program" "$address" 2>&1)"
  status=$?
  if [ "$status" -ne 0 ] || grep -q '??' <<<"$output"; then
    echo "run $i: exit status $status"
    echo "$output" | tail -n 20
    exit 1
  fi
done
echo "$runs runs: clean exits"
