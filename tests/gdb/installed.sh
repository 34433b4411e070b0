#!/usr/bin/env bash
# Installs a build without its symbols and holds what gdb shows with it against the pages.
# usage, from the top of the tree: installed.sh BUILD_DIR PREFIX PROGRAM
set -euo pipefail
build=$1 prefix=$2 program=$3
command -v gdb >/dev/null || { echo "gdb is not installed: nothing was tested"; exit 77; }

rm -rf "$prefix"
cmake --install "$build" --prefix "$prefix" --strip >/dev/null
library=$(find "$prefix" -name liblegacyif.so)
LD_LIBRARY_PATH=$(dirname "$library")
export LD_LIBRARY_PATH
for page in docs/guide/debugging.md tests/gdb/printers.md; do
    python3 tests/guide/pages.py check "$page" "$program" \
        -iex "add-auto-load-scripts-directory $prefix/share/gdb/auto-load" \
        -iex "add-auto-load-safe-path $prefix/share/gdb/auto-load"
done
