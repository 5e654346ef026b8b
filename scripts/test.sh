#!/usr/bin/env bash
# The whole suite: every preset (native release, ASan+UBSan, TSan, the
# Windows build under Wine, the libFuzzer targets for a short fixed time).
# Every preset runs even when an earlier one fails (a configure or build
# failure counts as that preset's failure); the summary at the end names each
# preset's result and the script exits non-zero when any failed.
set -uo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh || { echo "installing dependencies failed"; exit 1; }

read -r -a presets <<< "${VEK_PRESETS:-release asan tsan windows fuzz}"
export WINEDEBUG=-all
export CCACHE_DIR=${CCACHE_DIR:-$HOME/.cache/ccache}
# Scratch builds of the tree (tests/package) then share cache entries with
# the preset builds even where debug info is on.
export CCACHE_NOHASHDIR=1

summary=()
failed=0
passed_tests=0
failed_tests=0
mkdir -p build
for preset in "${presets[@]}"; do
    result=passed
    ctest_line=""
    if [ "$preset" = windows ] && ! bash scripts/wine-prefix.sh; then
        result="FAILED (Wine prefix)"
    elif ! { echo "==== preset $preset: configure"; cmake --preset "$preset" >/dev/null; }; then
        result="FAILED (configure)"
    elif ! { echo "==== preset $preset: build"; cmake --build --preset "$preset"; }; then
        result="FAILED (build)"
    else
        echo "==== preset $preset: test"
        log=build/$preset-ctest.log
        ctest --preset "$preset" --no-tests=error 2>&1 | tee "$log"
        status=${PIPESTATUS[0]}
        # CTest's closing line: "N% tests passed, F tests failed out of T".
        ctest_line=$(grep -E '^[0-9]+% tests passed, [0-9]+ tests? failed out of [0-9]+' "$log" | tail -n 1)
        rm -f "$log"
        if [[ $ctest_line =~ ([0-9]+)\ tests?\ failed\ out\ of\ ([0-9]+) ]]; then
            failed_tests=$((failed_tests + BASH_REMATCH[1]))
            passed_tests=$((passed_tests + BASH_REMATCH[2] - BASH_REMATCH[1]))
        fi
        [ "$status" -eq 0 ] || result="FAILED (tests)"
    fi
    [ "$result" = passed ] || failed=1
    summary+=("==== $preset: $result")
    [ -z "$ctest_line" ] || summary+=("$ctest_line")
done

echo "==== summary"
printf '%s\n' "${summary[@]}"
echo "tests: $passed_tests passed, $failed_tests failed"
exit "$failed"
