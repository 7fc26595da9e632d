#!/usr/bin/env python3
"""Options, streams and messages, in both languages."""
import re
import socket
import subprocess
import unittest

from program import (PROGRAM, SAMPLES, DrawingTest, block, circle, drawing, environment, insert, line, polyline, run,
                     run_on_terminal)


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
            # A value that isn't there is not the next word.
            for words in ((f"{option}=", path), (option, "--quiet", path), (option, "-v", path), (option, "--", path)):
                self.assert_wrong(f"{option}: needs one value", *words)
        self.assert_wrong("--verbose: takes no value", path, "--verbose=x")
        self.assert_wrong("--quiet: takes no value", path, "--quiet=")
        self.assert_wrong("-: one drawing at a time", "-", "-")
        self.assertEqual([entry.name for entry in self.folder.iterdir()], [path.name])
        self.assert_wrong("--fillet and --chamfer exclude each other", path, "--fillet", 1, "--chamfer", 1)
        self.assert_wrong("--quiet and --verbose exclude each other", path, "-q", "-v")
        self.assert_wrong('--passes: "1e9" is not a whole number', path, "--passes", "1e9")
        self.assert_wrong('--nearest: "nan,1" is not X,Y', path, "--nearest", "nan,1")
        self.assert_wrong('--nearest: "0,-2e15" is not a place of up to 1e15', path, "--nearest", "0,-2e15")
        self.assert_wrong('--lang: "fr" is not en or de', path, "--lang", "fr")

    def test_wrong_use_is_told_in_the_language_of_the_user(self):
        path = self.file(drawing(line()))
        self.assert_wrong("Fehler: welche Zeichnung? FILE fehlt", LANG="de_DE.UTF-8")
        self.assert_wrong("Fehler: --no-such: diese Option gibt es nicht", path, "--no-such", "--lang=de")
        self.assert_wrong('Fehler: --fillet: "x" ist nicht eine Zahl', path, "--fillet", "x", "--lang", "de")

    def test_every_pair_of_options_works(self):
        path = self.file(drawing(polyline([(0, 0, 0), (9, 0, 0), (9, 9, 0)]) + circle(5, 0, 3)))
        options = [("--svg", self.folder / "o.svg"), ("--dxf", self.folder / "o.dxf"),
                   ("--json", self.folder / "o.json"),
                   ("--csv", self.folder / "o.csv"), ("--text", self.folder / "o.txt"), ("--transform", "scale=2"),
                   ("--fillet", 1), ("--chamfer", 1), ("--nearest", "1,2"), ("--passes", 9), ("--lang", "de"),
                   ("-q",), ("-v",)]
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
        return subprocess.run(["sh", "-c", command, PROGRAM, self.file(drawing(line()))], capture_output=True,
                              text=True, timeout=60, cwd=self.folder, env=environment(**changes))

    def test_a_drawing_from_a_pipe(self):
        for name in ("-", "/dev/stdin"):
            result = self.shell(f'cat "$1" | "$0" {name}')
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertRegex(result.stdout, r"A +LINE +1\n")
        self.assertIn("error: standard input: is empty\n", self.shell('"$0" - </dev/null').stderr)
        # from where another program has left off
        result = self.shell('{ dd bs=1 count=2 status=none >&2; "$0" -; } <"$1"')
        self.assertIn("error: standard input: is not a DXF drawing\n", result.stderr)

    def test_a_drawing_from_a_socket(self):
        ours, theirs = socket.socketpair()
        with subprocess.Popen([PROGRAM, "-"], stdin=theirs, stdout=subprocess.PIPE, text=True,
                              env=environment()) as process:
            theirs.close()
            ours.sendall(drawing(line()).encode())
            ours.close()
            self.assertRegex(process.communicate(timeout=60)[0], r"A +LINE +1\n")

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
            self.assertEqual(self.shell(f'"$0" "$1" {option} all >&- 2>&- <&-').returncode,
                             0 if option == "--text" else 3)
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
            result = subprocess.run([PROGRAM, path, "--dxf", "-"], capture_output=True, text=True, timeout=60,
                                    env=variables)
            self.assertEqual((result.returncode, result.stderr), (0, ""), variables)

    def test_a_terminal_that_can_do_nothing_gets_plain_lines(self):
        for terminal in ("dumb", ""):
            _, received = run_on_terminal(self.folder / "missing.dxf", TERM=terminal)
            self.assertNotIn("\x1b", received)


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


if __name__ == "__main__":
    unittest.main()
