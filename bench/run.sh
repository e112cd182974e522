#!/bin/sh
# Runs every bench program of a build folder, each writing its JSON results to
# <build>/bench-results/<program>.json (its console output beside it as <program>.txt), then
# prints the one table of figures against their floors (bench/report.py).
# Usage: bench/run.sh <build folder>   e.g. bench/run.sh build/default
set -eu
build=${1:?usage: bench/run.sh <build folder>}
results="$build/bench-results"
mkdir -p "$results"
# 0.2 s per benchmark keeps the whole run to a few minutes on two cores; the floors are
# measured in the same run, so load on the machine moves both sides of a ratio.
min_time=${VORN_BENCH_MIN_TIME:-0.2}
status=0
for program in "$build"/bench/vorn_*_bench; do
  name=$(basename "$program")
  echo "running $name"
  if ! "$program" --benchmark_min_time="$min_time" \
      --benchmark_out="$results/$name.json" --benchmark_out_format=json \
      >"$results/$name.txt" 2>&1; then
    echo "$name failed; its output is in $results/$name.txt" >&2
    status=1
  fi
done
python3 "$(dirname "$0")/report.py" "$results" || status=1
exit $status
