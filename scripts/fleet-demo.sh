#!/usr/bin/env bash
# Shows the fleet: a broker on the loopback, two devices and a controller. Changes travel both ways, a device refuses a
# value, the broker is started anew with an empty memory, and damaged messages are dropped. Everything is stopped at the
# end, and the result is 0 only if all of this was seen.
# usage: fleet-demo.sh [--build-dir DIR]     DIR holds a finished build; without it, one is made
set -euo pipefail

if [ $# -eq 2 ] && [ "$1" = --build-dir ]; then
    build_dir=$(realpath "$2")
elif [ $# -eq 0 ]; then
    cd "$(dirname "$0")/.."
    echo "Building (the first time takes a few minutes) …"
    build_log=$(mktemp)
    ./scripts/build.sh release legacyif-device legacyif-fleet >"$build_log" 2>&1 ||
        { tail -40 "$build_log"; rm -f "$build_log"; exit 1; }
    rm -f "$build_log"
    build_dir=build/release
else
    grep '^# usage' "$0" >&2
    exit 2
fi
programs=$build_dir/fleet
[ -x "$programs/legacyif-fleet" ] || { echo "there are no programs in $programs" >&2; exit 1; }
mosquitto=$(PATH=$PATH:/usr/sbin:/usr/local/sbin command -v mosquitto) || { echo "mosquitto is not installed" >&2; exit 1; }

work=$(mktemp -d)
declare -A pids=()

cleanup() {
    local running=("${pids[@]}")
    if [ ${#running[@]} -gt 0 ]; then
        kill "${running[@]}" 2>/dev/null || true
        wait "${running[@]}" 2>/dev/null || true
    fi
    rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

fail() {
    echo "FAILED: $1" >&2
    local log
    for log in "$work"/*.log; do
        echo "--- $(basename "$log")" >&2
        tail -40 "$log" >&2
    done
    exit 1
}

# start NAME COMMAND …: in the background, what it prints in NAME.log
start() {
    local name=$1
    shift
    : >>"$work/$name.log"
    "$@" <&0 >>"$work/$name.log" 2>&1 9>&- &
    pids[$name]=$!
}

# stop NAME: it has to end by itself after the signal, and well
stop() {
    local pid=${pids[$1]}
    unset "pids[$1]"
    kill "$pid"
    wait "$pid" || fail "$1 did not end well"
}

# expect NAME TEXT [COUNT]: waits until so many lines of NAME hold the text
expect() {
    for _ in $(seq 80); do
        if [ "$(grep -cF -- "$2" "$work/$1.log")" -ge "${3:-1}" ]; then
            echo "  $1 | $(grep -F -- "$2" "$work/$1.log" | tail -1)"
            return
        fi
        sleep 0.1
    done
    fail "$1 did not show: $2"
}

# once NAME LINE: that line stands there, and once
once() {
    local count
    count=$(grep -cxF -- "$2" "$work/$1.log") || true
    [ "$count" = 1 ] || fail "$1 showed $count times: $2"
    echo "  $1 | $2"
}

command_controller() { echo "$1" >&9; }

listens() { (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; }

# The broker speaks to this machine alone and keeps nothing on disk.
start_broker() {
    printf 'listener %s 127.0.0.1\nallow_anonymous true\npersistence false\n' "$port" >"$work/broker.conf"
    start broker "$mosquitto" -c "$work/broker.conf" </dev/null
    for _ in $(seq 30); do
        sleep 0.1
        kill -0 "${pids[broker]}" 2>/dev/null || break
        if listens; then
            return 0
        fi
    done
    unset "pids[broker]"
    return 1
}

# publish TOPIC TEXT: what any foreign program could send. Both are short and plain.
publish() {
    exec 4<>"/dev/tcp/127.0.0.1/$port"
    printf '\x10\x13\x00\x04MQTT\x04\x02\x00\x3c\x00\x07foreign' >&4
    timeout 2 head -c 4 <&4 >/dev/null
    # shellcheck disable=SC2059 # the lengths are bytes in the format
    printf "\\x30\\x$(printf %02x $((2 + ${#1} + ${#2})))\\x00\\x$(printf %02x ${#1})%s%s\\xe0\\x00" "$1" "$2" >&4
    exec 4>&-
}

echo "A broker, two devices and a controller:"
for _ in $(seq 20); do
    port=$((20000 + RANDOM % 12000))
    if ! listens && start_broker; then
        break
    fi
done
[ -n "${pids[broker]:-}" ] || fail "no broker could be started"
start camera-1 "$programs/legacyif-device" --name camera-1 --broker "127.0.0.1:$port" --interval 0.5 </dev/null
start hall "$programs/legacyif-device" --name hall --template climate --broker "127.0.0.1:$port" --interval 0.5 </dev/null
mkfifo "$work/commands"
exec 9<>"$work/commands"
start controller "$programs/legacyif-fleet" --broker "127.0.0.1:$port" --language de --name desk <"$work/commands"
expect camera-1 "connected to"
expect hall "connected to"
expect controller "camera-1: camera, online"
expect controller "hall: climate, online"
expect controller "hall climate/meter: 192.0.2.20:502 (Modbus)"

echo "What a device measures travels to the controller:"
expect controller "camera-1 system/temperature: 203 1/10 °C -> 207 1/10 °C"

echo "What the controller sets travels to the devices, and back as their values:"
command_controller "wait"
command_controller "set camera-1 video/frame-rate 30"
command_controller "set camera-1 network/management camera-1.example:4443"
command_controller "set hall network/gateway 198.51.100.1"
expect camera-1 "desk sets video/frame-rate: 30 Hz"
expect controller "camera-1 video/frame-rate: 25 Hz -> 30 Hz"
expect controller "camera-1 network/management: 192.0.2.10:8443 -> camera-1.example:4443"
expect controller "hall network/gateway: 192.0.2.1 -> 198.51.100.1"
expect controller "hall network/gateway is set"

echo "A device refuses a value, in the language of the controller:"
command_controller "set camera-1 video/frame-rate 200"
expect controller "camera-1 video/frame-rate is refused (-41): frame-rate: Der Wert liegt über dem Maximum von 60."

echo "The broker is started anew and remembers nothing, while a request waits:"
stop broker
expect controller "no connection"
command_controller "set hall climate/target 225"
start_broker || fail "the broker did not start again"
expect camera-1 "connected to" 2
expect hall "connected to" 2
expect controller "connected to" 2
expect hall "desk sets climate/target: 225 1/10 °C"
expect controller "hall climate/target: 210 1/10 °C -> 225 1/10 °C"
expect controller "hall climate/target is set"

echo "A controller that comes late finds everything:"
printf 'wait\nshow hall\n' >"$work/late"
start late "$programs/legacyif-fleet" --broker "127.0.0.1:$port" --device hall --device camera-1 <"$work/late"
expect late "climate/target = 225 1/10 °C"
expect late "network/gateway = 198.51.100.1"
expect late "camera-1 video/frame-rate: 30 Hz"
wait "${pids[late]}" || fail "the late controller did not end well"
unset "pids[late]"

echo "Damaged messages are dropped:"
publish fleet/hall/value/climate/target "nothing of the kind"
expect controller "dropped a damaged or foreign message: fleet/hall/value/climate/target"
publish fleet/hall/set/desk/climate/target "FL"
expect hall "dropped a damaged or foreign message: fleet/hall/set/desk/climate/target"

echo "Nothing came twice:"
once controller "camera-1 video/frame-rate: 25 Hz"
once controller "camera-1 video/frame-rate: 25 Hz -> 30 Hz"
once controller "hall network/gateway: 192.0.2.1 -> 198.51.100.1"
once controller "hall climate/target: 210 1/10 °C -> 225 1/10 °C"
once controller "hall climate/target is set"
once hall "desk sets climate/target: 225 1/10 °C"

echo "Everything stops:"
stop camera-1
stop hall
expect controller "camera-1: camera, offline"
expect controller "hall: climate, offline"
command_controller "quit"
wait "${pids[controller]}" || fail "the controller did not end well"
unset "pids[controller]"
stop broker
echo "  all ended"
