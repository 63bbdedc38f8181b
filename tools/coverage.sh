#!/usr/bin/env bash
# Line and branch coverage of the keel library under the whole test suite.
# Usage: tools/coverage.sh
#   Builds everything in build/coverage with g++ --coverage at -O0 (Debug),
#   runs the suite with CTest, then measures with gcovr the library's sources
#   only: sys/ scc/ ssm/ sfm/ ui/ and the inline code of inc/ (not the tests,
#   the examples or tools/).  Writes into build/coverage/report/:
#     index.html    the HTML report, a page per source file with every line
#     summary.txt   lines and branches per source file, per folder, in total
#     missing.txt   gcovr's line report: the uncovered line numbers per file
#     summary.json  gcovr's JSON summary
#   and prints summary.txt.  Exits 1 when a test fails (the report is still
#   written); the coverage goal (95 % of lines, 85 % of branches) is printed,
#   not enforced.
#
# Branch counting:
#   --exclude-throw-branches        g++ gives every call that may throw an
#       extra branch to the exception's landing pad; those are the language's
#       unwinding, not decisions in keel's code, and are left out.
#   --exclude-unreachable-branches  branches on lines without code of their
#       own (a closing brace running destructors) are left out too.
# Tests include the public headers as <keel/NAME.h>, through the build tree's
# link to inc/; -fprofile-prefix-map (g++ 12 or later) records them under
# inc/ so that the library's and the tests' counts of inline code add up in
# one file.
#
# The package checks (keel_package_*) are not run: they install or embed
# keel and build hosts outside the build tree, which says nothing about
# which of the library's lines run.
#
# Installs gcovr and the build's Debian packages when they are missing.
set -euo pipefail
cd "$(dirname "$0")/.."
src=$PWD

need=()
for p in cmake g++ make python3 libgtest-dev libgmock-dev libpng-dev gcovr; do
    dpkg -s "$p" >/dev/null 2>&1 || need+=("$p")
done
if [ ${#need[@]} -gt 0 ]; then
    echo "coverage: installing ${need[*]}"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${need[@]}"
fi

. tools/quiet.sh

build=build/coverage
report=$build/report
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
echo "coverage: building in $build"
quiet nice -n 10 cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER=g++ \
    -DKEEL_SANITIZE=OFF -DKEEL_BUILD_BENCH=OFF "${launcher[@]}" \
    "-DCMAKE_CXX_FLAGS=--coverage -fprofile-prefix-map=$src/$build/headers/keel=$src/inc"
quiet nice -n 10 cmake --build "$build" -j2

# Counts from an earlier run would add up with this one's.
find "$build" -name '*.gcda' -delete
echo "coverage: running the suite"
status=0
nice -n 10 ctest --test-dir "$build" -j2 -E '^keel_package_' >"$build/coverage-tests.log" 2>&1 ||
    status=$?
grep -E 'tests passed|^\s+[0-9]+ - ' "$build/coverage-tests.log" | sed 's/^\s*/  /' || true

rm -rf "$report"
mkdir -p "$report"
library=()
for dir in sys scc ssm sfm ui inc; do library+=(--filter "$dir/"); done
# gcov runs in the build tree (--object-directory), so that its scratch files
# stay there.  A source changed since the build fails here: run again.
nice -n 10 gcovr -r . --object-directory "$build" "${library[@]}" \
    --exclude-throw-branches --exclude-unreachable-branches \
    --html-details "$report/index.html" --html-title "keel coverage" --txt "$report/missing.txt" \
    --json-summary "$report/summary.json" --json-summary-pretty "$build" \
    >"$build/coverage-gcovr.log" 2>&1 || {
    tail -20 "$build/coverage-gcovr.log" >&2
    echo "coverage: gcovr failed (a source changed since the build? run again)" >&2
    exit 1
}

python3 - "$report/summary.json" >"$report/summary.txt" <<'PY'
import json
import os
import re
import sys

data = json.load(open(sys.argv[1]))

# The families of the library, by the name of the source file.
FAMILIES = [
    ("strings, text, patterns",
     r"SYS_(String|Mbcs|Scan|Numbers|Locale|CodePage|ByteCompare|StrPattern|PatternMachine)"),
    ("assertions, resource texts", r"SSM|SYS_(Exception|Resource)"),
    ("arrays, lists, hashing", r"SCC_(Array|SortableArray|QuickSort|VirtualSlots|List|Hash|Shared)"),
    ("events, handles, filters", r"SCC_(Event|Handle\.)|SYS_StdInterface"),
    ("variant, properties, collection", r"SCC_(Variant|Property|StdCollection|HandleIndex)"),
    ("geometry", r"SYS_(Geom|Curve|Transform|Text|PointMap|Int32)"),
    ("units", r"SYS_Convert"),
    ("files, messages", r"SFM"),
    ("drawing", r"UI_"),
]


def family(filename):
    name = os.path.basename(filename)
    for label, pattern in FAMILIES:
        if re.match(pattern, name):
            return label
    return "other"


def pct(covered, total):
    return "%5.1f %%" % (100.0 * covered / total) if total else "    - "


def row(name, lc, lt, bc, bt):
    return "%-36s %5d/%-5d %s   %5d/%-5d %s" % (name, lc, lt, pct(lc, lt), bc, bt, pct(bc, bt))


print("%-36s %-19s %-19s" % ("file", "     lines", "     branches"))
families = {}
for f in sorted(data["files"], key=lambda f: f["filename"]):
    counts = (f["line_covered"], f["line_total"], f["branch_covered"], f["branch_total"])
    print(row(f["filename"], *counts))
    key = family(f["filename"])
    families[key] = [a + b for a, b in zip(families.get(key, (0, 0, 0, 0)), counts)]
print()
print("%-36s %-19s %-19s" % ("family (with its inline code)", "     lines", "     branches"))
for label in [label for label, _ in FAMILIES] + ["other"]:
    if label in families:
        print(row(label, *families[label]))
total = (data["line_covered"], data["line_total"], data["branch_covered"], data["branch_total"])
print(row("library", *total))
lines = 100.0 * total[0] / total[1]
branches = 100.0 * total[2] / total[3]
met = lines >= 95.0 and branches >= 85.0
print("goal (95 %% of lines, 85 %% of branches): %s" % ("met" if met else "not met"))
PY
cat "$report/summary.txt"
echo "coverage: report in $report/index.html"
if [ "$status" -ne 0 ]; then
    echo "coverage: some tests failed (see $build/coverage-tests.log)" >&2
    exit 1
fi
