# quiet.sh - sourced by keel's scripts.
#
# quiet CMD...: runs a configure or build step quietly; its output is shown
# only when it fails.
quiet() {
    local log
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        return 1
    fi
    rm -f "$log"
}
