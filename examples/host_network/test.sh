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
    'promiscuous: the value is fixed at 0\.' 'address: the text is longer than 17 char' \
    'tcp_rmem: the list of numbers has fewer than 3 ' 'tcp_mem: the list of numbers has more than 3 ' \
    'tcp_available_congestion_control: the list of texts has fewer than 1 ' \
    'search domains: the list of texts has more than 6 ' 'ip_local_port_range: the value is below the minimum of 1024'; do
    grep -q -e "$shown" "$work/out" || fail "the full report has nothing like '$shown'"
done
LANG=C LC_ALL=C expect 0 'mtu: Der Wert liegt über dem Maximum von 9216' --language de --root "$host"

# A file of records gives the same device again.
records=$work/records
expect 0 'both directories agree' --full --root "$host" --file "$records"
sed -n '/^Values/,/^Findings/p' "$work/out" >"$work/written"
expect 0 '^Findings' --full --read "$records"
sed -n '/^Values/,/^Findings/p' "$work/out" | cmp -s - "$work/written" || fail 'the file shows another device'

# Files that are not to be had.
expect 1 'No such file' --read "$work/missing"
expect 1 'not a file' --read "$work"
expect 1 'cannot be written' --file "$work/missing/records"
echo 'HOSTNET it is not' >"$work/text"
expect 1 'not a record file' --read "$work/text"
if [ "$(id -u)" != 0 ]; then
    cp "$records" "$work/locked"
    chmod 0 "$work/locked"
    expect 1 'cannot be opened' --read "$work/locked"
fi

# Damage, found by the checksum. A small device is enough.
expect 0 '^  sections' --quiet --root "$work/nothing" --file "$records"
size=$(stat -c %s "$records")
for ((length = 0; length < size; length += 7)); do
    head -c "$length" "$records" >"$work/damaged"
    expect 1 "$([ "$length" -lt 8 ] && echo 'not a record file' || echo damaged)" --read "$work/damaged"
done

# put OFFSET HEX: the file with other bytes at a place, and with the checksum that these bytes ask for
put() {
    head -c "$1" "$records" >"$work/damaged"
    printf "$(sed 's/../\\x&/g' <<<"$2")" >>"$work/damaged"
    tail -c "+$(($1 + ${#2} / 2 + 1))" "$records" | head -c -4 >>"$work/damaged"
    local crc
    crc=$(gzip -nc "$work/damaged" | tail -c 8 | head -c 4 | od -An -v -tx1 | awk '{print $4 $3 $2 $1}')
    printf "$(sed 's/../\\x&/g' <<<"$crc")" >>"$work/damaged"
}
put 8 00000001
cmp -s "$records" "$work/damaged" || fail 'the checksum of this test is not that of the program'
put 8 00000002
expect 1 'version 2' --read "$work/damaged"
put 12 00000000
expect 1 'damaged\|no device' --read "$work/damaged"
for count in 12 16; do
    put "$count" ffffffff
    expect 1 'damaged' --read "$work/damaged"
done
put 24 ffff # the length of the first section's path
expect 1 'it ends too early' --read "$work/damaged"
put 26 5858 # a path that no section has
expect 1 'no device' --read "$work/damaged"
put 34 ffffffff # the size of the first record
expect 1 'it ends too early' --read "$work/damaged"
# Whatever else a byte may become: never a crash.
for ((offset = 20; offset < size - 4; offset++)); do
    for byte in 00 7f ff; do
        put "$offset" "$byte"
        timeout 60 "$program" --full --read "$work/damaged" >"$work/out" 2>"$work/err"
        status=$?
        [ "$status" -le 1 ] || fail "byte $byte at $offset ended with $status"
    done
done

[ "$failures" = 0 ] && echo "all passed"
exit "$((failures > 0))"
