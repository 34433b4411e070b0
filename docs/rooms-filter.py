#!/usr/bin/env python3
"""Input filter of doxygen: puts what a public header declares into the group of its room.

A header's room is the one that holds the source of its name, or that the table in docs/architecture.md names for it; a
header of another library belongs to that library. No line is added, so that line numbers stay. usage: rooms-filter.py
HEADER
"""
import re
import sys
from pathlib import Path

LIBRARIES = {"Orlek": "the base library: counts, logging, localization, exceptions", "Net": "addresses, endpoints, URIs",
             "Legacy/IfKit": "the companion library: what applications need beside the library"}


def group_of(header, top):
    """The name and the title of the header's group."""
    library = str(header.parent.relative_to(top / "include"))
    if library in LIBRARIES:
        return library.rpartition("/")[2], f"{library.replace('/', '::')}: {LIBRARIES[library]}"
    name = header.relative_to(top / "include/Legacy").as_posix().removeprefix("If/")
    table = (top / "docs/architecture.md").read_text(encoding="utf-8")
    rooms = dict(re.findall(r"^\| `([a-z]+)` \| ([^|]+) \|", table, re.M))
    for room, what in rooms.items():
        row = re.search(rf"^\| `{room}` .*$", table, re.M)[0]
        if f"`{name}`" in row or (top / "Legacy/src/If" / room / Path(name).with_suffix(".cpp").name).exists():
            return f"room_{room}", f"{room}: {what}"
    return "Legacy", "Legacy::If"


header = Path(sys.argv[1]).resolve()
text = header.read_text(encoding="utf-8")
group, title = group_of(header, Path(__file__).resolve().parent.parent)
opening = re.compile(r"^namespace (Legacy::If(?:Kit)?|Orlek|Net)(?:::Detail)? \{$", re.M)
if match := list(opening.finditer(text)):
    place = match[-1].end()
    end = text.rindex("} // namespace")
    text = f"{text[:place]} /** \\addtogroup {group} {title} */ /** @{{ */{text[place:end]}/** @}} */ {text[end:]}"
sys.stdout.write(text)
