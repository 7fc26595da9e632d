#!/usr/bin/env python3
"""Runs the gallery as a user would: gallery_test.py PROGRAM [unittest arguments]."""
import math
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

PROGRAM = sys.argv.pop(1)
SVG = "{http://www.w3.org/2000/svg}"
RESULT = "#d00000"

# Pictures and how many points they report; the others show curves.
POINTS = {"line-line": 1, "line-arc": 2, "line-ellipse": 2, "line-elliptical-arc": 1, "arc-arc": 2,
          "ellipse-ellipse": 4, "foot-on-line": 1, "feet-on-ellipse": 4, "circle-through-three-points": 1, "mirror": 0,
          "fillet": 0, "chamfer": 0, "extents": 0, "arbitrary-axis": 0, "rotated-rectangle": 0, "colour-wheel": 0}


def run(*arguments):
    return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, timeout=60)


class Gallery(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name) / "pictures"

    def pictures(self):
        result = run(self.folder)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        return {path.stem: xml.etree.ElementTree.parse(path).getroot() for path in self.folder.iterdir()}

    @staticmethod
    def points(root, colour=RESULT):
        return [(float(point.get("cx")), -float(point.get("cy"))) for point in root.iter(SVG + "circle")
                if point.get("fill") == colour]

    def test_one_picture_for_each_operation(self):
        pictures = self.pictures()
        self.assertEqual({name: len(self.points(root)) for name, root in pictures.items()}, POINTS)
        for name, root in pictures.items():
            drawn = [path for path in root.iter(SVG + "path") if path.get("stroke") == RESULT]
            self.assertTrue(drawn or POINTS[name] or name == "colour-wheel", name)
        self.assertEqual(len(list(pictures["colour-wheel"].iter(SVG + "path"))), 255)

    def test_the_page_shows_every_picture_once(self):
        page = (pathlib.Path(__file__).resolve().parents[3] / "docs" / "gallery.md").read_text()
        self.assertEqual(sorted(re.findall(r"^\\image html (.+)\.svg$", page, re.MULTILINE)), sorted(POINTS))

    def test_points_are_where_they_belong(self):
        pictures = self.pictures()
        # (-8, -4) + 16s, 9s meets (-6, 5) + 11t, -10t at s = 119 / 259.
        (x, y), = self.points(pictures["line-line"])
        self.assertAlmostEqual(x, -8 + 16 * 119 / 259, 4)
        self.assertAlmostEqual(y, -4 + 9 * 119 / 259, 4)
        # Radii 5 and 4 at distance 5: x = (25 - 16 + 25) / 10 from the first centre.
        for x, y in self.points(pictures["arc-arc"]):
            self.assertAlmostEqual(x, 3.4 - 2.5, 4)
            self.assertAlmostEqual(abs(y), math.sqrt(25 - 3.4 * 3.4), 4)
        # The perpendicular from (-2, 5) on the line from (-8, -4) in the direction (16, 6).
        (x, y), = self.points(pictures["foot-on-line"])
        self.assertAlmostEqual((x + 2) * 16 + (y - 5) * 6, 0, 2)
        self.assertAlmostEqual((x + 8) * 6 - (y + 4) * 16, 0, 2)
        (x, y), = self.points(pictures["circle-through-three-points"])
        for p in ((0, 5.5), (4, -3)):
            self.assertAlmostEqual(math.dist((x, y), p), math.dist((x, y), (-5, 1)), 3)

    def test_help_names_the_folder(self):
        for option in ("-h", "--help"):
            result = run(option)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertIn("Usage: kartory-gallery FOLDER\n", result.stdout)

    def test_misuse_and_a_folder_that_cannot_be_written(self):
        for arguments in ((), ("--colour",), ("--help", "a"), ("a", "b")):
            result = run(*arguments)
            self.assertEqual((result.returncode, result.stderr), (1, "usage: kartory-gallery FOLDER\n"))
        file = self.folder.parent / "file"
        file.write_text("")
        result = run(file)
        self.assertEqual((result.returncode, result.stderr.count("\n")), (3, 1))
        self.assertIn(str(file), result.stderr)


if __name__ == "__main__":
    unittest.main()
