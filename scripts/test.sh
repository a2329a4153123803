#!/usr/bin/env bash
# Sets up a fresh Debian machine, builds Tessera and runs the whole test suite.
#
#   scripts/test.sh            what CI runs: the release build and its tests;
#                              the clang build under AddressSanitizer and
#                              UndefinedBehaviorSanitizer (reports fatal) and
#                              the same tests in it; a short run of every fuzzer
#   scripts/test.sh PRESET     one preset's build and tests only
#                              (release, debug, asan, sanitize)
#
# TESSERA_FUZZ_SECONDS sets the fuzz run of the structured user-action fuzzer
# (default 60); each file fuzzer gets a sixth of it.
set -euo pipefail
cd "$(dirname "$0")/.."

run_preset() {
    local preset=$1
    echo "test: $preset build"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$(nproc)"
    echo "test: $preset tests"
    ctest --preset "$preset" -j "$(nproc)"
}

scripts/setup.sh
if [ $# -gt 0 ]; then
    run_preset "$1"
    exit 0
fi

start=$SECONDS
run_preset release
run_preset sanitize

fuzz_seconds=${TESSERA_FUZZ_SECONDS:-60}
file_targets=()
for source in tests/fuzz/*.cpp; do
    name=$(basename "$source" .cpp)
    case $name in replayMain | userActions) ;; *) file_targets+=("$name") ;; esac
done
echo "test: fuzzing"
scripts/fuzz.sh "$fuzz_seconds" userActions
scripts/fuzz.sh "$((fuzz_seconds / 6 > 0 ? fuzz_seconds / 6 : 1))" "${file_targets[@]}"
echo "test: everything passed in $((SECONDS - start)) s"
