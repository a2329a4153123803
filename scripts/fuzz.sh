#!/usr/bin/env bash
# Fuzzes the host with the sanitised clang build (preset sanitize): each
# target of tests/fuzz in turn, under AddressSanitizer and
# UndefinedBehaviorSanitizer, starting from its seed corpus.
#
#   scripts/fuzz.sh                     600 s for the structured fuzzer of user
#                                       actions, 60 s for each file target
#   scripts/fuzz.sh SECONDS             SECONDS for every target
#   scripts/fuzz.sh SECONDS TARGET...   only these targets (userActions, setup, ...)
#
# Inputs that reach new code are kept in build/sanitize/fuzz/corpus/TARGET
# (the committed seeds in tests/fuzz/corpus are left as they are). An input
# that breaks an invariant, crashes, leaks or hangs is written to
# build/sanitize/fuzz/failures/TARGET/ and the script ends with status 1,
# naming it; replay it with build/sanitize/bin/fuzz_TARGET FILE (with
# TESSERA_FUZZ_TRACE=1 to see what it does).
set -euo pipefail
cd "$(dirname "$0")/.."
root=$PWD

seconds=${1:-}
shift || true
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for source in tests/fuzz/*.cpp; do
        name=$(basename "$source" .cpp)
        [ "$name" = replayMain ] || targets+=("$name")
    done
fi

scripts/setup.sh >/dev/null
cmake --preset sanitize >/dev/null
cmake --build --preset sanitize -j "$(nproc)" --target "${targets[@]/#/fuzz_}"

export QT_QPA_PLATFORM=offscreen
export TESSERA_NO_DLCLOSE=1
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
export LSAN_OPTIONS=suppressions=$root/tests/support/lsan.supp:print_suppressions=0

work=$root/build/sanitize/fuzz
status=0
summary=()
for name in "${targets[@]}"; do
    time=$seconds
    if [ -z "$time" ]; then
        if [ "$name" = userActions ]; then time=600; else time=60; fi
    fi
    corpus=$work/corpus/$name
    failures=$work/failures/$name
    mkdir -p "$corpus" "$failures"
    options=(-max_total_time="$time" -timeout=60 -rss_limit_mb=4096 -print_final_stats=1
             -artifact_prefix="$failures/")
    if [ -f "tests/fuzz/dict/$name.dict" ]; then
        options+=(-dict="tests/fuzz/dict/$name.dict")
    fi
    log=$work/$name.log
    echo "fuzz: $name for $time s"
    if build/sanitize/bin/fuzz_"$name" "${options[@]}" "$corpus" "tests/fuzz/corpus/$name" \
        >"$log" 2>&1; then
        runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
        extra=$(sed -n 's/^fuzz: //p' "$log" | tail -1)
        summary+=("$name: ${runs:-?} inputs in $time s${extra:+, $extra}")
    else
        status=1
        summary+=("$name: FAILED, see $log")
        grep -E "^(==[0-9]+==|SUMMARY|.*invariant broken|artifact_prefix|Test unit written)" \
            "$log" | head -20 || true
    fi
done
printf '%s\n' "${summary[@]}"
exit $status
