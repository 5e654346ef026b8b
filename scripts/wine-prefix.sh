#!/usr/bin/env bash
# Makes sure the Wine prefix the Windows tests run in exists and starts,
# without the Mono and Gecko install prompts a first start would show.
# Exits non-zero with the reason and Wine's own output when it cannot.
set -uo pipefail

export WINEDEBUG=${WINEDEBUG:--all}
# The tests need neither .NET nor the HTML engine: disabling both keeps the
# first start from offering to download them.
export WINEDLLOVERRIDES="mscoree,mshtml="
prefix=${WINEPREFIX:-$HOME/.wine}
log=$(mktemp)
trap 'rm -f "$log"' EXIT

fail() {
    echo "wine-prefix: $*" >&2
    if [ -s "$log" ]; then
        echo "---- Wine output" >&2
        tail -n 40 "$log" >&2
    fi
    exit 1
}

command -v wine >/dev/null || fail "the wine command is missing (install wine and wine64)"
[ -e "$prefix/system.reg" ] || echo "wine-prefix: creating $prefix (first start, takes a while)"

# Creates the prefix when absent, brings it up to date otherwise.
timeout 600 wineboot --init >"$log" 2>&1
status=$?
[ "$status" -eq 124 ] && fail "wineboot --init did not finish within 600 s"
[ "$status" -eq 0 ] || fail "wineboot --init failed with status $status"

# wineboot returns before the prefix is written out: wait for the server to
# finish. Other Wine programs of the same prefix keep it running; do not
# wait on them for ever.
timeout 120 wineserver -w >>"$log" 2>&1
status=$?
if [ "$status" -eq 124 ]; then
    echo "wine-prefix: wineserver still busy after 120 s (other Wine programs running?); going on" >&2
elif [ "$status" -ne 0 ]; then
    fail "wineserver -w failed with status $status"
fi

[ -e "$prefix/system.reg" ] || fail "$prefix/system.reg is missing after wineboot"
# A prefix that exists but cannot run a program is no use either.
out=$(timeout 120 wine cmd /c echo wine-ok 2>>"$log" | tr -d '\r')
[ "$out" = "wine-ok" ] || fail "wine cannot run a program in $prefix (got '$out')"
echo "wine-prefix: $prefix ready"
