#!/usr/bin/env bash
# Runs the example host_network as people and accidents do.
# usage: test.sh PROGRAM
set -uo pipefail
program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR=$work/tmp
mkdir "$TMPDIR"
failures=0

fail() {
    echo "FAILED: $*"
    sed 's/^/    /' "$work/out" "$work/err" | tail -20
    failures=$((failures + 1))
}

# expect STATUS PATTERN ARGUMENT…: the exit status, and a line that the output or the error output has
expect() {
    local status=$1 pattern=$2
    shift 2
    timeout 60 "$program" "$@" >"$work/out" 2>"$work/err"
    local got=$?
    [ "$got" = "$status" ] || fail "$* ended with $got instead of $status"
    grep -q -e "$pattern" "$work/out" "$work/err" || fail "$* said nothing like '$pattern'"
    [ "$status" = 0 ] || [ -s "$work/err" ] || fail "$* failed without a word on the error output"
}

# The command line.
expect 0 '^usage: host_network' --help
expect 0 'both directories agree'
expect 0 'both directories agree' --full
expect 2 "unknown argument '--nonsense'" --nonsense
expect 2 '--file needs a value' --file
expect 2 'not empty' --read=
expect 2 "language 'fr'" --language fr
expect 2 'choose one' --file "$work/a" --read "$work/b"
expect 2 'exclude each other' --quiet --full
expect 2 "no section 'no/where'" --section no/where
"$program" >/dev/full 2>"$work/err" && fail 'a full disk went unnoticed'
expect 0 '^  sections' --quiet
[ "$(grep -c . "$work/out")" -le 7 ] || fail '--quiet is not quiet'
[ -z "$(ls -A "$TMPDIR")" ] || fail 'a temporary file stays'

# A host that has nothing, and one that has too much or nonsense of everything.
expect 2 'there is no directory' --root "$work/nothing"
mkdir "$work/nothing"
expect 0 'the host has no interfaces' --root "$work/nothing"
host=$work/host
net=$host/proc/sys/net/ipv4
mkdir -p "$net" "$host/proc/net" "$host"/sys/class/net/if{10..79} "$host/proc/sys/kernel" "$host/etc"
for interface in "$host"/sys/class/net/*; do
    echo 1500 >"$interface/mtu"
done
port=$host/sys/class/net/if10
echo 65536 >"$port/mtu"
echo 9 >"$port/speed"
echo 0x1103 >"$port/flags"
echo unknown >"$port/duplex"
echo 00:11:22:33:44:55:66:77 >"$port/address"
echo 12a >"$port/ifindex"
echo -1 >"$port/tx_queue_len"
mkfifo "$port/carrier"
echo 300 >"$net/ip_default_ttl"
echo 1 2 3 >"$net/ip_local_port_range"
echo 80 60999 >"$net/ip_local_port_range"
echo 1 2 >"$net/tcp_rmem"
echo 1 2 3 4 >"$net/tcp_mem"
echo 18446744073709551616 0 0 >"$net/udp_mem"
: >"$net/tcp_available_congestion_control"
head -c 100000 /dev/zero >"$host/proc/sys/kernel/osrelease"
printf 'bad\033[2Jname\n' >"$host/proc/sys/kernel/hostname"
printf 'nameserver ::1\nsearch a b c d e f g\n' >"$host/etc/resolv.conf"
printf 'Iface Destination Gateway\nif11 00000000 00000000\nif11 00000000 0zz\nif11 00000000 01010101\nif11' >"$host/proc/net/route"
expect 0 '7 of 70 interfaces are left out, from if73 on' --root "$host"
for skipped in "ifindex: skipped, '12a'" "tx_queue_len: skipped, '-1'" "ip_default_ttl: skipped, '300'" "udp_mem: skipped"; do
    expect 0 "$skipped" --full --root "$host"
done
grep -q $'\033' "$work/out" && fail 'a control character reached the terminal'
for shown in 'gateway 1 .*{1\.1\.1\.1}' '{bad?\[2Jname}' '{\[::1\]:53}' 'speed: the value is below the minimum of 10\.' \
    'mtu: the value is above the maximum of 9216\.' 'duplex: -1 is not one of the values' \
    'promiscuous: the value is fixed at 0\.' 'address: the text is longer than 17 byte' \
    'tcp_rmem: the list of numbers has fewer than 3 ' 'tcp_mem: the list of numbers has more than 3 ' \
    'tcp_available_congestion_control: the list of texts has fewer than 1 ' \
    'search domains: the list of texts has more than 6 ' 'ip_local_port_range: the value is below the minimum of 1024'; do
    grep -q -e "$shown" "$work/out" || fail "the full report has nothing like '$shown'"
done
LANG=C LC_ALL=C expect 0 'mtu: Der Wert liegt über dem Maximum von 9216' --language de --root "$host"

# The two files give the same device again.
records=$work/records
expect 0 'both directories agree' --full --root "$host" --file "$records"
sed -n '/^Values/,/^Findings/p' "$work/out" >"$work/written"
expect 0 '^Findings' --full --read "$records"
sed -n '/^Values/,/^Findings/p' "$work/out" | cmp -s - "$work/written" || fail 'the files show another device'

# Files that are not to be had, or damaged.
expect 1 'No such file' --read "$work/missing"
expect 1 'cannot be written' --file "$work/missing/records"
cp "$records.schema.json" "$work/damaged.schema.json"
echo 'it is not' >"$work/damaged"
expect 1 'byte 0: expected a file of records' --read "$work/damaged"
head -c -9 "$records" >"$work/damaged"
expect 1 'more bytes, found the end of the file' --read "$work/damaged"
cp "$records" "$work/damaged"
echo '{"sections": [' >"$work/damaged.schema.json"
expect 1 'damaged.schema.json: byte 15, line 2' --read "$work/damaged"
rm "$work/damaged.schema.json"
expect 1 'No such file' --read "$work/damaged"

[ "$failures" = 0 ] && echo "all passed"
exit "$((failures > 0))"
