#!/usr/bin/env python3
"""Crossings, against values worked out otherwise."""
import csv
import json
import math
import random
import time
import unittest

from program import DrawingTest, arc, block, circle, drawing, ellipse, insert, polyline, run, segment


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
        self.assertEqual(self.crossings(ellipse(0, 0, 5, 0, 0.6) + circle(0, 0, 5)),
                         [(-5, 0), (5, 0)])  # touching twice
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
        path = self.file(drawing(insert("B", 10, 0) + segment(0, 1, 20, 1),
                                 block("B", circle(0, 0, 1) + segment(-2, 0, 2, 0))))
        self.report(path, "--json", self.folder / "out.json")
        found = [(one["x"], one["y"], one["first"]["kind"], one["second"]["kind"])
                 for one in json.loads((self.folder / "out.json").read_text())["crossings"]]
        self.assertEqual(sorted(found),
                         [(9, 0, "CIRCLE", "LINE"), (10, 1, "LINE", "CIRCLE"), (11, 0, "CIRCLE", "LINE")])

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
        self.assertIn("crossings of ELLIPSE (A) and ELLIPSE (A) may be missing: the iteration does not settle",
                      result.stderr)
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


if __name__ == "__main__":
    unittest.main()
