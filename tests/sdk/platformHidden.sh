#!/usr/bin/env bash
# Each platform library, and tessera-run's session part, is built with its
# symbols hidden: it exports what carries its export macro and no more. Two
# marks of a library built without: its inline functions are exported (weak
# symbols that are not template instances), and most of what it defines is.
#   platformHidden.sh plain|sanitized LIBRARY...
set -euo pipefail
kind=$1
shift
if [ "$kind" = sanitized ]; then
    echo "skipped: the sanitisers' instrumentation exports symbols of its own"
    exit 77
fi
status=0
for library in "$@"; do
    exported=$(nm -D --defined-only "$library" | wc -l)
    defined=$(nm --defined-only "$library" | wc -l)
    inline=$(nm -D --defined-only -C "$library" | awk '$2 == "W"' | cut -d' ' -f3- |
        grep -Ev '<|^(std|__gnu_cxx)::|\[clone ' || true)
    if [ -n "$inline" ]; then
        echo "$library exports inline functions:"
        printf '%s\n' "$inline" | sort -u | head -5 | sed 's/^/  /'
        status=1
    fi
    if [ $((exported * 10)) -gt $((defined * 6)) ]; then
        echo "$library exports $exported of its $defined symbols"
        status=1
    fi
done
exit $status
