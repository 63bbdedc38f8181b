#!/usr/bin/env bash
# Builds keel-bench in Release, runs every benchmark once and writes
# docs/performance.md: one table per family, each row keel against a peer
# from the same run.  Hand-written notes in bench/notes.md are carried over.
#
# Usage: bench/report.sh [keel-bench options]
#   Options go to keel-bench as they are, e.g. --benchmark_filter=string/ for
#   a partial report or --benchmark_repetitions=5 to report medians; the
#   report records the command that made it.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build/bench-release
json=$build/bench.json

. tools/quiet.sh

echo "report: building keel-bench (Release) in $build"
quiet cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release "-DCMAKE_CXX_FLAGS_RELEASE=-O2 -DNDEBUG" \
    -DKEEL_BUILD_TESTS=OFF \
    -DKEEL_BUILD_BENCH=ON
quiet cmake --build "$build" -j"$(nproc)" --target keel-bench

"$build/bench/keel-bench" --benchmark_out="$json" --benchmark_out_format=json "$@"

cxx=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build/CMakeCache.txt")
flags=$(sed -n 's/^CMAKE_CXX_FLAGS_RELEASE:[A-Z]*=//p' "$build/CMakeCache.txt")
compiler="$("$cxx" --version | head -n 1), Release ($flags)"

command="bench/report.sh"
for arg in "$@"; do command+=" $(printf '%q' "$arg")"; done

mkdir -p docs
python3 bench/report.py --json "$json" --out docs/performance.md --notes bench/notes.md \
    --command "$command" --compiler "$compiler"
