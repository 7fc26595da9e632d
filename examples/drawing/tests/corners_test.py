#!/usr/bin/env python3
"""Fillets and chamfers."""
import math
import unittest

from program import DrawingTest, drawing, line, polyline, run, segment


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


if __name__ == "__main__":
    unittest.main()
