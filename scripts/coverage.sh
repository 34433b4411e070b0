#!/usr/bin/env bash
# Says how much of the libraries the tests reach: a page for each source below build/coverage/html, and the figures for
# lines and branches. Fails below the share of lines that is asked for.
# usage: coverage.sh [PERCENT of lines, 97 by default]
set -euo pipefail
cd "$(dirname "$0")/.."
percent=${1:-97}
./scripts/install-deps.sh gcovr
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
./scripts/build.sh coverage legacyif_tests orlek_tests net_tests
for program in orlek_tests net_tests legacyif_tests; do
    "build/coverage/tests/$program" --gtest_brief=1
done
mkdir -p build/coverage/html
gcovr --root . --object-directory build/coverage --filter 'include/(Legacy/If|Net|Orlek)/' \
    --filter 'Legacy/src/If/' --filter 'Net/src/' --filter 'Orlek/src/' \
    --exclude-throw-branches --exclude-unreachable-branches -j "$(nproc)" \
    --html-details build/coverage/html/index.html --print-summary --fail-under-line "$percent" --output build/coverage/table.txt
