#!/usr/bin/env python3
"""Reads serial records without the library, with nothing but Python's standard library: for programs on servers that
take what devices wrote. Written from docs/record-format.md and docs/record-file.md.

usage: read_records.py FILE …     prints each value of files of records as a line of JSON, with its name and section
Ends with 1 if something is wrong with a file, after what stands before that.
"""
import json
import math
import re
import socket
import struct
import sys
import zlib

# The library's codes for what cannot be read.
INVALID, NO_FORM, MEMBER = -41, -26, -1
NATIVE = "<" if sys.byteorder == "little" else ">"

ELEMENTS = {1: ("U8", "B"), 2: ("S8", "b"), 3: ("U16", "H"), 4: ("S16", "h"), 5: ("U32", "I"), 6: ("S32", "i"),
            7: ("U64", "Q"), 8: ("S64", "q"), 9: ("Float", "f"), 10: ("Double", "d")}
SHAPES = {3, 6, 9}
TYPES = {0x01: "Bool", 0x02: "Numeric", 0x03: "NumericArray", 0x04: "NumericSparse", 0x05: "Enum", 0x06: "String",
         0x07: "StringArray", 0x08: "BoolArray", 0x09: "StringSparse", 0x80: "Colour", 0x81: "Coordinate",
         0x82: "Rectangle", 0x83: "Orientation", 0x86: "Addr", 0x88: "Endpoint", 0x89: "AppEndpoint",
         0x8c: "AppEndpointArray", 0x8d: "RectArray", 0xfd: "Composite", 0xfe: "Collection"}
ELEMENTS_OF = {"Numeric": set(ELEMENTS), "NumericArray": set(ELEMENTS), "NumericSparse": set(ELEMENTS),
               "Coordinate": SHAPES, "Rectangle": SHAPES, "RectArray": {3}}
PROTOCOLS = {0: "Unknown", 1: "Soap", 2: "SoapSsl", 5: "Http", 7: "Https", 8: "TcpRaw", 9: "HttpXml", 10: "Modbus",
             32: "Ntp", 66: "Rtsp"}


class Refused(Exception):
    """What stands there is no record, or none of the kind that it says."""

    def __init__(self, code):
        super().__init__(code)
        self.code = code


class Single(float):
    """A number of 32 bits, which JSON shows with as few digits as tell it from its neighbours."""

    def __eq__(self, other):
        return struct.pack("f", self) == struct.pack("f", other)


def require(fits):
    if not fits:
        raise Refused(INVALID)


def number(form, data, order):
    """`order` is that of the machine that wrote the record, which floating-point numbers have."""
    if form == "f":
        value = struct.unpack(order + "f", data)[0]
        inside = math.isfinite(value) and -2**63 <= int(value) < 2**63
        swapped = struct.unpack("<I", struct.pack(">I", int(value) % 2**32 if inside else 0))[0]
        return Single(struct.unpack("f", struct.pack("f", swapped))[0])
    if form == "d":
        value = struct.unpack(order + "d", data)[0]
        inside = math.isfinite(value) and -2**63 <= int(value) < 2**64
        return float(struct.unpack("<Q", struct.pack(">Q", int(value) % 2**64 if inside else 2**63))[0])
    return struct.unpack(">" + form, data)[0]


def numbers(form, data, order):
    width = struct.calcsize(form)
    require(len(data) % width == 0)
    return [number(form, data[at:at + width], order) for at in range(0, len(data), width)]


def text(data):
    require(data[-1:] == b"\0")
    return data[:data.index(0)]


def shown(data):
    """As the JSON of the library has bytes that are no UTF-8: private characters, those that stand for them as well."""
    parts = re.split(rb"(\xee[\xbe\xbf][\x80-\xbf])", data)
    single = lambda octets: "".join(chr(0xEF00 + octet) for octet in octets)
    result = ""
    for index, part in enumerate(parts):
        while index % 2 == 0 and part:
            try:
                result, part = result + part.decode(), b""
            except UnicodeDecodeError as error:
                result += part[:error.start].decode() + single(part[error.start:error.end])
                part = part[error.end:]
        result += single(part)
    return result


def is_ipv6(address):
    address, percent, zone = address.partition(b"%")
    if percent and (not zone or b":" in zone):
        return False
    try:
        socket.inet_pton(socket.AF_INET6, address.decode())
        return True
    except (OSError, ValueError):
        return False


def bracketed(address, port):
    return b":" in address and (is_ipv6(address) or is_ipv6(address + b":%d" % port))


def endpoint(data):
    address, colon, tail = data.rpartition(b":")
    if is_ipv6(data) or not colon or not re.fullmatch(rb"[0-9]{0,5}", tail) or int(tail or b"0") > 65535:
        address, tail = data, b""
    port = int(tail or b"0")
    if address[:1] == b"[" and address[-1:] == b"]" and bracketed(address[1:-1], port):
        address = address[1:-1]
    written = b"[%s]:%d" if bracketed(address, port) else b"%s:%d"
    return {"address": shown(address), "port": port}, len(written % (address, port)) + 1


def app_endpoint(data):
    value, step = endpoint(text(data[6:]))
    protocol, group, version, compatible = struct.unpack(">BBHH", data[:6])
    value.update(protocol=PROTOCOLS.get(protocol, protocol), group=group, version=version, compatVersion=compatible)
    return value, step + 6


def app_endpoints(data):
    values, steps = [], 0
    while len(data) >= 6 and (end := data.find(0, 6)) >= 0:
        value, step = app_endpoint(data[:end + 1])
        values, steps, data = values + [value], steps + step, data[end + 1:]
    return values, steps


def rectangle(form, data, order):
    left, top, right, bottom = numbers(form, data, order)
    return {"topLeft": {"x": left, "y": top}, "bottomRight": {"x": right, "y": bottom}}


def bits(data):
    require(data and data[0] < 8)
    count = max(len(data) - 2, 0) * 8 + (data[0] or 8) if len(data) > 1 else 0
    return [bool(data[1 + i // 8] & 0x80 >> i % 8) for i in range(count)]


def composite(data, order):
    require(len(data) >= 2)
    count, at = int.from_bytes(data[:2], "big"), 2
    members = []
    for _ in range(count):
        if len(data) - at < 10:
            raise Refused(MEMBER)
        size = int.from_bytes(data[at + 4:at + 8], "big")
        if size > len(data) - at - 10:
            raise Refused(MEMBER)
        try:
            member, step = payload(data[at:at + 10], data[at + 10:at + 10 + size], order)
        except Refused:
            raise Refused(MEMBER) from None
        members.append(member)
        at += 10 + step
    bare = [member.pop("value") for member in members]
    return {"members": members, "value": bare}, at


def payload(header, data, order=NATIVE):
    """The value that a payload is, and the number of bytes by which a composite steps over it."""
    kind, element = TYPES.get(header[8]), header[9]
    if kind == "Collection":
        raise Refused(NO_FORM)
    require(kind and element in ELEMENTS_OF.get(kind, {0}))
    value = {"id": int.from_bytes(header[:4], "big"), "type": kind}
    form, step = "", len(data)
    if element:
        value["elementType"], form = ELEMENTS[element]
    width = struct.calcsize(form)
    sizes = {"Bool": 1, "Numeric": width, "NumericSparse": width, "Enum": 4, "Colour": 16, "Coordinate": 2 * width,
             "Orientation": 12}
    require(len(data) == sizes.get(kind, len(data)))
    if kind == "Composite":
        members, step = composite(data, order)
        value.update(members)
        return value, step
    plain = {
        "Bool": lambda: data[0] != 0,
        "Numeric": lambda: number(form, data, order),
        "NumericSparse": lambda: number(form, data, order),
        "NumericArray": lambda: numbers(form, data, order),
        "Enum": lambda: number("i", data, order),
        "BoolArray": lambda: bits(data),
        "Colour": lambda: dict(zip("argb", numbers("f", data, order))),
        "Orientation": lambda: dict(zip(("bearing", "inclination", "roll"), numbers("f", data, order))),
        "Coordinate": lambda: dict(zip("xy", numbers(form, data, order))),
    }
    if kind in plain:
        bare = plain[kind]()
    elif kind in ("String", "StringSparse", "Addr"):
        bare = shown(text(data))
        step = 24 if kind == "StringSparse" else len(text(data)) + 1
    elif kind == "StringArray":
        require(data[-1:] in (b"", b"\0"))
        bare = [shown(part) for part in data.split(b"\0")[:-1]]
    elif kind == "Rectangle":
        step = 4 * width
        require(len(data) >= step)
        bare = rectangle(form, data[:step], order)
    elif kind == "RectArray":
        require(len(data) % 8 == 0)
        bare = [rectangle("H", data[at:at + 8], order) for at in range(0, len(data), 8)]
    elif kind == "Endpoint":
        bare, step = endpoint(text(data))
    elif kind == "AppEndpoint":
        require(len(data) >= 7 and data[-1] == 0)
        bare, step = app_endpoint(data)
    else:
        bare, step = app_endpoints(data)
    value["value"] = bare
    return value, step


def read(record):
    """The code and the value of what should be one whole record."""
    try:
        require(len(record) >= 10 and int.from_bytes(record[4:8], "big") == len(record) - 10)
        return 0, payload(record[:10], record[10:])[0]
    except Refused as refused:
        return refused.code, None


class Damaged(Exception):
    """What is wrong with a file, and where."""


def blocks(data):
    """Kind and body of each block of a file, as far as it is whole."""
    if data[:9] != b"\x8cLIFR\r\n\x1a\1" or len(data) < 32 or zlib.crc32(data[:28]) != int.from_bytes(data[28:32], "big"):
        raise Damaged("byte 0: this is no file of records")
    at = 32
    while at < len(data):
        kind, checksum, size = struct.unpack_from(">c3xIQ", data.ljust(at + 16, b"\0"), at)
        body = data[at + 16:at + 16 + size]
        if len(body) != size or zlib.crc32(body, zlib.crc32(data[at + 8:at + 16], zlib.crc32(data[at:at + 4]))) != checksum:
            raise Damaged(f"byte {at}: the block that begins here is damaged")
        yield kind, body
        at += 16 + size
    if len(data) != int.from_bytes(data[20:28], "big"):
        raise Damaged(f"byte {at}: this is not the end of the file that was written")


def section_of(identity):
    """The identity of the section that a parameter's lies in: all ones behind the levels, which the top bits count."""
    return identity | (0xFFFFFF >> 6 * (identity >> 30))


def values(data):
    """The values of a file, each with the names that the file has for it. What is of no known type is left out."""
    names, order = {}, ">" if data[9:10] == b"\2" else "<"
    for kind, body in blocks(data):
        at = 0
        while at < len(body):
            identity, size = struct.unpack(">II", body[at:at + 8].ljust(8, b"\xff"))
            if at + (8 if kind == b"N" else 10) + size > len(body):
                raise Damaged("an entry does not fit its block")
            if kind == b"N":
                names[identity] = shown(body[at + 8:at + 8 + size])
                at += 8 + size
                continue
            named = {key: names[which] for key, which in (("section", section_of(identity)), ("name", identity))
                     if which in names}
            try:
                yield named | payload(body[at:at + 10], body[at + 10:at + 10 + size], order)[0]
            except (Refused, RecursionError):
                pass
            at += 10 + size


def main():
    status = 0
    for path in sys.argv[1:]:
        try:
            with open(path, "rb") as file:
                for value in values(file.read()):
                    print(json.dumps(value))
        except (OSError, Damaged) as error:
            print(f"{path}: {error}", file=sys.stderr)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())
