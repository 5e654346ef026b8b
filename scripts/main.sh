#!/usr/bin/env bash
# The main job: build the release preset and run the vek tool on the
# bundled sample.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target vek_tool
vek=build/release/bin/vek
sample=samples/timecodes.txt
echo "== vek timecode on $sample"
while IFS= read -r line; do
    case "$line" in ''|'#'*) continue ;; esac
    echo "\$ vek timecode $line"
    # shellcheck disable=SC2086
    "$vek" timecode $line
done < "$sample"
