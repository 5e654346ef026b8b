#!/usr/bin/env bash
# The whole suite: every preset (native release, ASan+UBSan, TSan, the
# Windows build under Wine, the libFuzzer targets for a short fixed time).
# Stops at the first failing configuration and exits non-zero.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/install-deps.sh

presets=(${VEK_PRESETS:-release asan tsan windows fuzz})
export WINEDEBUG=-all
export CCACHE_DIR=${CCACHE_DIR:-$HOME/.cache/ccache}

# The first Wine start creates its prefix; do it once, quietly, up front.
if [[ " ${presets[*]} " == *" windows "* ]]; then
    wineboot --init >/dev/null 2>&1 || true
fi

summary=()
for preset in "${presets[@]}"; do
    echo "==== preset $preset: configure"
    cmake --preset "$preset" >/dev/null
    echo "==== preset $preset: build"
    cmake --build --preset "$preset"
    echo "==== preset $preset: test"
    if ctest --preset "$preset" --no-tests=error; then
        summary+=("$preset: passed")
    else
        summary+=("$preset: FAILED")
        printf '%s\n' "${summary[@]}"
        exit 1
    fi
done
printf '%s\n' "${summary[@]}"
