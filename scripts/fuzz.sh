#!/usr/bin/env bash
# Long fuzzing run: every target for the given number of seconds (default 600).
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-600}
bash scripts/install-deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
for target in build/fuzz/bin/vek_*Fuzz; do
    name=$(basename "$target")
    name=${name#vek_}
    mkdir -p "build/fuzz/corpus/$name"
    seeds=()
    [ -d "fuzz/corpus/$name" ] && seeds=("fuzz/corpus/$name")
    echo "== $name for ${seconds}s"
    "$target" -max_total_time="$seconds" -max_len=4096 "build/fuzz/corpus/$name" "${seeds[@]}"
done
