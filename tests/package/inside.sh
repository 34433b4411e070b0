#!/usr/bin/env bash
# What run.sh does inside of the bare root.
set -euo pipefail
cd /try
apt-get install -y -qq --no-install-recommends ./*.deb g++ cmake make pkg-config >install.log 2>&1 ||
    { tail -40 install.log; exit 1; }

# expect PROGRAM
expect() {
    local output
    output=$("$1")
    [ "$output" = upstairs ] || { echo "unexpected output of $1: $output"; exit 1; }
}
# shellcheck disable=SC2046
c++ -std=c++20 app.cpp $(pkg-config --cflags --libs legacyif) -o with-pkg-config
expect ./with-pkg-config
cmake -S . -B with-cmake >cmake.log
cmake --build with-cmake >>cmake.log
expect with-cmake/app

# The libraries alone, as a device has them, with what they need and no more.
apt-get remove -y -qq liblegacyif-dev libboost-log1.81-dev >remove.log 2>&1
apt-get autoremove -y -qq >>remove.log 2>&1
expect ./with-pkg-config
echo "The README's program compiles and runs against the packages."
