#!/usr/bin/env bash
# Builds the libraries' tests for another kind of machine and runs them here: s390x, which has the other byte order,
# under emulation, or i386, which has narrow pointers and sizes. A Debian root of that machine, about 450 MB, is unpacked
# below build/ the first time.
# usage: cross-test.sh s390x|i386
set -euo pipefail
cd "$(dirname "$0")/.."
machine=${1:-}
case $machine in
s390x) triple=s390x-linux-gnu ;;
i386) triple=i686-linux-gnu ;;
*) sed -n '2,5s/^# //p' "scripts/cross-test.sh" >&2 && exit 2 ;;
esac
./scripts/install-deps.sh mmdebstrap qemu-user-static "g++-${triple%%-*}-linux-gnu"

root=$PWD/build/$machine-root
if [ ! -d "$root" ]; then
    mkdir -p build
    rm -rf "$root.part"
    packages=libstdc++-12-dev,libboost-log1.81-dev,libboost-url1.81-dev,libboost-json1.81-dev
    packages+=,libprotobuf-dev,libgtest-dev,libgmock-dev
    mmdebstrap --quiet --variant=extract "--architectures=$machine" "--include=$packages" \
        bookworm "$root.part" "deb http://deb.debian.org/debian bookworm main"
    mv "$root.part" "$root"
fi

libraries=$machine-linux-gnu
case $machine in
s390x) run=(qemu-s390x-static -L "$root") ;;
i386) run=("$root/lib/ld-linux.so.2" --library-path "$root/usr/lib/$libraries:$root/lib/$libraries") ;;
esac
cmake -S . -B "build/$machine" -G Ninja -DCMAKE_BUILD_TYPE=Release \
    -DLEGACYIF_BUILD_EXAMPLES=OFF -DLEGACYIF_BUILD_TOOLS=OFF -DLEGACYIF_BUILD_FLEET=OFF -DCMAKE_COMPILE_WARNING_AS_ERROR=ON \
    -DCMAKE_SYSTEM_NAME=Linux "-DCMAKE_SYSTEM_PROCESSOR=$machine" "-DCMAKE_CXX_COMPILER=$triple-g++" \
    "-DCMAKE_SYSROOT=$root" "-DCMAKE_FIND_ROOT_PATH=$root" "-DCMAKE_LIBRARY_ARCHITECTURE=$libraries" \
    -DCMAKE_FIND_ROOT_PATH_MODE_PROGRAM=NEVER -DCMAKE_FIND_ROOT_PATH_MODE_LIBRARY=ONLY \
    -DCMAKE_FIND_ROOT_PATH_MODE_INCLUDE=ONLY -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=ONLY \
    "-DCMAKE_CROSSCOMPILING_EMULATOR=$(IFS=';'; echo "${run[*]}")" "-DProtobuf_PROTOC_EXECUTABLE=$(command -v protoc)"
tests=(orlek_tests net_tests legacyif_tests legacyifkit_tests)
cmake --build "build/$machine" --target legacyif_orlek_tests legacyif_net_tests legacyif_tests legacyifkit_tests
for test in "${tests[@]}"; do
    "${run[@]}" "build/$machine/tests/$test" --gtest_brief=1
done
