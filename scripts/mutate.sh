#!/usr/bin/env bash
# Mutation testing: how many small faults in the module and in the platform
# code it leans on most does the test suite catch?
#
#   scripts/mutate.sh [--rev REV] [REPORT]
#                       run on the working tree as it is (tracked and new
#                       files), or on commit REV; the report goes to REPORT
#                       (default build/mutate/report.txt)
#   scripts/mutate.sh --list
#                       list the mutants only
#
# MUTATE_SEED (default 17) and MUTATE_MAX (default 80) choose the mutants,
# MUTATE_TIMEOUT (default 60) is each mutant's time for its tests in seconds,
# MUTATE_HOLD (default 90) how long in seconds the lock is kept for a run of
# mutants before it is released.
# The same sources, seed and cap give the same mutants, so runs against two
# versions of the tests compare: `scripts/mutate.sh --rev main` and then
# `scripts/mutate.sh` measure the tests before and after a change to them.
#
# The tree is copied to build/mutate/src and built there from the release
# preset, so that mutants never touch the working tree; a file is rewritten
# in the copy only when its content changed, so the copy's build redoes only
# what changed. The shared build lock is held for the first build (with the
# unmutated tests) and then for runs of mutants (see --hold in mutate.py). Mutated libraries
# are cached under build/mutate/cache, keyed on every non-test source: a run
# after only the tests changed compiles nothing again. scripts/mutate.py has
# the operators, the choice of mutants and the tests each file gets.
set -euo pipefail
cd "$(dirname "$0")/.."

files=(
    tools/tessera/src/*.cpp
    platform/src/pluginAPI/piCommandStack.cpp
    platform/src/pluginAPI/piInput.cpp
    platform/src/tesseraUtil/*.cpp
)
copy=build/mutate/src
build=$copy/build/release
rev=
list=()
report=build/mutate/report.txt
while [ $# -gt 0 ]; do
    case $1 in
    --rev) rev=$2; shift ;;
    --list) list=(--list) ;;
    *) report=$1 ;;
    esac
    shift
done

mkdir -p build/mutate/cache "$copy"
staging=$(mktemp -d)
trap 'rm -rf "$staging"' EXIT
if [ -n "$rev" ]; then
    git archive "$rev" | tar -xf - -C "$staging"
else
    git ls-files -z --cached --others --exclude-standard |
        xargs -0 sh -c 'for f; do [ -e "$f" ] && printf "%s\0" "$f"; done' sh |
        tar --null -T - -cf - | tar -xf - -C "$staging"
fi
python3 - "$staging" "$copy" <<'PY'
import filecmp, os, shutil, sys
src, dst = sys.argv[1:]
wanted = set()
for d, _, fs in os.walk(src):
    for f in fs:
        rel = os.path.relpath(os.path.join(d, f), src)
        wanted.add(rel)
        target = os.path.join(dst, rel)
        if not os.path.exists(target) or not filecmp.cmp(os.path.join(src, rel), target, shallow=False):
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copyfile(os.path.join(src, rel), target)
for d, dirs, fs in os.walk(dst):
    if os.path.relpath(d, dst) == ".":
        dirs[:] = [x for x in dirs if x != "build"]
    for f in fs:
        rel = os.path.relpath(os.path.join(d, f), dst)
        if rel not in wanted:
            os.remove(os.path.join(d, f))
PY
if [ ${#list[@]} -eq 0 ]; then
    (cd "$copy" && cmake --preset release >/dev/null)
fi
exec python3 scripts/mutate.py --root "$copy" --build "$build" --cache build/mutate/cache \
    --seed "${MUTATE_SEED:-17}" --max "${MUTATE_MAX:-80}" --timeout "${MUTATE_TIMEOUT:-60}" \
    --hold "${MUTATE_HOLD:-90}" \
    --report "$report" "${list[@]}" "${files[@]}"
