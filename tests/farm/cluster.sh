#!/usr/bin/env bash
# tessera-farm on a real one-node Slurm cluster (scripts/farm-cluster.sh):
# - a short animated shot rendered in three chunks, one of which fails its
#   first attempt and is requeued by Slurm, equals byte for byte the same
#   shot rendered on one machine;
# - status shows a session that fails on the farm by its log's last line;
# - verify finds a frame deleted afterwards, and the command it prints
#   renders that frame again.
#
#   tests/farm/cluster.sh BIN_DIR SOURCE_DIR
#
# Exit status 77 (CTest: skipped), with one line that says why, where no
# cluster can be started (not root, Slurm not installable).
set -euo pipefail
bin=$1
source=$2
work=$(mktemp -d /tmp/tessera-farm-test.XXXXXX)
cluster=$work/cluster
helper=$source/scripts/farm-cluster.sh

cleanup() {
    "$helper" stop "$cluster" >/dev/null 2>&1 || true
    rm -rf "$work"
}
trap cleanup EXIT
trap "exit 1" INT TERM
fail() {
    echo "farm test: $*"
    for log in "$work"/*/farm/logs/*.log; do
        [ -f "$log" ] && { echo "--- $log"; cat "$log"; }
    done
    exit 1
}
now() { date +%s.%N; }
seconds() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.1f", b - a }'; }

status=0
"$helper" start "$cluster" >"$work/start.txt" 2>&1 || status=$?
if [ "$status" -eq 77 ]; then
    echo "farm test skipped: $(tail -n 1 "$work/start.txt")"
    exit 77
fi
[ "$status" -eq 0 ] || fail "the cluster did not start: $(cat "$work/start.txt")"
export SLURM_CONF=$cluster/slurm.conf

# Runs tessera-farm status until the job has ended; answers its exit status,
# its report in $work/status.txt. Every job has ended four minutes after the
# start, well within the test's time out, so that the cluster is always
# stopped.
deadline=$((SECONDS + 240))
wait_for() {
    local rc
    while true; do
        rc=0
        "$bin/tessera-farm" status "$1" >"$work/status.txt" 2>&1 || rc=$?
        [ "$rc" -ne 3 ] && return "$rc"
        [ "$SECONDS" -lt "$deadline" ] || fail "job $1 has not ended: $(cat "$work/status.txt")"
        sleep 0.5
    done
}
submit() {
    "$bin/tessera-farm" submit "$@" >"$work/submit.txt" || fail "submit $*: $(cat "$work/submit.txt")"
    sed -n 's/^submitted job \([0-9]*\):.*/\1/p' "$work/submit.txt"
}

# Every frame keyed differently: the key colour picked, Overall animated.
cat >"$work/shot.tss" <<EOF
plate demo 320 180
background demo
tool "Pick Key Colour 1"
drag 2 178 15 165 steps 3
animate overall 0.2
frame 6
set overall 0.8
write matte out/matte.####.exr
write comp out/comp.####.png
EOF
cat >"$work/broken.tss" <<EOF
plate demo 320 180
write matte out/matte.####.exr
expect input overall == 12345
EOF

start=$(now)
"$bin/tessera-run" "$work/shot.tss" --frames 1-6 --out "$work/one" --quiet
single=$(seconds "$start" "$(now)")

start=$(now)
job=$(TESSERA_FARM_FAIL_ONCE=1 submit "$work/shot.tss" --frames 1-6 --chunk 2 --out "$work/farm")
broken=$(submit "$work/broken.tss" --frames 1-2 --retries 0 --out "$work/broken")
wait_for "$job" || fail "job $job: $(cat "$work/status.txt")"
farm=$(seconds "$start" "$(now)")
grep -q "3 chunks: 0 pending, 0 running, 3 done, 0 failed" "$work/status.txt" &&
    grep -q "frames written: 6 of 6" "$work/status.txt" || fail "status: $(cat "$work/status.txt")"
retried=$work/farm/farm/logs/shot.1-6.${job}_1.log
grep -q "chunk 1 failed (exit status 1); requeued" "$retried" &&
    grep -q "chunk 1, frames 3-4, attempt 2" "$retried" || fail "chunk 1 was not retried"

[ "$(ls "$work/farm/out" | wc -l)" -eq 12 ] || fail "the farm wrote $(ls "$work/farm/out")"
for frame in "$work"/one/out/*; do
    cmp "$frame" "$work/farm/out/$(basename "$frame")" || fail "$(basename "$frame") differs"
done

# A session that fails on the farm: its line, in the status.
rc=0
wait_for "$broken" || rc=$?
[ "$rc" -eq 1 ] && grep -q "1 chunk: 0 pending, 0 running, 0 done, 1 failed" "$work/status.txt" &&
    grep -q "^  tessera-run: $work/broken.tss:3: expected input overall == 12345" "$work/status.txt" ||
    fail "status of a failing session (exit status $rc): $(cat "$work/status.txt")"

# A frame lost afterwards: found, and rendered again by the command printed.
"$bin/tessera-farm" verify "$work/farm" >"$work/verify.txt" || fail "verify: $(cat "$work/verify.txt")"
rm "$work/farm/out/matte.0004.exr"
rc=0
"$bin/tessera-farm" verify "$work/farm" >"$work/verify.txt" || rc=$?
[ "$rc" -eq 1 ] && grep -q "frame 4: missing: $work/farm/out/matte.0004.exr" "$work/verify.txt" ||
    fail "verify after a frame was deleted (exit status $rc): $(cat "$work/verify.txt")"
again=$(sed -n '/^render them again with:$/{n;s/^  //p}' "$work/verify.txt")
[[ $again == *" --frames 4 "* ]] || fail "verify's command renders more than frame 4: $again"
bash -c "$again" >"$work/submit.txt" || fail "$again: $(cat "$work/submit.txt")"
wait_for "$(sed -n 's/^submitted job \([0-9]*\):.*/\1/p' "$work/submit.txt")" ||
    fail "the render again: $(cat "$work/status.txt")"
cmp "$work/one/out/matte.0004.exr" "$work/farm/out/matte.0004.exr" || fail "frame 4 again differs"
"$bin/tessera-farm" verify "$work/farm" >"$work/verify.txt" || fail "verify: $(cat "$work/verify.txt")"

"$helper" stop "$cluster" >"$work/stop.txt" 2>&1 || fail "the cluster did not stop: $(cat "$work/stop.txt")"
echo "farm test: frames 1-6 on one machine in $single s, on the farm in three chunks (one retried) in $farm s"
