#!/usr/bin/env bash
# Runs every GoogleTest binary of keel under valgrind's memcheck.
# Usage: tools/memcheck.sh [REGEX]
#   Builds the test binaries in build/memcheck (RelWithDebInfo, no
#   sanitizers, through ccache) and runs each one whose name matches REGEX
#   (all of them by default) under memcheck.  A binary passes when its tests
#   pass and no process it ran reported a memory error or a definite leak;
#   each binary gets a line, then a summary.  Exits 1 when any binary fails.
#
# The options, and why:
#   --error-exitcode=1 --leak-check=full --errors-for-leak-kinds=definite
#       invalid reads and writes, uses of uninitialised values, bad frees and
#       definitely lost blocks are errors; memory still reachable at exit
#       (the managers' statics, the C++ runtime's pools) is not.
#   --track-origins=yes
#       a use of an uninitialised value names the allocation it came from.
#   --trace-children=yes
#       the keel-mdb tests run the tool through /bin/sh: the tool runs under
#       memcheck too.  Each process writes its own log (NAME.PID.log) and all
#       of them are read for the verdict, because a child's exit code belongs
#       to the test that checks it.
#   --trace-children-skip-by-arg=*ulimit*
#       a command that lowers its own descriptor limit with ulimit runs
#       natively, with everything it starts: valgrind refuses a change of the
#       hard limit (ulimit -n sets both), and the tool is to meet the real
#       limit of the kernel, not valgrind's imitation of it (below).
#   --child-silent-after-fork=yes
#       a child between fork and exec (popen's) stays silent; what it execs
#       under memcheck logs afresh.
#   --suppressions=tools/valgrind.supp
#       reports from code outside keel that keel cannot change (each entry
#       there says why).
#
# Descriptor limits in the tests' own process.  valgrind keeps descriptors
# of its own above the hard limit it reports to the program, and applies a
# lowered soft limit itself: it lets the kernel open the file, then closes
# the descriptor and answers EMFILE when the number is at or above the
# limit.  The tests that lower RLIMIT_NOFILE therefore run unchanged, with
# one difference: the kernel refuses an open before it touches the file,
# valgrind after the open has created ("x") or truncated ("w") it.  A test
# that retries an "x" open after EMFILE finds its file there under memcheck.
# Such a test is listed in memory_only below: it runs under memcheck in a
# pass of its own and counts for its memory errors; its assertions are the
# native suite's to judge.
#
# Logs stay in build/memcheck/memcheck/.  Installs valgrind and the build's
# Debian packages when they are missing.
set -euo pipefail
cd "$(dirname "$0")/.."
filter=${1:-.}

# binary -> GoogleTest filter of its tests that meet valgrind's imitated
# descriptor limit with an open that creates its file (see above).
declare -A memory_only=(
    [keel_sfm_test_file_limits]=FileLimitTest.WritesWithSeeksLandWhereTheyWouldWithoutTheLimit
)

need=()
for p in cmake g++ make python3 libgtest-dev libgmock-dev libpng-dev valgrind; do
    dpkg -s "$p" >/dev/null 2>&1 || need+=("$p")
done
if [ ${#need[@]} -gt 0 ]; then
    echo "memcheck: installing ${need[*]}"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${need[@]}"
fi

. tools/quiet.sh

build=build/memcheck
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
quiet nice -n 10 cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKEEL_SANITIZE=OFF \
    -DKEEL_BUILD_BENCH=OFF "${launcher[@]}"
# The GoogleTest binaries are the targets keel_<folder>_test_<name>.
mapfile -t binaries < <(cmake --build "$build" --target help |
    sed -n 's/^\.\.\. \(keel_[a-z]*_test_[a-z0-9_]*\)$/\1/p' | grep -E -- "$filter" | sort)
if [ ${#binaries[@]} -eq 0 ]; then
    echo "memcheck: no test binary matches '$filter'" >&2
    exit 2
fi
echo "memcheck: building ${#binaries[@]} test binaries in $build"
quiet nice -n 10 cmake --build "$build" -j2 --target "${binaries[@]}"

logs=$PWD/$build/memcheck
rm -rf "$logs"
mkdir -p "$logs"
supp=$PWD/tools/valgrind.supp

# memcheck LOG ARGS...: runs the test binary ARGS under memcheck in the
# build's tests directory (where CTest runs it), every process logging to
# LOG.PID.log and the output to LOG.out; returns the binary's exit code.
memcheck() {
    local log=$1
    shift
    (cd "$build/tests" && nice -n 10 valgrind --tool=memcheck --error-exitcode=1 \
        --leak-check=full --errors-for-leak-kinds=definite --track-origins=yes \
        --trace-children=yes '--trace-children-skip-by-arg=*ulimit*' --child-silent-after-fork=yes \
        --suppressions="$supp" --log-file="$log.%p.log" "$@") >"$log.out" 2>&1
}

failed=()
for name in "${binaries[@]}"; do
    start=$SECONDS
    status=0
    note=""
    only=${memory_only[$name]:-}
    if [ -n "$only" ]; then
        memcheck "$logs/$name" "./$name" "--gtest_filter=-$only" || status=$?
        memcheck "$logs/$name.memory-only" "./$name" "--gtest_filter=$only" || true
        note="  ($only: memory errors only)"
    else
        memcheck "$logs/$name" "./$name" || status=$?
    fi
    # No process may have reported an error.
    dirty=()
    for log in "$logs/$name".*.log; do
        if grep -q 'ERROR SUMMARY: [1-9]' "$log"; then dirty+=("$log"); fi
    done
    time=$((SECONDS - start))
    if [ "$status" -eq 0 ] && [ ${#dirty[@]} -eq 0 ]; then
        printf 'pass  %-36s %4ds%s\n' "$name" "$time" "$note"
        continue
    fi
    failed+=("$name")
    printf 'FAIL  %-36s %4ds  exit %d, %d process(es) with errors%s\n' "$name" "$time" "$status" \
        ${#dirty[@]} "$note"
    for log in "${dirty[@]}"; do
        echo "  $log:"
        # The command, the first reports without valgrind's banner, the count.
        grep -v -E '^==[0-9]+== (|Memcheck,.*|Copyright.*|Using Valgrind.*|Parent PID.*)$' "$log" |
            grep -v 'ERROR SUMMARY' | head -40 | sed 's/^/    /'
        grep 'ERROR SUMMARY' "$log" | sed 's/^/    /'
    done
    [ "$status" -eq 0 ] || grep -E '^\[  FAILED  \]' "$logs/$name.out" | sed 's/^/    /' || true
done

if [ ${#failed[@]} -eq 0 ]; then
    echo "memcheck: all ${#binaries[@]} test binaries clean (logs in $build/memcheck)"
else
    echo "memcheck: ${#failed[@]} of ${#binaries[@]} test binaries failed: ${failed[*]}"
    echo "memcheck: logs in $build/memcheck"
    exit 1
fi
