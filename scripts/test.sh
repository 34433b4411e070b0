#!/usr/bin/env bash
# Installs what is needed, builds, and runs all tests. The preset may be named: release (the default), dev, asan, tsan
# or clang.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
./scripts/build.sh "$preset"
ctest --preset "$preset" -j "$(nproc)"
