#!/usr/bin/env bash
# Compares what a shared library exports with the list that callers were promised: a name that is gone breaks them, a new
# one becomes a promise. The list leaves out the version that all names bear. With --update the list is written anew, to be
# looked at before it is committed.
# usage: symbols.sh LIBRARY LIST [--update]
set -euo pipefail
library=$1 list=$2
exported() { nm -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | LC_ALL=C sort -u; }

if [ "${3:-}" = --update ]; then
    exported >"$list"
    exit 0
fi
if ! difference=$(diff <(LC_ALL=C sort -u "$list") <(exported)); then
    echo "$difference" | grep '^[<>]' | c++filt
    echo "The exported names differ from $list (< promised, > exported). If that is meant: $0 $library $list --update"
    exit 1
fi
