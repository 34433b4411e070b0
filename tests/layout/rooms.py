#!/usr/bin/env python3
"""Holds the include lines of the library against the table of rooms in docs/architecture.md.

A room is a folder below Legacy/src/If; a public header belongs to the room that holds the source of its name, or that
the table names for it. Headers use the rooms that their row names, all of which stand before it, so that no arrow
points back; sources use any room before theirs, and the one that their row names besides. usage: rooms.py SOURCE_DIR
"""
import re
import sys
from pathlib import Path

top = Path(sys.argv[1])
sources = top / "Legacy/src/If"
public = top / "include/Legacy/If"
failures = []


def words(cell):
    return re.findall(r"`([^`]+)`", cell)


# The rows of the table: room, what lives there, what its headers use, what its sources use besides, headers without a
# source of their name.
rooms, headers_use, sources_use, room_of_header = [], {}, {}, {}
for line in (top / "docs/architecture.md").read_text().splitlines():
    cells = [cell.strip() for cell in line.strip("|").split("|")]
    if not re.fullmatch(r"`[a-z]+`", cells[0]) or len(cells) != 5:
        continue
    room = words(cells[0])[0]
    headers_use[room] = set(words(cells[2]))
    sources_use[room] = set(rooms) | set(words(cells[3]))
    rooms.append(room)
    room_of_header.update({header: room for header in words(cells[4])})

folders = sorted(path.name for path in sources.iterdir() if path.is_dir())
if sorted(rooms) != folders:
    failures.append(f"the table has the rooms {sorted(rooms)}, the folders are {folders}")

# What headers use stands before them, so the arrows cannot close a circle.
for place, room in enumerate(rooms):
    for used in headers_use[room]:
        if used not in rooms[:place]:
            failures.append(f"the headers of {room} use {used}, which does not stand before it")

for source in sources.glob("*/*.cpp"):
    for header in (f"{source.stem}.h", f"Detail/{source.stem}.h"):
        if (public / header).exists():
            room_of_header[header] = source.parent.name
files = [(path, path.parent.name, path.suffix == ".h") for path in sources.glob("*/*") if path.suffix in (".h", ".cpp")]
for path in public.rglob("*.h"):
    header = str(path.relative_to(public))
    if header not in room_of_header:
        failures.append(f"{header} has no source of its name and no place in the table")
    else:
        files.append((path, room_of_header[header], True))

include = re.compile(r'#include (?:"([a-z]+)/|<Legacy/If/([^>]+)>|"([^"]+)")')
for path, room, is_header in files:
    allowed = (headers_use if is_header else sources_use).get(room, set()) | {room}
    for line in path.read_text().splitlines():
        match = include.match(line)
        if not match:
            continue
        used = match[1] or room_of_header.get(match[2])
        if match[3]:
            failures.append(f"{path.relative_to(top)}: {line} does not name a room")
        elif used not in allowed:
            failures.append(f"{path.relative_to(top)}: {line} reaches from {room} into {used}")

print("\n".join(failures) or f"{len(files)} files in {len(rooms)} rooms keep to the table.")
sys.exit(1 if failures else 0)
