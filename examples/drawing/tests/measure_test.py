#!/usr/bin/env python3
"""Extents, lengths and transformations."""
import math
import unittest

from program import DrawingTest, arc, block, circle, drawing, ellipse, insert, point, polyline, run, segment


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
        # Half width sqrt(a^2 cos^2 + b^2 sin^2) with a = 5, b = 3, 30 degrees, half height with sine and
        # cosine exchanged.
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


if __name__ == "__main__":
    unittest.main()
