#!/usr/bin/env python3
"""Feet of perpendiculars."""
import json
import math
import random
import unittest

from program import DrawingTest, circle, drawing, ellipse, line, run, segment


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


if __name__ == "__main__":
    unittest.main()
