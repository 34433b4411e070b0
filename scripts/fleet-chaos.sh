#!/usr/bin/env bash
# Lets a fleet live through trouble and compares at the end: the broker is killed and started again, with an empty memory
# or an old one, devices are killed, stopped for a while, and started again, the controller is stopped for a while, and
# damaged messages come in between. Meanwhile values are set one after the other. At the end each device must have what
# was answered as set last, and the controller's directory of each device must be that device's own.
# usage: fleet-chaos.sh [--build-dir DIR] [SECONDS]     60 seconds without a number
set -euo pipefail
cd "$(dirname "$0")/.."
exec python3 fleet/tests/chaos.py "$@"
