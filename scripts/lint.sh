#!/usr/bin/env bash
# Runs the chosen clang-tidy checks over the library sources, on the compile commands of the clang preset.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
mkdir -p build
cmake --preset clang >build/clang.log || { cat build/clang.log; exit 1; }
cmake --build --preset clang --target legacyif_pb >/dev/null # the generated headers that sources include
git ls-files '*/src/*.cpp' | xargs -P "$(nproc)" -n 4 clang-tidy -p build/clang --quiet 2>/dev/null
