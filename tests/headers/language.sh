#!/usr/bin/env bash
# What a program is told that is built for an older language or without run-time types: for each public header either
# nothing, since it works, or first of all what is missing.
# usage: language.sh INCLUDE_DIR COMPILER
set -euo pipefail
cd "$1"
compiler=$2
wrong=0
while read -r option message; do
    told=0
    for header in $(find . -name '*.h' | LC_ALL=C sort); do
        errors=$("$compiler" -std=c++20 "$option" -I. -fsyntax-only -Wfatal-errors -x c++ "$header" 2>&1) && continue
        told=$((told + 1))
        if ! grep -q -m1 "error: .*$message" <<<"$errors"; then
            echo "$header with $option:" && grep -m1 error: <<<"$errors" || true
            wrong=1
        fi
    done
    [ $told -gt 50 ] || { echo "$option: only $told headers refuse it"; wrong=1; }
done <<'END'
-std=c++17 need C++20
-fno-rtti need run-time type information
END
exit $wrong
