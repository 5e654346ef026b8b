#!/usr/bin/env bash
# The main job: build the release preset and run the vek tool on the
# bundled sample (a broadcast wave made by samples/make_broadcast_wave.py).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target vek_tool
vek=build/release/bin/vek
sample=samples/broadcast.wav
echo "\$ vek probe $sample"
"$vek" probe "$sample"
echo "\$ vek probe --json $sample"
"$vek" probe --json "$sample"
