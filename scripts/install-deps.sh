#!/usr/bin/env bash
# Installs what building, testing and running this project needs on Debian 12.
# Quick when nothing is missing; safe to run again at any time.
# usage: install-deps.sh [FURTHER PACKAGE …]
set -euo pipefail

packages=(
    g++ clang cmake ninja-build pkg-config git ccache python3
    libboost1.81-dev libboost-log1.81-dev libboost-url1.81-dev libboost-json1.81-dev libcli11-dev
    libprotobuf-dev protobuf-compiler
    libgtest-dev libgmock-dev libbenchmark-dev nlohmann-json3-dev valgrind
    gettext gdb
    mosquitto libmosquitto-dev libssl-dev libedit-dev
    libclang-rt-14-dev clang-format clang-tidy
    "$@"
)

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    [ "$status" = "install ok installed" ] || missing+=("$package")
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
fi

echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
