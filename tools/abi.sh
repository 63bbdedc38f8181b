#!/usr/bin/env bash
# Checks libkeel.so's binary interface against the baseline abi/libkeel.abi.
#
# Usage: tools/abi.sh [check|--update] [LIBRARY]
#   check     (the default) compare the library's interface with the
#             baseline; exit 1 on any difference, printing abidiff's report
#   --update  rewrite abi/libkeel.abi from the library
#   LIBRARY   a libkeel.so built elsewhere (or set KEEL_ABI_LIBRARY); without
#             one, the default preset's library is built first and used
#             (build/default/libkeel.so)
#
# The interface is what the public headers in inc/ declare, as the library's
# debug information describes it: exported functions and variables, and the
# layout, members and virtual-table slots of every type they reach.  The
# library must carry debug information (the default preset builds
# RelWithDebInfo).  abi/libkeel.suppr lists what is left out.  abi/README.md
# says when the baseline may change.
#
# Installs abigail-tools (abidw, abidiff) when they are missing.
set -euo pipefail

usage() {
    echo "usage: $0 [check|--update] [LIBRARY]" >&2
    exit 2
}

mode=check
lib=${KEEL_ABI_LIBRARY:-}
for arg in "$@"; do
    case "$arg" in
    check) mode=check ;;
    --update) mode=update ;;
    -h | --help) sed -n "2,/^set /{/^#/s/^# \\{0,1\\}//p}" "$0"; exit 0 ;;
    -*) usage ;;
    *) lib=$arg ;;
    esac
done
# A library named relative to where the script was started from.
case "$lib" in "" | /*) ;; *) lib=$PWD/$lib ;; esac
root=$(cd "$(dirname "$0")/.." && pwd)
cd "$root"

if ! command -v abidw >/dev/null 2>&1 || ! command -v abidiff >/dev/null 2>&1; then
    echo "keel: installing abigail-tools"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq abigail-tools
fi

. tools/quiet.sh

if [ -z "$lib" ]; then
    quiet cmake --preset default
    quiet cmake --build --preset default --target keel
    lib=build/default/libkeel.so
fi
if [ ! -f "$lib" ]; then
    echo "keel abi: no library at $lib" >&2
    exit 1
fi
if ! readelf -S "$lib" | grep -q '\.debug_info'; then
    echo "keel abi: $lib has no debug information; build it with -g (RelWithDebInfo)" >&2
    exit 1
fi

baseline=abi/libkeel.abi
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Only what keel's headers declare counts (--headers-dir, private types
# dropped), and nothing that moves with unrelated edits is written: no source
# locations, no paths to the library or the build, no parameter names, no
# imported symbols or needed libraries, and type ids derived from the types
# themselves rather than numbered in reading order.
abidw --headers-dir inc --drop-private-types \
    --suppressions abi/libkeel.suppr \
    --no-show-locs --no-corpus-path --no-comp-dir-path --no-parameter-names \
    --drop-undefined-syms --no-elf-needed --type-id-style hash \
    --out-file "$work/raw.abi" "$lib"
# Each translation unit still names its source file, as the compiler was
# given it: keep only the path inside the source tree.
sed -e "s|path='$root/|path='|" -e "s|path='\(\.\./\)*|path='|" "$work/raw.abi" >"$work/libkeel.abi"

if [ "$mode" = update ]; then
    mkdir -p abi
    mv "$work/libkeel.abi" "$baseline"
    echo "keel abi: wrote $baseline from $lib"
    exit 0
fi

if [ ! -f "$baseline" ]; then
    echo "keel abi: no baseline $baseline; write one with: $0 --update" >&2
    exit 1
fi

# abidiff's status is a bit set: 1 error, 2 usage, 4 interface changed,
# 8 a change abidiff itself knows to be incompatible (a removed symbol...).
# --harmless also reports what abidiff would otherwise judge harmless (a new
# enumerator, a renamed typedef), so any difference fails.  The report shown
# lists each changed type once (--leaf-changes-only); the full one, with
# every exported function each change reaches, is a command away.
status=0
abidiff --no-default-suppression --harmless --no-show-locs --leaf-changes-only \
    "$baseline" "$work/libkeel.abi" >"$work/report" 2>&1 || status=$?
if [ "$status" -eq 0 ]; then
    echo "keel abi: $lib matches $baseline"
    exit 0
fi
cat "$work/report"
echo
if [ $((status & 3)) -ne 0 ]; then
    echo "keel abi: abidiff failed (status $status)" >&2
    exit 1
fi
current="$(dirname "$lib")/libkeel.abi"
cp "$work/libkeel.abi" "$current"
if [ $((status & 8)) -ne 0 ]; then
    echo "keel abi: INCOMPATIBLE interface change against $baseline." >&2
else
    echo "keel abi: interface change against $baseline." >&2
    echo "  abidiff does not call it incompatible, but a changed size, member offset or" >&2
    echo "  virtual slot breaks existing hosts all the same: read the report." >&2
fi
echo "  Full report: abidiff --harmless $baseline $current" >&2
echo "  Not intended: undo it.  Intended: run '$0 --update', record the change in" >&2
echo "  CHANGELOG.md and the commit message, and when it breaks hosts built against" >&2
echo "  the baseline, raise the major version in CMakeLists.txt's project(), which" >&2
echo "  the SONAME follows (see abi/README.md)." >&2
exit 1
