#!/usr/bin/env python3
"""Runs the sample program as a user would: drawing_test.py PROGRAM FAULTS [unittest arguments]. FAULTS is a library
of faults."""
import csv
import json
import math
import os
import pathlib
import pty
import random
import re
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree

PROGRAM = str(pathlib.Path(sys.argv.pop(1)).resolve())
FAULTS = str(pathlib.Path(sys.argv.pop(1)).resolve())
HERE = pathlib.Path(__file__).resolve().parent
SAMPLES = HERE.parent / "samples"

SVG = "{http://www.w3.org/2000/svg}"

HEADER = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n"
FOOTER = "0\nENDSEC\n0\nEOF\n"


def environment(**changes):
    kept = {name: value for name, value in os.environ.items() if not name.startswith("LC_")}
    return {**kept, "LANG": "C", "TERM": "xterm", **changes}


def open_terminal():
    """Both ends of a pseudo-terminal; where the machine has none, the test is skipped."""
    try:
        return pty.openpty()
    except OSError as error:
        raise unittest.SkipTest(f"this machine has no pseudo-terminals: {error}")


def run(*arguments, **changes):
    """The program with standard output and standard error as texts; `changes` go to its environment."""
    return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, timeout=120,
                          env=environment(**changes))


def run_on_terminal(*arguments, **changes):
    """The same with standard error on a pseudo-terminal: exit status and what the terminal got."""
    terminal, end = open_terminal()
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

    def test_a_mesh_is_no_path(self):
        mesh = "0\nPOLYLINE\n8\nA\n66\n1\n70\n16\n71\n2\n72\n2\n" + "".join(
            f"0\nVERTEX\n8\nA\n10\n{x}\n20\n0\n70\n64\n" for x in range(4)) + "0\nSEQEND\n8\nA\n"
        path = self.file(drawing(mesh))
        self.assertEqual(self.counts(path)["A", "OTHER"], 1)
        self.assertIn("MESH 1", run(path).stdout)

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

    def test_too_much_in_one_place_ends_the_search(self):
        # 4,900 lines without length in one place: 24 million pairs.
        many = insert("B", 0, 0, "70\n70\n71\n70\n44\n0\n45\n0\n")
        result = run(self.file(drawing(many, block("B", segment(0, 0, 0, 0)))))
        self.assertEqual(result.returncode, 0)
        self.assertIn("too much lies on one another: the search ended after 0 crossings", result.stderr)

    def test_inserts_that_multiply_beyond_bounds_are_refused(self):
        blocks = "".join(block(f"B{i}", insert(f"B{i + 1}") * 2) for i in range(40)) + block("B40", "")
        self.assert_refused(self.file(drawing(insert("B0"), blocks)), "places more than 1000000 entities")
        many = insert("B", 0, 0, "70\n32767\n71\n32767\n")
        self.assert_refused(self.file(drawing(many, block("B", ""))), "places more than 1000000 entities")


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


class Crossings(DrawingTest):
    def crossings(self, entities, *options, places=6):
        """The points, rounded and sorted, and that they are the same as a table."""
        out = self.folder / "out.json"
        table = self.folder / "out.csv"
        self.report(self.file(drawing(entities)), "--json", out, "--csv", table, *options)
        found = json.loads(out.read_text())["crossings"]
        with table.open(newline="") as file:
            rows = list(csv.DictReader(file))
        self.assertEqual([(float(row["x"]), float(row["y"])) for row in rows], [(one["x"], one["y"]) for one in found])
        return sorted((round(one["x"], places) + 0.0, round(one["y"], places) + 0.0) for one in found)

    def test_of_lines(self):
        self.assertEqual(self.crossings(segment(0, 0, 4, 4) + segment(0, 2, 4, 2)), [(2, 2)])
        self.assertEqual(self.crossings(segment(0, 0, 1, 1) + segment(0, 2, 4, 2)), [])        # beyond the end
        self.assertEqual(self.crossings(segment(0, 0, 0, 5) + segment(-1, 3, 1, 3)), [(0, 3)])  # vertical and level
        self.assertEqual(self.crossings(segment(0, 0, 4, 0) + segment(2, 0, 2, 3)), [(2, 0)])   # one ends on the other
        self.assertEqual(self.crossings(segment(0, 0, 4, 0) + segment(4, 0, 9, 9)), [(4, 0)])   # end to end
        self.assertEqual(self.crossings(segment(0, 0, 4, 0) + segment(0, 1, 4, 1)), [])         # parallel

    def test_of_lines_that_lie_on_one_another(self):
        self.assertEqual(self.crossings(segment(0, 0, 4, 0) + segment(4, 0, 9, 0)), [(4, 0)])
        self.assertEqual(self.crossings(segment(0, 0, 4, 0) + segment(3, 0, 9, 0)), [(3, 0), (4, 0)])
        self.assertEqual(self.crossings(segment(0, 0, 4, 0) + segment(5, 0, 9, 0)), [])

    def test_of_nearly_vertical_lines(self):
        self.assertEqual(self.crossings(segment(1, -1, 1.000000000001, 1) + segment(0, 0.5, 2, 0.5)), [(1, 0.5)])

    def test_of_lines_and_circles(self):
        self.assertEqual(self.crossings(segment(-9, 3, 9, 3) + circle(0, 0, 5)), [(-4, 3), (4, 3)])
        self.assertEqual(self.crossings(segment(3, -9, 3, 9) + circle(0, 0, 5)), [(3, -4), (3, 4)])
        self.assertEqual(self.crossings(segment(-9, 0, 9, 0) + circle(0, 0, 5)), [(-5, 0), (5, 0)])
        self.assertEqual(self.crossings(segment(0, 0, 9, 0) + circle(0, 0, 5)), [(5, 0)])
        self.assertEqual(self.crossings(segment(-9, 6, 9, 6) + circle(0, 0, 5)), [])

    def test_of_a_slanted_line_through_the_leftmost_point(self):
        # The crossing at t = pi, whose half-angle is infinite: x = -5 + s, y = s meets the circle again at s = 5.
        self.assertEqual(self.crossings(segment(-9, -4, 9, 14) + circle(0, 0, 5)), [(-5, 0), (0, 5)])
        self.assertEqual(self.crossings(segment(-6, 2, -4, -2) + circle(0, 0, 5)), [(-5, 0)])

    def test_of_tangents(self):
        self.assertEqual(self.crossings(segment(-9, 5, 9, 5) + circle(0, 0, 5)), [(0, 5)])
        self.assertEqual(self.crossings(segment(-9, 0.5, 9, 0.5) + circle(0.1, 0.2, 0.3)), [(0.1, 0.5)])
        # 3x + 4y = 25 touches the circle of radius 5 at (3, 4).
        self.assertEqual(self.crossings(segment(-1, 7, 7, 1) + circle(0, 0, 5)), [(3, 4)])

    def test_of_arcs_end_where_they_end(self):
        self.assertEqual(self.crossings(segment(-9, 3, 9, 3) + arc(0, 0, 5, 0, 90)), [(4, 3)])
        self.assertEqual(self.crossings(segment(-9, 3, 9, 3) + arc(0, 0, 5, 300, 60)), [(4, 3)])
        self.assertEqual(self.crossings(segment(-9, 3, 9, 3) + arc(0, 0, 5, 180, 360)), [])
        self.assertEqual(self.crossings(segment(0, 0, 9, 0) + arc(0, 0, 5, 0, 90)), [(5, 0)])  # at the end itself

    def test_of_two_circles(self):
        # x^2 + y^2 = 25 and (x - 6)^2 + y^2 = 25: x = 3, y = +-4.
        self.assertEqual(self.crossings(circle(0, 0, 5) + circle(6, 0, 5)), [(3, -4), (3, 4)])
        self.assertEqual(self.crossings(circle(0, 0, 5) + circle(0, 6, 5)), [(-4, 3), (4, 3)])
        self.assertEqual(self.crossings(circle(0, 0, 5) + circle(10, 0, 5)), [(5, 0)])  # touching
        self.assertEqual(self.crossings(circle(0, 0, 5) + circle(2, 0, 3)), [(5, 0)])   # from inside
        self.assertEqual(self.crossings(circle(0, 0, 5) + circle(0, 0, 3)), [])         # concentric
        self.assertEqual(self.crossings(circle(0, 0, 5) + circle(11, 0, 5)), [])
        # (x + 1)^2 + y^2 = 4 and (x - 1)^2 + (y + 1)^2 = 9, where the iteration breaks down at its first step.
        # Their difference is y = 2x + 2, so 5x^2 + 10x + 1 = 0.
        expected = [(round(x, 6), round(2 * x + 2, 6)) for x in (-1 - math.sqrt(0.8), -1 + math.sqrt(0.8))]
        self.assertEqual(self.crossings(circle(-1, 0, 2) + circle(1, -1, 3)), expected)

    def test_of_two_arcs_find_all_points(self):
        # Both points lie behind the roots that two slots would show.
        for start in range(0, 360, 30):
            entities = arc(0, 0, 5, start, start) + arc(6, 0, 5, start, start)
            self.assertEqual(self.crossings(entities), [(3, -4), (3, 4)], start)

    def test_of_arcs_of_one_circle(self):
        self.assertEqual(self.crossings(arc(0, 0, 5, 0, 90) + arc(0, 0, 5, 90, 180)), [(0, 5)])
        self.assertEqual(self.crossings(arc(0, 0, 5, 0, 90) + arc(0, 0, 5, 45, 180)), [(0, 5), (3.535534, 3.535534)])
        self.assertEqual(self.crossings(arc(0, 0, 5, 0, 90) + arc(0, 0, 5, 100, 180)), [])

    def test_of_ellipses(self):
        # x^2/25 + y^2/9 = 1 and the same upright: x^2 = y^2 = 225/34.
        c = round(math.sqrt(225 / 34), 6)
        self.assertEqual(self.crossings(ellipse(0, 0, 5, 0, 0.6) + ellipse(0, 0, 0, 5, 0.6)),
                         [(-c, -c), (-c, c), (c, -c), (c, c)])
        self.assertEqual(self.crossings(ellipse(0, 0, 5, 0, 0.6) + segment(-9, 0, 9, 0)), [(-5, 0), (5, 0)])
        self.assertEqual(self.crossings(ellipse(0, 0, 5, 0, 0.6) + segment(0, -9, 0, 9)), [(0, -3), (0, 3)])
        self.assertEqual(self.crossings(ellipse(0, 0, 5, 0, 0.6) + circle(0, 0, 5)), [(-5, 0), (5, 0)])  # touching twice
        self.assertEqual(self.crossings(ellipse(0, 0, 5, 0, 0.6) + circle(0, 0, 2)), [])
        self.assertEqual(self.crossings(ellipse(0, 0, 5, 0, 0.6) + ellipse(0, 0, 5, 0, 0.6)), [])  # the same

    def test_of_a_turned_ellipse_and_a_level_line_through_its_leftmost_parameter(self):
        # The point of t = pi of an ellipse turned by 45 degrees is (-a, -a) / sqrt(2).
        a = 5 * math.sqrt(0.5)
        found = self.crossings(ellipse(0, 0, a, a, 0.5) + segment(-9, -a, 9, -a))
        self.assertIn((-3.535534, -3.535534), found)
        self.assertEqual(len(found), 2)

    def test_of_pairs_of_any_size_and_place(self):
        for scale in (1e-7, 1e-3, 1.0, 1e5):
            for x, y in ((0.0, 0.0), (1000 * scale, -500 * scale)):
                with self.subTest(scale=scale, x=x, y=y):
                    def scaled(px, py):
                        return round((px - x) / scale, 5) + 0.0, round((py - y) / scale, 5) + 0.0
                    entities = (circle(x, y, 5 * scale) + circle(x + 6 * scale, y, 5 * scale) +
                                segment(x - 9 * scale, y + 3 * scale, x + 9 * scale, y + 3 * scale))
                    found = sorted(scaled(*point) for point in self.crossings(entities, places=15))
                    self.assertEqual(found, [(-4, 3), (2, 3), (3, -4), (3, 4), (4, 3)])

    def test_of_a_small_circle_on_a_large_one(self):
        found = self.crossings(circle(0, 0, 1000) + circle(1000, 0, 0.001), places=9)
        self.assertEqual(found, [(1000.0, -0.001), (1000.0, 0.001)])  # but for half a billionth

    def test_of_polylines(self):
        square = polyline([(0, 0, 0), (4, 0, 0), (4, 4, 0), (0, 4, 0)], closed=True)
        self.assertEqual(self.crossings(square), [])  # its own corners are none
        self.assertEqual(self.crossings(square + segment(2, -1, 2, 5)), [(2, 0), (2, 4)])
        bow = polyline([(0, 0, 0), (4, 4, 0), (4, 0, 0), (0, 4, 0)])
        self.assertEqual(self.crossings(bow), [(2, 2)])  # but where it crosses itself
        rounded = polyline([(0, 0, 1), (4, 0, 1)], closed=True)
        self.assertEqual(self.crossings(rounded), [])
        self.assertEqual(self.crossings(rounded + segment(2, -9, 2, 9)), [(2, -2), (2, 2)])

    def test_of_blocks(self):
        path = self.file(drawing(insert("B", 10, 0) + segment(0, 1, 20, 1), block("B", circle(0, 0, 1) + segment(-2, 0, 2, 0))))
        self.report(path, "--json", self.folder / "out.json")
        found = [(one["x"], one["y"], one["first"]["kind"], one["second"]["kind"])
                 for one in json.loads((self.folder / "out.json").read_text())["crossings"]]
        self.assertEqual(sorted(found), [(9, 0, "CIRCLE", "LINE"), (10, 1, "LINE", "CIRCLE"), (11, 0, "CIRCLE", "LINE")])

    def test_after_a_transformation(self):
        entities = segment(-9, 3, 9, 3) + circle(0, 0, 5)
        self.assertEqual(self.crossings(entities, "--transform", "scale=2,1"), [(-8, 3), (8, 3)])
        self.assertEqual(self.crossings(entities, "--transform", "rotate=90"), [(-3, -4), (-3, 4)])

    def test_of_curves_that_touch_are_found(self):
        # The circle of curvature at an end of the long axis, b^2 / a, and one that touches at t = 1.
        (x, y), = self.crossings(ellipse(0, 0, 4, 0, 0.5) + circle(3, 0, 1))
        self.assertLess(math.dist((x, y), (4, 0)), 0.01)  # they part by a billionth within that
        x, y = 4 * math.cos(1), 2 * math.sin(1)
        length = math.hypot(2 * math.cos(1), 4 * math.sin(1))
        nx, ny = 2 * math.cos(1) / length, 4 * math.sin(1) / length
        self.assertEqual(self.crossings(ellipse(0, 0, 4, 0, 0.5) + circle(x + 3 * nx, y + 3 * ny, 3)),
                         [(round(x, 6), round(y, 6))])

    def test_a_pair_that_does_not_settle_is_told(self):
        path = self.file(drawing(ellipse(0, 0, 5, 0, 0.6) + ellipse(1, 0, 0, 5, 0.6)))
        result = run(path, "--passes", "1", "--nearest", "3,4")
        self.assertEqual(result.returncode, 0)
        self.assertIn("crossings of ELLIPSE (A) and ELLIPSE (A) may be missing: the iteration does not settle", result.stderr)
        self.assertIn("feet on ELLIPSE (A) may be missing: the iteration does not settle", result.stderr)
        self.assertEqual(result.stdout.count("Crossings: 4\n"), 1)  # found by a walk along the curve none the less

    def test_of_random_curves_against_their_signs(self):
        """Crossings of whole curves are counted where one curve's implicit form changes its sign along the other."""
        seed = 20
        chance = random.Random(seed)
        shapes = []
        for _ in range(36):
            a = chance.uniform(1, 8)
            shapes.append((chance.uniform(-8, 8), chance.uniform(-8, 8), a, chance.choice((1, chance.uniform(0.2, 1))),
                           chance.uniform(0, math.pi)))
        def at(shape, t):
            x, y, a, ratio, turn = shape
            u, v = a * math.cos(t), a * ratio * math.sin(t)
            return x + u * math.cos(turn) - v * math.sin(turn), y + u * math.sin(turn) + v * math.cos(turn)
        def value(shape, px, py):
            x, y, a, ratio, turn = shape
            dx, dy = px - x, py - y
            u = (dx * math.cos(turn) + dy * math.sin(turn)) / a
            v = (dy * math.cos(turn) - dx * math.sin(turn)) / (a * ratio)
            return u * u + v * v - 1
        expected = {}
        steps = 720
        for i, first in enumerate(shapes):
            for j in range(i):
                signs = [value(shapes[j], *at(first, k * 2 * math.pi / steps)) > 0 for k in range(steps)]
                expected[j, i] = sum(signs[k] != signs[k - 1] for k in range(steps))
        entities = "".join(
            ellipse(x, y, a * math.cos(turn), a * math.sin(turn), ratio).replace("8\nA", f"5\n{i + 1:X}\n8\nA")
            for i, (x, y, a, ratio, turn) in enumerate(shapes))
        out = self.folder / "out.json"
        self.report(self.file(drawing(entities)), "--json", out)
        found = {pair: 0 for pair in expected}
        for one in json.loads(out.read_text())["crossings"]:
            pair = tuple(sorted(int(one[side]["handle"], 16) - 1 for side in ("first", "second")))
            found[pair] += 1
            for index in pair:  # on both curves
                self.assertLess(abs(value(shapes[index], one["x"], one["y"])), 1e-8, f"seed {seed}, pair {pair}")
        self.assertEqual({pair: n for pair, n in found.items() if n != expected[pair]}, {}, f"seed {seed}")

    def test_of_many_entities_take_time_in_proportion(self):
        def plan(count):
            chance = random.Random(1)
            width = 10 * math.isqrt(count)
            lines = (segment(x := chance.randrange(width), y := chance.randrange(width), x + 11, y + 7)
                     for _ in range(count))
            return self.file(drawing("".join(lines)), f"{count}.dxf")
        def seconds(path):
            start = time.monotonic()
            self.report(path)
            return time.monotonic() - start
        small, large = plan(5000), plan(40000)
        self.assertLess(seconds(large), 8 * 4 * max(seconds(small), 0.05))

    def test_a_break_among_the_crossings_reports_those_before(self):
        entities = "".join(segment(i, -1, i, 1) for i in range(20)) + segment(-1, 0, 30, 0)
        out = self.folder / "out.csv"
        result = run(self.file(drawing(entities)), "--csv", out, KARTORY_DRAWING_BREAK_AT=str(21 + 1 + 21 + 21 + 5))
        self.assertEqual(result.returncode, 130)
        self.assertIn("while crossing, 4 elements done", result.stderr)
        self.assertIn("Crossings: 4\n", result.stdout)
        self.assertFalse(out.exists())


class Corners(DrawingTest):
    def test_a_fillet_between_two_lines(self):
        # The corner of the axes: tangent points (1, 0) and (0, 1), centre (1, 1).
        path = self.file(drawing(segment(0, 0, 5, 0) + segment(0, 5, 0, 0)))
        self.assertEqual(sorted(drawn for _, drawn in self.paths(path, "--fillet", 1)),
                         ["M0,-5L0,-1", "M1,0A1,1 0 0 1 0,-1", "M1,0L5,0"])
        box = self.extents(path, "--fillet", 1)["ARC"][0]
        self.assertEqual(box, [0, 0, 1, 1])
        self.assertEqual(self.lengths(path, "--fillet", 1)["all layers"], 9.570796)  # 4 + 4 + pi/2
        self.assertIn("Corners: 1 blended", self.report(path, "--fillet", 1))

    def test_a_chamfer_between_two_lines(self):
        path = self.file(drawing(segment(0, 0, 5, 0) + segment(0, 5, 0, 0)))
        self.assertEqual(self.lengths(path, "--chamfer", 1)["all layers"], 9.414214)  # 4 + 4 + sqrt 2
        self.assertIn("Corners: 1 cut", self.report(path, "--chamfer", 1))

    def test_a_rectangle(self):
        path = self.file(drawing(polyline([(0, 0, 0), (6, 0, 0), (6, 4, 0), (0, 4, 0)], closed=True)))
        (_, drawn), = self.paths(path, "--fillet", 1)
        self.assertEqual(drawn, "M1,0L5,0A1,1 0 0 0 6,-1L6,-3A1,1 0 0 0 5,-4L1,-4A1,1 0 0 0 0,-3L0,-1A1,1 0 0 0 1,0Z")
        (_, drawn), = self.paths(path, "--chamfer", 1)
        self.assertEqual(drawn, "M1,0L5,0L6,-1L6,-3L5,-4L1,-4L0,-3L0,-1L1,0Z")
        (_, drawn), = self.paths(path, "--fillet", 2)  # nothing is left of the short sides
        self.assertEqual(drawn, "M2,0L4,0A2,2 0 0 0 6,-2A2,2 0 0 0 4,-4L2,-4A2,2 0 0 0 0,-2A2,2 0 0 0 2,0Z")

    def test_a_clockwise_polyline_and_an_open_one(self):
        path = self.file(drawing(polyline([(0, 0, 0), (0, 4, 0), (4, 4, 0)])))
        (_, drawn), = self.paths(path, "--fillet", 1)
        self.assertEqual(drawn, "M0,0L0,-3A1,1 0 0 1 1,-4L4,-4")

    def test_corners_of_any_angle(self):
        # 60 degrees: the radius 1 needs sqrt 3 of both sides; the arc spans 120 degrees.
        path = self.file(drawing(polyline([(8, 0, 0), (0, 0, 0), (4, 4 * math.sqrt(3), 0)])))
        length = 16 - 2 * math.sqrt(3) + 2 * math.pi / 3
        self.assertAlmostEqual(self.lengths(path, "--fillet", 1)["all layers"], length, 4)

    def test_sides_that_are_too_short_keep_their_corner(self):
        path = self.file(drawing(polyline([(0, 0, 0), (4, 0, 0), (4, 1, 0)])))
        result = run(path, "--fillet", "2")
        self.assertEqual(result.returncode, 0)
        self.assertIn("POLYLINE (A) keeps its corner at 4, 0: its sides are too short", result.stderr)
        self.assertIn("Corners: 0 blended", result.stdout)

    def test_what_is_no_corner_of_two_lines_stays(self):
        three = segment(0, 0, 5, 0) + segment(0, 0, 0, 5) + segment(0, 0, -5, -5)
        straight = segment(10, 0, 15, 0) + segment(15, 0, 20, 0)
        curved = polyline([(30, 0, 1), (34, 0, 0), (38, 0, 0)])
        path = self.file(drawing(three + straight + curved))
        self.assertEqual(self.paths(path, "--fillet", 1), self.paths(path))

    def test_a_square_of_lines(self):
        sides = segment(0, 0, 4, 0) + segment(4, 4, 4, 0) + segment(4, 4, 0, 4) + segment(0, 0, 0, 4)
        self.assertEqual(self.lengths(self.file(drawing(sides)), "--fillet", 1)["all layers"], 14.28319)  # 8 + 2 pi

    def test_sizes_that_are_none_are_refused(self):
        path = self.file(drawing(line()))
        for option in ("--fillet", "--chamfer"):
            for size in ("0", "-1", "nan", "x", "1,2", "1e999"):
                self.assertNotEqual(run(path, option, size).returncode, 0, (option, size))
        self.assertNotEqual(run(path, "--fillet", "1", "--chamfer", "1").returncode, 0)


class Nearest(DrawingTest):
    def feet(self, entities, place):
        out = self.folder / "out.json"
        self.report(self.file(drawing(entities)), f"--nearest={place}", "--json", out)
        return [(foot["on"]["kind"], round(foot["x"], 6) + 0.0, round(foot["y"], 6) + 0.0, round(foot["distance"], 6))
                for foot in json.loads(out.read_text())["nearest"]["feet"]]

    def test_on_lines_and_circles(self):
        entities = segment(0, 0, 10, 0) + circle(3, 10, 2) + segment(20, 0, 20, 10)
        self.assertEqual(self.feet(entities, "3,4"),
                         [("LINE", 3, 0, 4), ("CIRCLE", 3, 8, 4), ("LINE", 20, 4, 17)])
        self.assertEqual(self.feet(segment(0, 0, 10, 0), "11,1"), [])  # no perpendicular meets it

    def test_on_ellipses(self):
        self.assertEqual(self.feet(ellipse(0, 0, 5, 0, 0.6), "10,0"), [("ELLIPSE", 5, 0, 5)])
        self.assertEqual(self.feet(ellipse(0, 0, 5, 0, 0.6), "0,7"), [("ELLIPSE", 0, 3, 4)])
        self.assertEqual(self.feet(ellipse(0, 0, 5, 0, 0.6), "0,0")[0][3], 3)
        # The normal at t = pi/4 of (5, 3): foot (5c, 3c), direction (3c, 5c) with c = sqrt(1/2).
        c = math.sqrt(0.5)
        (_, x, y, distance), = self.feet(ellipse(0, 0, 5, 0, 0.6), f"{8 * c},{8 * c}")
        self.assertEqual((x, y, distance), (round(5 * c, 6), round(3 * c, 6), round(math.hypot(3 * c, 5 * c), 6)))

    def test_on_ellipses_beside_the_nearest_of_many_points(self):
        seed = 3
        chance = random.Random(seed)
        steps = 20000
        for case in range(24):
            a, ratio, turn = chance.uniform(1, 9), chance.uniform(0.1, 0.99), chance.uniform(0, 3)
            u, v = chance.choice(((chance.uniform(-9, 9), chance.uniform(-9, 9)), (chance.uniform(-9, 9), 0.0),
                                  (0.0, chance.uniform(-9, 9)), (chance.uniform(-1, 1) * a, 1e-9)))
            place = u * math.cos(turn) - v * math.sin(turn), u * math.sin(turn) + v * math.cos(turn)
            nearest = min(math.dist((u, v), (a * math.cos(t), a * ratio * math.sin(t)))
                          for t in (k * 2 * math.pi / steps for k in range(steps)))
            found = self.feet(ellipse(0, 0, a * math.cos(turn), a * math.sin(turn), ratio), f"{place[0]},{place[1]}")
            self.assertAlmostEqual(found[0][3], nearest, 5, f"seed {seed}, case {case}")

    def test_from_the_centre_of_a_circle(self):
        (_, x, y, distance), = self.feet(circle(1, 2, 3), "1,2")
        self.assertEqual((math.dist((x, y), (1, 2)), distance), (3, 3))

    def test_the_text_lists_the_first_ten(self):
        path = self.file(drawing("".join(segment(0, i, 10, i) for i in range(12))))
        report = self.report(path, "--nearest", "5,-1")
        self.assertRegex(report, r"Nearest feet of perpendiculars from \(5, -1\)\n    5, 0 +distance 1 ")
        self.assertIn("    and 2 more\n", report)

    def test_a_place_that_is_none_is_refused(self):
        for place in ("1", "1,2,3", "a,b", "nan,1", "1,"):
            self.assertNotEqual(run(self.file(drawing(line())), f"--nearest={place}").returncode, 0, place)


class Files(DrawingTest):
    def test_the_drawing_written_is_the_drawing_read(self):
        for sample in SAMPLES.glob("*.dxf"):
            out = self.folder / "again.dxf"
            first = self.extents(sample, "--dxf", out), self.lengths(sample)
            self.assertEqual((self.extents(out), self.lengths(out)), first, sample.name)

    def test_a_transformed_drawing_keeps_its_measures(self):
        entities = (circle(1, 2, 3) + arc(0, 0, 5, 30, 200) + ellipse(1, 1, 4, 3, 0.5, 0.5, 4) + segment(0, 0, 7, 3) +
                    polyline([(0, 0, 0.5), (5, 0, -0.3), (5, 5, 0)], closed=True) + point(9, 9) + label(3, 3, "text"))
        path = self.file(drawing(entities))
        for transformation in ("scale=-1,1", "rotate=33", "scale=2,0.5"):
            out = self.folder / "again.dxf"
            first = self.report(path, "--dxf", out, "--transform", transformation)
            again = self.report(out)
            self.assertEqual(*(re.search("all layers +(.*)", report)[1] for report in (first, again)), transformation)
            self.assertEqual(*(re.search("whole +(.*)", report)[1] for report in (first, again)), transformation)

    def test_colours_and_layers_go_along(self):
        table = layers({"RED": 1, "GREEN": 3})
        entities = (segment(0, 0, 1, 0, layer="RED") + segment(0, 0, 1, 1, "62\n5\n", layer="GREEN") +
                    segment(0, 0, 1, 2, "420\n1193046\n", layer="GREEN"))
        path = self.file(drawing(entities, tables=table))
        out = self.folder / "again.dxf"
        first = self.paths(path, "--dxf", out)
        self.assertEqual(self.paths(out), first)

    def test_json_holds_what_the_report_tells(self):
        out = self.folder / "out.json"
        run(self.file(drawing(segment(0, 0, 4, 3, layer="B\xe4") + circle(0, 0, 0) + point(1, 1))), "--json", out)
        report = json.loads(out.read_text())
        self.assertEqual((report["entities"], report["placed"], report["length"], report["stopped"]), (3, 2, 5, False))
        self.assertEqual(report["layers"], [{"name": "B\xe4", "colour": [255, 255, 255], "length": 5}])
        self.assertEqual(report["extents"]["whole"]["exact"], {"left": 0, "bottom": 0, "right": 4, "top": 3})
        self.assertEqual(report["extents"]["POINT"]["grid"], {"left": 1, "top": -1, "right": 1, "bottom": -1})
        self.assertEqual(report["findings"], ["CIRCLE (A) is left out: its radius is not positive"])

    def test_a_standard_output_that_is_full_is_told(self):
        with open("/dev/full", "w") as full:
            for arguments in ((), ("--json", "-"), ("--svg", "-")):
                result = subprocess.run([PROGRAM, self.file(drawing(line())), *arguments], stdout=full,
                                        stderr=subprocess.PIPE, text=True, timeout=60, env=environment())
                self.assertEqual((result.returncode, result.stderr.count("\n")), (3, 1), arguments)

    def test_standard_output_takes_a_file_in_place_of_the_report(self):
        path = self.file(drawing(segment(0, 0, 4, 4) + segment(0, 2, 4, 2, layer='a,"b"')))
        self.assertEqual(json.loads(self.report(path, "--json", "-"))["entities"], 2)
        self.assertEqual(list(csv.reader(self.report(path, "--csv", "-").splitlines()))[1],
                         ["2", "2", "LINE", "A", "", "LINE", 'a,"b"', ""])
        self.assertTrue(self.report(path, "--svg", "-").startswith("<svg "))
        again = self.file(self.report(path, "--dxf", "-"), "again.dxf")
        self.assertEqual(self.lengths(again), self.lengths(path))

    def test_a_device_is_written_to_and_stays_one(self):
        out = self.folder / "pipe"
        os.mkfifo(out)
        path = self.file(drawing(segment(0, 0, 4, 4)))
        for option, beginning in (("--svg", "<svg"), ("--dxf", "999\ndxflib "), ("--json", "{"), ("--csv", "x,y,")):
            with subprocess.Popen(["cat", out], stdout=subprocess.PIPE, text=True) as reader:
                self.report(path, option, out)
                self.assertTrue(reader.communicate(timeout=60)[0].startswith(beginning), option)
            self.assertTrue(out.is_fifo(), option)

    def test_a_place_that_cannot_be_written_gives_one_line(self):
        for option in ("--dxf", "--json", "--csv"):
            place = self.folder / "nowhere" / "out"
            result = run(self.file(drawing(line())), option, place)
            self.assertEqual((result.returncode, result.stderr.count("\n")), (3, 1), option)
            self.assertIn(f"error: {place}: ", result.stderr)


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

    def test_texts_are_aligned(self):
        root = self.svg(self.file(drawing(label(1, 2, "m", "72\n1\n11\n5\n21\n6\n") + label(1, 2, "e", "72\n2\n11\n7\n21\n8\n"))))
        texts = [(element.text, element.get("text-anchor"), element.get("transform")) for element in root.iter(SVG + "text")]
        self.assertEqual(texts, [("m", "middle", "matrix(1,0,0,1,5,-6)"), ("e", "end", "matrix(1,0,0,1,7,-8)")])

    def test_what_belongs_to_a_sheet_is_not_drawn(self):
        path = self.file(drawing(segment(0, 0, 1, 0) + segment(0, 0, 9, 9, "67\n1\n")))
        self.assertEqual([drawn for _, drawn in self.paths(path)], ["M0,0L1,0"])

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

    def test_a_file_without_end(self):
        self.assert_refused(pathlib.Path("/dev/zero"), "is larger than 1024 MB")

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
    def assert_wrong(self, fault, *arguments, **changes):
        """One line on standard error, nothing on standard output, exit status 1."""
        result = run(*arguments, **changes)
        self.assertEqual((result.returncode, result.stdout, result.stderr.count("\n")), (1, "", 1), result.stderr)
        self.assertIn(fault, result.stderr)

    def test_help_and_version_succeed(self):
        result = run("--help")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for word in ("kartory-drawing", "--svg", "--text", "--fillet", "--lang", "Exit status"):
            self.assertIn(word, result.stdout)
        result = run("--version")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertRegex(result.stdout, r"^kartory-drawing \d+\.\d+\.\d+\n$")

    def test_help_is_localised_in_all_its_sentences(self):
        english = set(re.findall(r"  ([A-Z][a-z]+ .*)", run("--help").stdout))
        german = set(re.findall(r"  ([A-Z][a-z]+ .*)", run("--help", "--lang", "de").stdout))
        self.assertGreater(len(english), 10)
        self.assertEqual(english & german, set())

    def test_wrong_use_gives_one_line(self):
        path = self.file(drawing(line()))
        self.assert_wrong("FILE is missing")
        self.assert_wrong("FILE is missing", "")
        self.assert_wrong("--no-such: no such option", "--no-such", path)
        self.assert_wrong("b.dxf: one drawing at a time", path, "b.dxf")
        for option in ("--svg", "--dxf", "--json", "--csv", "--text", "--transform", "--fillet", "--lang"):
            self.assert_wrong(f"{option}: needs one value", path, option)
        for option in ("--svg", "--dxf", "--json", "--csv", "--text"):
            self.assert_wrong(f"{option}: needs one value", path, option, "")
            self.assert_wrong(f"{option}: needs one value", path, option, "a", option, "b")
        self.assert_wrong("--fillet and --chamfer exclude each other", path, "--fillet", 1, "--chamfer", 1)
        self.assert_wrong("--quiet and --verbose exclude each other", path, "-q", "-v")
        self.assert_wrong('--passes: "1e9" is not a whole number', path, "--passes", "1e9")
        self.assert_wrong('--nearest: "nan,1" is not X,Y', path, "--nearest", "nan,1")
        self.assert_wrong('--lang: "fr" is not en or de', path, "--lang", "fr")

    def test_wrong_use_is_told_in_the_language_of_the_user(self):
        path = self.file(drawing(line()))
        self.assert_wrong("Fehler: welche Zeichnung? FILE fehlt", LANG="de_DE.UTF-8")
        self.assert_wrong("Fehler: --no-such: diese Option gibt es nicht", path, "--no-such", "--lang=de")
        self.assert_wrong('Fehler: --fillet: "x" ist nicht eine Zahl', path, "--fillet", "x", "--lang", "de")

    def test_every_pair_of_options_works(self):
        path = self.file(drawing(polyline([(0, 0, 0), (9, 0, 0), (9, 9, 0)]) + circle(5, 0, 3)))
        options = [("--svg", self.folder / "o.svg"), ("--dxf", self.folder / "o.dxf"), ("--json", self.folder / "o.json"),
                   ("--csv", self.folder / "o.csv"), ("--text", self.folder / "o.txt"), ("--transform", "scale=2"),
                   ("--fillet", 1), ("--chamfer", 1), ("--nearest", "1,2"), ("--passes", 9), ("--lang", "de"), ("-q",), ("-v",)]
        exclusive = ({"--fillet", "--chamfer"}, {"-q", "-v"})
        for i, one in enumerate(options):
            for other in ((), *options[:i]):
                wrong = {one[0], *other[:1]} in exclusive
                self.assertEqual(run(path, *one, *other).returncode, 1 if wrong else 0, (one, other))

    def test_a_result_takes_neither_the_place_of_the_drawing_nor_of_another(self):
        path = self.file(drawing(line()))
        before = path.read_bytes()
        (self.folder / "link.dxf").hardlink_to(path)
        (self.folder / "soft.dxf").symlink_to(path)
        for place in (path, f"{self.folder}/./drawing.dxf", self.folder / "link.dxf", self.folder / "soft.dxf"):
            self.assert_wrong(f"{place}: is the drawing itself", path, "--dxf", place)
        out = self.folder / "out"
        self.assert_wrong("can't hold two results", path, "--svg", out, "--json", f"{self.folder}/./out")
        self.assert_wrong("can't hold two results", path, "--svg", "-", "--json", "-")
        self.assertEqual(path.read_bytes(), before)
        self.report(path, "--svg", "/dev/null", "--json", "/dev/null")  # a device takes anything


class Streams(DrawingTest):
    """The ways into and out of the program as a shell lays them."""

    def shell(self, command, **changes):
        return subprocess.run(["sh", "-c", command, PROGRAM, self.file(drawing(line()))], capture_output=True, text=True,
                              timeout=60, cwd=self.folder, env=environment(**changes))

    def test_a_drawing_from_a_pipe(self):
        for name in ("-", "/dev/stdin"):
            result = self.shell(f'cat "$1" | "$0" {name}')
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertRegex(result.stdout, r"A +LINE +1\n")
        self.assertIn("error: standard input: is empty\n", self.shell('"$0" - </dev/null').stderr)

    def test_a_reader_that_has_seen_enough_leaves_the_files_whole(self):
        sample = SAMPLES / "site-plan.dxf"
        self.assertEqual(self.shell(f'"$0" "{sample}" --svg out.svg | head -n 1').stdout, f"{sample}\n")
        self.assertTrue((self.folder / "out.svg").read_text().endswith("</svg>\n"))

    def test_closed_streams(self):
        result = self.shell('"$0" "$1" --svg out.svg >&-')
        self.assertEqual((result.returncode, result.stderr.count("\n")), (3, 1))
        self.assertTrue((self.folder / "out.svg").read_text().endswith("</svg>\n"))
        for option in ("--svg", "--dxf", "--json", "--csv", "--text"):
            # The report finds no place; it doesn't get into a file that was opened in place of standard output.
            self.assertEqual(self.shell(f'"$0" "$1" {option} all >&- 2>&- <&-').returncode, 0 if option == "--text" else 3)
            self.assertEqual((self.folder / "all").read_text().count("Memory: "), 1 if option == "--text" else 0)
        self.assertIn("error: standard output: ", self.shell('"$0" "$1" --svg - >&-').stderr)

    def test_standard_output_under_another_name(self):
        for command in ('"$0" "$1" --svg /dev/stdout', '"$0" "$1" --svg /dev/stdout | cat',
                        '"$0" "$1" --svg /dev/stdout >out; cat out', '"$0" "$1" --svg out >out; cat out'):
            found = self.shell(command).stdout
            self.assertTrue(found.startswith("<svg ") and found.endswith("</svg>\n"), command)

    def test_the_report_goes_where_it_is_sent(self):
        path = self.file(drawing(line()))
        out = self.folder / "out.txt"
        self.assertEqual(self.report(path, "--text", out), "")
        self.assertEqual(out.read_text(), self.report(path))
        self.assertEqual(self.report(path, "--text", "-"), self.report(path))

    def test_a_bare_environment(self):
        path = self.file(drawing(line()))
        for variables in ({}, {"TMPDIR": "/nowhere"}, {"TERM": ""}):
            result = subprocess.run([PROGRAM, path, "--dxf", "-"], capture_output=True, text=True, timeout=60, env=variables)
            self.assertEqual((result.returncode, result.stderr), (0, ""), variables)

    def test_a_terminal_that_can_do_nothing_gets_plain_lines(self):
        for terminal in ("dumb", ""):
            _, received = run_on_terminal(self.folder / "missing.dxf", TERM=terminal)
            self.assertNotIn("\x1b", received)


class Places(DrawingTest):
    """Where results go when the system is against it."""

    def faulty(self, fault, *arguments):
        return run(*arguments, LD_PRELOAD=FAULTS, FAULT=fault, ASAN_OPTIONS="verify_asan_link_order=0:detect_leaks=0")

    def test_a_killed_program_leaves_nothing(self):
        path = self.file(drawing(line()))
        out = self.folder / "out"
        for option in ("--svg", "--dxf", "--json", "--csv", "--text"):
            self.assertEqual(self.faulty("kill", path, option, out).returncode, -signal.SIGKILL, option)
            self.assertEqual([entry.name for entry in self.folder.iterdir()], [path.name], option)

    def test_a_file_system_without_nameless_files(self):
        # A file that has a name from the start never comes to the place of the other fault.
        path = self.file(drawing(line()))
        out = self.folder / "out"
        for option in ("--svg", "--dxf", "--json", "--csv", "--text"):
            self.assertEqual(self.faulty("nameless kill", path, option, out).returncode, 0, option)
            self.assertGreater(out.stat().st_size, 0)
            umask = os.umask(0o022)
            os.umask(umask)
            self.assertEqual(out.stat().st_mode & 0o777, 0o666 & ~umask)
            out.unlink()
        self.assertEqual(self.faulty("nameless", path, "--svg", self.folder / "nowhere" / "out").returncode, 3)
        self.assertEqual([entry.name for entry in self.folder.iterdir()], [path.name])

    def test_a_place_is_tried_before_the_work(self):
        place = self.folder / "nowhere" / "out.svg"
        result = run(self.folder / "missing.dxf", "--svg", place)
        self.assertEqual(result.returncode, 3)
        self.assertIn(f"error: {place}: ", result.stderr)

    def test_names_of_any_length_and_bytes(self):
        path = self.file(drawing(line()))
        for name in ("x" * 300, "x/" * 3000):
            self.assertEqual(run(name).returncode, 2)
            self.assertEqual(run(path, "--svg", name).returncode, 3)
        odd = os.fsencode(self.folder) + b"/l\xe4tin.dxf"
        os.rename(path, odd)
        result = subprocess.run([PROGRAM, odd, "--json", "-"], capture_output=True, timeout=60, env=environment())
        self.assertTrue(json.loads(result.stdout)["file"].endswith("/l\xe4tin.dxf"))

    def test_a_file_beyond_the_limit_is_told(self):
        path = self.file(drawing(line() * 50))
        for option in ("--svg", "--dxf", "--json"):
            command = f'ulimit -f 1; exec "$0" "$1" {option} out'
            result = subprocess.run(["sh", "-c", command, PROGRAM, path], capture_output=True, text=True, timeout=60,
                                    cwd=self.folder, env=environment())
            self.assertEqual((result.returncode, result.stderr.count("\n")), (3, 1), option)
        self.assertEqual([entry.name for entry in self.folder.iterdir()], [path.name])

    def test_a_full_device_is_told(self):
        path = self.file(drawing(line()))
        for option in ("--svg", "--dxf", "--json", "--csv", "--text"):
            result = run(path, option, "/dev/full")
            self.assertEqual((result.returncode, result.stderr.count("\n")), (3, 1), option)


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
        self.assertIn("error: ", run(path, LANG="de_DE.UTF-8", LC_ALL="C").stderr)
        self.assertIn("error: ", run(path, LANG="de_DE.UTF-8", LC_MESSAGES="en_GB.UTF-8").stderr)
        self.assertIn("Fehler: ", run(path, LANG="C", LC_ALL="de_DE.UTF-8", LC_MESSAGES="C").stderr)

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

    def interrupted(self, presses):
        """Presses Ctrl-C once the bar stands: exit status and what the terminal got."""
        terminal, end = open_terminal()
        with subprocess.Popen([PROGRAM, SAMPLES / "site-plan.dxf"], stdout=subprocess.DEVNULL, stderr=end,
                              env=environment()) as process:
            os.close(end)
            received = os.read(terminal, 4096)
            for _ in range(presses):
                process.send_signal(signal.SIGINT)
                time.sleep(0.002)
            try:
                while portion := os.read(terminal, 4096):
                    received += portion
            except OSError:
                pass
            os.close(terminal)
        return process.returncode, received.decode()

    def test_ctrl_c_asks_for_a_break(self):
        status, received = self.interrupted(1)
        self.assertEqual(status, 130)
        self.assertRegex(received, r"stopped on request while [a-z]+, \d+ elements done")

    def test_ctrl_c_twice_ends_the_program(self):
        status, _ = self.interrupted(2)
        self.assertIn(status, (-signal.SIGINT, 130))  # 130 where the break was quicker than the second press

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
