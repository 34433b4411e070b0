#!/usr/bin/env python3
"""Compares the reader of examples/read_records with the library.

usage: compare.py PAGE FILE < LINES     records that a page shows, a file of records, and lines as Records.cpp writes
                                        them: a record in hex, a code, and the value as JSON
"""
import json
import re
import sys
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parent.parent.parent / "examples/read_records"))
from read_records import read, values

page, file = Path(sys.argv[1]).read_text(encoding="utf-8"), Path(sys.argv[2]).read_bytes()
shown = re.findall(r"```hex\n(.*?)```\s+```json\n(.*?)```", page, re.S) if sys.byteorder == "little" else []
cases = [(bytes.fromhex("".join(re.findall(r"^((?:[0-9a-f]{2} )*[0-9a-f]{2})  ", lines, re.M))), 0, value)
         for lines, value in shown]
for line in sys.stdin:
    record, code, value = line.rstrip("\n").split(" ", 2)
    cases.append((bytes.fromhex(record), int(code), value))
faults, accepted = 0, []
for record, code, value in cases:
    expected = json.loads(value) if code == 0 else None
    accepted += [expected] if code == 0 else []
    if (mine := read(record)) != (code, expected):
        faults += 1
        print(f"{record.hex(' ')}\n  library: {code} {value}\n  reader:  {mine}", file=sys.stderr)
print(f"{len(cases)} records, {len(accepted)} accepted, {faults} read otherwise")
filed = list(values(file))
for value in filed:
    names = value.pop("section", None), value.pop("name", None)
    if value not in accepted or names != ("a/b/c", "name é"):
        faults += 1
        print(f"in the file: {names} {value}", file=sys.stderr)
sys.exit(faults != 0 or len(accepted) < 1000 or len(cases) - len(accepted) < 1000 or len(filed) < 100)
