#!/usr/bin/env bash
# Says how much of the libraries is reached, by the tests or by the fuzz targets: a page for each source below
# build/coverage/html-WHAT, and the figures. Fails below the share that is asked for, of lines for the tests and of
# functions for the fuzz targets, which replay their corpora for that.
# usage: coverage.sh [tests|fuzz [PERCENT]]     tests by default, of which 97 % are asked, and of fuzz 90 %
set -euo pipefail
cd "$(dirname "$0")/.."
what=${1:-tests}
programs=(tests/{net,orlek,cache,allocation_failure,legacyif,legacyifkit}_tests)
default=97
if [ "$what" = fuzz ]; then
    mapfile -t programs < <(sed -n 's|^fuzz_target(\([a-z_]*\).*)$|fuzz/fuzz_\1|p' fuzz/CMakeLists.txt)
    default=90
elif [ "$what" != tests ]; then
    grep '^# usage' "$0" >&2 && exit 2
fi
percent=${2:-$default}

./scripts/install-deps.sh gcovr
find build/coverage -name '*.gcda' -delete 2>/dev/null || true
./scripts/build.sh coverage "${programs[@]##*/}"
for program in "${programs[@]}"; do
    arguments=(--gtest_brief=1)
    [ "$what" = tests ] || arguments=("fuzz/corpus/${program#*/fuzz_}")
    "build/coverage/$program" "${arguments[@]}"
done

html=build/coverage/html-$what
mkdir -p "$html"
fail=()
[ "$what" != tests ] || fail=(--fail-under-line "$percent")
gcovr --root . build/coverage/{Legacy,Net,Orlek} "build/coverage/${programs[0]%/*}" \
    --filter 'include/(Legacy/If|Net|Orlek)/' --filter 'Legacy/src/If/' --filter 'Net/src/' --filter 'Orlek/src/' \
    --exclude-throw-branches --exclude-unreachable-branches -j "$(nproc)" \
    --html-details "$html/index.html" --json "build/coverage/$what.json" --output "build/coverage/$what.txt" \
    --print-summary "${fail[@]}"

# A function counts once, however many types it is made for: the place where it stands is reached or not.
python3 - "build/coverage/$what.json" "$([ "$what" = tests ] && echo 0 || echo "$percent")" <<'END'
import json
import sys

places = {}
for file in json.load(open(sys.argv[1]))["files"]:
    for function in file["functions"]:
        place = (file["file"], function["lineno"])
        runs, name = places.get(place, (0, function["name"]))
        places[place] = (runs + function["execution_count"], name)
missed = {place: name for place, (runs, name) in places.items() if runs == 0}
for (file, line), name in sorted(missed.items()):
    print(f"not reached: {file}:{line}: {name}")
share = 100 * (1 - len(missed) / len(places))
print(f"places of functions: {share:.1f}% ({len(places) - len(missed)} out of {len(places)})")
sys.exit(share < float(sys.argv[2]))
END
