#!/usr/bin/env bash
# Builds and runs the consumer project in one of the ways in which a user reaches the library.
# usage: run.sh cmake|pkg-config|subdirectory SOURCE_DIR BUILD_DIR SCRATCH_DIR COMPILER
set -euo pipefail
way=$1 source=$2 build=$3 scratch=$4/$1 compiler=$5
consumer=$source/tests/consumer
export CXX=$compiler CXXFLAGS=${CXXFLAGS:-}

rm -rf "$scratch"
mkdir -p "$scratch"
if [ "$way" != subdirectory ]; then
    cmake --install "$build" --prefix "$scratch/prefix" >"$scratch/install.log"
fi

case $way in
cmake)
    cmake -S "$consumer" -B "$scratch/build" -G Ninja -DCMAKE_PREFIX_PATH="$scratch/prefix" >"$scratch/log"
    cmake --build "$scratch/build" >>"$scratch/log"
    output=$("$scratch/build/consumer")
    ;;
pkg-config)
    file=$(find "$scratch/prefix" -name legacyif.pc)
    PKG_CONFIG_PATH=$(dirname "$file")
    export PKG_CONFIG_PATH
    libs=$(pkg-config --variable=libdir legacyif)
    # shellcheck disable=SC2046,SC2086
    "$compiler" -std=c++20 $CXXFLAGS $(pkg-config --cflags legacyif) "$consumer/main.cpp" -o "$scratch/consumer" \
        $(pkg-config --libs legacyif) -Wl,-rpath,"$libs"
    output=$("$scratch/consumer")
    ;;
subdirectory)
    cmake -S "$consumer" -B "$scratch/build" -G Ninja -DLEGACYIF_SOURCE_DIR="$source" -DCMAKE_BUILD_TYPE=Release \
        >"$scratch/log"
    cmake --build "$scratch/build" --target consumer >>"$scratch/log" || { tail -30 "$scratch/log"; exit 1; }
    output=$("$scratch/build/consumer")
    ;;
esac

[ "$output" = "too long" ] || { echo "unexpected output: $output"; exit 1; }
echo "The consumer built with $way runs."
