#!/usr/bin/env bash
# Installs the Debian packages in a bare root, compiles the README's program there against them in each way that the
# README tells, and runs it. Nothing of the root is left.
# usage: run.sh PACKAGES_DIR
set -euo pipefail
packages=$(realpath "$1")
here=$(realpath "$(dirname "$0")")
readme=$(realpath "$here/../../README.md")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# block LANGUAGE: the first block of code in that language
block() {
    awk -v fence="\`\`\`$1" '$0 == fence { on = 1; next } /^```/ && on { exit } on' "$readme"
}
mkdir -p "$work/try"
cp "$packages"/*.deb "$here/inside.sh" "$work/try"
rm -f "$work"/try/*-dbgsym_*.deb
block cpp >"$work/try/app.cpp"
{
    printf 'cmake_minimum_required(VERSION 3.25)\nproject(App LANGUAGES CXX)\nadd_executable(app app.cpp)\n'
    block cmake
} >"$work/try/CMakeLists.txt"

# shellcheck disable=SC2016 # $1 is for the hook to fill in
mmdebstrap --quiet --variant=apt --format=null \
    "--customize-hook=copy-in $work/try /" '--customize-hook=chroot "$1" bash /try/inside.sh' \
    bookworm /dev/null "deb http://deb.debian.org/debian bookworm main"
