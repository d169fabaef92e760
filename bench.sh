#!/usr/bin/env bash
# Sets up, builds and runs the benchmarks, one line a measurement: name, ours, the peer's on the same work in the same
# run, ratio, goal, met or missed.
# Usage: ./bench.sh [NAME...]   (programs of build/fast/bench without "bench_"; default all)
set -euo pipefail
cd "$(dirname "$0")"

./setup.sh packages.txt packages-bench.txt >&2
[ -f build/fast/build.ninja ] || cmake --preset fast >&2
cmake --build --preset fast --target benchmarks >&2

if [ $# -gt 0 ]; then
  programs=("${@/#/build/fast/bench/bench_}")
else
  programs=(build/fast/bench/bench_*)
fi
echo "name | ours | peer | ratio | goal | met"
for program in "${programs[@]}"; do "$program"; done
