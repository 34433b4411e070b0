#!/usr/bin/env bash
# Each statement of Discarded.cpp is warned of; those that are marked virtual by clang alone, since g++ sees no attribute
# there. usage: discarded.sh SOURCE COMPILER FLAG…
set -euo pipefail
source=$1
shift
statements=$(grep '^    .*;' "$source")
if ! "$1" --version | grep -q clang; then
    statements=$(grep -v '// virtual$' <<<"$statements")
fi
wanted=$(wc -l <<<"$statements")
warned=$("$@" -std=c++20 -fsyntax-only "$source" 2>&1 | grep -c 'warning: .*nodiscard') || true
echo "$warned of $wanted statements are warned of"
[ "$warned" -eq "$wanted" ]
