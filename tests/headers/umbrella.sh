#!/usr/bin/env bash
# The headers that include everything of a library do: all public headers but the two of the core that cost most.
# usage: umbrella.sh INCLUDE_DIR
set -euo pipefail
cd "$1"
missing=0
for header in Legacy/If/*.h Legacy/IfKit/*.h; do
    umbrella=$(dirname "$header").h
    case $header in
    */GenericContainerImpl.h | */MessageConversions.h) wanted=1 ;;
    *) wanted=0 ;;
    esac
    found=0
    grep -q "^#include <$header>$" "$umbrella" || found=1
    if [ $found -ne $wanted ]; then
        echo "$umbrella and $header do not agree"
        missing=1
    fi
done
exit $missing
