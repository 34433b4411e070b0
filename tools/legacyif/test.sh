#!/usr/bin/env bash
# Runs the command legacyif as people and accidents do, and compares what it prints with what is written here.
# usage: test.sh PROGRAM
set -uo pipefail
program=$1
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
failures=0

fail() {
    echo "FAILED: $*"
    failures=$((failures + 1))
}

# expect STATUS ARGUMENT… <<text: the exit status, and the standard output with the error output behind it
expect() {
    local status=$1 got
    shift
    cat >expected
    timeout 60 "$program" "$@" >out 2>err </dev/null
    got=$?
    [ "$got" = "$status" ] || fail "$* ended with $got instead of $status"
    cat out err | diff -u --label expected --label printed expected - || fail "$*"
}

cat >schema.json <<'EOF'
{"sections": [{"path": "port", "id": 16777215,
  "parameters": [
    {"schema": {"title": "mtu", "type": "integer", "minimum": 68, "maximum": 9216, "default": 1500,
      "x-legacyif": {"id": 0, "type": "Numeric", "elementType": "U16", "unit": "bytes"}}},
    {"schema": {"title": "mode", "type": "integer", "enum": [0, 2],
      "x-legacyif": {"id": 1, "type": "Enum", "elements": [{"name": "off"}, {"name": "auto"}]}}},
    {"schema": {"title": "label", "type": "string", "maxLength": 8, "x-legacyif": {"id": 2, "type": "String"}}},
    {"schema": {"title": "peer", "x-legacyif": {"id": 3, "type": "Endpoint"}}},
    {"schema": {"title": "rate", "enum": [10, 100],
      "x-legacyif": {"id": 4, "type": "NumericSparse", "elementType": "U8"}}},
    {"schema": {"title": "timer", "prefixItems": [
        {"title": "delay", "minimum": 1, "x-legacyif": {"id": 9, "type": "Numeric", "elementType": "S8"}}],
      "x-legacyif": {"id": 5, "type": "Composite"}}}],
  "sections": [{"path": "port/stp", "id": 1074003967,
    "parameters": [{"schema": {"title": "on", "x-legacyif": {"id": 1073741824, "type": "Bool"}}}]}]}]}
EOF
cat >values.json <<'EOF'
{"sections": [{"path": "port", "id": 16777215}, {"path": "port/stp", "id": 1074003967}],
 "values": [{"id": 0, "name": "mtu", "type": "Numeric", "elementType": "U16", "value": 65535},
  {"id": 1, "name": "mode", "type": "Enum", "value": 2},
  {"id": 2, "name": "label", "type": "String", "value": "a\u009bb\u202e"},
  {"id": 4, "name": "rate", "type": "NumericSparse", "elementType": "U8", "value": 100},
  {"id": 5, "name": "timer", "type": "Composite", "members": [{"id": 9, "type": "Numeric", "elementType": "S8"}], "value": [0]},
  {"id": 1073741824, "name": "on", "type": "Bool", "value": true}]}
EOF

expect 0 records values.json </dev/null
expect 0 show values.rec --schema schema.json <<'EOF'
port
  mtu    Numeric(U16)       65535 bytes  68 <= 1500 <= 9216        mtu: the value is above the maximum of 9216.
  mode   Enum               auto         off=0, auto=2; default=0
  label  String             a?b?         ""; max length=8
  peer   Endpoint           -            EndpointInfo
  rate   NumericSparse(U8)  100          10, 100; default=0
  timer  Composite          (0)          (1 <= 1 <= 127)           delay: the value is below the minimum of 1.
port/stp
  on  Bool  True  default=False
EOF
COLUMNS=50 "$program" show values.rec --schema schema.json | grep -q '^  mtu    Numeric…  65535 by…  68 <= 15…  mtu: the…$' ||
    fail 'columns do not shrink'
expect 1 check values.rec --schema schema.json --language de <<'EOF'
port/mtu: mtu: Der Wert liegt über dem Maximum von 9216.
port/timer[0]: delay: Der Wert liegt unter dem Minimum von 1.
EOF
expect 0 diff values.rec values.json </dev/null

# Changes, each refused or whole.
expect 0 set values.rec port/mtu 1500 --schema schema.json </dev/null
expect 0 set values.rec port/mode off --schema schema.json </dev/null
expect 0 set values.rec port/peer '[::1]:80' --schema schema.json </dev/null
expect 0 set values.rec port/timer '[5]' --schema schema.json </dev/null
expect 0 check values.rec --schema schema.json </dev/null
cp values.rec before
expect 1 set values.rec port/mtu 1 --schema schema.json <<<'legacyif: port/mtu: mtu: the value is below the minimum of 68.'
expect 1 set values.rec port/rate 11 --schema schema.json <<<'legacyif: port/rate: rate: the value is outside of what its schema allows.'
expect 2 set values.rec port/mtu many --schema schema.json <<<"legacyif: 'many' is no value of this parameter: byte 0, line 1, column 1: syntax error"
expect 1 set values.rec port/nothing 1 <<<"legacyif: values.rec: there is no parameter 'port/nothing'"
cmp values.rec before || fail 'a refused change left its mark'
expect 0 get values.rec port/peer <<<'[::1]:80'
expect 0 get values.rec port/peer --format json <<<'{"address": "::1", "port": 80}'
expect 1 diff values.json values.rec --schema schema.json <<'EOF'
port/mtu: 65535 bytes -> 1500 bytes
port/mode: auto -> off
port/peer: (no value) -> [::1]:80
port/timer: (0) -> (5)
EOF
"$program" explain values.rec | sed -n '/peer/,/of rate/p; /timer/,/of on/p' | grep -v -e ' id ' -e ' size ' -e ' element ' |
    diff -u - <(cat <<'EOF'
record of peer
000000e3  88                       type          Endpoint
000000e5  5b 3a 3a 31 5d 3a 38 30    text        "[::1]:80"
000000ed  00
record of rate
record of timer
00000101  fd                       type          Composite
00000103  00 01                      members     1
0000010d  02                         type        Numeric
0000010f  05                           number    5
record of on
EOF
) || fail 'explain'

# Trouble: what stands before it is shown, and what it is.
size=$(stat -c %s values.rec)
head -c $((size - 40)) values.rec >short.rec
expect 2 show short.rec <<'EOF'
port
port/stp
legacyif: short.rec: byte 243: expected 40 more bytes, found the end of the file
EOF
expect 2 set short.rec port/mtu 1500 <<'EOF'
legacyif: short.rec: byte 243: expected 40 more bytes, found the end of the file
legacyif: short.rec: not changed, since a part of it would be lost
EOF
head -c 300 values.json >short.json
expect 2 get short.json port/mtu <<'EOF'
65535
legacyif: short.json: byte 300, line 4, column 60: incomplete JSON
EOF
expect 2 show missing <<<'legacyif: missing: byte 0: No such file or directory'
expect 2 show . <<<'legacyif: .: byte 0: expected a file, found a directory'
expect 2 check values.rec --schema values.rec <<<'legacyif: values.rec: byte 0, line 1, column 1: syntax error'
expect 2 explain values.json <<<'legacyif: values.json: byte 0: expected a file of records, found JSON'
"$program" json values.rec >/dev/full 2>err && fail 'a full disk went unnoticed'
"$program" show - --schema schema.json <values.rec | cmp -s - <("$program" show values.rec --schema schema.json) ||
    fail 'the standard input is another file'
for arguments in '' 'show' 'show a b' 'nonsense a' 'show a --language fr' 'json a --nonsense'; do
    # shellcheck disable=SC2086
    timeout 60 "$program" $arguments >/dev/null 2>&1 </dev/null
    [ $? = 2 ] || fail "'$arguments' is no wrong command line"
done
for command in show check json records diff explain get set; do
    "$program" "$command" --help >out || fail "$command --help"
    grep -q "^\.TP\$" "$here/legacyif.1" && grep -q "^\.B $command\$" "$here/legacyif.1" || fail "the manual lacks $command"
    # All options are in the manual and in the completion.
    for option in $(grep -o -e '--[a-z]*' out | sort -u); do
        grep -q -e "${option//-/\\\\-}" "$here/legacyif.1" || fail "the manual lacks $option"
        grep -q -e "$option" "$here/legacyif.bash" || fail "the completion lacks $option"
    done
done

# Colours and the width of a terminal.
if command -v script >/dev/null; then
    TERM=xterm script -qec "stty cols 60; '$program' show values.rec" /dev/null >out 2>&1 </dev/null
    grep -q $'\033\[1mport' out || fail 'a terminal gets no colours'
fi
if command -v man >/dev/null; then
    [ -z "$(LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -l "$here/legacyif.1" 2>&1 >/dev/null)" ] || fail 'the manual has faults'
fi

[ "$failures" = 0 ] && echo "all passed"
exit "$((failures > 0))"
