#!/usr/bin/env bash
# Lets another tool, ajv, judge values by our schemas. Skipped (status 77) without node, npm or a way to the registry.
# usage: run.sh CASES_PROGRAM WORK_DIR
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
program=$1
work=$2
skip() {
    echo "skipped: $*"
    exit 77
}
command -v node >/dev/null || skip "node is not installed"
command -v npm >/dev/null || skip "npm is not installed"
mkdir -p "$work"
cp "$here"/{package.json,package-lock.json,check.mjs} "$work"
cd "$work"
if ! cmp -s package-lock.json installed-lock.json; then
    timeout 120 npm ci --no-audit --no-fund --loglevel=error >npm.log 2>&1 || skip "npm cannot install ajv, see $work/npm.log"
    cp package-lock.json installed-lock.json
fi
"$program" | node check.mjs
