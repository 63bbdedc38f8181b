#!/usr/bin/env bash
# fuzz/run.sh SECONDS [NAME...]: builds the libFuzzer targets (the "fuzz"
# preset: clang, AddressSanitizer and UndefinedBehaviorSanitizer) and runs
# every target (or the NAMEs given, e.g. variant) in turn for SECONDS each,
# from its seed corpus fuzz/corpus/NAME.  New inputs go to
# build/fuzz-corpus/NAME; the seeds stay as they are.  A finding (crash,
# sanitizer report, failed check, leak, time-out) is written to
# build/fuzz-findings/NAME/, which is emptied when its target starts.
#
# Prints one line per target: executions, coverage (libFuzzer's cov: and
# ft:), corpus size and findings, then exits 1 when any target found
# something (2 when the build fails).  `bash fuzz/run.sh 5` is the smoke
# check CI runs.
#
# Environment: KEEL_FUZZ_BUILD, the build directory (default build/fuzz);
# KEEL_FUZZ_JOBS, build jobs (default 2).  The fuzz_pattern target runs with
# its own limits (1 KB texts, one second per input); the others treat an
# input that runs longer than 10 s as a finding.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 2

seconds=${1:?usage: fuzz/run.sh SECONDS [NAME...]}
shift
build=${KEEL_FUZZ_BUILD:-build/fuzz}
jobs=${KEEL_FUZZ_JOBS:-2}

if [ $# -gt 0 ]; then
    names=("$@")
else
    names=()
    for source in fuzz/fuzz_*.cpp; do
        name=${source#fuzz/fuzz_}
        names+=("${name%.cpp}")
    done
fi

. tools/quiet.sh

launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
start=$SECONDS
quiet cmake --preset fuzz -B "$build" "${launcher[@]}" || exit 2
targets=()
for name in "${names[@]}"; do targets+=("fuzz_$name"); done
quiet cmake --build "$build" -j "$jobs" --target "${targets[@]}" || exit 2
echo "fuzz: built ${#targets[@]} targets in $((SECONDS - start)) s; $seconds s each"

# The last value of a libFuzzer status field ("cov: 123") in a log, or "-".
field() {
    local value
    value=$(grep -o "$1: [0-9]*" "$2" | tail -1 | grep -o '[0-9]*$')
    echo "${value:--}"
}

failed=()
for name in "${names[@]}"; do
    corpus=build/fuzz-corpus/$name
    findings=build/fuzz-findings/$name
    log=$findings/log.txt
    mkdir -p "$corpus" "$findings"
    rm -f "$findings"/crash-* "$findings"/leak-* "$findings"/timeout-* "$findings"/oom-* \
        "$findings"/slow-unit-* "$log"
    options=(-timeout=10)
    [ "$name" = pattern ] && options=(-timeout=1 -max_len=1100)
    "$build/fuzz/fuzz_$name" -max_total_time="$seconds" -print_final_stats=1 "${options[@]}" \
        -artifact_prefix="$findings/" "$corpus" "fuzz/corpus/$name" >"$log" 2>&1
    status=$?
    found=$(find "$findings" -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' \
        -o -name 'oom-*' | wc -l)
    # A target that stops with an error but writes no input (for example a
    # corpus it cannot read) is a finding too.
    [ "$status" -ne 0 ] && [ "$found" -eq 0 ] && found=1
    printf '%-18s %10s execs  cov %6s  ft %7s  corpus %5s  findings %s\n' "fuzz_$name" \
        "$(field 'stat::number_of_executed_units' "$log")" "$(field cov "$log")" \
        "$(field ft "$log")" "$(find "$corpus" -type f | wc -l)" "$found"
    if [ "$found" -ne 0 ]; then
        failed+=("$name")
        find "$findings" -name 'crash-*' -o -name 'leak-*' -o -name 'timeout-*' -o -name 'oom-*' |
            sed 's/^/    input: /'
        grep -m1 -E 'ERROR|check failed|assertion|runtime error' "$log" | sed 's/^/    /'
        echo "    log: $log"
    fi
done

echo "fuzz: ${#names[@]} targets, $((SECONDS - start)) s in all"
if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz: findings in ${failed[*]}" >&2
    exit 1
fi
