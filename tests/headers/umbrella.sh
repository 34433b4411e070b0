#!/usr/bin/env bash
# The header that includes everything includes everything: all public headers of the library but the two that cost most.
# usage: umbrella.sh INCLUDE_DIR
set -euo pipefail
cd "$1"
missing=0
for header in Legacy/If/*.h; do
    case $header in
    */GenericContainerImpl.h | */MessageConversions.h) wanted=1 ;;
    *) wanted=0 ;;
    esac
    found=0
    grep -q "^#include <$header>$" Legacy/If.h || found=1
    if [ $found -ne $wanted ]; then
        echo "Legacy/If.h and $header do not agree"
        missing=1
    fi
done
exit $missing
