#!/usr/bin/env python3
"""What is read and how it is counted, and what is refused."""
import pathlib
import re
import subprocess
import sys
import unittest

from program import SAMPLES, DrawingTest, block, drawing, insert, line, run


class Inventory(DrawingTest):
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


class Samples(DrawingTest):
    def test_the_script_writes_what_ships(self):
        subprocess.run([sys.executable, SAMPLES / "make-samples", self.folder], check=True)
        for path in SAMPLES.glob("*.dxf"):
            self.assertEqual(path.read_bytes(), (self.folder / path.name).read_bytes(), path.name)


if __name__ == "__main__":
    unittest.main()
