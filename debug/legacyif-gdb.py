"""Shows the objects of the Legacy::If library in gdb.

gdb loads this file by itself together with the library that it is installed for; `source` loads it by hand. Smart
pointers to schemas, values and holders, identifiers, records, directories and deltas then print as what they hold, and
the command `legacyif EXPRESSION` shows any of them, also where a program knows the type by name alone.

Everything is read from memory: which class an object has, from its run-time type, and its members, from where they lie.
So nothing here needs the library's debug information, or a process that can still run.
"""
import json
import re
import struct

import gdb
import gdb.printing
import gdb.types

LARGEST_DEPTH = 8  # of composites that are shown
FEW_BYTES = 32     # of a record's payload
ELEMENTS = ("U8", "S8", "U16", "S16", "U32", "S32", "U64", "S64", "Float", "Double")
CODES = dict(zip(ELEMENTS, "BbHhIiQqfd"))
TYPES = {1: "Bool", 2: "Numeric", 3: "NumericArray", 4: "NumericSparse", 5: "Enum", 6: "String", 7: "StringArray",
         8: "BoolArray", 9: "StringSparse", 0x80: "Colour", 0x81: "Coordinate", 0x82: "Rectangle", 0x83: "Orientation",
         0x86: "Addr", 0x87: "LocalizedString", 0x88: "Endpoint", 0x89: "AppEndpoint", 0x8a: "Connection",
         0x8c: "AppEndpointArray", 0x8d: "RectArray", 0xfc: "Extended", 0xfd: "Composite", 0xfe: "Collection"}
PROTOCOLS = {0: "Unknown", 1: "Soap", 2: "SoapSsl", 5: "Http", 7: "Https", 8: "TcpRaw", 9: "HttpXml", 10: "Modbus",
             32: "Ntp", 66: "Rtsp"}


def pointer_size():
    return gdb.lookup_type("void").pointer().sizeof


def shown_elements():
    return gdb.parameter("print elements") or 1 << 30


def read_bytes(address, size):
    return bytes(gdb.selected_inferior().read_memory(address, size)) if size else b""


class Reader:
    """Takes one member after the other from memory, each where the compiler puts it."""

    def __init__(self, address, skip=0):
        self.at = address + skip
        self.word = pointer_size()
        self.order = "<" if "little" in gdb.execute("show endian", to_string=True) else ">"

    def align(self, size):
        self.at += -self.at % size
        return self

    def number(self, code):
        size = struct.calcsize("=" + code)
        self.align(size)
        value, = struct.unpack(self.order + code, read_bytes(self.at, size))
        self.at += size
        return value

    def numbers(self, code, count):
        return [self.number(code) for _ in range(count)]

    def pointer(self):
        return self.number("Q" if self.word == 8 else "I")

    def text(self):
        """A std::string."""
        data, size = self.pointer(), self.pointer()
        self.at += 16
        few = min(size, shown_elements())
        return quote(read_bytes(data, few)) + ("…" if few < size else "")

    def vector(self, size, read):
        """A std::vector of elements of that size, each read by a function of a reader."""
        begin, end, _ = self.pointer(), self.pointer(), self.pointer()
        return listed((end - begin) // size, lambda i: read(Reader(begin + i * size)))

    def bits(self):
        """A std::vector<bool>."""
        begin, _ = self.pointer(), self.number("I")
        end, offset = self.align(self.word).pointer(), self.number("I")
        self.align(self.word).pointer()
        count = (end - begin) * 8 + offset
        word = self.word * 8
        return listed(count, lambda i: str(bool(
            Reader(begin + i // word * self.word).pointer() >> i % word & 1)))

    def map(self):
        """The nodes of a std::map, in order, as readers of its pairs."""
        self.align(self.word).at += self.word  # the allocator and the comparison
        header = self.at
        count = Reader(header, 4 * self.word).pointer()
        self.at += 5 * self.word
        node = Reader(header, 2 * self.word).pointer()
        for _ in range(count):
            yield Reader(node, 4 * self.word)
            node = next_node(node)


def next_node(node):
    def link(of, which):  # colour, parent, left, right
        return Reader(of, which * pointer_size()).pointer()
    if link(node, 3):
        node = link(node, 3)
        while link(node, 2):
            node = link(node, 2)
        return node
    parent = link(node, 1)
    while node == link(parent, 3):
        node, parent = parent, link(parent, 1)
    return parent


def quote(text):
    return json.dumps(text.decode("utf-8", "backslashreplace"), ensure_ascii=False)


def listed(count, element):
    few = min(count, shown_elements())
    return "{" + ", ".join([element(i) for i in range(few)] + ["…"] * (few < count)) + "}"


def plural(count, noun):
    return f"{count} {noun}{'' if count == 1 else 's'}"


# Identifiers and records


def show_id(number):
    depth = (number >> 30) + 1
    levels = [number >> 30 - 6 * level & 63 for level in range(1, depth + 1)]
    mask = (1 << 30 - 6 * depth) - 1
    item = number & mask
    if number == 0xffffffff:
        place = "none"
    elif levels[-1] == 63:
        place = "/".join(map(str, levels[:-1])) + "/*" if item == mask else "invalid"
    else:
        place = "/".join(map(str, levels)) + ("" if item == mask else f" #{item}")
    return f"{number:#x} ({place})"


def show_record(address):
    number, size, kind, element = struct.unpack(">IIBB", read_bytes(address, 10))
    data = Reader(0)
    data.at = address + 10
    data, = struct.unpack(data.order + ("Q" if data.word == 8 else "I"), read_bytes(data.at, data.word))
    kind = TYPES.get(kind, f"type {kind:#x}")
    if element:
        kind += f"({ELEMENTS[element - 1] if element <= 10 else hex(element)})"
    few = min(size, FEW_BYTES) if data else 0
    payload = read_bytes(data, few).hex(" ") if data else "no payload"
    return f"{{id = {show_id(number)}, {kind}, {plural(size, 'byte')}: {payload}{' …' if few < size else ''}}}"


def section_id_size():
    reader = Reader(string_size())
    reader.at += 4 + 4 * 4 + 4 + 1  # the number, where the levels start, how many there are, whether it is valid
    return reader.align(reader.word).at


def show_section_id(address):
    reader = Reader(address)
    path = reader.text()
    return f"{path} {show_id(reader.number('I'))}"


# The classes of objects, by their run-time types


def demangled(name, known={}):
    if name not in known:
        text = gdb.execute("demangle -- _ZTI" + name, to_string=True).strip()
        known[name] = text.removeprefix("typeinfo for ")
    return known[name]


def classes(address):
    """The names of an object's class and of its bases, first bases first."""
    word = pointer_size()
    info = Reader(Reader(address).pointer() - word).pointer()
    while info:
        kind = gdb.execute(f"info symbol {Reader(info).pointer():#x}", to_string=True)
        name = Reader(info, word).pointer()
        yield demangled(gdb.Value(name).cast(gdb.lookup_type("char").pointer()).string().lstrip("*"))
        base = 2 * word + (8 if "__vmi_class" in kind else 0)
        info = Reader(info, base).pointer() if "__si_class" in kind or "__vmi_class" in kind else 0


def short(name):
    name = re.sub(r"Legacy::If::(Detail::)?", "", name)
    return re.sub(r"^Net(Info|Item)<(\w+)Family>$", r"\2\1", name)


def known_class(address):
    """The name of the object's class, and the family or other class of the library that it is or derives from, with
    its element type."""
    first = None
    for name in classes(address):
        first = first or short(name)
        if not name.startswith("Legacy::If::"):
            continue
        family, _, traits = short(name).partition("<")
        if family in SHOWN:
            return first, family, traits.removesuffix(">").removesuffix("Traits")
    return first, None, ""


# Values


def show_number(value):
    return f"{value:g}" if isinstance(value, float) else str(value)


def code_size(element):
    return struct.calcsize("=" + CODES[element])


def number_of(reader, element):
    return show_number(reader.number(CODES[element]))


def floats(names):
    return lambda reader, _: ", ".join(f"{name} {reader.number('f'):g}" for name in names)


def vector_of_numbers(reader, element):
    return reader.vector(code_size(element), lambda each: number_of(each, element))


def string_size():
    return 16 + 2 * pointer_size()


def vector_of_texts(reader, _=None):
    return reader.vector(string_size(), Reader.text)


def endpoint(reader):
    address = reader.text()[1:-1]
    port = reader.number("H")
    reader.align(reader.word)
    return f"[{address}]:{port}" if ":" in address else f"{address}:{port}"


def app_endpoint(reader, _=None):
    kind, version, compat = reader.number("i"), reader.number("H"), reader.number("H")
    place = endpoint(reader)
    group = reader.number("B")
    text = f"{PROTOCOLS.get(kind, kind)} {place}"
    if version or compat:
        text += f" versions {compat} to {version}"
    return text + (f" group {group}" if group else "")


def vector_of_app_endpoints(reader):
    size = 8 + string_size() + 2 * reader.word
    return reader.vector(size, app_endpoint)


def parts(show):
    """Two objects that the reader finds pointers to."""
    return lambda reader, _: ", ".join(show(reader.pointer()) for _ in range(2))


def value_alone(address):
    _, family, element = known_class(address)
    return item_value(address, family, element)


def rects(reader, _):
    size = item_start() + 2 * reader.word
    return reader.vector(size, lambda each: value_alone(each.at))


def localized(reader, _=None):
    reader.pointer()  # the class
    key = reader.text()
    arguments = reader.vector(reader.word, lambda each: value_alone(each.pointer()))
    return key if arguments == "{}" else f"{key} {arguments}"


def pair(reader, _=None):
    return f"{{{reader.text()}, {reader.text()}}}"


depth = 0


def members(show):
    def read(reader, _):
        global depth
        node = reader.pointer()
        if not node:
            return "{}"
        if depth == LARGEST_DEPTH:
            return "{…}"
        start, count = Reader(node).pointer(), Reader(node, reader.word).pointer()
        depth += 1
        try:
            return listed(count, lambda i: show(Reader(start + i * reader.word).pointer()))
        finally:
            depth -= 1
    return read


VALUES = {
    "BoolItem": lambda reader, _: str(bool(reader.number("B"))),
    "NumericItem": number_of,
    "NumericSparseItem": number_of,
    "NumericArrayItem": vector_of_numbers,
    "EnumItem": lambda reader, _: str(reader.number("i")),
    "StringItem": lambda reader, _: reader.text(),
    "StringSparseItem": lambda reader, _: reader.text(),
    "StringArrayItem": vector_of_texts,
    "BoolArrayItem": lambda reader, _: reader.bits(),
    "ColourItem": floats("argb"),
    "CoordinateItem": lambda reader, _: f"({parts(value_alone)(reader, _)})",
    "RectItem": lambda reader, _: f"({parts(value_alone)(reader, _)})",
    "RectArrayItem": rects,
    "OrientationItem": floats(("bearing", "inclination", "roll")),
    "AddrItem": lambda reader, _: reader.text(),
    "EndpointItem": lambda reader, _: endpoint(reader),
    "AppEndpointItem": app_endpoint,
    "AppEndpointArrayItem": lambda reader, _: vector_of_app_endpoints(reader),
    "LocalizedStringItem": localized,
    "ExtendedItem": pair,
    "CompositeItem": members(value_alone),
    "CollectionItem": members(value_alone),
}


def item_start():
    return pointer_size() + 8  # the class, the id and the count


def item_value(address, family, element):
    read = VALUES.get(family)
    return read(Reader(address, item_start()), element) if read else "?"


def show_item(address, name, family, element):
    reader = Reader(address, pointer_size())
    number, count = reader.number("I"), reader.number("i")
    value = "" if family == "ItemBase" else f", value = {item_value(address, family, element)}"
    return f"{name} {{id = {show_id(number)}, {plural(count, 'reference')}{value}}}"


# Schemas


def sizes(reader):
    return "sizes {} … {}".format(*reader.numbers("I", 2))


def from_to(reader, element):
    greatest, least = (number_of(reader, element) for _ in range(2))
    return f"{least} … {greatest}"


def number_bounds(reader, element):
    default = number_of(reader, element)
    return f"{from_to(reader, element)}, default = {default}"


def numbers_bounds(reader, element):
    count, default = sizes(reader), vector_of_numbers(reader, element)
    return f"{count}, each {from_to(reader, element)}, default = {default}"


def enum_bounds(reader, _):
    def row(each):
        name, value, disabled = each.text(), each.number("i"), each.number("B")
        return f"{name[1:-1]}{'*' if disabled else ''} = {value}"
    table = reader.vector(string_size() + 8, row)
    return f"{table}, default = {reader.number('i')}"


def text_bounds(reader, _):
    default = reader.text()
    return f"length 0 … {reader.number('I')}, default = {default}"


def colour_bounds(reader, _):
    least, greatest, default = (f"({floats('argb')(reader, _)})" for _ in range(3))
    return f"{least} … {greatest}, default = {default}"


def bounds_alone(address):
    name, family, element = known_class(address)
    read = BOUNDS.get(family)
    return read(Reader(address, info_start()), element) if read else name


def named_bounds(address):
    word = pointer_size()
    title = Reader(address, word + 4).align(word).text()[1:-1]
    return f"{title} ({bounds_alone(address)})"


def bool_bounds(reader, _):
    fixed, default = reader.numbers("B", 2)
    return f"{'fixed, ' if fixed else ''}default = {bool(default)}"


def list_bounds(read):
    return lambda reader, _: f"{sizes(reader)}, default = {read(reader)}"


def table_bounds(read_table, read_default):
    def read(reader, element):
        table = read_table(reader, element)
        return f"{table}, default = {read_default(reader, element)}"
    return read


def default_alone(read):
    return lambda reader, _: f"default = {read(reader)}"


def corners(reader, _):
    return ", ".join(f"({bounds_alone(reader.pointer())})" for _ in range(2))


BOUNDS = {
    "BoolInfo": bool_bounds,
    "NumericInfo": number_bounds,
    "NumericSparseInfo": table_bounds(vector_of_numbers, number_of),
    "NumericArrayInfo": numbers_bounds,
    "EnumInfo": enum_bounds,
    "StringInfo": text_bounds,
    "StringSparseInfo": table_bounds(vector_of_texts, lambda reader, _: reader.text()),
    "StringArrayInfo": list_bounds(vector_of_texts),
    "BoolArrayInfo": list_bounds(Reader.bits),
    "ColourInfo": colour_bounds,
    "CoordinateInfo": corners,
    "RectInfo": corners,
    "RectArrayInfo": lambda reader, _: f"{corners(reader, _)}, {sizes(reader)}",
    "AddrInfo": default_alone(Reader.text),
    "EndpointInfo": default_alone(endpoint),
    "AppEndpointInfo": default_alone(app_endpoint),
    "AppEndpointArrayInfo": list_bounds(vector_of_app_endpoints),
    "LocalizedStringInfo": default_alone(localized),
    "ExtendedInfo": default_alone(pair),
    "CompositeInfo": members(named_bounds),
    "CollectionInfo": members(named_bounds),
}


def info_start():
    word = pointer_size()
    reader = Reader(0, word + 4).align(word)  # the class and the id
    reader.at += string_size() + 2            # the name and the permission
    return reader.align(4).at + 4             # the count


def show_info(address, name, family, element):
    reader = Reader(address, pointer_size())
    number, title = reader.number("I"), reader.align(reader.word).text()
    count = Reader(address, info_start() - 4).number("i")
    read = BOUNDS.get(family)
    bounds = f", {read(Reader(address, info_start()), element)}" if read else ""
    return f"{name} {{id = {show_id(number)}, name = {title}, {plural(count, 'reference')}{bounds}}}"


# Holders, directories, deltas


def held(address):
    """What a holder holds: the pointers behind its class and its count."""
    return Reader(address, pointer_size() + 4).align(pointer_size())


def show_holder(address, name, family, _):
    inside = held(address)
    first = inside.pointer()
    if family != "InfoItemHolder":
        return f"{name} {{{show(first)}}}"
    second = inside.pointer()
    return f"{name} {{{show(held(first).pointer())}, {show(held(second).pointer()) if second else 'no value'}}}"


def parameters(holder_map):
    """The values of a directory's parameters by id, null for those that have none."""
    reader = Reader(holder_map, pointer_size())
    found = {}
    for entry in reader.map():
        number = entry.number("I")
        holder = held(entry.pointer())
        holder.pointer()
        item = holder.pointer()
        found[number] = held(item).pointer() if item else 0
    return found


def infos(table):
    """The names and ids of a table of parameters, in no order: a node holds both, and then its links in two trees."""
    word = pointer_size()
    links = (2 * word + 16 + 4 + word - 1) // word * word
    head = Reader(table, word).pointer()
    waiting = [Reader(head, links).pointer() & ~1]  # the root; the lowest bit is its colour
    while waiting:
        node = waiting.pop()
        if node:
            entry = Reader(node - links)
            yield entry.text()[1:-1], entry.number("I")
            waiting += [Reader(node, word).pointer(), Reader(node, 2 * word).pointer()]


def tree(element, values, indent, lines):
    """One node of the section tree: its parameters, then its subsections; returns the number of those at all depths."""
    reader = Reader(element, pointer_size())
    reader.at += section_id_size() + 2 * reader.word  # and the pool
    list(reader.map())  # subsections by name
    subsections = list(reader.map())
    table = reader.pointer()
    names = {number: title for title, number in infos(table)} if table else {}
    for number in sorted(names):
        value = values.get(number)
        shown = f"= {value_alone(value)}" if value else "has no value"
        lines.append(f"{'  ' * indent}{names[number]} {shown}")
    count = 0
    for entry in subsections:
        child = entry.align(entry.word)
        child.at += entry.word
        child = child.pointer()
        identity = Reader(child, pointer_size())
        path = identity.text()[1:-1]
        lines.append(f"{'  ' * indent}{path.rsplit('/', 1)[-1]}/ {show_id(identity.number('I'))}")
        count += 1 + tree(child, values, indent + 1, lines)
    return count


def show_directory(address, name, *_):
    word = pointer_size()
    section_map, holder_map = Reader(address, word).pointer(), Reader(address, 3 * word).pointer()
    values, lines = parameters(holder_map), []
    sections = tree(Reader(section_map).pointer(), values, 1, lines)
    return "\n".join([f"{name}, {plural(sections, 'section')}, {plural(len(values), 'parameter')}"] + lines)


def show_delta(address, name, *_):
    reader = Reader(address, pointer_size())
    sections = [show_section_id(entry.at + entry.word) for entry in reader.map()]
    holders = []
    for _ in range(2):
        entries = list(reader.map())
        for entry in entries:
            entry.number("I")
        holders.append([show(held(entry.pointer()).pointer()) for entry in entries])
    head = f"{name}, {plural(len(sections), 'section')}, {plural(len(holders[0]), 'schema')}, " \
           f"{plural(len(holders[1]), 'value')}"
    return "\n  ".join([head] + sections + holders[0] + holders[1])


SHOWN = {**{family: show_item for family in (*VALUES, "ItemBase")},
         **{family: show_info for family in (*BOUNDS, "InfoBase")},
         **{family: show_holder for family in ("InfoHolder", "ItemHolder", "InfoItemHolder")},
         "InfoItemDirectory": show_directory, "InfoItemDirectoryDelta": show_delta}
PLAIN = {"SectionId": show_section_id, "InfoItemSectionId": lambda address: show_id(Reader(address).number("I")),
         "ItemBase::SerialStruct_t": show_record, "ItemBase::ConstSerialStruct_t": show_record}


def show(address, static=None):
    """One object of the library; `static` is the name of its type where a class has no run-time type."""
    if not address:
        return "null"
    try:
        if static in PLAIN:
            return PLAIN[static](address)
        name, family, element = known_class(address)
        return SHOWN[family](address, name, family, element) if family else f"{name} is no class of this library"
    except gdb.MemoryError:
        return f"<no object at {address:#x}>"


# What gdb calls


def static_name(kind):
    return short(str(gdb.types.get_basic_type(kind))).removeprefix("const ")


class SmartPointer:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        return show(int(self.value["px"]))


class Object:
    def __init__(self, value):
        self.value = value

    def to_string(self):
        if self.value.type.strip_typedefs().code == gdb.TYPE_CODE_REF:
            self.value = self.value.referenced_value()
        name = static_name(self.value.type)
        if name == "InfoItemSectionId":
            return show_id(int(self.value["m_id"]))  # which may be in a register
        return show(int(self.value.address), name)


class Command(gdb.Command):
    """Show an object of the Legacy::If library: legacyif EXPRESSION

The expression is an object, a reference or a plain or smart pointer. A directory shows as a tree of sections and values."""

    def __init__(self):
        super().__init__("legacyif", gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    def invoke(self, argument, _):
        if not argument:
            raise gdb.GdbError("legacyif EXPRESSION")
        value = gdb.parse_and_eval(argument)
        kind = gdb.types.get_basic_type(value.type)
        name = str(kind)
        if name.startswith("boost::intrusive_ptr<"):
            value = value["px"]
        elif name.startswith(("std::shared_ptr<", "std::__shared_ptr<")):
            value = value["_M_ptr"]
        kind = gdb.types.get_basic_type(value.type)
        if kind.code == gdb.TYPE_CODE_PTR:
            print(show(int(value), static_name(kind.target())))
        else:
            print(show(int(value.address), static_name(kind)))


def register():
    printers = gdb.printing.RegexpCollectionPrettyPrinter("legacyif")
    printers.add_printer("pointer", r"^boost::intrusive_ptr<Legacy::If::", SmartPointer)
    objects = "|".join(f"{name}(<.*>)?" for name in (*SHOWN, *PLAIN, "Detail::NetInfo", "Detail::NetItem"))
    printers.add_printer("object", f"^Legacy::If::({objects})$", Object)
    gdb.printing.register_pretty_printer(gdb.current_objfile(), printers, replace=True)
    Command()


register()
