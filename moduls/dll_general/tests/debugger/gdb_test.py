#!/usr/bin/env python3
"""What gdb shows of the library's values: gdb_test.py GDB CMAKE BUILD PROGRAM OPTIMIZED LIBRARY [unittest arguments].

PROGRAM holds one variable of each kind, sound and damaged; OPTIMIZED has lost some values. The example session of
docs/debugging.md is compared as well; `gdb_test.py ... --write PAGE` writes it into the page.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

GDB, CMAKE, BUILD, PROGRAM, OPTIMIZED, LIBRARY = (sys.argv.pop(1) for _ in range(6))
ROOT = pathlib.Path(__file__).resolve().parents[4]
DEBUG = ROOT / "moduls" / "dll_general" / "debug"
PAGE = ROOT / "docs" / "debugging.md"
BEGIN, END = "<!-- session -->\n\n```\n", "```\n"

# Commands in order, each with what gdb must answer. "0x" stands for any address. What a command stores, later ones see.
SOUND = [
    ("print text", '"Kartory"'),
    ("print empty", '""'),
    ("print quoted", r'"a \"b\"\tc"'),
    ("print longText", "'x' <repeats 200 times>..."),
    ("print reference", '(const karString &) @0x: "Kartory"'),
    ("print nullText", "(karString *) 0x"),
    ("print point", "(3, -4)"),
    ("print realPoint", "(0.1, 1e+300)"),
    ("print dimension", "30 x 40"),
    ("print realDimension", "0.5 x 2.0"),
    ("print pair", "(1, 2)"),
    ("print spacePoint", "(1.0, 2.5, -3.0)"),
    ("print spaceDimension", "1.0 x 2.0 x 3.0"),
    ("print range", "-1.0 to 2.0"),
    ("print rect", "(1, 2) to (30, 40)"),
    ("print realRect", "(0.5, 1.5) to (2.5, 3.5)"),
    ("print turned", "20 x 10 at (5, 6), angle 0.25"),
    ("print vector", "(3.0, 4.0)"),
    ("print spaceVector", "(1.0, 0.0, -1.0)"),
    ("print sum", "1.5 + 2.0i"),
    ("print difference", "1.5 - 2.0i"),
    ("print noMatrix", "0 x 0, empty"),
    ("print matrix", "2 x 3 = {{11, 12, 13}, {21, 22, 23}}"),
    ("print red", "RGB(255,0,0)"),
    ("print ofLayer", "RGB(0,0,0) of the layer"),
    ("print special", "RGB(1,2,3), special 77"),
    ("print texts", 'karStringListHead of 3 elements, current [2] = {[0] = "one", [1] = "two", [2] = "three"}'),
    ("print noTexts", "karStringListHead of 0 elements"),
    ("print marks", "Marks of 3 elements, current [2] = {layer = 4, [0] = Mark = {number = 1, place = (10, 11)}, "
                    "[1] = LongMark = {number = 2, place = (20, 21), length = 2.5}, "
                    "[2] = Mark = {number = 3, place = (30, 31)}}"),
    ("print alone", "Mark = {number = 9, place = (0, 0)}"),
    ("print carrier", "karPtrListObject = {object = 0x}"),
    ("print messages", 'karMessage of 2 elements, current [1] = {[0] = message 12 of 6 parameters = {[0] = "name", '
                       "[1] = real 2.5, [2] = id 33, [3] = integer 44, [4] = parameters at 0x, [5] = empty}, "
                       "[1] = message 13 of 0 parameters}"),
    ("print message", "message 14 of 2 parameters = {[0] = empty, [1] = empty}"),
    # Half of the stretch from 20 to 60.
    ("print percent", "karPercent of 2 layers, 40 % of the whole, 50 % of the innermost, current [1] = "
                      "{[0] = 20 to 60 %, [1] = 0 to 100 %}"),
    ("print ctrl", "karCtrl = {breakState = BreakNone, percent = karPercent of 1 layer, -1 % of the whole, "
                   "-1 % of the innermost, current [0] = {[0] = 0 to 100 %}, messages = karMessage of 0 elements}"),
    ("print pool", "elements of 24 bytes, 10 to a page, 2 pages, 12 in use = "
                   "{[0] = 10 of 10 elements in use, 24 bytes each, [1] = 2 of 10 elements in use, 24 bytes each}"),
    ("print noPool", "elements of 24 bytes, 10 to a page, 0 pages, 0 in use"),
    ("print runs", "elements of 8 bytes, 100 to a page, 1 page, 20 in use = "
                   "{[0] = 20 of 100 elements in use, 8 bytes each}"),
    # 50 bytes and two guards are a block of the class of 100, 5000 and two guards one from the heap.
    ("print global", "1 heap blocks of 5008 bytes, 5008 bytes tracked and 5008 at the highest, 2 allocations, mark 1 = "
                     "{pools[7] = elements of 100 bytes, 1000 to a page, 1 page, 1 in use = "
                     "{[0] = 1 of 1000 elements in use, 112 bytes each}}"),
    ("print/r point", "{<kar::IntegerPlanePair<karPoint, KAR_ID_POINT>> = {<tUniquePair<int>> = {<tPair<int, int>> = "
                      "{_vptr = 0x <vtable for karPoint+16>, First_ = 3, Second_ = -4}, <No data fields>}, "
                      "<No data fields>}, <No data fields>}"),
    ("kar-chain second", "[0] = Mark = {number = 1, place = (10, 11)}\n"
                         "[1] = LongMark = {number = 2, place = (20, 21), length = 2.5} <--\n"
                         "[2] = Mark = {number = 3, place = (30, 31)}"),
    ("kar-chain texts", '[0] = "one"\n[1] = "two"\n[2] = "three"'),
    ("kar-chain alone", "[0] = Mark = {number = 9, place = (0, 0)} <--"),
    ("kar-chain bare", "[0] = {nextLink = 0x, prevLink = 0x}\n[1] = {nextLink = 0x, prevLink = 0x} <--"),
    ("kar-chain &bare", "[0] = {nextLink = 0x, prevLink = 0x}\n[1] = {nextLink = 0x, prevLink = 0x} <--"),
    ("kar-chain pool", "error: karPageMemory is neither an element nor a head of a list"),
    ("kar-chain text", "error: karString is neither an element nor a head of a list"),
    ("print $kar_element(marks, 1)", "LongMark = {number = 2, place = (20, 21), length = 2.5}"),
    ("print $kar_element(second, 0).place", "(10, 11)"),
    ("print $kar_element(texts, 3)", "error: the list has 3 elements"),
]

DAMAGED = [
    ("print *nullText", "error: Cannot access memory at address 0x"),
    ("print *nullPoint", "error: Cannot access memory at address 0x"),
    ("print rawText.object", "<cannot access memory at address 0x>"),
    ("print rawMatrix.object", "623191333 x 623191333, its array at 0x can't be read"),
    ("print rawMarks.object", "Marks of 0 elements, current elsewhere, broken: 0x can't be read = {layer = 623191333}"),
    ("print rawMessage.object", "message 623191333 of 623191333 parameters, its array at 0x can't be read"),
    ("set print elements 1", ""),
    ("print rawMemory.object", "2676586395008836901 heap blocks of 2676586395008836901 bytes, 2676586395008836901 "
                               "bytes tracked and 2676586395008836901 at the highest, 2676586395008836901 allocations, "
                               "mark 623191333 = {pools[0] = elements of 623191333 bytes, 623191333 to a page, 0 pages, "
                               "0 in use, broken: 0x can't be read...}"),
    ("set print elements 200", ""),
    ("print staleMatrix", "-1 x 2, without an array"),
    ("print unheld", "message 15 of -1 parameters, without an array"),
    ("print loop", "BrokenMarks of 2 elements, leads back to [0] = {layer = 4, "
                   "[0] = Mark = {number = 1, place = (1, 1)}, [1] = Mark = {number = 2, place = (2, 2)}}"),
    ("kar-chain loopEnd", "[0] = Mark = {number = 1, place = (1, 1)}\n[1] = Mark = {number = 2, place = (2, 2)} <--\n"
                          "The chain leads back to [0]"),
    ("print astray", "BrokenMarks of 1 element, last isn't the end of the chain = "
                     "{layer = 4, [0] = Mark = {number = 1, place = (1, 1)}}"),
    ("print oneWay", "BrokenMarks of 2 elements, [1] doesn't point back to [0] = {layer = 4, "
                     "[0] = Mark = {number = 1, place = (1, 1)}, [1] = Mark = {number = 2, place = (2, 2)}}"),
    # A size and a count that aren't true.
    ("set variable text.bufferSize = 4000000000", ""),
    ("print text", '"Kartory"'),
    ("set variable quoted.bufferSize = 3", ""),
    ("print quoted", r'"a \""'),
    ("set variable text.buffer = 0", ""),
    ("print text", "<no buffer of 4000000000 bytes>"),
    ("set variable empty.buffer = (char *)8", ""),
    ("print empty", "<cannot access memory at address 0x>"),
    ("set variable message.paramCount = 1000000000", ""),
    ("set print elements 2", ""),
    # Two pointers fit into the smallest class above them: 100 bytes with the guards, room for 11.
    ("print message", "message 14 of 1000000000 parameters, its array holds at most 11 = "
                      "{[0] = empty, [1] = empty...}"),
    ("set print elements 200", ""),
    ("set variable matrix.held = 4", ""),
    ("print matrix", "2 x 3, its array holds 4 = {{11, 12, 13}, {21}}"),
    ("set variable matrix.held = 6", ""),
    ("set variable matrix.data = (double *)8", ""),
    ("print matrix", "2 x 3, its array at 0x can't be read"),
    ("set variable matrix.data = 0", ""),
    ("print matrix", "2 x 3, without an array"),
    ("set variable marks.listFirst = (karListObject *)8", ""),
    ("print marks", "Marks of 0 elements, current elsewhere, broken: 0x can't be read = {layer = 4}"),
    ("set variable ctrl.percent = 0", ""),
    ("set variable ctrl.messages = (karMessage *)8", ""),
    ("print ctrl", "karCtrl = {breakState = BreakNone, percent = 0x, messages = 0x}"),
    ("set variable special.special_ = 4", ""),
    ("print special", "RGB(1,2,3) of the foreground"),
]

# The session of the page.
SHOWN = ["print text", "print rect", "print matrix", "print texts", "print messages", "print loop", "kar-chain texts",
         "print $kar_element(texts, 1)"]

ASKING = """
import gdb, json, random
def ask(commands):
    for command in commands:
        try:
            answer = gdb.execute(command, to_string=True)
        except gdb.error as error:
            answer = f"error: {error}"
        print("answer " + json.dumps(answer), flush=True)
# Overwrites parts of objects with numbers and places of all kinds, prints the objects, and puts them back.
def damage(names, rounds, seed):
    chance, process = random.Random(seed), gdb.selected_inferior()
    places = [int(gdb.parse_and_eval("&" + name)) for name in names]
    for turn in range(rounds):
        for name, place in zip(names, places):
            size = gdb.parse_and_eval(name).type.sizeof
            kept = bytes(process.read_memory(place, size))
            for _ in range(chance.randint(1, 3)):
                word = chance.choice([0, 1, 8, 0xffffffff, chance.getrandbits(31), chance.getrandbits(64), place,
                                      chance.choice(places), chance.choice(places) + 8, place - 4096])
                start = chance.randrange(0, max(size - 7, 1), 4)
                process.write_memory(place + start, word.to_bytes(8, "little")[:size - start])
            for command in ("print ", "kar-chain "):
                try:
                    gdb.execute(command + name, to_string=True)
                except gdb.error as error:
                    if command == "print " or "Python" in str(error):
                        print(f"fault in turn {turn} of {name}: {error}")
            process.write_memory(place, kept)
    print("damage done")
def walk(of):
    for one in of.fields():
        yield one.name
        if one.is_base_class:
            yield from walk(one.type.strip_typedefs())
def members(classes):
    found = {}
    for name in classes:
        try:
            found[name] = sorted(set(walk(gdb.lookup_type(name))))
        except gdb.error:
            pass
    return found
"""


def debugged(commands, program=PROGRAM, trusted=None, library=None, python=""):
    """The answers to the commands where the program stops, and everything that gdb says."""
    with tempfile.NamedTemporaryFile("w", suffix=".py") as asking:
        asking.write(ASKING + f"gdb.execute('run')\ngdb.execute('up')\nask({commands!r})\n{python}\n")
        asking.flush()
        options = ["-iex", f"set auto-load safe-path {trusted or ''}", "-iex", "set debuginfod enabled off"]
        if library:
            options += ["-ex", f"set environment LD_LIBRARY_PATH {library}"]
        settings = ["set width 0", "set height 0", "set style enabled off", "break looked"]
        for setting in settings:
            options += ["-ex", setting]
        done = subprocess.run([GDB, "-nx", "-nh", "-batch", *options, "-x", asking.name, program], capture_output=True,
                              text=True, timeout=300)
    answers = [json.loads(line[7:]) for line in done.stdout.splitlines() if line.startswith("answer ")]
    return answers, done.stdout + done.stderr


def plain(answer):
    """Without the number of the answer, the place of an unnamed namespace, addresses, and what compilers name apart."""
    answer = re.sub(r"^\$\d+ = ", "", answer.rstrip("\n"))
    answer = answer.replace("(anonymous namespace)::", "").replace("Error occurred in Python: ", "")
    answer = re.sub(r"_vptr[.$]\w+(<[^>]*>)?", "_vptr", answer).replace("(ObjektIdies)9", "KAR_ID_POINT")
    return re.sub(r"0x[0-9a-f]+", "0x", answer)


class Gdb(unittest.TestCase):
    maxDiff = None

    def compare(self, table, **how):
        answers, said = debugged([command for command, _ in table], **how)
        self.assertEqual(len(answers), len(table), said)
        for (command, expected), answer in zip(table, answers):
            with self.subTest(command):
                self.assertEqual(plain(answer), expected)
        self.assertNotIn("Python Exception", said)
        self.assertNotIn("RTTI", said)
        self.assertNotIn("virtual table", said)
        return said

    def test_values_are_shown(self):
        self.compare(SOUND, trusted=pathlib.Path(BUILD) / "lib")

    def test_damage_is_told_and_never_followed(self):
        self.compare(DAMAGED, trusted=pathlib.Path(BUILD) / "lib")

    def test_damage_of_every_kind_is_survived(self):
        names = [command.removeprefix("print ") for command, _ in SOUND if re.fullmatch(r"print \w+", command)]
        names = [name for name in names if name not in ("reference", "nullText")] + ["loop", "astray", "oneWay", "bare"]
        seed = 20260801
        _, said = debugged([], trusted=pathlib.Path(BUILD) / "lib", python=f"damage({names!r}, 20, {seed})")
        self.assertIn("damage done", said)
        self.assertNotIn("fault in turn", said, f"seed {seed}")
        self.assertNotIn("Python Exception", said, f"seed {seed}")

    def test_parameters_are_shown_where_their_classes_are_known(self):
        self.compare([("print id", "id 3"), ("print text", '"name"'), ("print integer", "integer 44"),
                      ("print real", "real 2.5"), ("print parameters", "parameters at 0x")],
                     program=OPTIMIZED, trusted=pathlib.Path(BUILD) / "lib")

    def test_values_that_the_compiler_threw_away_are_told(self):
        gone = r"<optimized out>"
        shapes = {"point": r"\((\d+|GONE), 2\)", "realPoint": r"\((\d+\.0|GONE), 2\.0\)",
                  "rect": r"\((\d+|GONE), (2|GONE)\) to \((3|GONE), (\d+|GONE)\)",
                  "spacePoint": r"\((\d+\.0|GONE), (2\.0|GONE), (3\.0|GONE)\)",
                  "complex": r"(\d+\.0|GONE) \+ (2\.0|GONE)i",
                  "color": r"RGB\((\d+|GONE),(2|GONE),(3|GONE)\)(, special GONE)?"}
        answers, said = debugged([f"print {name}" for name in shapes], program=OPTIMIZED,
                                 trusted=pathlib.Path(BUILD) / "lib")
        self.assertEqual(len(answers), len(shapes), said)
        for (name, shape), answer in zip(shapes.items(), answers):
            with self.subTest(name):
                self.assertRegex(plain(answer), "^(" + gone + "|" + shape.replace("GONE", gone) + ")$")
        self.assertNotIn("Python Exception", said)

    def test_a_program_without_trust_shows_the_fields(self):
        answers, _ = debugged(["print ofLayer"], trusted="/nowhere")
        self.assertEqual(plain(answers[0]),
                         r"{red_ = 0 '\000', green_ = 0 '\000', blue_ = 0 '\000', special_ = 1 '\001'}")

    def test_an_installed_tree_loads_by_itself(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([CMAKE, "--install", BUILD, "--prefix", folder], check=True, capture_output=True)
            script = next(pathlib.Path(folder).rglob(pathlib.Path(LIBRARY).resolve().name + "-gdb.py"))
            said = self.compare([("print texts", dict(SOUND)["print texts"]), ("print point", "(3, -4)")],
                                trusted=script.parent, library=script.parent)
            self.assertNotIn("declined", "".join(line for line in said.splitlines() if "libkrKGeneral" in line))
            self.assertEqual(list(pathlib.Path(folder).rglob("*.natvis"))[0].read_bytes(),
                             (DEBUG / "krkgeneral.natvis").read_bytes())

    def test_a_system_tree_has_it_where_gdb_trusts_it(self):
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([CMAKE, "--install", BUILD, "--prefix", "/usr"], check=True, capture_output=True,
                           env={**os.environ, "DESTDIR": folder})
            name = pathlib.Path(LIBRARY).resolve().name
            library = next(path for path in pathlib.Path(folder).rglob(name))
            expected = library.relative_to(folder).with_name(name + "-gdb.py")
            self.assertEqual([path.relative_to(folder) for path in pathlib.Path(folder).rglob("*-gdb.py")],
                             [pathlib.Path("usr/share/gdb/auto-load") / expected])

    def test_the_page_shows_this_session(self):
        text = PAGE.read_text()
        self.assertEqual(text[text.index(BEGIN) + len(BEGIN):].split(END)[0], session())


class Natvis(unittest.TestCase):
    """The rules of the format that can be checked without its debugger; names are those of the compiled classes."""
    NAMESPACE = "{http://schemas.microsoft.com/vstudio/debugger/natvis/2010}"
    CHILDREN = {"AutoVisualizer": ["Type"], "Type": ["DisplayString", "StringView", "Expand"],
                "Expand": ["Item", "ArrayItems", "LinkedListItems", "ExpandedItem"],
                "ArrayItems": ["Direction", "Rank", "Size", "ValuePointer"],
                "LinkedListItems": ["HeadPointer", "NextPointer", "ValueNode"]}
    ATTRIBUTES = {"Type": {"Name"}, "Item": {"Name", "Condition"}, "DisplayString": {"Condition"},
                  "StringView": {"Condition"}, "ArrayItems": {"Condition"}}
    # One class for each template.
    TEMPLATES = {"tPair<*>": "tPair<int, int>",
                 "karListHeadTyped<*>": "karListHeadTyped<karStringList, karListHeadObject>"}
    NODES = {"karPageMemory": "karPage", "karVarPageMemory": "karVarPage"}
    WORDS = {"this", "int", "void", "s", "i", "T1"}

    def expressions(self, element):
        """(expression, whether it is about an element of a list) in an element and below it."""
        if "Condition" in element.attrib:
            yield element.attrib["Condition"], False
        name, text = element.tag.removeprefix(self.NAMESPACE), (element.text or "").strip()
        if name == "DisplayString":
            self.assertEqual(text.count("{"), text.count("}"))
            for one in re.findall(r"{([^}]*)}", text):
                yield one, False
        elif name in ("NextPointer", "ValueNode"):
            yield text, True
        elif name != "Direction" and not len(element):
            yield text, False
        for one in element:
            yield from self.expressions(one)

    def check(self, element):
        name = element.tag.removeprefix(self.NAMESPACE)
        self.assertLessEqual(set(element.attrib), self.ATTRIBUTES.get(name, set()), name)
        places = [self.CHILDREN.get(name, []).index(one.tag.removeprefix(self.NAMESPACE)) for one in element]
        if name != "Expand":
            self.assertEqual(places, sorted(places), "order in " + name)
        if name in ("Type", "Item"):
            self.assertIn("Name", element.attrib)
        shown = [one for one in element if one.tag == self.NAMESPACE + "DisplayString"]
        for one in shown[:-1]:
            self.assertIn("Condition", one.attrib, "what follows is never shown")
        for one in element:
            self.check(one)

    def test_the_file_follows_the_rules_of_its_format(self):
        root = xml.etree.ElementTree.parse(DEBUG / "krkgeneral.natvis").getroot()
        self.assertEqual(root.tag, self.NAMESPACE + "AutoVisualizer")
        self.check(root)
        names = [one.get("Name") for one in root]
        self.assertEqual(len(names), len(set(names)))

    def test_every_name_is_that_of_a_class_or_of_its_field(self):
        root = xml.etree.ElementTree.parse(DEBUG / "krkgeneral.natvis").getroot()
        classes = {one.get("Name"): self.TEMPLATES.get(one.get("Name"), one.get("Name")) for one in root}
        asked = sorted({*classes.values(), *self.NODES.values(), "karListObject", "karMemory"})
        python = f"print('members ' + json.dumps(members({asked!r})))"
        said = [debugged([], program=program, python=python)[1] for program in (OPTIMIZED, PROGRAM)]
        members = {name: found for one in said for line in one.splitlines() if line.startswith("members ")
                   for name, found in json.loads(line[8:]).items()}
        self.assertEqual(set(members), set(asked))
        for one in root:
            name = one.get("Name")
            node = self.NODES.get(name, "karListObject")
            for expression, of_node in self.expressions(one):
                for word in re.findall(r"(?<![\w])[A-Za-z_]\w*", expression):
                    with self.subTest(f"{name}: {word} in {expression}"):
                        own = members[node if of_node else classes[name]]
                        self.assertIn(word, {*own, *members["karMemory"], *asked, *self.WORDS})


def session():
    answers, _ = debugged(SHOWN, trusted=pathlib.Path(BUILD) / "lib")
    answers = [answer.replace("(anonymous namespace)::", "") for answer in answers]
    return "".join(f"(gdb) {command}\n{answer}" for command, answer in zip(SHOWN, answers))


if __name__ == "__main__":
    if sys.argv[1:] == ["--write"]:
        page = PAGE.read_text()
        start = page.index(BEGIN) + len(BEGIN)
        PAGE.write_text(page[:start] + session() + page[page.index(END, start):])
    else:
        unittest.main()
