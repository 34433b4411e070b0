#!/usr/bin/env bash
# Builds and runs the consumer project in one of the ways in which a user reaches the library.
# usage: run.sh cmake|pkg-config|subdirectory SOURCE_DIR BUILD_DIR SCRATCH_DIR COMPILER
set -euo pipefail
way=$1 source=$2 build=$3 scratch=$4/$1 compiler=$5
consumer=$source/tests/consumer
export CXX=$compiler CXXFLAGS=${CXXFLAGS:-}

rm -rf "$scratch"
mkdir -p "$scratch/build"
if [ "$way" != subdirectory ]; then
    cmake --install "$build" --prefix "$scratch/prefix" >"$scratch/install.log"
    headers=$(ls "$scratch/prefix/include")
    [ "$headers" = legacyif ] || { echo "unexpected among everybody's headers: $headers"; exit 1; }
fi

# configure_and_build OPTION …
configure_and_build() {
    {
        cmake -S "$consumer" -B "$scratch/build" -G Ninja "$@" &&
            cmake --build "$scratch/build" --target consumer consumer_kit consumer_logging consumer_messages
    } >"$scratch/log" 2>&1 || { tail -30 "$scratch/log"; exit 1; }
}

# build_with_pkg_config MODULE SOURCE PROGRAM
build_with_pkg_config() {
    # shellcheck disable=SC2046,SC2086
    "$compiler" -std=c++20 $CXXFLAGS $(pkg-config --cflags "$1") "$consumer/$2" -o "$scratch/build/$3" \
        $(pkg-config --libs "$1") -Wl,-rpath,"$(pkg-config --variable=libdir "$1")"
}

case $way in
cmake)
    configure_and_build "-DCMAKE_PREFIX_PATH=$scratch/prefix"
    ;;
pkg-config)
    PKG_CONFIG_PATH=$(dirname "$(find "$scratch/prefix" -name legacyif.pc)")
    export PKG_CONFIG_PATH
    build_with_pkg_config legacyif main.cpp consumer
    build_with_pkg_config legacyifkit kit.cpp consumer_kit
    build_with_pkg_config orlek logging.cpp consumer_logging
    build_with_pkg_config legacyifpb messages.cpp consumer_messages
    ;;
subdirectory)
    configure_and_build "-DLEGACYIF_SOURCE_DIR=$source" -DCMAKE_BUILD_TYPE=Release \
        -DLEGACYIF_BUILD_TESTS=ON -DLEGACYIF_BUILD_EXAMPLES=ON
    ;;
esac

# expect PROGRAM PATTERN
expect() {
    local output
    output=$("$scratch/build/$1") || { echo "$1 ended with $?"; exit 1; }
    [[ $output == $2 ]] || { echo "unexpected output of $1: $output"; exit 1; }
}
expect consumer "too long"
expect consumer_kit 7
expect consumer_logging "*Error*Consumer*logged*"
expect consumer_messages 8080
echo "The consumers built with $way run."
