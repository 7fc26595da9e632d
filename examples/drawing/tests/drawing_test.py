#!/usr/bin/env python3
"""Runs the sample program as a user would: drawing_test.py PROGRAM [unittest arguments]."""
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

PROGRAM = sys.argv.pop(1)
HERE = pathlib.Path(__file__).resolve().parent
SAMPLES = HERE.parent / "samples"

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


def drawing(entities, blocks=""):
    """A whole drawing text around the groups of entities and blocks."""
    text = HEADER
    if blocks:
        text += "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n"
    return text + "0\nSECTION\n2\nENTITIES\n" + entities + FOOTER


def line(x1="0.0", layer="A", handle="10"):
    return f"0\nLINE\n5\n{handle}\n8\n{layer}\n10\n{x1}\n20\n0.0\n11\n1.0\n21\n1.0\n"


def insert(block):
    return f"0\nINSERT\n8\nA\n2\n{block}\n10\n0.0\n20\n0.0\n"


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

    def counts(self, path):
        """The inventory as {(layer, kind): count}."""
        result = run(path)
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.returncode, 0)
        rows = {}
        for row in result.stdout.splitlines():
            if row.startswith("  "):
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
        result = run(self.file(drawing(line() + line())), KARTORY_DRAWING_BREAK_AT="3")
        self.assertEqual(result.returncode, 130)
        self.assertIn("while sorting, 0 elements done", result.stderr)
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
