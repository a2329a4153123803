#!/usr/bin/env bash
# A one-node Slurm cluster on this machine, to try tessera-farm and to test it:
# munged, slurmctld and slurmd with a configuration generated into a
# directory of their own (keys, state, spool, logs), one node with this
# machine's cores, ports that are free. Nothing is installed into /etc and no
# system service is touched.
#
#   scripts/farm-cluster.sh start DIR   install Slurm and munge (scripts/setup.sh),
#                                       start the cluster in DIR (made if need be)
#                                       and print the line that points Slurm's
#                                       commands at it: export SLURM_CONF=DIR/slurm.conf
#   scripts/farm-cluster.sh stop DIR    cancel its jobs, stop its daemons and wait
#                                       until none of them is left
#
# The daemons run as root (slurmd starts each job as its user). Exit status of
# start: 0 when the node is up and idle; 77 when the cluster cannot be started
# here (not root, or Slurm cannot be installed), with one line that says why;
# 1 when a daemon failed (its log's end is printed).
set -uo pipefail

here=$(cd "$(dirname "$0")" && pwd)
say() { echo "farm-cluster: $*"; }

# A TCP port nothing listens on.
free_port() {
    local port
    for _ in $(seq 1 50); do
        port=$((20000 + RANDOM % 40000))
        if [ -z "$(ss -Hltn "sport = :$port" 2>/dev/null)" ]; then
            echo "$port"
            return 0
        fi
    done
    return 1
}

pid_of() { [ -s "$1" ] && cat "$1"; }
alive() { [ -n "${1-}" ] && kill -0 "$1" 2>/dev/null; }

# Waits up to $2 seconds for process $1 to end.
wait_gone() {
    local pid=$1 tenths=$(($2 * 10))
    while alive "$pid" && [ "$tenths" -gt 0 ]; do
        sleep 0.1
        tenths=$((tenths - 1))
    done
    ! alive "$pid"
}

stop_daemon() {
    local pid
    pid=$(pid_of "$1") || return 0
    alive "$pid" || return 0
    kill -TERM "$pid" 2>/dev/null
    if ! wait_gone "$pid" 15; then
        say "$(basename "$1" .pid) did not stop; killing it"
        kill -KILL "$pid" 2>/dev/null
        wait_gone "$pid" 5
    fi
}

stop() {
    local dir=$1
    [ -f "$dir/slurm.conf" ] || { say "$dir holds no cluster"; return 1; }
    export SLURM_CONF=$dir/slurm.conf
    if alive "$(pid_of "$dir/slurmctld.pid")"; then
        # The jobs first, so that no task goes on after its node.
        scancel --partition=farm 2>/dev/null
        for _ in $(seq 1 100); do
            [ -z "$(squeue --noheader --states=running,completing,configuring 2>/dev/null)" ] && break
            sleep 0.2
        done
    fi
    stop_daemon "$dir/slurmd.pid"
    stop_daemon "$dir/slurmctld.pid"
    stop_daemon "$dir/munged.pid"
    local left=""
    for name in slurmd slurmctld munged; do
        alive "$(pid_of "$dir/$name.pid")" && left+=" $name"
    done
    if [ -n "$left" ]; then
        say "still running:$left"
        return 1
    fi
    say "stopped ($dir)"
}

# Prints the end of each log, for a daemon that failed.
show_logs() {
    for log in "$1"/log/*.log; do
        [ -f "$log" ] || continue
        echo "--- $log"
        tail -n 15 "$log"
    done
}

start() {
    local dir=$1
    if [ "$(id -u)" -ne 0 ]; then
        say "cannot start a cluster: slurmd must run as root (it starts jobs as their users)"
        return 77
    fi
    if ! command -v slurmctld >/dev/null || ! command -v munged >/dev/null; then
        if ! "$here/setup.sh" >"$dir.setup.log" 2>&1 ||
            ! command -v slurmctld >/dev/null || ! command -v munged >/dev/null; then
            say "cannot start a cluster: Slurm and munge are not installed, and scripts/setup.sh could not install them ($(tail -n 1 "$dir.setup.log"))"
            rm -f "$dir.setup.log"
            return 77
        fi
        rm -f "$dir.setup.log"
    fi
    mkdir -p "$dir"/{state,spool,log} || return 1
    dir=$(cd "$dir" && pwd)
    # munged wants its key readable by its user alone, and every directory
    # above its socket open to all: where one is not (a temporary directory,
    # /root), --force lets it run for the users who can reach the socket.
    chmod 755 "$dir"
    local ctld_port slurmd_port host
    ctld_port=$(free_port) && slurmd_port=$(free_port) || { say "no free port"; return 1; }
    host=$(hostname -s)

    dd if=/dev/urandom of="$dir/munge.key" bs=1024 count=1 status=none
    chmod 600 "$dir/munge.key"
    if ! munged --force --socket="$dir/munge.socket" --key-file="$dir/munge.key" \
        --pid-file="$dir/munged.pid" --seed-file="$dir/munge.seed" \
        --log-file="$dir/log/munged.log"; then
        say "munged did not start"
        show_logs "$dir"
        return 1
    fi

    cat >"$dir/slurm.conf" <<EOF
# A one-node cluster for tessera-farm, made by scripts/farm-cluster.sh.
ClusterName=tessera
SlurmctldHost=$host(127.0.0.1)
SlurmctldPort=$ctld_port
SlurmdPort=$slurmd_port
SlurmUser=root
SlurmdUser=root
AuthType=auth/munge
CredType=cred/munge
# A requeued job waits for its credentials to expire before it starts again:
# 5 s here rather than 2 minutes.
AuthInfo=socket=$dir/munge.socket,cred_expire=5
StateSaveLocation=$dir/state
SlurmdSpoolDir=$dir/spool
SlurmctldPidFile=$dir/slurmctld.pid
SlurmdPidFile=$dir/slurmd.pid
SlurmctldLogFile=$dir/log/slurmctld.log
SlurmdLogFile=$dir/log/slurmd.log
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
JobCompType=jobcomp/none
MpiDefault=none
MailProg=/bin/true
ReturnToService=2
JobRequeue=1
# squeue remembers finished jobs for an hour (there is no accounting database).
MinJobAge=3600
SchedulerType=sched/builtin
SchedulerParameters=sched_interval=1
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
NodeName=farm NodeHostname=$host NodeAddr=127.0.0.1 CPUs=$(nproc) State=UNKNOWN
PartitionName=farm Nodes=farm Default=YES MaxTime=INFINITE State=UP
EOF
    export SLURM_CONF=$dir/slurm.conf
    if ! slurmctld -i || ! slurmd -N farm; then
        say "slurmctld or slurmd did not start"
        show_logs "$dir"
        stop "$dir" >/dev/null
        return 1
    fi
    for _ in $(seq 1 150); do
        if [ "$(sinfo --noheader --nodes=farm --format=%t 2>/dev/null)" = idle ]; then
            say "up: one node, $(nproc) cores ($dir)"
            echo "export SLURM_CONF=$dir/slurm.conf"
            return 0
        fi
        sleep 0.2
    done
    say "the node did not come up in 30 s"
    show_logs "$dir"
    stop "$dir" >/dev/null
    return 1
}

case ${1-} in
start | stop)
    [ $# -eq 2 ] || { echo "usage: $0 start|stop DIR" >&2; exit 2; }
    "$1" "$2"
    ;;
*)
    echo "usage: $0 start|stop DIR" >&2
    exit 2
    ;;
esac
