#!/usr/bin/env bash
# The module's exported symbols are exactly those listed in moduleExports.txt:
# the templates it instantiates for sibling modules and its package's getType.
# Not the module's own: the linker's section bounds, and what the standard
# library declares visible wherever it is instantiated (namespace std).
#   moduleExports.sh MODULE LIST plain|sanitized
set -euo pipefail
module=$1 list=$2 kind=$3
if [ "$kind" = sanitized ]; then
    echo "skipped: the sanitisers' instrumentation exports symbols of its own"
    exit 77
fi
actual=$(nm -D --defined-only -C "$module" | cut -d' ' -f3- |
    grep -Ev '^(__bss_start|_edata|_end)$|^((typeinfo|typeinfo name|vtable) for )?std::' |
    LC_ALL=C sort -u)
if ! diff -u <(LC_ALL=C sort -u "$list") <(printf '%s\n' "$actual"); then
    echo "the exports of $module differ from $list (- listed, + exported)"
    exit 1
fi
