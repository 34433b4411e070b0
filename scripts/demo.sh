#!/usr/bin/env bash
# Installs what is needed, builds, and runs the main example: this machine as a networked device.
set -euo pipefail
cd "$(dirname "$0")/.."
echo "Building (the first time takes a few minutes) …"
./scripts/build.sh release legacyif_host_network >build-demo.log 2>&1 || { tail -40 build-demo.log; exit 1; }
rm -f build-demo.log
exec ./build/release/examples/host_network "$@"
