#!/usr/bin/env bash
# Long fuzzing: scripts/fuzz.sh SECONDS [TARGET...]
#
# Runs every libFuzzer target (or the named ones: UriFuzz, vek_UriFuzz or Uri)
# for SECONDS each, two at a time. Each target keeps its corpus across runs in
# fuzz/work/<target>/, seeded from fuzz/corpus/<target>/ when that exists (the
# seeds are read, never written). Crashing inputs go to fuzz/crashes/<target>/
# and each run's output to fuzz/work/<target>.log. Prints executions, exec/s
# and the result per target; exits non-zero when any target failed.
set -uo pipefail
cd "$(dirname "$0")/.."

usage() {
    echo "usage: scripts/fuzz.sh SECONDS [TARGET...]" >&2
    exit 2
}
[ $# -ge 1 ] || usage
duration=$1
shift
[[ $duration =~ ^[1-9][0-9]*$ ]] || usage
parallel=${VEK_FUZZ_PARALLEL:-2}

targets=()
if [ $# -eq 0 ]; then
    for source in fuzz/*Fuzz.cpp; do
        name=$(basename "$source" .cpp)
        targets+=("$name")
    done
else
    for arg in "$@"; do
        name=${arg#vek_}
        [[ $name == *Fuzz ]] || name=${name}Fuzz
        if [ ! -f "fuzz/$name.cpp" ]; then
            echo "fuzz.sh: no fuzz target '$arg' (fuzz/$name.cpp is missing)" >&2
            exit 2
        fi
        targets+=("$name")
    done
fi

bash scripts/install-deps.sh || exit 1
cmake --preset fuzz >/dev/null || { echo "fuzz.sh: configure failed" >&2; exit 1; }
build_targets=()
for name in "${targets[@]}"; do build_targets+=(--target "vek_$name"); done
cmake --build --preset fuzz "${build_targets[@]}" || { echo "fuzz.sh: build failed" >&2; exit 1; }

# Undefined behaviour is a finding too, not a warning to scroll past.
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}

run_target() {
    local name=$1
    local work=fuzz/work/$name crashes=fuzz/crashes/$name
    mkdir -p "$work" "$crashes"
    local seeds=()
    [ -d "fuzz/corpus/$name" ] && seeds=("fuzz/corpus/$name")
    # -timeout: one input running this long counts as a hang (the default
    # is twenty minutes).
    "build/fuzz/bin/vek_$name" -max_total_time="$duration" -print_final_stats=1 -max_len=4096 \
        -rss_limit_mb=2048 -timeout=30 -artifact_prefix="$crashes/" "$work" "${seeds[@]}" \
        >"fuzz/work/$name.log" 2>&1
    echo $? >"fuzz/work/$name.status"
}

echo "== fuzzing ${#targets[@]} target(s) for ${duration}s each, $parallel at a time"
running=0
for name in "${targets[@]}"; do
    if [ "$running" -ge "$parallel" ]; then
        wait -n
        running=$((running - 1))
    fi
    echo "   start $name"
    rm -f "fuzz/work/$name.status"
    run_target "$name" &
    running=$((running + 1))
done
wait

failed=0
printf '%-22s %14s %10s  %s\n' target executions exec/s result
for name in "${targets[@]}"; do
    log=fuzz/work/$name.log
    status=$(cat "fuzz/work/$name.status" 2>/dev/null || echo missing)
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log" | tail -n 1)
    if [ "$status" = 0 ]; then
        result=passed
    else
        failed=1
        artifact=$(sed -n 's/.*Test unit written to //p' "$log" | tail -n 1)
        result="FAILED (exit $status${artifact:+, input $artifact}; see $log)"
    fi
    printf '%-22s %14s %10s  %s\n' "$name" "${executions:-?}" "${rate:-?}" "$result"
done
exit "$failed"
