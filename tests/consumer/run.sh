#!/usr/bin/env bash
# Builds and runs the consumer project in one of the ways in which a user reaches the library.
# usage: run.sh cmake|pkg-config|static|subdirectory SOURCE_DIR BUILD_DIR SCRATCH_DIR COMPILER
set -euo pipefail
way=$1 source=$2 build=$3 scratch=$4/$1 compiler=$5
export CXX=$compiler CXXFLAGS=${CXXFLAGS:-}
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
fi

rm -rf "$scratch"
mkdir -p "$scratch/build"
# The project, and in it the first program of the README.
consumer=$scratch/consumer
cp -r "$source/tests/consumer" "$consumer"
awk '$0 == "```cpp" { on = 1; next } /^```/ && on { exit } on' "$source/README.md" >"$consumer/main.cpp"

# configure_and_build SOURCE BUILD TARGETS OPTION …
configure_and_build() {
    {
        # shellcheck disable=SC2086
        cmake -S "$1" -B "$2" -G Ninja "${@:4}" && cmake --build "$2" --target $3
    } >"$scratch/log" 2>&1 || { tail -30 "$scratch/log"; exit 1; }
}

# build_with_cmake OPTION …
build_with_cmake() {
    configure_and_build "$consumer" "$scratch/build" "consumer consumer_kit consumer_logging consumer_messages" "$@"
}

# install_from BUILD_DIR
install_from() {
    cmake --install "$1" --prefix "$scratch/prefix" >"$scratch/install.log"
    local headers
    headers=$(ls "$scratch/prefix/include")
    [ "$headers" = legacyif ] || { echo "unexpected among everybody's headers: $headers"; exit 1; }
    PKG_CONFIG_PATH=$(dirname "$(find "$scratch/prefix" -name legacyif.pc)")
    export PKG_CONFIG_PATH
}

# link_with_pkg_config MODULE SOURCE PROGRAM
link_with_pkg_config() {
    # shellcheck disable=SC2046,SC2086
    "$compiler" -std=c++20 $CXXFLAGS $(pkg-config --cflags "$1") "$consumer/$2" -o "$scratch/build/$3" \
        $(pkg-config --libs "$1") -Wl,-rpath,"$(pkg-config --variable=libdir "$1")"
}

build_with_pkg_config() {
    link_with_pkg_config legacyif main.cpp consumer
    link_with_pkg_config legacyifkit kit.cpp consumer_kit
    link_with_pkg_config orlek logging.cpp consumer_logging
    link_with_pkg_config legacyifpb messages.cpp consumer_messages
}

# expect PROGRAM PATTERN
expect() {
    local output
    output=$("$scratch/build/$1") || { echo "$1 ended with $?"; exit 1; }
    [[ $output == $2 ]] || { echo "unexpected output of $1: $output"; exit 1; }
}

run_all() {
    expect consumer upstairs
    expect consumer_kit 7
    expect consumer_logging "*Error*Consumer*logged*"
    expect consumer_messages 8080
}

case $way in
cmake)
    install_from "$build"
    build_with_cmake "-DCMAKE_PREFIX_PATH=$scratch/prefix"
    ;;
pkg-config)
    install_from "$build"
    build_with_pkg_config
    ;;
static)
    configure_and_build "$source" "$scratch/library" all -DBUILD_SHARED_LIBS=OFF -DLEGACYIF_BUILD_TESTS=OFF \
        -DLEGACYIF_BUILD_EXAMPLES=OFF
    install_from "$scratch/library"
    shared=$(find "$scratch/prefix" -name '*.so*')
    [ -z "$shared" ] || { echo "unexpected in a static build: $shared"; exit 1; }
    build_with_cmake "-DCMAKE_PREFIX_PATH=$scratch/prefix"
    run_all
    build_with_pkg_config
    ;;
subdirectory)
    build_with_cmake "-DLEGACYIF_SOURCE_DIR=$source" -DLEGACYIF_BUILD_TESTS=ON -DLEGACYIF_BUILD_EXAMPLES=ON
    ;;
esac
run_all
echo "The consumers built with $way run."
