"""Shows the classes of krKGeneral in gdb (12 or later) by their values.

gdb loads this file by itself with the library where its folder is trusted, see docs/debugging.md; otherwise
`source krkgeneral_gdb.py`. A head of a list shows its elements in order, with the class each really has;
`kar-chain ELEMENT` does so for a chain without a head, and `$kar_element(LIST, N)` is element N of either.

Whatever lies in memory, nothing here fails, walks without end or reads without limit: what can't be right is told in
the value's own line. `print/r` shows the fields as they are.
"""
import re

import gdb
import gdb.printing

MOST_BYTES = 1 << 20      # of a text
MOST_ELEMENTS = 10000     # of a list, of the parameters of a message
MOST_COLUMNS = 1000       # of a matrix; a wider row would exceed what gdb takes for one value
MOST_ROWS = 10000

SPECIAL_COLORS = {"0": "", "1": " of the layer", "2": " of the block", "3": " of the background",
                  "4": " of the foreground"}


def told(error):
    reason = "optimized out" if "optimized out" in str(error) else str(error)
    return f"<{reason[:1].lower()}{reason[1:]}>"


def number(value):
    """The text of a number; a real as the shortest one that reads back as it."""
    try:
        plain = value.type.strip_typedefs()
        if plain.code == gdb.TYPE_CODE_STRUCT:
            return Form(value).line()
        if plain.code == gdb.TYPE_CODE_PTR:
            return address(value)
        if plain.code == gdb.TYPE_CODE_FLT:
            return repr(float(value))
        return str(value if plain.code == gdb.TYPE_CODE_ENUM else int(value))
    except gdb.error as error:
        return told(error)


def fields(value, *names):
    """The texts of the named fields."""
    return [field(value, name) for name in names]


def field(value, name):
    try:
        return number(value[name])
    except gdb.error as error:
        return told(error)


def integer(value, name):
    """A field as a number, None if it can't be read."""
    try:
        return int(value[name])
    except gdb.error:
        return None


def address(pointer):
    return f"0x{int(pointer):x}"


def readable(pointer):
    """Whether the object behind a pointer can be read; reads its first and last byte."""
    try:
        start, size = int(pointer), max(pointer.type.target().sizeof, 1)
        process = gdb.selected_inferior()
        process.read_memory(start, 1)
        process.read_memory(start + size - 1, 1)
        return True
    except (gdb.error, OverflowError):
        return False


def object_at(pointer):
    """The object behind a pointer. `dereference` would move it to where its table of virtual functions says."""
    return pointer.cast(pointer.type.target().array(0).pointer()).dereference()[0]


def class_name(value):
    return str(value.type.strip_typedefs().unqualified())


def bases(of):
    """The class and what it derives from, depth first."""
    yield of
    for one in of.fields():
        if one.is_base_class:
            yield from bases(one.type.strip_typedefs())


def own_fields(value):
    """Name and value of each field of an object that isn't one of the links and ends of lists."""
    for one in value.type.strip_typedefs().fields():
        if one.is_base_class:
            if one.name not in ("karListObjectNV", "karListHeadObject"):
                yield from own_fields(value[one])
        elif not one.artificial and hasattr(one, "bitpos") and not (one.name or "").startswith("_vptr"):
            yield one.name, value[one]


class Shown:
    """A printer whose line is made by `line`, without a fault for gdb whatever the memory holds."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        try:
            return self.line()
        except (gdb.error, RuntimeError, OverflowError) as error:
            return told(error)


# Texts.

def text_length(buffer, size):
    """The bytes before the first NUL, at most `size`."""
    process, start, length = gdb.selected_inferior(), int(buffer), 0
    size = min(size, MOST_BYTES)
    while length < size:
        # To the end of a page of memory, so that what lies behind a short text isn't asked for.
        count = min(size - length, 4096 - (start + length) % 4096)
        end = bytes(process.read_memory(start + length, count)).find(b"\0")
        if end >= 0:
            return length + end
        length += count
    return size


def text(string):
    """What gdb prints as a text, or None without a buffer."""
    buffer = string["buffer"]
    if not int(buffer):
        return None
    length = text_length(buffer, int(string["bufferSize"]))
    return buffer.lazy_string(length=length) if length else ""


class String(Shown):
    def string(self):
        return self.value

    def line(self):
        shown = text(self.string())
        return f"<no buffer of {field(self.string(), 'bufferSize')} bytes>" if shown is None else shown

    def display_hint(self):
        # gdb asks for the hint before it asks for the line.
        try:
            return None if text(self.string()) is None else "string"
        except (gdb.error, RuntimeError, OverflowError):
            return None


class StringList(String):
    def string(self):
        return self.value["string"]


# Values of geometry.

class Form(Shown):
    """A value in one line, as `FORMS` says."""

    def line(self):
        form = FORMS[self.value.type.strip_typedefs().unqualified().name]
        return re.sub(r"{(\w+)}", lambda name: field(self.value, name.group(1)), form)


class Complex(Shown):
    def line(self):
        real, imaginary = fields(self.value, "re", "im")
        if imaginary.startswith("-"):
            return f"{real} - {imaginary[1:]}i"
        return f"{real} + {imaginary}i"


class Matrix(Shown):
    """Children are the rows, as far as the array holds them."""

    def __init__(self, value):
        super().__init__(value)
        self.rows, self.columns, self.held = (integer(value, name) for name in ("rows", "columns", "held"))

    def fault(self):
        """What keeps the elements from being shown; None if nothing does."""
        if None in (self.rows, self.columns, self.held):
            return "can't be read"
        if not self.rows and not self.columns and not self.held:
            return "empty"
        if self.held <= 0 or not int(self.value["data"]):
            return "without an array"
        if self.rows <= 0 or self.columns <= 0:
            return f"with an array of {self.held}"
        if not readable(self.value["data"]):
            return f"its array at {address(self.value['data'])} can't be read"
        return None

    def line(self):
        fault = self.fault()
        size = " x ".join(fields(self.value, "rows", "columns"))
        if fault:
            return f"{size}, {fault}"
        limits = []
        if self.held != self.rows * self.columns:
            limits.append(f"its array holds {self.held}")
        if self.columns > MOST_COLUMNS:
            limits.append(f"the first {MOST_COLUMNS} columns")
        return ", ".join([size, *limits])

    def children(self):
        try:
            if self.fault():
                return
            data, element = self.value["data"], self.value["data"].type.target()
            for row in range(min(self.rows, MOST_ROWS)):
                count = min(self.columns, MOST_COLUMNS, self.held - row * self.columns)
                if count <= 0 or not readable(data + row * self.columns + count - 1):
                    return
                yield f"[{row}]", (data + row * self.columns).cast(element.array(count - 1).pointer()).dereference()
        except gdb.error:
            return

    def display_hint(self):
        return "array"


class Color(Shown):
    def line(self):
        red, green, blue, special = fields(self.value, "red_", "green_", "blue_", "special_")
        mark = SPECIAL_COLORS.get(special, f", special {special}")
        return f"RGB({red},{green},{blue}){mark}"


# Lists.

def typed(value, template):
    """The first argument of the template that an object's class derives from, as a type; None if it doesn't."""
    for one in bases(value.type.strip_typedefs()):
        if (one.name or "").startswith(template + "<"):
            return one.template_argument(0).strip_typedefs()
    return None


def derives(of, name):
    return any(one.name == name for one in bases(of))


def place_of(base, of):
    """Bytes from the start of an object to the part that is of a class it derives from; None if it doesn't."""
    if of.strip_typedefs().name == base.strip_typedefs().name:
        return 0
    for one in of.strip_typedefs().fields():
        if one.is_base_class and hasattr(one, "bitpos"):
            inner = place_of(base, one.type)
            if inner is not None:
                return one.bitpos // 8 + inner
    return None


def down(pointer, of):
    """The pointer to a part as one to the whole. gdb's own cast asks the object for its class."""
    place = place_of(pointer.type.target(), of)
    return None if place is None else gdb.Value(int(pointer) - place).cast(of.pointer())


def class_behind(pointer):
    """Name of the class whose table of virtual functions the object behind a pointer has, None if there is none."""
    try:
        size = gdb.lookup_type("void").pointer().sizeof
        table = int.from_bytes(bytes(gdb.selected_inferior().read_memory(int(pointer), size)), "little")
        symbol = gdb.execute(f"info symbol 0x{table:x}", to_string=True)
    except gdb.error:
        return None
    found = re.match(r"vtable for (.*) \+ \d+( in section|$)", symbol)
    return found and found.group(1)


def really(pointer, expected):
    """The element behind a pointer with the class that it really has, or with the one that its list expects."""
    for name in (class_behind(pointer), expected and expected.name):
        try:
            whole = name and down(pointer, gdb.lookup_type(name).strip_typedefs())
            if whole and whole.type.target().fields():
                return object_at(whole)
        except gdb.error:
            pass
    return object_at(pointer)


class Chain:
    """The elements from a pointer on, and what is wrong with their links."""

    def __init__(self, start, expected):
        self.pointers, self.faults, self.expected = [], [], expected
        places, before = {}, 0
        while int(start):
            place = int(start)
            if place in places:
                self.faults.append(f"leads back to [{places[place]}]")
                break
            if len(places) == MOST_ELEMENTS:
                self.faults.append(f"goes on behind the first {MOST_ELEMENTS}")
                break
            if not readable(start):
                self.faults.append(f"broken: {address(start)} can't be read")
                break
            # The links are pointers to the root of all elements, which needn't begin where the element begins.
            plain = object_at(start)
            if places and int(plain["prevLink"]) != before:
                self.faults.append(f"[{len(places)}] doesn't point back to [{len(places) - 1}]")
            places[place] = len(places)
            self.pointers.append(start)
            before = int(root(start))
            following = plain["nextLink"]
            start = down(following, start.type.target()) if int(following) else following

    def element(self, index):
        return really(self.pointers[index], self.expected)

    def place(self, pointer):
        """Index of the element at a pointer, None if it stands elsewhere."""
        return next((index for index, one in enumerate(self.pointers) if int(one) == int(pointer)), None)

    def __iter__(self):
        for index in range(len(self.pointers)):
            yield f"[{index}]", self.element(index)


def root(pointer):
    """The pointer as one to the two links."""
    for one in bases(pointer.type.target().strip_typedefs()):
        if one.name == "karListObjectNV":
            return pointer.cast(one.pointer())
    return pointer


def counted(count, noun):
    return f"{count} {noun}" if count == 1 else f"{count} {noun}s"


class Element(Shown):
    """An element shows what its class adds to the links."""

    def line(self):
        return class_name(self.value)

    def children(self):
        yield from own_fields(self.value)


class Head(Shown):
    """A head shows what its class adds, then its elements."""
    noun = "element"

    def chain(self):
        return Chain(self.value["listFirst"], typed(self.value, "karListHeadTyped"))

    def adds(self):
        return ""

    def line(self):
        chain = self.chain()
        parts = [f"{class_name(self.value)} of {counted(len(chain.pointers), self.noun)}{self.adds()}"]
        last, current = self.value["listLast"], self.value["listCurrent"]
        if int(current):
            place = chain.place(current)
            parts.append(f"current [{place}]" if place is not None else "current elsewhere")
        if not chain.faults and int(last) != (int(chain.pointers[-1]) if chain.pointers else 0):
            parts.append("last isn't the end of the chain")
        return ", ".join([*parts, *chain.faults[:3]])

    def children(self):
        try:
            yield from own_fields(self.value)
            yield from self.chain()
        except (gdb.error, RuntimeError):
            return


class Percent(Head):
    noun = "layer"

    def adds(self):
        whole, layer = fields(self.value, "percent", "layerPercent")
        return f", {whole} % of the whole, {layer} % of the innermost"

    def children(self):
        try:
            yield from self.chain()
        except (gdb.error, RuntimeError):
            return


# Messages and their parameters.

class TextParameter(String):
    def string(self):
        return self.value["text"]


# A program that sets parameters by way of their message has no debug information about these classes. Their value
# stands behind the pointer to the table of virtual functions.
PARAMETERS = {"karDataId": ("id ", "int"), "karDataInteger": ("integer ", "int"), "karDataDouble": ("real ", "double"),
              "karDataText": ("", "karString"), "karDataParam": ("parameters at ", "karDataBase *")}


def parameter(pointer):
    """What stands in a slot of a message."""
    if not int(pointer):
        return "empty"
    if not readable(pointer):
        return pointer
    kind, of = PARAMETERS.get(class_behind(pointer), (None, None))
    if kind is None:
        return really(pointer, None)
    of = pointer.type if of == "karDataBase *" else gdb.lookup_type(of)
    value = gdb.Value(int(pointer) + pointer.type.sizeof).cast(of.pointer()).dereference()
    return kind + number(value) if kind else value


class Message(Shown):
    """Children are the parameters, as far as the array holds them."""

    def message(self):
        return self.value

    def fault(self):
        """What keeps parameters from being shown, and how many are."""
        count, params = int(self.message()["paramCount"]), self.message()["params"]
        if not count:
            return "", 0
        if not int(params):
            return ", without an array", 0
        if not readable(params):
            return f", its array at {address(params)} can't be read", 0
        # The size of the block, guards included, stands in the guard before it.
        guard = bytes(gdb.selected_inferior().read_memory(int(params) - 4, 4))
        held = (int.from_bytes(guard, "little") - 8) // params.type.target().sizeof
        fault = "" if 0 <= count <= held else f", its array holds at most {max(held, 0)}"
        return fault, max(min(count, held, MOST_ELEMENTS), 0)

    def line(self):
        message = self.message()
        return f"message {int(message['id'])} of {counted(int(message['paramCount']), 'parameter')}{self.fault()[0]}"

    def children(self):
        try:
            params = self.message()["params"]
            for index in range(self.fault()[1]):
                if not readable(params + index):
                    return
                yield f"[{index}]", parameter(params[index])
        except (gdb.error, RuntimeError):
            return


class MessageElement(Message):
    def message(self):
        return self.value["message"]


class Control(Shown):
    def line(self):
        return class_name(self.value)

    def children(self):
        for name, one in own_fields(self.value):
            behind = name in ("percent", "messages") and readable(one)
            yield name, really(one, None) if behind else one


# Memory.

class PageMemory(Shown):
    """Children are the pages."""

    def chain(self):
        return Chain(self.value["firstPage"], None)

    def line(self):
        chain = self.chain()
        used = [integer(page, "elementUsed_") or 0 for page in (object_at(pointer) for pointer in chain.pointers)]
        size, count = fields(self.value, "elementSize_", self.count)
        return ", ".join([f"elements of {size} bytes, {count} to a page", counted(len(chain.pointers), "page"),
                          f"{sum(used)} in use", *chain.faults[:3]])

    count = "elementCount_"

    def children(self):
        try:
            yield from self.chain()
        except (gdb.error, RuntimeError):
            return


class VarPageMemory(PageMemory):
    count = "elementCount"


class GlobalMemory(Shown):
    """Children are the pools that have a page."""

    def line(self):
        blocks, size, allocations, mark = fields(self.value, "curAnzNew", "curSizeNew", "anzNew", "markMemListGlobal")
        used, most = fields(self.value["memory"], "curr_used_memory_", "max_used_memory_")
        return (f"{blocks} heap blocks of {size} bytes, {used} bytes tracked and {most} at the highest, "
                f"{allocations} allocations, mark {mark}")

    def children(self):
        try:
            pools = self.value["pools"]
            for index in range(pools.type.range()[1] + 1):
                if int(pools[index]["firstPage"]):
                    yield f"pools[{index}]", pools[index]
        except gdb.error:
            return


# What gdb asks.

FORMS = {
    "tPair<int, int>": "({First_}, {Second_})", "tPair<double, double>": "({First_}, {Second_})",
    "tUniquePair<int>": "({First_}, {Second_})", "tUniquePair<double>": "({First_}, {Second_})",
    "karPoint": "({First_}, {Second_})", "karD_Point": "({First_}, {Second_})",
    "karDimension": "{First_} x {Second_}", "karD_Dimension": "{First_} x {Second_}",
    "kar3D_Pair": "({x_}, {y_}, {z_})", "kar3D_Point": "({x_}, {y_}, {z_})",
    "kar3D_Dimension": "{x_} x {y_} x {z_}", "kar3D_Range": "{lo_} to {hi_}",
    "karRect": "{topLeft_} to {bottomRight_}", "karD_Rect": "{bottomLeft_} to {topRight_}",
    "karRectX": "{size_} at {origin_}, angle {angle_}",
    "kar2DVector": "({x_}, {y_})", "kar3DVector": "({x_}, {y_}, {z_})",
    "karPercentList": "{start} to {end} %",
    "karDataId": "id {id}", "karDataInteger": "integer {value}", "karDataDouble": "real {value}",
    "karDataParam": "parameters at {param}",
    "karPage": "{elementUsed_} of {elementCount_} elements in use, {elementFullSize_} bytes each",
    "karVarPage": "{elementUsed_} of {elementCount_} elements in use, {elementFullSize_} bytes each",
}
VALUES = {
    **dict.fromkeys(FORMS, Form),
    "karString": String, "karStringList": StringList, "karDataText": TextParameter,
    "karComplex": Complex, "karMatrix": Matrix, "karColor": Color, "karMessageLBase": MessageElement,
    "karPageMemory": PageMemory, "karVarPageMemory": VarPageMemory, "karGlobalMemory": GlobalMemory,
}
# These serve the classes that hosts derive as well.
DERIVED = [("karPercent", Percent), ("karListHeadObject", Head), ("karListObjectNV", Element),
           ("karMessageBase", Message), ("karCtrl", Control)]


class Printers(gdb.printing.PrettyPrinter):
    def __init__(self):
        super().__init__("krKGeneral")

    def __call__(self, value):
        of = value.type.strip_typedefs().unqualified()
        if of.code != gdb.TYPE_CODE_STRUCT or not of.fields():
            return None
        printer = VALUES.get(of.name)
        if printer:
            return printer(value)
        # The parts that an object derives from are shown by gdb itself as far as they are lists' own.
        if (of.name or "").startswith(("karListTyped<", "karListHeadTyped<")) or of.name == "karListObjectNV":
            return None
        names = {one.name for one in bases(of)}
        return next((printer(value) for name, printer in DERIVED if name in names), None)


def chain_of(value):
    """The chain of a head or of an element wherever in its chain it stands; and the element's place."""
    if value.type.strip_typedefs().code == gdb.TYPE_CODE_PTR:
        value = object_at(value)
    value = value.referenced_value() if value.type.code in (gdb.TYPE_CODE_REF, gdb.TYPE_CODE_RVALUE_REF) else value
    of = value.type.strip_typedefs()
    if derives(of, "karListHeadObject"):
        return Head(value).chain(), None
    if not derives(of, "karListObjectNV"):
        raise gdb.GdbError(f"{of} is neither an element nor a head of a list")
    # Elements beside this one may be of another class: they are walked as what all of them are.
    general = "karListObject" if derives(of, "karListObject") else of.name
    expected = typed(value, "karListTyped")
    pointer = value.address.cast(next(one for one in bases(of) if one.name == general).pointer())
    first, seen = pointer, set()
    while int(object_at(first)["prevLink"]) and int(first) not in seen and len(seen) < MOST_ELEMENTS:
        seen.add(int(first))
        before = down(object_at(first)["prevLink"], first.type.target())
        if not readable(before):
            break
        first = before
    chain = Chain(first, expected)
    return chain, chain.place(pointer)


class ChainCommand(gdb.Command):
    """Print the elements of a list in order: kar-chain EXPRESSION

EXPRESSION is a head or any element, or a pointer to one. An element is marked with its place."""

    def __init__(self):
        super().__init__("kar-chain", gdb.COMMAND_DATA, gdb.COMPLETE_EXPRESSION)

    def invoke(self, argument, from_tty):
        chain, place = chain_of(gdb.parse_and_eval(argument))
        for index, (name, element) in enumerate(chain):
            print(f"{name} = {element.format_string()}{' <--' if index == place else ''}")
        for fault in chain.faults:
            print(f"The chain {fault}" if not fault.startswith("[") else fault)


class ElementFunction(gdb.Function):
    """Element N of a list, counted from 0: $kar_element(LIST, N)

LIST is a head or any element, or a pointer to one."""

    def __init__(self):
        super().__init__("kar_element")

    def invoke(self, list_, index):
        chain, _ = chain_of(list_)
        if not 0 <= int(index) < len(chain.pointers):
            raise gdb.GdbError(f"the list has {counted(len(chain.pointers), 'element')}")
        return chain.element(int(index))


gdb.printing.register_pretty_printer(gdb.current_objfile(), Printers(), replace=True)
ChainCommand()
ElementFunction()
