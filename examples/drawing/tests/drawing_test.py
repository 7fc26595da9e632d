#!/usr/bin/env python3
"""Runs the sample program as a user would: drawing_test.py PROGRAM [unittest arguments]."""
import math
import os
import pathlib
import pty
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree

PROGRAM = sys.argv.pop(1)
HERE = pathlib.Path(__file__).resolve().parent
SAMPLES = HERE.parent / "samples"

SVG = "{http://www.w3.org/2000/svg}"

HEADER = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n"
FOOTER = "0\nENDSEC\n0\nEOF\n"


def environment(**changes):
    return {**os.environ, "LANG": "C", **changes}


def run(*arguments, **changes):
    """The program with standard output and standard error as texts; `changes` go to its environment."""
    return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, timeout=120,
                          env=environment(**changes))


def run_on_terminal(*arguments, **changes):
    """The same with standard error on a pseudo-terminal: exit status and what the terminal got."""
    terminal, end = pty.openpty()
    with subprocess.Popen([PROGRAM, *map(str, arguments)], stdout=subprocess.DEVNULL, stderr=end,
                          env=environment(**changes)) as process:
        os.close(end)
        received = b""
        while True:
            try:
                portion = os.read(terminal, 4096)
            except OSError:  # how Linux tells that the other end is closed
                break
            if not portion:
                break
            received += portion
        os.close(terminal)
    return process.returncode, received.decode()


def drawing(entities, blocks="", tables=""):
    """A whole drawing text around the groups of entities, blocks and tables."""
    text = HEADER + tables
    if blocks:
        text += "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n"
    return text + "0\nSECTION\n2\nENTITIES\n" + entities + FOOTER


def layers(colours):
    rows = "".join(f"0\nLAYER\n2\n{name}\n70\n0\n62\n{colour}\n6\nCONTINUOUS\n" for name, colour in colours.items())
    return f"0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n{len(colours)}\n{rows}0\nENDTAB\n0\nENDSEC\n"


def line(x1="0.0", layer="A", handle="10"):
    return f"0\nLINE\n5\n{handle}\n8\n{layer}\n10\n{x1}\n20\n0.0\n11\n1.0\n21\n1.0\n"


# Entities by their numbers; `extra` are further groups.

def point(x, y):
    return f"0\nPOINT\n8\nA\n10\n{x}\n20\n{y}\n"


def segment(x1, y1, x2, y2, extra="", layer="A"):
    return f"0\nLINE\n8\n{layer}\n10\n{x1}\n20\n{y1}\n11\n{x2}\n21\n{y2}\n" + extra


def circle(x, y, radius, extra="", layer="A"):
    return f"0\nCIRCLE\n8\n{layer}\n10\n{x}\n20\n{y}\n40\n{radius}\n" + extra


def arc(x, y, radius, start, end, extra="", layer="A"):
    return f"0\nARC\n8\n{layer}\n10\n{x}\n20\n{y}\n40\n{radius}\n50\n{start}\n51\n{end}\n" + extra


def ellipse(x, y, major_x, major_y, ratio, start=0, end=2 * math.pi):
    return (f"0\nELLIPSE\n8\nA\n10\n{x}\n20\n{y}\n11\n{major_x!r}\n21\n{major_y!r}\n40\n{ratio}\n"
            f"41\n{start!r}\n42\n{end!r}\n")


def polyline(vertices, closed=False, extra="", layer="A"):
    groups = "".join(f"10\n{x}\n20\n{y}\n42\n{bulge}\n" for x, y, bulge in vertices)
    return f"0\nLWPOLYLINE\n8\n{layer}\n90\n{len(vertices)}\n70\n{int(closed)}\n" + groups + extra


def label(x, y, text, extra=""):
    return f"0\nTEXT\n8\nA\n10\n{x}\n20\n{y}\n40\n2.5\n1\n{text}\n" + extra


def insert(block, x=0.0, y=0.0, extra="", layer="A"):
    return f"0\nINSERT\n8\n{layer}\n2\n{block}\n10\n{x}\n20\n{y}\n" + extra


def block(name, entities):
    return f"0\nBLOCK\n8\n0\n2\n{name}\n70\n0\n10\n0.0\n20\n0.0\n" + entities + "0\nENDBLK\n"


class DrawingTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def file(self, text, name="drawing.dxf"):
        path = self.folder / name
        path.write_bytes(text if isinstance(text, bytes) else text.encode())
        return path

    def report(self, path, *options, **changes):
        result = run(path, *options, **changes)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout

    def extents(self, path, *options):
        """{kind: [left, bottom, right, top] exact, the same sampled, the box on the grid}."""
        found = {}
        for name, *corners in re.findall(r"    (\S+) +exact \((\S+), (\S+)\) \((\S+), (\S+)\)  sampled "
                                         r"\((\S+), (\S+)\) \((\S+), (\S+)\)  on the grid (\S+) (\S+) (\S+) (\S+)\n",
                                         self.report(path, *options)):
            values = [float(corner) for corner in corners]
            found[name] = values[:4], values[4:8], values[8:]
        return found

    def lengths(self, path, *options):
        """{layer: length}; "all layers" among them."""
        rows = re.findall(r"    (\S+(?= +RGB)|all layers) +(?:RGB\(\d+,\d+,\d+\))? +(\S+)\n", self.report(path, *options))
        return {layer: float(length) for layer, length in rows}

    def svg(self, path, *options):
        """The picture as a tree of elements."""
        out = self.folder / "out.svg"
        self.report(path, "--svg", out, *options)
        return xml.etree.ElementTree.parse(out).getroot()

    def paths(self, path, *options):
        """[(colour, path)] of the curves in the picture."""
        return [(element.get("stroke"), element.get("d")) for element in self.svg(path, *options).iter(SVG + "path")]

    def counts(self, path):
        """The inventory as {(layer, kind): count}."""
        result = run(path)
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.returncode, 0)
        rows = {}
        for row in result.stdout.splitlines():
            if re.match("  [^ ]", row):
                layer, kind, count = row.split()
                rows[layer, kind] = int(count)
        return rows

    def assert_refused(self, path, fault):
        """One clear line on standard error, nothing on standard output, exit status 2."""
        result = run(path)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertIn(str(path), result.stderr)
        self.assertIn(fault, result.stderr)
        self.assertEqual(result.returncode, 2)


class Inventory(DrawingTest):
    def test_bracket(self):
        self.assertEqual(self.counts(SAMPLES / "bracket.dxf"), {
            ("layer", "kind"): 12, ("CENTRE", "POINT"): 1, ("CENTRE", "LINE"): 2, ("HOLES", "LINE"): 2,
            ("HOLES", "ARC"): 2, ("HOLES", "ELLIPSE"): 1, ("HOLES", "INSERT"): 2, ("NOTES", "TEXT"): 1,
            ("OUTLINE", "POLYLINE"): 1})

    def test_gear(self):
        self.assertEqual(self.counts(SAMPLES / "gear.dxf"), {
            ("layer", "kind"): 111, ("RIM", "ARC"): 48, ("RIM", "LINE"): 48, ("WEB", "ELLIPSE"): 12,
            ("BORE", "POLYLINE"): 1, ("BORE", "CIRCLE"): 1, ("NOTES", "TEXT"): 1})

    def test_site_plan_has_twenty_thousand_entities(self):
        rows = self.counts(SAMPLES / "site-plan.dxf")
        self.assertEqual(rows.pop(("layer", "kind")), 20000)
        self.assertEqual(sum(rows.values()), 20000)
        text = (SAMPLES / "site-plan.dxf").read_text()
        in_blocks = text.index("ENDBLK")
        for (_, kind), name in {("TREES", "INSERT"): "INSERT", ("NUMBERS", "TEXT"): "TEXT"}.items():
            self.assertEqual(sum(n for (_, k), n in rows.items() if k == kind),
                             text.count(f"\n0\n{name}\n", in_blocks))

    def test_kinds_that_are_only_counted_are_named(self):
        path = self.file(drawing("0\nSOLID\n8\nA\n10\n0\n20\n0\n11\n1\n21\n0\n12\n0\n22\n1\n13\n1\n23\n1\n" + line()))
        self.assertEqual(self.counts(path)["A", "OTHER"], 1)
        self.assertIn("SOLID 1", run(path).stdout)

    def test_what_stands_behind_the_end_is_dropped(self):
        path = self.file(drawing(line()) + "trash\n\x00\x01 1e999\n")
        self.assertEqual(self.counts(path), {("layer", "kind"): 1, ("A", "LINE"): 1})

    def test_carriage_returns_and_spaces_are_accepted(self):
        path = self.file(drawing(line()).replace("\n", "\r\n").replace("\r\n0\r\n", "\r\n  0\r\n"))
        self.assertEqual(self.counts(path)["A", "LINE"], 1)

    def test_values_of_any_length_are_accepted(self):
        path = self.file(drawing("999\n" + "x" * 5000 + "\n" + line() + line(layer="L" * 5000)))
        self.assertEqual(self.counts(path), {("layer", "kind"): 2, ("A", "LINE"): 1, ("L" * 1000, "LINE"): 1})

    def test_blocks_are_counted_with_their_entities(self):
        path = self.file(drawing(insert("B") + insert("C"), block("B", line() + line()) + block("C", insert("B"))))
        self.assertIn("Blocks: 2 with 3 entities", run(path).stdout)

    def test_a_drawing_without_entities_is_read(self):
        self.assertEqual(self.counts(self.file(drawing(""))), {("layer", "kind"): 0})


class Extents(DrawingTest):
    def test_of_points_and_lines(self):
        path = self.file(drawing(point(-3, 7) + point(2.5, 1) + segment(0, 0, 10, -5.25)))
        found = self.extents(path)
        self.assertEqual(found["POINT"], ([-3, 1, 2.5, 7], [-3, 1, 2.5, 7], [-3, -7, 3, -1]))
        self.assertEqual(found["LINE"][0], [0, -5.25, 10, 0])
        self.assertEqual(found["whole"], ([-3, -5.25, 10, 7], [-3, -5.25, 10, 7], [-3, -7, 10, 6]))

    def test_of_arcs_reach_the_extremes_between_the_ends(self):
        # From 200 to 340 degrees: the lowest point lies at 270 degrees.
        exact = self.extents(self.file(drawing(arc(0, 0, 10, 200, 340))))["ARC"][0]
        self.assertEqual(exact, [-9.39693, -10, 9.39693, -3.4202])
        # Through 0: the rightmost point.
        exact = self.extents(self.file(drawing(arc(5, 5, 2, 315, 45))))["ARC"][0]
        self.assertEqual(exact, [6.414214, 3.585786, 7, 6.414214])

    def test_of_turned_ellipses(self):
        # Half width sqrt(a^2 cos^2 + b^2 sin^2) with a = 5, b = 3, 30 degrees, half height with sine and cosine exchanged.
        a = 5 * math.cos(math.pi / 6), 5 * math.sin(math.pi / 6)
        exact, sampled, _ = self.extents(self.file(drawing(ellipse(0, 0, *a, 0.6))))["ELLIPSE"]
        width, height = math.sqrt(25 * 0.75 + 9 * 0.25), math.sqrt(25 * 0.25 + 9 * 0.75)
        for value, expected in zip(exact, (-width, -height, width, height)):
            self.assertAlmostEqual(value, expected, 5)
        for value, outside in zip(sampled, (-width, -height, width, height)):
            self.assertLessEqual(abs(value), abs(outside) + 1e-6)
            self.assertGreater(abs(value), abs(outside) * (1 - 1e-4))

    def test_an_extreme_whose_parameter_is_found_below_zero(self):
        # Only the last tenth of the turn, where the parameter of the rightmost point counts as negative.
        a = 5 * math.cos(math.pi / 6), 5 * math.sin(math.pi / 6)
        exact = self.extents(self.file(drawing(ellipse(0, 0, *a, 0.6, 5.5, 6.28))))["ELLIPSE"][0]
        self.assertAlmostEqual(exact[2], math.sqrt(25 * 0.75 + 9 * 0.25), 5)

    def test_of_bulges(self):
        # A half circle to the right of the chord from (0, 0) to (0, 2).
        path = self.file(drawing(polyline([(0, 0, 1), (0, 2, 0)])))
        self.assertEqual(self.extents(path)["POLYLINE"][0], [0, 0, 1, 2])
        path = self.file(drawing(polyline([(0, 0, -1), (0, 2, 0)])))
        self.assertEqual(self.extents(path)["POLYLINE"][0], [-1, 0, 0, 2])

    def test_of_inserted_blocks(self):
        blocks = block("B", segment(0, 0, 1, 0) + circle(0, 0, 1))
        path = self.file(drawing(insert("B", 10, 20, "41\n2\n42\n3\n50\n90\n"), blocks))
        found = self.extents(path)
        self.assertEqual(found["LINE"][0], [10, 20, 10, 22])
        self.assertEqual(found["CIRCLE"][0], [7, 18, 13, 22])

    def test_of_inserts_in_columns_and_rows(self):
        path = self.file(drawing(insert("B", 0, 0, "70\n3\n71\n2\n44\n10\n45\n5\n"), block("B", circle(0, 0, 1))))
        self.assertEqual(self.extents(path)["CIRCLE"][0], [-1, -1, 21, 6])

    def test_an_extrusion_downwards_mirrors(self):
        # The arbitrary axis rule gives the x axis (-1, 0, 0) for the direction (0, 0, -1).
        down = "210\n0\n220\n0\n230\n-1\n"
        self.assertEqual(self.extents(self.file(drawing(circle(5, 1, 1, down))))["CIRCLE"][0], [-6, 0, -4, 2])
        self.assertEqual(self.extents(self.file(drawing(arc(0, 0, 1, 0, 90, down))))["ARC"][0], [-1, 0, 0, 1])
        path = self.file(drawing(polyline([(1, 0, 0), (3, 0, 1), (3, 2, 0)], extra=down)))
        self.assertEqual(self.extents(path)["POLYLINE"][0], [-4, 0, -1, 2])
        path = self.file(drawing(insert("B", 5, 0, down), block("B", segment(0, 0, 1, 2))))
        self.assertEqual(self.extents(path)["LINE"][0], [-6, 0, -5, 2])

    def test_a_circle_seen_edge_on_is_a_line(self):
        # The direction (1, 0, 0) has the axes (0, 1, 0) and (0, 0, 1).
        sideways = "210\n1\n220\n0\n230\n0\n"
        path = self.file(drawing(circle(5, 1, 2, sideways)))
        self.assertEqual(self.extents(path)["CIRCLE"][0], [0, 3, 0, 7])

    def test_a_slanted_circle_is_an_ellipse(self):
        # The direction (0, -0.6, 0.8): heights shrink by 0.8.
        slanted = "210\n0\n220\n-0.6\n230\n0.8\n"
        self.assertEqual(self.extents(self.file(drawing(circle(0, 0, 5, slanted))))["CIRCLE"][0], [-5, -4, 5, 4])

    def test_what_cannot_be_placed_is_left_out_and_told(self):
        entities = (circle(0, 0, 0) + circle(0, 0, -1) + arc(0, 0, 1, 1e9, 2) + ellipse(0, 0, 1, 0, 0.5, 0, 2e6) +
                    ellipse(0, 0, 0, 0, 0.5) + ellipse(0, 0, 1, 0, 0) + segment(0, 0, 1e300, 0) + insert("MISSING"))
        result = run(self.file(drawing(entities)))
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stderr.count("its radius is not positive"), 4)
        self.assertEqual(result.stderr.count("its angle is beyond 1e6"), 2)
        self.assertEqual(result.stderr.count("it lies too far out"), 1)
        self.assertEqual(result.stderr.count('block "MISSING" is not there'), 1)
        self.assertEqual(result.stderr.count("\n"), 8)

    def test_of_many_findings_of_one_kind_ten_are_told(self):
        result = run(self.file(drawing(circle(0, 0, 0) * 25)))
        self.assertEqual(result.stderr.count("its radius is not positive"), 10)
        self.assertIn("15 more warnings like these", result.stderr)

    def test_inserts_that_multiply_beyond_bounds_are_refused(self):
        blocks = "".join(block(f"B{i}", insert(f"B{i + 1}") * 2) for i in range(40)) + block("B40", "")
        self.assert_refused(self.file(drawing(insert("B0"), blocks)), "places more than 2000000 entities")
        many = insert("B", 0, 0, "70\n32767\n71\n32767\n")
        self.assert_refused(self.file(drawing(many, block("B", ""))), "places more than 2000000 entities")


class Lengths(DrawingTest):
    def test_by_layer_and_of_all(self):
        path = self.file(drawing(segment(0, 0, 3, 4, layer="A") + circle(0, 0, 1, layer="B") +
                                 arc(0, 0, 2, 0, 90, layer="B") + polyline([(0, 0, 1), (2, 0, 0)], layer="C")))
        self.assertEqual(self.lengths(path), {"A": 5, "B": 9.42478, "C": 3.14159, "all layers": 17.56637})

    def test_of_ellipses(self):
        # 2, 1: 4 * 2 * E(3/4); half of it; and one so flat that it is almost there and back.
        path = self.file(drawing(ellipse(0, 0, 2, 0, 0.5)))
        self.assertEqual(self.lengths(path)["all layers"], 9.688448)
        path = self.file(drawing(ellipse(0, 0, 0, 2, 0.5, 0, math.pi)))
        self.assertEqual(self.lengths(path)["all layers"], 4.844224)
        path = self.file(drawing(ellipse(0, 0, 1, 0, 0.001)))
        self.assertAlmostEqual(self.lengths(path)["all layers"], 4.000015588, 6)


class Transformation(DrawingTest):
    def setUp(self):
        super().setUp()
        self.path = self.file(drawing(segment(0, 0, 10, 0)))

    def box(self, *transformations):
        options = [option for one in transformations for option in ("--transform", one)]
        return self.extents(self.path, *options)["LINE"][0]

    def test_one_by_one(self):
        self.assertEqual(self.box("translate=1,2"), [1, 2, 11, 2])
        self.assertEqual(self.box("rotate=90"), [0, 0, 0, 10])
        self.assertEqual(self.box("rotate=-90"), [0, -10, 0, 0])
        self.assertEqual(self.box("scale=2"), [0, 0, 20, 0])
        self.assertEqual(self.box("scale=-1,5"), [-10, 0, 0, 0])

    def test_scaled_then_turned_then_moved_in_any_order_given(self):
        self.assertEqual(self.box("translate=1,2", "rotate=90", "scale=2"), [1, 2, 1, 22])
        self.assertEqual(self.box("scale=2", "rotate=90", "translate=1,2"), [1, 2, 1, 22])

    def test_several_of_a_kind_count_together(self):
        self.assertEqual(self.box("rotate=60", "rotate=30", "scale=2", "scale=3", "translate=1,1", "translate=1,0"),
                         [2, 1, 2, 61])

    def test_a_circle_becomes_an_ellipse(self):
        path = self.file(drawing(circle(1, 0, 1)))
        self.assertEqual(self.extents(path, "--transform", "scale=3,1")["CIRCLE"][0], [0, -1, 6, 1])
        self.assertEqual(self.lengths(path, "--transform", "scale=2,1")["all layers"], 9.688448)

    def test_what_is_no_transformation_is_refused(self):
        for text in ("", "turn=3", "rotate", "rotate=", "rotate=1,2", "rotate=x", "rotate=nan", "rotate=1e9", "scale=0",
                     "scale=1,0", "scale=1,2,3", "scale=inf", "translate=1", "translate=1,2,", "translate=1e999,0"):
            result = run(self.path, "--transform", text)
            with self.subTest(text=text):
                self.assertNotEqual(result.returncode, 0)
                self.assertEqual(result.stdout, "")
                self.assertNotEqual(result.stderr, "")


class Svg(DrawingTest):
    def test_the_view_is_that_of_the_extents_and_y_goes_up(self):
        root = self.svg(self.file(drawing(segment(10, 20, 110, 60))))
        self.assertEqual(root.get("viewBox"), "8 -62 104 44")  # a margin of a fiftieth
        boxes = [element for element in root.iter(SVG + "rect") if element.get("stroke-dasharray")]
        self.assertEqual([(box.get("x"), box.get("y"), box.get("width"), box.get("height")) for box in boxes],
                         [("10", "-60", "100", "40")])
        self.assertEqual([element.get("d") for element in root.iter(SVG + "path")], ["M10,-20L110,-60"])

    def test_arcs_are_arcs(self):
        def only(entity, *options):
            (_, path), = self.paths(self.file(drawing(entity)), *options)
            return path
        self.assertEqual(only(arc(0, 0, 10, 0, 90)), "M10,0A10,10 0 0 0 0,-10")
        self.assertEqual(only(arc(0, 0, 10, 90, 340)), "M0,-10A10,10 0 1 0 9.39693,3.4202")
        self.assertEqual(only(circle(0, 0, 10)), "M10,0A10,10 0 0 0 -10,0A10,10 0 0 0 10,0")
        self.assertEqual(only(ellipse(0, 0, 0, 10, 0.5, 0, math.pi)), "M0,-10A10,5 -90 0 0 0,10")
        self.assertEqual(only(polyline([(0, 0, 0), (2, 0, 1), (2, 2, -1), (2, 4, 0)])),
                         "M0,0L2,0A1,1 0 0 0 2,-2A1,1 0 0 1 2,-4")
        self.assertEqual(only(polyline([(0, 0, 0), (2, 0, 0), (2, 2, 0)], closed=True)), "M0,0L2,0L2,-2L0,0Z")
        self.assertEqual(only(arc(0, 0, 10, 0, 90), "--transform", "scale=-1,1"), "M-10,0A10,10 0 0 1 0,-10")

    def test_colours_of_entities_layers_and_blocks(self):
        table = layers({"RED": 1, "GREEN": -3})
        blocks = block("B", segment(0, 0, 1, 0, layer="0") + segment(0, 0, 1, 1, "62\n0\n", layer="RED") +
                       segment(0, 0, 1, 2, "62\n5\n", layer="0"))
        entities = (segment(0, 0, 2, 0, layer="RED") + segment(0, 0, 2, 1, "62\n30\n", layer="RED") +
                    segment(0, 0, 2, 2, layer="NOWHERE") + segment(0, 0, 2, 3, "62\n1\n420\n1193046\n", layer="RED") +
                    segment(0, 0, 2, 4, "62\n0\n", layer="RED") + segment(0, 0, 2, 5, layer="green") +
                    insert("B", 0, 0, "62\n6\n", layer="GREEN"))
        found = {path[path.index("L"):]: colour for colour, path in self.paths(self.file(drawing(entities, blocks, table)))}
        self.assertEqual(found, {
            "L2,0": "#ff0000", "L2,-1": "#ff7f00", "L2,-2": "#000000", "L2,-3": "#123456", "L2,-4": "#000000",
            "L2,-5": "#00ff00",  # a layer that is off has its colour below 0
            "L1,0": "#00ff00",   # layer 0 of a block: that of the insert
            "L1,-1": "#ff00ff",  # by block
            "L1,-2": "#0000ff"})

    def test_texts_are_escaped_and_stand_upright(self):
        root = self.svg(self.file(drawing(label(1, 2, "a < b & \"c\" > d") + label(3, 4, "r", "50\n90\n"))))
        texts = [(element.text, element.get("transform")) for element in root.iter(SVG + "text")]
        self.assertEqual(texts, [('a < b & "c" > d', "matrix(1,0,0,1,1,-2)"), ("r", "matrix(0,-1,1,0,3,-4)")])

    def test_texts_of_any_bytes_make_a_file_that_reads(self):
        content = drawing(label(0, 0, "X")).encode().replace(b"\nX\n", b"\n\xe4\xff\x01\xed\xa0\x80 \xc3\xa4\n")
        root = self.svg(self.file(content))
        self.assertEqual([element.text for element in root.iter(SVG + "text")], ["\xe4\xff\xed\xa0\x80 \xe4"])

    def test_an_empty_drawing_has_a_picture_too(self):
        self.assertEqual(self.svg(self.file(drawing(""))).get("viewBox"), "-0.02 -0.02 0.04 0.04")

    def test_a_place_that_cannot_be_written_gives_one_line(self):
        path = self.file(drawing(line()))
        for place in (self.folder / "nowhere" / "out.svg", self.folder, path / "out.svg", "/proc/out.svg"):
            with self.subTest(place=place):
                result = run(path, "--svg", place)
                self.assertEqual(result.returncode, 3)
                self.assertEqual(result.stderr.count("\n"), 1)
                self.assertIn(f"error: {place}: ", result.stderr)
        self.assertEqual([entry.name for entry in self.folder.iterdir()], [path.name])

    def test_a_file_is_replaced_whole(self):
        out = self.folder / "out.svg"
        out.write_text("old" * 100000)
        out.chmod(0o640)
        link = self.folder / "link.svg"
        link.symlink_to(out)
        self.report(self.file(drawing(line())), "--svg", link)
        self.assertTrue(link.is_symlink())
        self.assertTrue(out.read_text().endswith("</svg>\n"))
        self.assertEqual(out.stat().st_mode & 0o777, 0o640)
        self.assertEqual(sorted(entry.name for entry in self.folder.iterdir()), ["drawing.dxf", "link.svg", "out.svg"])

    def test_a_drawing_that_is_refused_leaves_the_file_alone(self):
        out = self.folder / "out.svg"
        out.write_text("old")
        self.assertEqual(run(self.file("1\n2\n"), "--svg", out).returncode, 2)
        self.assertEqual(run(self.file(drawing(line())), "--svg", out, KARTORY_DRAWING_BREAK_AT="1").returncode, 130)
        self.assertEqual(out.read_text(), "old")

    def test_the_picture_in_the_documentation_is_what_the_program_draws(self):
        out = self.folder / "bracket.svg"
        self.report(SAMPLES / "bracket.dxf", "--svg", out)
        self.assertEqual(out.read_text(), (HERE.parents[2] / "docs" / "bracket.svg").read_text())


class Refusals(DrawingTest):
    def test_a_missing_file(self):
        self.assert_refused(self.folder / "missing.dxf", "No such file")

    def test_a_directory(self):
        self.assert_refused(self.folder, "is a directory")

    def test_an_empty_file(self):
        self.assert_refused(self.file(""), "is empty")

    def test_a_text_that_is_no_dxf(self):
        self.assert_refused(self.file("Dear reader,\nthis is a letter.\n"), "is not a DXF drawing")

    def test_numbers_that_are_no_dxf(self):
        self.assert_refused(self.file("1\n2\n3\n4\n"), "is not a DXF drawing")

    def test_bytes_that_are_no_text(self):
        self.assert_refused(self.file(bytes(range(256)) * 10), "is not a DXF drawing")

    def test_a_binary_drawing(self):
        self.assert_refused(self.file(b"AutoCAD Binary DXF\r\n\x1a\x00\x00SECTION\x00"), "binary DXF")

    def test_every_truncation_of_a_drawing(self):
        whole = drawing(line() + insert("B"), block("B", line()))
        for length in range(1, len(whole) - 4, 3):
            with self.subTest(length=length):
                self.assertEqual(run(self.file(whole[:length])).returncode, 2)

    def test_a_truncated_drawing_names_its_last_line(self):
        whole = drawing(line())
        self.assert_refused(self.file(whole[:whole.index("11\n1.0")]), "ends early: no EOF behind line")

    def test_a_number_out_of_range(self):
        self.assert_refused(self.file(drawing(line("1e999"))), '"1e999" is out of range')

    def test_numbers_that_are_not_finite(self):
        for text in ("inf", "nan", "-inf"):
            self.assert_refused(self.file(drawing(line(text))), f'"{text}" is not a')

    def test_a_word_in_place_of_a_number(self):
        self.assert_refused(self.file(drawing(line("wide"))), 'line 18: "wide" is not a number')

    def test_a_group_code_out_of_range(self):
        self.assert_refused(self.file(drawing("4711\nx\n")), '"4711" is not a group code')

    def test_a_count_beyond_what_the_file_holds(self):
        for count in ("2000000000", "-5", "4000"):
            polyline = f"0\nLWPOLYLINE\n8\nA\n90\n{count}\n70\n0\n10\n0\n20\n0\n"
            self.assert_refused(self.file(drawing(polyline)), f'"{count}" is no count of what the file holds')

    def test_a_block_that_inserts_itself(self):
        self.assert_refused(self.file(drawing(insert("B"), block("B", insert("B")))), 'block "B" inserts itself')

    def test_a_block_that_inserts_itself_by_way_of_others(self):
        blocks = block("B", insert("C")) + block("C", insert("D")) + block("D", insert("b"))
        self.assert_refused(self.file(drawing("", blocks)), "inserts itself")

    def test_blocks_nested_too_deep(self):
        blocks = "".join(block(f"B{i}", insert(f"B{i + 1}")) for i in range(100000))
        self.assert_refused(self.file(drawing("", blocks)), "deep")


class CommandLine(DrawingTest):
    def test_help_names_the_program_and_succeeds(self):
        result = run("--help")
        self.assertEqual(result.returncode, 0)
        self.assertIn("kartory-drawing", result.stdout)

    def test_no_file_and_wrong_options_fail_with_a_message(self):
        for arguments in ((), ("--no-such-option", "x.dxf"), ("a.dxf", "b.dxf")):
            result = run(*arguments)
            self.assertNotEqual(result.returncode, 0)
            self.assertNotEqual(result.stderr, "")


class Messages(DrawingTest):
    def test_verbose_tells_what_is_done_and_quiet_nothing(self):
        path = self.file(drawing(line()))
        self.assertIn("kartory-drawing: Reading ", run("--verbose", path).stderr)
        self.assertIn("kartory-drawing: 1 entities read", run("-v", path).stderr)
        for option in ("--quiet", "-q"):
            self.assertEqual(run(option, path).stderr, "")

    def test_quiet_keeps_errors(self):
        result = run("--quiet", self.folder / "missing.dxf")
        self.assertIn("error: ", result.stderr)
        self.assertEqual(result.returncode, 2)

    def test_quiet_and_verbose_exclude_each_other(self):
        self.assertNotEqual(run("--quiet", "--verbose", self.file(drawing(""))).returncode, 0)

    def test_the_language_comes_from_the_environment_or_the_option(self):
        path = self.file("")
        for arguments, language, expected in (((), "de_DE.UTF-8", "Fehler: "), ((), "en_GB.UTF-8", "error: "),
                                              (("--lang", "de"), "C", "ist leer"),
                                              (("--lang", "en"), "de_DE.UTF-8", "is empty"), ((), "", "error: ")):
            with self.subTest(arguments=arguments, language=language):
                self.assertIn(expected, run(*arguments, path, LANG=language).stderr)

    def test_the_report_is_localised_too(self):
        path = self.file(drawing(insert("B"), block("B", line())))
        self.assertIn("Blöcke: 1 mit 1 Elementen", run("--lang=de", path).stdout)

    def test_an_unknown_language_is_refused(self):
        self.assertNotEqual(run("--lang", "fr", self.file(drawing(""))).returncode, 0)

    def test_errors_are_red_on_a_terminal_alone(self):
        path = self.folder / "missing.dxf"
        self.assertNotIn("\x1b", run(path).stderr)
        status, received = run_on_terminal(path)
        self.assertEqual(status, 2)
        self.assertIn("\x1b[31mkartory-drawing: error: ", received)
        self.assertIn("\x1b[0m", received)

    def test_control_characters_of_a_drawing_do_not_reach_the_terminal(self):
        path = self.file(drawing("", block("B\x1b[2J", insert("B\x1b[2J"))))
        self.assertNotIn("\x1b", run(path).stderr)
        self.assertIn('block "B?[2J" inserts itself', run(path).stderr)


class Operation(DrawingTest):
    """KARTORY_DRAWING_BREAK_AT=N presses Ctrl-C as the operation asks for the Nth time whether to go on, which it does
    before each element."""

    def test_a_break_stops_at_the_next_element_and_reports_what_was_done(self):
        path = self.file(drawing("".join(line(f"{i}.0") for i in range(50))))
        for element in (1, 2, 17, 50):
            with self.subTest(element=element):
                result = run(path, KARTORY_DRAWING_BREAK_AT=str(element))
                self.assertEqual(result.returncode, 130)
                self.assertIn(f"warning: stopped on request while reading, {element - 1} elements done", result.stderr)
                self.assertEqual(result.stderr.count("\n"), 1)
                # the element under way when the break comes is complete
                self.assertRegex(result.stdout, rf"A +LINE +{element}\n")

    def test_a_break_in_a_later_phase_names_it(self):
        for element, phase in ((3, "sorting, 0"), (5, "placing, 1"), (7, "measuring, 1")):
            result = run(self.file(drawing(line() + line())), KARTORY_DRAWING_BREAK_AT=str(element))
            self.assertEqual(result.returncode, 130)
            self.assertIn(f"while {phase} elements done", result.stderr)
            self.assertRegex(result.stdout, r"A +LINE +2\n")

    def test_a_break_behind_the_last_element_changes_nothing(self):
        path = self.file(drawing(line()))
        result = run(path, KARTORY_DRAWING_BREAK_AT="100000")
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_an_interrupt_from_outside(self):
        for presses, statuses in ((1, (130,)), (3, (130, -signal.SIGINT))):
            with subprocess.Popen([PROGRAM, SAMPLES / "site-plan.dxf"], stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, env=environment(KARTORY_DRAWING_BREAK_AT="0")) as process:
                for _ in range(presses):
                    time.sleep(0.15)
                    process.send_signal(signal.SIGINT)
                process.communicate()
                # before the handler stands, and behind the end of the work, one press already ends the program
                self.assertIn(process.returncode, (*statuses, -signal.SIGINT, 0))

    def test_the_bar_is_one_line_that_rises(self):
        start = time.monotonic()
        status, received = run_on_terminal(SAMPLES / "site-plan.dxf")
        elapsed = time.monotonic() - start
        self.assertEqual(status, 0)
        self.assertEqual(received.count("\n"), 0)
        bars = re.findall(r"\r\[([#.]{25})\] +(\d+)% ([^\x1b]*)\x1b\[K", received)
        self.assertGreaterEqual(len(bars), 1)
        self.assertLessEqual(len(bars), 10 * elapsed + 2)
        percents = [int(percent) for _, percent, _ in bars]
        self.assertEqual(percents, sorted(percents))
        for cells, percent, rest in bars:
            self.assertEqual(cells.count("#"), int(percent) * 25 // 100)
            self.assertRegex(rest, r"^[a-z]+  \d+ s, \d+ KB$")
        self.assertTrue(received.endswith("\r\x1b[K"))  # nothing of it stays

    def test_the_bar_is_absent_without_a_terminal_and_when_quiet(self):
        self.assertEqual(run(SAMPLES / "site-plan.dxf").stderr, "")
        self.assertEqual(run_on_terminal("--quiet", SAMPLES / "bracket.dxf"), (0, ""))

    def test_a_message_does_not_run_into_the_bar(self):
        _, received = run_on_terminal("--verbose", SAMPLES / "bracket.dxf")
        for message in re.findall(r"kartory-drawing: [^\n]*", received):
            self.assertNotIn("[#", message)
            self.assertNotIn("[.", message)


class Samples(DrawingTest):
    def test_the_script_writes_what_ships(self):
        subprocess.run([sys.executable, SAMPLES / "make-samples", self.folder], check=True)
        for path in SAMPLES.glob("*.dxf"):
            self.assertEqual(path.read_bytes(), (self.folder / path.name).read_bytes(), path.name)


if __name__ == "__main__":
    unittest.main()
