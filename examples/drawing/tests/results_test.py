#!/usr/bin/env python3
"""The files written: drawings, tables, pictures, and what becomes of them when the system is against it."""
import csv
import json
import math
import os
import re
import signal
import subprocess
import unittest

from program import (FAULTS, HERE, PROGRAM, SAMPLES, SVG, DrawingTest, arc, block, circle, drawing, ellipse,
                     environment, insert, label, layers, line, point, polyline, run, segment)


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
        found = {path[path.index("L"):]: colour
                 for colour, path in self.paths(self.file(drawing(entities, blocks, table)))}
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
        root = self.svg(self.file(drawing(label(1, 2, "m", "72\n1\n11\n5\n21\n6\n") +
                                          label(1, 2, "e", "72\n2\n11\n7\n21\n8\n"))))
        texts = [(element.text, element.get("text-anchor"), element.get("transform"))
                 for element in root.iter(SVG + "text")]
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


class Places(DrawingTest):
    """Where results go when the system is against it."""

    def faulty(self, fault, *arguments, **changes):
        return run(*arguments, LD_PRELOAD=FAULTS, FAULT=fault, ASAN_OPTIONS="verify_asan_link_order=0:detect_leaks=0",
                   **changes)

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

    def test_an_end_of_the_memory_is_told(self):
        # The library asks for a page at a time; a program that has all its pages does all its work.
        sample = SAMPLES / "bracket.dxf"
        whole = self.report(sample).split("Memory: ")[0]
        out = self.folder / "out.json"
        statuses = []
        for pages in range(30):
            result = self.faulty("memory", sample, "--json", out, MEMORY=str(pages))
            statuses.append(result.returncode)
            if result.returncode == 0:
                self.assertEqual((result.stdout.split("Memory: ")[0], result.stderr), (whole, ""), pages)
            else:
                self.assertEqual((result.returncode, result.stderr.count("\n")), (2, 1), (pages, result.stderr))
                self.assertIn("is too large for the memory\n", result.stderr)
        self.assertEqual(statuses, sorted(statuses, reverse=True))
        self.assertEqual(set(statuses), {0, 2})

    def test_a_file_that_must_not_be_written_stays(self):
        out = self.folder / "out"
        out.write_text("old")
        out.chmod(0o444)
        self.folder.chmod(0o777)
        user = {"user": 65534} if os.geteuid() == 0 else {}  # nothing is forbidden to root
        for option in ("--svg", "--dxf", "--json", "--csv", "--text"):
            try:
                # before the work: the drawing that isn't there is never looked for
                result = subprocess.run([PROGRAM, self.folder / "missing", option, out], capture_output=True, text=True,
                                        timeout=60, env=environment(), **user)
            except PermissionError as error:
                self.skipTest(f"another user can't run the program: {error}")
            self.assertEqual((result.returncode, result.stderr),
                             (3, f"kartory-drawing: error: {out}: Permission denied\n"), option)
        self.assertEqual(out.read_text(), "old")
        self.assertEqual(sorted(entry.name for entry in self.folder.iterdir()), ["out"])

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


if __name__ == "__main__":
    unittest.main()
