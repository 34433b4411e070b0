#!/usr/bin/env bash
# Configures and builds one preset, after installing what is missing.
# usage: build.sh PRESET [TARGET …]
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift

./scripts/install-deps.sh
if command -v ccache >/dev/null && [ -z "${CMAKE_CXX_COMPILER_LAUNCHER:-}" ]; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
mkdir -p build
cmake --preset "$preset" >"build/$preset.log" || { cat "build/$preset.log"; exit 1; }
targets=()
for target in "$@"; do
    targets+=(--target "$target")
done
cmake --build --preset "$preset" "${targets[@]}"
