#!/usr/bin/env python3
"""Breaks and the bar of progress."""
import os
import pathlib
import re
import signal
import subprocess
import time
import unittest

from program import PROGRAM, SAMPLES, DrawingTest, drawing, environment, line, open_terminal, run, run_on_terminal


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

    def wait_until_it_sleeps(self, process):
        """Until the program catches Ctrl-C and waits for something."""
        caught = 1 << (signal.SIGINT - 1)
        end = time.monotonic() + 60
        while time.monotonic() < end:
            status = pathlib.Path(f"/proc/{process.pid}/status").read_text()
            if "State:\tS" in status and int(re.search(r"SigCgt:\s+(\w+)", status)[1], 16) & caught:
                return
            time.sleep(0.02)

    def test_ctrl_c_ends_the_wait_for_a_drawing(self):
        pipe = self.folder / "pipe"
        os.mkfifo(pipe)
        for name, fed in (("-", b""), ("-", b"0\nSECTION\n"), (pipe, b"")):
            with self.subTest(name=name, fed=fed), \
                    subprocess.Popen([PROGRAM, name], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                     stderr=subprocess.PIPE, env=environment()) as process:
                process.stdin.write(fed)
                process.stdin.flush()
                self.wait_until_it_sleeps(process)
                process.send_signal(signal.SIGINT)
                self.assertEqual(process.wait(60), 130)
                self.assertIn(b"stopped on request while reading, 0 elements done\n", process.stderr.read())

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


if __name__ == "__main__":
    unittest.main()
