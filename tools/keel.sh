#!/usr/bin/env bash
# Builds and runs keel.  Usage: tools/keel.sh COMMAND [ARGS]
#   demo [STEP...]  build and run keel-demo (the default preset); steps as
#         keel-demo --help lists them, all of them when none is given
#   test  build and run the whole test suite (the default preset): unit
#         tests, the package checks, the reference and the ABI check
#   asan  the test suite under AddressSanitizer and UndefinedBehaviorSanitizer
#   docs  build the reference (Doxygen) into build/default/docs/html
#   abi [--update]  compare libkeel's binary interface with abi/libkeel.abi,
#         or regenerate the baseline after a deliberate change
#   memcheck  every test binary under valgrind's memcheck
#   coverage  line and branch coverage of the library under the whole suite
#   bench build and run the benchmarks, writing docs/performance.md
#   fuzz NAME [SECONDS [OPTIONS...]]  build the libFuzzer targets (clang) and
#         run fuzz/fuzz_NAME.cpp for SECONDS (default 300) from its seed
#         corpus, passing OPTIONS on to libFuzzer (e.g. -timeout=1); new
#         inputs go to build/fuzz-corpus/NAME, the seeds stay as they are
# Installs the Debian packages the build needs when they are missing.
set -euo pipefail
cd "$(dirname "$0")/.."

need=()
for p in cmake g++ make python3 pkg-config ccache doxygen abigail-tools libgtest-dev libgmock-dev \
    libbenchmark-dev libboost-dev libpng-dev libpcre2-dev; do
    dpkg -s "$p" >/dev/null 2>&1 || need+=("$p")
done
if [ "${1:-}" = fuzz ]; then
    for p in clang libclang-rt-dev; do dpkg -s "$p" >/dev/null 2>&1 || need+=("$p"); done
fi
if [ ${#need[@]} -gt 0 ]; then
    echo "keel: installing ${need[*]}"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${need[@]}"
fi

. tools/quiet.sh

case "${1:-test}" in
demo)
    quiet cmake --preset default
    quiet cmake --build --preset default --target keel-demo
    ./build/default/examples/keel-demo "${@:2}"
    ;;
test) cmake --workflow --preset default ;;
asan) cmake --workflow --preset asan ;;
docs)
    quiet cmake --preset default
    cmake --build --preset default --target keel-docs
    ;;
abi) bash tools/abi.sh "${@:2}" ;;
memcheck) bash tools/memcheck.sh "${@:2}" ;;
coverage) bash tools/coverage.sh "${@:2}" ;;
bench)
    # Builds in Release, runs every pair and writes docs/performance.md.
    bash bench/report.sh "${@:2}"
    ;;
fuzz)
    name=${2:?usage: $0 fuzz NAME [SECONDS [OPTIONS...]]}
    quiet cmake --preset fuzz
    quiet cmake --build --preset fuzz --target "fuzz_$name"
    mkdir -p "build/fuzz-corpus/$name"
    "build/fuzz/fuzz/fuzz_$name" -max_total_time="${3:-300}" -print_final_stats=1 "${@:4}" \
        "build/fuzz-corpus/$name" "fuzz/corpus/$name"
    ;;
*)
    echo "usage: $0 demo [STEP...]|test|asan|docs|abi [--update]|memcheck|coverage|bench|fuzz NAME [SECONDS]" >&2
    exit 2
    ;;
esac
