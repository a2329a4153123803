#!/usr/bin/env bash
# The size of the test suite against the code it tests, in non-blank lines
# (a line holding only white space is blank) of the files in the working tree
# that git tracks or would track (new files count, ignored ones do not):
#
#   tests   tests/**/*.cpp, *.h and *.tss (the C++ tests, their support and
#           fuzz targets, and the session scripts)
#   code    platform/, tools/ and apps/: *.cpp and *.h
#
# Prints both counts and their ratio.
set -euo pipefail
cd "$(dirname "$0")/.."

count() {
    git ls-files -z --cached --others --exclude-standard -- "$@" |
        xargs -0 -r sh -c 'for f; do [ -f "$f" ] && cat "$f"; done' sh |
        grep -cv '^[[:space:]]*$'
}
tests=$(count 'tests/*.cpp' 'tests/*.h' 'tests/*.tss')
code=$(count 'platform/*.cpp' 'platform/*.h' 'tools/*.cpp' 'tools/*.h' 'apps/*.cpp' 'apps/*.h')
echo "tests $tests"
echo "code  $code"
awk -v t="$tests" -v c="$code" 'BEGIN { printf "ratio %.3f\n", t / c }'
