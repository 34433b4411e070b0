#!/usr/bin/env bash
# Makes the reference out of the headers and the pages in docs/, and fails on any warning: build/doc/html/index.html.
# Diagrams of classes are in it where graphviz is installed.
# usage: docs.sh [--without-diagrams] [OUTPUT_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
have_dot=NO
if [ "${1:-}" = --without-diagrams ]; then
    shift
elif command -v dot >/dev/null; then
    have_dot=YES
fi
output=${1:-build/doc}
command -v doxygen >/dev/null || ./scripts/install-deps.sh doxygen

mkdir -p "$output"
{
    cat docs/Doxyfile
    echo "OUTPUT_DIRECTORY = $output"
    echo "HAVE_DOT = $have_dot"
} | doxygen -
echo "The reference is in $output/html/index.html."
