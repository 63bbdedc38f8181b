#!/usr/bin/env bash
# Checks keel the way a host team takes it up.  Usage:
#   tools/package-check.sh install BUILD_DIR
#       installs BUILD_DIR into a temporary prefix, builds examples/host
#       against it with find_package and runs it, then builds and runs a
#       one-file host with pkg-config's flags
#   tools/package-check.sh embed
#       embeds the source tree with add_subdirectory in a host project where
#       GoogleTest, Google Benchmark and libpng cannot be found, checks that
#       no test, benchmark or example target comes along, builds and runs the
#       host and installs it (libkeel.so must come with it)
# Prints what it does; exits non-zero at the first thing that is not so.
set -euo pipefail
src=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/keel-package-XXXXXX")
trap 'rm -rf "$work"' EXIT
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

case "${1:-}" in
install)
    build=$(cd "${2:?usage: $0 install BUILD_DIR}" && pwd)
    cmake --install "$build" --prefix "$work/prefix" >/dev/null
    echo "installed into a temporary prefix"

    cmake -S "$src/examples/host" -B "$work/host" -DCMAKE_PREFIX_PATH="$work/prefix" \
        "${launcher[@]}" >/dev/null
    cmake --build "$work/host" >/dev/null
    "$work/host/keel-host"

    cat >"$work/one.cpp" <<'CPP'
#include <keel/keel.h>
#include <cstdio>
int main() {
    SYS_StringBase text = SYS_Convert(SYS_UnitMils).Base2Str(19050L * 25);
    std::printf("one-file host: keel %s, 25 mil reads %s\n", KEEL_VERSION_STRING, text.GetString());
    return text == "25" ? 0 : 1;
}
CPP
    flags=$(PKG_CONFIG_PATH="$work/prefix/lib/pkgconfig:$work/prefix/lib/$(gcc -dumpmachine)/pkgconfig" \
        pkg-config --cflags --libs keel)
    g++ -std=c++17 "$work/one.cpp" -o "$work/one" $flags
    LD_LIBRARY_PATH="$work/prefix/lib" "$work/one"
    ;;
embed)
    mkdir -p "$work/embed"
    cat >"$work/embed/CMakeLists.txt" <<CMAKE
cmake_minimum_required(VERSION 3.25)
project(embedding_host LANGUAGES CXX)
add_subdirectory("$src" keel)
add_executable(embedding-host main.cpp)
target_link_libraries(embedding-host PRIVATE keel::keel)
install(TARGETS embedding-host)
CMAKE
    cat >"$work/embed/main.cpp" <<'CPP'
#include <keel/keel.h>
#include <cstdio>
int main() {
    SYS_Box box(SYS_Point(0, 0), SYS_Point(10, 20));
    std::printf("embedding host: keel %s, a box %ld wide\n", KEEL_VERSION_STRING,
                static_cast<long>(box.GetWidth()));
    return box.GetWidth() == 10 ? 0 : 1;
}
CPP
    cmake -S "$work/embed" -B "$work/embed/build" "${launcher[@]}" --no-warn-unused-cli \
        -DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON \
        -DCMAKE_DISABLE_FIND_PACKAGE_PNG=ON >/dev/null
    echo "configured with GoogleTest, Google Benchmark and libpng unavailable"
    targets=$(cmake --build "$work/embed/build" --target help)
    extra=$(echo "$targets" | grep -E -o 'keel_[a-z]+_test_[a-z_]+|keel-bench|keel-demo|keel_raster' \
        | sort -u || true)
    if [ -n "$extra" ]; then
        echo "embedding brings targets a host does not want:" $extra >&2
        exit 1
    fi
    echo "targets: keel, keel-mdb and the host's own; no test, benchmark or example"
    cmake --build "$work/embed/build" -j2 >/dev/null
    "$work/embed/build/embedding-host"
    cmake --install "$work/embed/build" --prefix "$work/prefix" >/dev/null
    ls "$work/prefix"/lib*/libkeel.so.* >/dev/null
    echo "the host's install carries libkeel.so"
    ;;
*)
    echo "usage: $0 install BUILD_DIR | embed" >&2
    exit 2
    ;;
esac
