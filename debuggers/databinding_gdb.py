# SPDX-License-Identifier: Apache-2.0
"""Shows the library's objects in GDB by what they mean: names as text, properties with their
values, data sources with their properties, providers with their sources.

An installed library brings this along and GDB loads it by itself. In a build tree:

    (gdb) source debuggers/databinding_gdb.py

Nothing here calls a function of the program, so that core files can be read, too. Objects that are
not made yet, or no more, are shown as <invalid>. What the library's classes hold is known only with
the debug information of the library (libdatabinding0-dbgsym), or where the program is built with
-femit-class-debug-always (g++) or -fstandalone-debug (clang++).
"""

import re

import gdb
import gdb.printing

INVALID = "<invalid>"
ERRORS = (gdb.error, RuntimeError, ValueError, TypeError, AttributeError, OverflowError)
MOST_CHARACTERS = 1 << 20
MOST_ELEMENTS = 10000

# Where a walk over the bases of a class ends: what the library itself keeps there is not shown.
SOURCE_BASES = ("DataBinding::NamedDataSource", "DataBinding::DataSourceImpl",
                "DataBinding::IDataSource", "DataBinding::IDataSourceBase")
PROVIDER_BASES = ("DataBinding::DataSourceProvider",)


def quoted(characters, length):
    """The text at a wchar_t pointer, as a literal."""
    if length < 0 or length > MOST_CHARACTERS:
        raise ValueError("no length")
    limit = gdb.parameter("print elements") or length
    shown = min(length, limit)
    size = characters.type.target().sizeof
    data = b"" if shown == 0 else gdb.selected_inferior().read_memory(int(characters), shown * size)
    text = bytes(data).decode("utf-16-le" if size == 2 else "utf-32-le", errors="replace")
    escaped = "".join(c if c.isprintable() and c not in '"\\' else
                      "\\" + c if c in '"\\' else f"\\u{ord(c):04x}" for c in text)
    return f'L"{escaped}"' + ("..." if shown < length else "")


def name_text(string):
    """The text of a VtrString."""
    buffer = string["buffer"]
    if int(buffer) == 0:
        return 'L""'
    length = int(buffer["length"])
    wide = gdb.lookup_type("wchar_t").pointer()
    characters = (buffer + 1).cast(wide)
    if not 0 < length <= MOST_CHARACTERS or int((characters + length).dereference()) != 0:
        raise ValueError("no string")
    return quoted(characters, length)


def unwrapped(value, kind):
    """What a standard wrapper of one pointer or number (atomic, unique_ptr) holds."""
    return value.address.cast(kind.pointer()).dereference()


def elements(container):
    """The values that a standard container shows, by the visualizer of its own library."""
    visualizer = gdb.default_visualizer(container)
    if visualizer is None or not hasattr(visualizer, "children"):
        return
    for count, (_, value) in enumerate(visualizer.children()):
        if count == MOST_ELEMENTS:
            return
        yield value


def pairs(container):
    """The keys and values of a standard map, ordered or hashed."""
    rest = elements(container)
    return zip(rest, rest)


def whole(value):
    """The object of which a value is a part, or the value itself where that cannot be told."""
    try:
        kind = value.dynamic_type
        return value if kind == value.type else value.cast(kind)
    except ERRORS:
        return value


def held(atomic, name):
    """The object to which an atomic pointer to a class of that name points, or None."""
    pointer = unwrapped(atomic, gdb.lookup_type("void").pointer())
    if int(pointer) == 0:
        return None
    return pointer.cast(gdb.lookup_type(f"DataBinding::details::{name}").pointer()).dereference()


def pointed(pointer):
    """A pointer to the object of which its target is a part."""
    try:
        return pointer.cast(pointer.dynamic_type)
    except ERRORS:
        return pointer


def class_name(kind):
    return kind.strip_typedefs().unqualified().name or ""


def bases(kind):
    return [field for field in kind.fields() if field.is_base_class]


def derives(kind, names):
    return class_name(kind) in names or any(derives(base.type, names) for base in bases(kind))


def part(value, name):
    """The part of an object that is its base of that name."""
    if class_name(value.type) == name:
        return value
    for base in bases(value.type):
        found = part(value[base], name)
        if found is not None:
            return found
    return None


def is_known(value):
    """False for null, and for a class that has its name only, since the library came without its
    debug information."""
    return value is not None and bool(value.type.strip_typedefs().fields())


def filed_name(member):
    """The name of a property, as text."""
    base = part(member, "DataBinding::details::ChainedMember")
    return name_text(base["memberName"]) if is_known(base) else "property"


def own_members(value, ends):
    """The members of an object, its bases' included, but for those of the library's classes."""
    if class_name(value.type) in ends:
        return
    for field in value.type.fields():
        if field.is_base_class:
            if derives(field.type, ends):
                yield from own_members(value[field], ends)
            else:
                yield f"<{field.name}>", value[field]
        elif hasattr(field, "bitpos") and not field.artificial:
            yield field.name, value[field]


class Printer:
    """Shows <invalid> where the object cannot be read."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        try:
            return self.text()
        except ERRORS:
            return INVALID


class Parent(Printer):
    """One with children, which end where one cannot be read."""

    def children(self):
        try:
            yield from self.parts()
        except ERRORS:
            yield "...", "<unknown>"


class Name(Printer):
    def text(self):
        return name_text(self.value)


class NameView(Printer):
    def text(self):
        return quoted(self.value["first"], int(self.value["count"]))


class PropertyName(Printer):
    def text(self):
        view = self.value["text"]
        return quoted(view["_M_str"], int(view["_M_len"]))


class Property(Printer):
    """Name and value; a value of a class can be opened."""

    def __init__(self, value):
        super().__init__(value)
        try:
            self.stored = value["value"]
            kind = self.stored.type.strip_typedefs().code
            if kind == gdb.TYPE_CODE_STRUCT and gdb.default_visualizer(self.stored) is None:
                self.children = lambda: iter([("value", self.stored)])
        except ERRORS:
            self.stored = None

    def text(self):
        name = filed_name(self.value)
        if hasattr(self, "children"):
            return name
        return f"{name}: {self.stored.format_string()}"


class ComputedProperty(Printer):
    def text(self):
        name = filed_name(self.value)
        if name == "property":
            return "computed property"
        extras = held(self.value["extras"], "PropertyExtras")
        others = elements(extras["dependencies"]) if extras is not None else ()
        names = [filed_name(other["property"].dereference()) for other in others]
        return f"{name}: computed from {', '.join(names) or 'nothing'}"


class DataSource(Parent):
    """Its name and the members that its class declares, then what else it has filed by name."""

    def __init__(self, value):
        super().__init__(whole(value))

    def text(self):
        named = part(self.value, "DataBinding::NamedDataSource")
        kind = class_name(self.value.type)
        if kind in SOURCE_BASES:
            raise ValueError("no object")
        if not is_known(named):
            return f"data source of class {kind}"
        return f"data source {name_text(named['dataSourceName'])}"

    def parts(self):
        if self.to_string() == INVALID:
            return
        shown = set()
        for name, member in own_members(self.value, SOURCE_BASES):
            yield name, member
            if PRINTERS.find(member) in (Property, ComputedProperty):
                shown.add(filed_name(member))
        reflectable = part(self.value, "DataBinding::IReflectable")
        if not is_known(reflectable):
            return
        for name, member in filed_members(reflectable["reflectable"]):
            if name not in shown:
                yield f"[{name}]", member


def filed_members(table):
    """The names of a table of members, each with its type or the property that has it: of the map,
    or of the chain while there is no map."""
    extras = held(table["extras"], "ReflectableExtras")
    filed = held(extras["map"], "MemberMap") if extras is not None else None
    if filed is not None:
        for key, item in pairs(filed["items"]):
            yield name_text(key), filed_type(item)
        return
    member = table["newest"]
    while int(member):
        yield filed_name(member.dereference()), whole(member.dereference())
        member = member["older"]


def filed_type(item):
    """The type under which a member is filed, as text: of the name of its descriptor's vtable."""
    descriptor = unwrapped(item["type"], gdb.lookup_type("void").pointer().pointer().pointer())
    symbol = gdb.execute(f"info symbol {int(descriptor.dereference())}", to_string=True)
    found = re.match(r"vtable for DataBinding::runtime_type<(.*)> \+ ", symbol)
    return found.group(1).strip() if found else "member"


class Provider(Parent):
    def __init__(self, value):
        super().__init__(whole(value))
        self.provider = part(self.value, "DataBinding::DataSourceProvider")

    def text(self):
        names = [name_text(name) for name in elements(self.provider["categories"])]
        return f"provider of {', '.join(names)}" if names else "provider without categories"

    def parts(self):
        if self.to_string() == INVALID:
            return
        yield "parent", pointed(self.provider["parent"])
        yield from own_members(self.value, PROVIDER_BASES)
        for name, source in pairs(self.provider["sourcesByName"]):
            yield f"[{name.format_string()}]", pointed(source).dereference()
        for number, (child, _) in enumerate(pairs(self.provider["children"])):
            yield f"child {number}", pointed(child)


class Entry(Printer):
    def text(self):
        source = name_text(self.value["dataSourceName"])
        name = name_text(self.value["propertyName"])
        state = "connected" if int(self.value["subscription"]["state"]) else "waiting"
        return f"{source}, {name}: {state}"


class Subscription(Printer):
    def text(self):
        state = self.value["state"]
        if int(state) == 0:
            return "inert subscription"
        state.dereference()["invoke"].fetch_lazy()
        return "live subscription"


class Counted(Parent):
    """A comlike_ptr with how many share its object."""

    def text(self):
        if int(self.value["object"]) == 0:
            return "null"
        references = self.value["object"].dereference()["references"]
        return f"one of {int(unwrapped(references, gdb.lookup_type('unsigned int')))}"

    def parts(self):
        if self.to_string() not in ("null", INVALID):
            yield "object", pointed(self.value["object"])


class Weak(Parent):
    def text(self):
        flag = self.value["reference"]["flag"]["object"]
        if int(flag) == 0:
            return "null"
        alive = int(unwrapped(flag.dereference()["alive"], gdb.lookup_type("unsigned char")))
        if alive > 1:
            raise ValueError("no flag")
        return "alive" if alive else "gone"

    def parts(self):
        if self.to_string() == "alive":
            target = self.value.type.strip_typedefs().template_argument(0)
            yield "object", pointed(self.value["object"].cast(target.pointer()))


class AppEvent(Printer):
    def text(self):
        start = self.value["text"]
        length = 0
        while int((start + length).dereference()) != 0:
            length += 1
            if length > MOST_CHARACTERS:
                raise ValueError("no text")
        return f"event {quoted(start, length)}"


class Broadcaster(Printer):
    def text(self):
        pending = self.value["pendingEvents"]
        queue = unwrapped(pending, pending.type.template_argument(0).pointer()).dereference()
        count = int(queue["events"])
        if not 0 <= count <= 1 << 40:
            raise ValueError("no queue")
        held = sum(1 for _ in pairs(self.value["heldEvents"]))
        return f"event broadcaster: {count} queued, {held} held"


class Printers(gdb.printing.PrettyPrinter):
    """Finds a printer by the class of a value, or by a base of it."""

    EXACT = [(re.compile(pattern), printer) for pattern, printer in (
        (r"VtrPlatform::VtrStringT<wchar_t>$", Name),
        (r"VtrPlatform::VtrStringViewT<wchar_t>$", NameView),
        (r"DataBinding::PropertyName$", PropertyName),
        (r"DataBinding::(ReadOnly)?Property<.*>$", Property),
        (r"DataBinding::ComputedProperty<.*>$", ComputedProperty),
        (r"DataBinding::DataListenerEntry$", Entry),
        (r"DataBinding::AppEvent<.*>$", AppEvent),
        (r"DataBinding::(EventBroadcaster<.*>|IAppEventBroadcaster)$", Broadcaster),
        (r"VtrUtils::Subscription$", Subscription),
        (r"VtrUtils::comlike_ptr<.*>$", Counted),
        (r"VtrUtils::WeakPtr<.*>$", Weak),
    )]
    DERIVED = ((SOURCE_BASES[:3], DataSource), (PROVIDER_BASES, Provider))

    def __init__(self):
        super().__init__("DataBinding", [gdb.printing.SubPrettyPrinter(printer.__name__)
                                         for _, printer in self.EXACT + list(self.DERIVED)])

    def find(self, value):
        """The printer's class, or None."""
        kind = value.type.strip_typedefs()
        if kind.code != gdb.TYPE_CODE_STRUCT or not kind.fields():
            return None
        name = class_name(kind)
        for pattern, printer in self.EXACT:
            if pattern.match(name):
                return printer
        # Interfaces are shown as what stands behind them, if that is known.
        if name in ("DataBinding::IDataSource", "DataBinding::IDataSourceProvider"):
            kind = whole(value).type
        for names, printer in self.DERIVED:
            if derives(kind, names):
                return printer
        return None

    def __call__(self, value):
        if value.type.strip_typedefs().code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF):
            value = value.referenced_value()
        printer = self.find(value)
        if printer is None:
            return None
        enabled = next(sub.enabled for sub in self.subprinters if sub.name == printer.__name__)
        return printer(value) if enabled else None


PRINTERS = Printers()
gdb.printing.register_pretty_printer(gdb.current_objfile(), PRINTERS, replace=True)
