#!/usr/bin/env bash
# Measures a fleet on this machine: a broker, DEVICES devices of fifty parameters in as few processes as may open the files
# that they need, and controllers. The figures go to build/fleet-load.json, one object to a line, and
# scripts/fleet-chart.py draws them.
# usage: fleet-load.sh [--build-dir DIR] [--devices N] [--rates "R R …"] [--controllers "K K …"] [--seconds S]
#   --devices      1000 without it
#   --rates        changes in a second over all devices, one run for each (1000 4000)
#   --controllers  numbers of controllers that share the fleet, one run for each (1 2 4)
#   --seconds      of each run, after all is there (15)
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir=build/release devices=1000 rates="1000 4000" controllers="1 2 4" seconds=15
while [ $# -ge 2 ]; do
    case $1 in
    --build-dir) build_dir=$2 ;;
    --devices) devices=$2 ;;
    --rates) rates=$2 ;;
    --controllers) controllers=$2 ;;
    --seconds) seconds=$2 ;;
    *) grep '^# usage' -A 5 "$0" >&2 && exit 2 ;;
    esac
    shift 2
done
[ $# -eq 0 ] || { grep '^# usage' -A 5 "$0" >&2; exit 2; }
programs=$build_dir/fleet
[ -x "$programs/legacyif-fleet" ] || { echo "there are no programs in $programs" >&2; exit 1; }
mosquitto=$(PATH=$PATH:/usr/sbin:/usr/local/sbin command -v mosquitto) || { echo "mosquitto is not installed" >&2; exit 1; }
ulimit -n "$(ulimit -Hn)"
[ "$(ulimit -n)" -gt $((devices + 200)) ] || { echo "too few files may be open for $devices devices" >&2; exit 1; }
parts=$((devices * 4 / ($(ulimit -n) - 200) + 1)) # what a process of devices needs, see its --count

work=$(mktemp -d)
figures=build/fleet-load.json
mkdir -p build
: >"$figures"
declare -A pids=()
cleanup() {
    if [ ${#pids[@]} -gt 0 ]; then
        kill "${pids[@]}" 2>/dev/null || true
        wait "${pids[@]}" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

port=$((20000 + RANDOM % 12000))
at=(--broker "127.0.0.1:$port")
printf 'listener %s 127.0.0.1\nallow_anonymous true\npersistence false\nmax_queued_messages 0\nmax_inflight_messages 200\nlog_type error\n' \
    "$port" >"$work/broker.conf"

start() {
    local name=$1
    shift
    : >>"$work/$name.log"
    "$@" >>"$work/$name.log" 2>>"$work/$name.err" </dev/null &
    pids[$name]=$!
}
stop() {
    kill "-${2:-TERM}" "${pids[$1]}"
    wait "${pids[$1]}" 2>/dev/null || true
    unset "pids[$1]"
}
start_broker() {
    start broker "$mosquitto" -c "$work/broker.conf"
    for _ in $(seq 100); do
        sleep 0.05
        if (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
            return 0
        fi
    done
    echo "no broker could be started" >&2
    exit 1
}
# await NAME PHASE COUNT: until so many lines of NAME tell of the phase
await() {
    for _ in $(seq 3000); do
        if [ "$(grep -c "\"phase\":\"$2\"" "$work/$1.log")" -ge "$3" ]; then
            return 0
        fi
        sleep 0.1
    done
    echo "$1 did not tell of $2" >&2
    tail -3 "$work/$1.log" "$work/$1.err" >&2
    exit 1
}
# keep RUN NAME: the lines of NAME, each with what the run was
keep() { sed "s|^{|{\"run\":\"$1\",\"controllers\":$2,\"rate\":$3,\"fleet\":$devices,\"controller\":\"$4\",|" "$work/$4.log" >>"$figures"; }
memory() { awk '/^VmRSS/ { print $2 * 1024 }' "/proc/${pids[$1]}/status"; }

# run LABEL CONTROLLERS RATE RESTART
run() {
    local label=$1 count=$2 rate=$3 restart=$4 i
    echo "$label: $devices devices, $count controllers, $rate changes a second"
    rm -f "$work"/*.log "$work"/*.err
    start_broker
    for ((i = 0; i < count; i++)); do
        start "controller-$i" "$programs/legacyif-fleet" "${at[@]}" --name "measure-$i" --share "$i/$count" measure \
            --expect $((devices / count * 8 / 10))
    done
    for ((i = 0; i < parts; i++)); do
        start "devices-$i" "$programs/legacyif-device" "${at[@]}" --name "load-$i" --template load \
            --count $((devices * (i + 1) / parts - devices * i / parts)) --changes $((rate / parts))
    done
    # Everything at once; shares are not known to be whole before the fleet is.
    for ((i = 0; i < count; i++)); do await "controller-$i" complete 1; done
    # A controller that comes when everything is there already.
    start late "$programs/legacyif-fleet" "${at[@]}" --name late measure --expect "$devices"
    await late complete 1
    stop late
    sleep "$seconds"
    if [ "$restart" = yes ]; then
        stop broker KILL
        start_broker
        for ((i = 0; i < count; i++)); do await "controller-$i" complete 2; done
        sleep 12
    fi
    printf '{"run":"%s","controllers":%s,"rate":%s,"fleet":%s,"phase":"memory","broker":%s,"devices":%s}\n' \
        "$label" "$count" "$rate" "$devices" "$(memory broker)" "$(for ((i = 0; i < parts; i++)); do memory "devices-$i"; done |
            awk '{ sum += $1 } END { print sum }')" >>"$figures"
    for ((i = 0; i < count; i++)); do
        keep "$label" "$count" "$rate" "controller-$i"
        stop "controller-$i"
    done
    keep "$label" "$count" "$rate" late
    if grep -h "dropped" "$work"/controller-*.err; then
        echo "messages were dropped" >&2
        exit 1
    fi
    for ((i = 0; i < parts; i++)); do stop "devices-$i"; done
    stop broker
}

restart=yes
for rate in $rates; do
    run "rate-$rate" 1 "$rate" "$restart"
    restart=no
done
for count in $controllers; do
    [ "$count" -eq 1 ] || run "controllers-$count" "$count" "${rates##* }" no
done
./scripts/fleet-chart.py "$figures" build/fleet-load.svg
