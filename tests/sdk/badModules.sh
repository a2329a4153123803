#!/usr/bin/env bash
# tessera-run --list-packages with three bad modules on the module search
# path: each is reported with its module file and the reason, and the host
# starts the keyer's module and lists its packages all the same.
#   badModules.sh TESSERA_RUN DIR
set -uo pipefail
run=$1 dir=$2
out=$("$run" --list-packages --module-path "$dir" 2>&1)
status=$?
fail=0
expect() {
    if [[ "$out" != *"$1"* ]]; then
        echo "missing: $1"
        fail=1
    fi
}
expect "module $dir/libunresolvedSymbol.so: cannot be loaded: "
expect "undefined symbol: tesseraNoSuchFunction"
expect "package missingDependency (module $dir/libmissingDependency.so): missing dependency Elsewhere::absentPackage"
expect "package throwingStartup (module $dir/libthrowingStartup.so): no licence for this module"
expect "throwingStartup [failed]"
expect "tesseraUiZnmodule [started]"
expect "registrations after shut-down:"
if [ "$status" != 1 ]; then
    echo "exit status $status, expected 1 (a module did not load or start)"
    fail=1
fi
[ "$fail" = 0 ] || printf '%s\n' "--- output:" "$out"
exit "$fail"
