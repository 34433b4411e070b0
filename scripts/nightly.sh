#!/usr/bin/env bash
# What takes too long for every change: run it once a night, or before a release. Each part is a script of its own that
# anybody can run alone.
# usage: nightly.sh [PART …]     the parts, all by default: packages machines search fleet page
set -euo pipefail
cd "$(dirname "$0")/.."

# The Debian packages, and a program in a bare root that is built against them.
packages() {
    ./scripts/install-deps.sh mmdebstrap
    ./scripts/package.sh
    ./tests/package/run.sh build/packages
}

# All tests under the thread checks, with the checks of the standard library, with the other byte order, and with narrow
# pointers; and every float there is.
machines() {
    ./scripts/build.sh release legacyif_tests
    LEGACYIF_ALL_FLOATS=1 ./build/release/tests/legacyif_tests --gtest_filter='FastPath.TakesFloats*'
    ./scripts/test.sh tsan
    ./scripts/test.sh debugstl
    ./scripts/cross-test.sh s390x
    ./scripts/cross-test.sh i386
}

# What the tests and the fuzz targets reach, inputs that nobody has thought of, and small faults that no test notices.
search() {
    ./scripts/coverage.sh tests
    ./scripts/coverage.sh fuzz
    ./scripts/fuzz.sh all 3600
    ./scripts/mutate.py
}

# A fleet in trouble for ten minutes, and one under load.
fleet() {
    ./scripts/fleet-chaos.sh 600
    ./scripts/fleet-load.sh
}

# The fleet's page in a browser, which is too large to be installed for every change.
page() {
    ./scripts/install-deps.sh chromium chromium-driver
    ./scripts/build.sh release legacyif-device legacyif-fleet
    ./fleet/tests/page_test.py build/release/fleet
}

parts=("$@")
if [ ${#parts[@]} -eq 0 ]; then
    parts=(packages machines search fleet page)
fi
for part in "${parts[@]}"; do
    case $part in
    packages | machines | search | fleet | page) ;;
    *) grep '^# usage' "$0" >&2 && exit 2 ;;
    esac
    printf '\n== %s (%s s)\n' "$part" "$SECONDS"
    "$part"
done
echo "All of it passed after $SECONDS s."
