#!/usr/bin/env bash
# Searches for inputs that break a promise, with clang's engine and the address and undefined-behaviour checks: one target,
# or each in turn. New inputs that reach new code are merged into the corpus, to be looked at before they are committed;
# a crash leaves its input in build/fuzz and ends the run.
# usage: fuzz.sh [TARGET|all] [SECONDS for each target, 60 by default]
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:-all}
seconds=${2:-60}

./scripts/build.sh fuzz
mapfile -t names < <(sed -n 's/^fuzz_target(\([a-z_]*\).*)$/\1/p' fuzz/CMakeLists.txt)
[ "$target" = all ] || names=("$target")
for name in "${names[@]}"; do
    program=build/fuzz/fuzz/fuzz_$name
    [ -x "$program" ] || { echo "There is no target $name; there are: $(sed -n 's/^fuzz_target(\([a-z_]*\).*/\1/p' fuzz/CMakeLists.txt | xargs)" >&2; exit 2; }
    found=build/fuzz/found/$name
    mkdir -p "$found"
    echo "== $name, $seconds s"
    "$program" -max_total_time="$seconds" -max_len=4096 -timeout=20 -rss_limit_mb=4096 -print_final_stats=1 \
        -artifact_prefix="build/fuzz/$name-" "$found" "fuzz/corpus/$name" 2>"build/fuzz/$name.log" ||
        { tail -40 "build/fuzz/$name.log" >&2; exit 1; }
    grep -E 'stat::number_of_executed_units|^#[0-9]+.*DONE' "build/fuzz/$name.log"
    "$program" -merge=1 -max_len=4096 "fuzz/corpus/$name" "$found" 2>>"build/fuzz/$name.log"
done
