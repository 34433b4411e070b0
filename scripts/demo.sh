#!/usr/bin/env bash
# Installs what is needed, builds, and runs the main example: this machine as a networked device. Without arguments it
# goes on with the command on the files that the example has written.
set -euo pipefail
cd "$(dirname "$0")/.."
echo "Building (the first time takes a few minutes) …"
./scripts/build.sh release legacyif_host_network legacyif_command >build-demo.log 2>&1 || { tail -40 build-demo.log; exit 1; }
rm -f build-demo.log
example=./build/release/examples/host_network
if [ $# -gt 0 ]; then
    exec "$example" "$@"
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp build/release/tools/legacyif "$work"
"$example" --file "$work/device.rec"
cd "$work"

# run ARGUMENT…: the command as one would type it, and the first lines of what it says; findings are no failure
run() {
    printf '\n$ legacyif'
    printf ' %s' "$@"
    printf '\n'
    { ./legacyif "$@" || [ $? = 1 ]; } 2>&1 | sed -n 1,12p
}
run get device.rec host/hostname
run show device.rec --schema device.rec.schema.json
run check device.rec --schema device.rec.schema.json
