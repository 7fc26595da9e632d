#!/usr/bin/env python3
"""Runs many drawings as a user would: batch_test.py PROGRAM [unittest arguments]."""
import csv
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = pathlib.Path(sys.argv.pop(1)).resolve()
HERE = pathlib.Path(__file__).resolve().parent
BATCH = HERE.parents[2] / "scripts" / "batch"
SAMPLE = HERE.parent / "samples" / "bracket.dxf"

ODD_NAMES = ["a b.dxf", " leads.dxf", "trails .dxf", "q'uote.dxf", 'q"uotes.dxf', "$HOME.dxf", "`id`.dxf", "-dash.dxf",
             "tab\tx.dxf", "back\\slash.dxf", "{}.dxf", "star*[?].dxf", "co:lon.dxf", "#hash.dxf", "UPPER.DXF", "ä.dxf",
             "sub folder/x'y/c;d&e.dxf", b"l\xe4tin.dxf".decode(errors="surrogateescape")]
FAULTS = {"empty.dxf": (b"", "is empty"), "no drawing.dxf": (b"1\n2\n", "is not a DXF drawing"),
          "ends early.dxf": (b"0\nSECTION\n2\nHEADER\n0\n", "ends early: no EOF behind line 5")}
RESULTS = (".svg", ".json", ".txt")

# Stands in for the program: notes each start and end, and takes a while.
SLOW = """#!/bin/sh
for drawing; do :; done
echo "start $drawing" >>'{notes}'
sleep 0.2
'{program}' "$@"
status=$?
echo "end $drawing" >>'{notes}'
exit $status
"""

# Stands in for ssh: another home, nothing of this environment.
SSH = """#!/bin/sh
while :; do
    case $1 in
    -[lopSOFc]) shift 2 ;;
    -*) shift ;;
    *) break ;;
    esac
done
home='{folder}'/home-$1
shift
[ "$1" != -- ] || shift
mkdir -p "$home"
cd "$home"
exec env -i PATH="{programs}:$PATH" HOME="$home" SHELL=/bin/sh LANG=C.UTF-8 /bin/sh -c "$*"
"""


@unittest.skipUnless(shutil.which("parallel"), "GNU parallel is not installed: scripts/setup batch")
class BatchTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.drawings = self.folder / "draw ings'"
        self.out = self.folder / "out $x"
        self.drawings.mkdir()
        self.notes = self.folder / "notes"

    def script(self, name, text):
        path = self.folder / name
        path.write_text(text)
        path.chmod(0o755)
        return path

    def add(self, *names):
        for name in names:
            path = self.drawings / name
            path.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(SAMPLE, path)

    def add_faults(self):
        for name, (content, _) in FAULTS.items():
            (self.drawings / name).write_bytes(content)

    def command(self, *options, program=PROGRAM):
        program_options = ()
        if "--" in options:
            at = options.index("--")
            options, program_options = options[:at], options[at:]
        return [BATCH, "--out", self.out, "--program", program, *options, self.drawings, *program_options]

    def environment(self):
        kept = {name: value for name, value in os.environ.items() if not name.startswith(("LC_", "PARALLEL"))}
        return {**kept, "LANG": "C.UTF-8", "HOME": str(self.folder)}

    def run_batch(self, *options, **changes):
        return subprocess.run(list(map(str, self.command(*options, **changes))), capture_output=True, text=True,
                              errors="surrogateescape", timeout=120, env=self.environment())

    def results(self):
        found = (path.relative_to(self.out) for path in self.out.rglob("*") if path.is_file())
        return {str(path) for path in found if path.parts[0] != ".batch"}

    def assert_done(self, names):
        self.assertEqual(self.results(), {name + kind for name in names for kind in RESULTS})
        for name in names:
            self.assertTrue((self.out / (name + ".svg")).read_text().endswith("</svg>\n"), name)
            self.assertEqual(json.loads((self.out / (name + ".json")).read_text())["entities"], 12, name)
            self.assertIn("Crossings: ", (self.out / (name + ".txt")).read_text(errors="replace"), name)

    def counts(self, kind):
        """{drawing: how often the stand-in noted it}."""
        found = {}
        for row in self.notes.read_text().splitlines() if self.notes.exists() else ():
            if row.startswith(kind + " "):
                name = str(pathlib.Path(row[len(kind) + 1:]).relative_to(self.drawings))
                found[name] = found.get(name, 0) + 1
        return found

    def slow(self):
        return self.script("slow", SLOW.format(notes=self.notes, program=PROGRAM))


class Local(BatchTest):
    def test_drawings_of_any_name_are_done_and_failures_listed(self):
        self.add(*ODD_NAMES)
        self.add_faults()
        result = self.run_batch()
        self.assertEqual((result.returncode, result.stderr), (1, ""))
        self.assert_done(ODD_NAMES)
        rows = result.stdout.splitlines()
        self.assertEqual(rows[0], f"{len(ODD_NAMES) + 3} drawings: {len(ODD_NAMES)} done, 3 failed")
        self.assertEqual(rows[1:4], [f"    {name}: {fault}" for name, (_, fault) in sorted(FAULTS.items())])
        self.assertEqual(rows[4:], [f"Results: {self.out}"])

    def test_all_done_is_success(self):
        self.add("a.dxf")
        result = self.run_batch()
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (0, f"1 drawing: 1 done, 0 failed\nResults: {self.out}\n", ""))

    def test_what_is_no_drawing_is_left_alone(self):
        self.add("a.dxf", "b.txt", "c.dxf.bak")
        (self.drawings / "folder.dxf").mkdir()
        self.assertEqual(self.run_batch().returncode, 0)
        self.assert_done(["a.dxf"])

    def test_done_drawings_stay_failures_are_tried_again_and_new_ones_join(self):
        self.add("b.dxf", "d.dxf")
        self.add_faults()
        program = self.slow()
        self.assertEqual(self.run_batch(program=program).returncode, 1)
        self.add("empty.dxf", "a.dxf", "c.dxf")
        result = self.run_batch(program=program)
        self.assertEqual(result.returncode, 1)
        self.assertIn("7 drawings: 5 done, 2 failed\n", result.stdout)
        self.assertEqual(self.counts("start"), {"a.dxf": 1, "b.dxf": 1, "c.dxf": 1, "d.dxf": 1, "empty.dxf": 2,
                                                "no drawing.dxf": 2, "ends early.dxf": 2})
        self.assert_done(["a.dxf", "b.dxf", "c.dxf", "d.dxf", "empty.dxf"])

    def test_a_result_that_is_gone_is_made_again(self):
        self.add("a.dxf", "b.dxf")
        program = self.slow()
        self.run_batch(program=program)
        (self.out / "b.dxf.json").unlink()
        self.assertEqual(self.run_batch(program=program).returncode, 0)
        self.assertEqual(self.counts("start"), {"a.dxf": 1, "b.dxf": 2})
        self.assert_done(["a.dxf", "b.dxf"])

    def interrupted(self, *signals):
        """Ends the run in its middle: its exit status and what it told."""
        command = list(map(str, self.command("--jobs", "2", program=self.slow())))
        with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                              env=self.environment()) as process:
            end = time.monotonic() + 60
            while len(self.counts("end")) < 3 and time.monotonic() < end:
                time.sleep(0.02)
            for which in signals:
                children = pathlib.Path(f"/proc/{process.pid}/task/{process.pid}/children").read_text().split()
                process.send_signal(which)
                if which == signal.SIGKILL:     # after the script, which would otherwise tell of their end
                    for child in children:
                        os.kill(int(child), which)
                time.sleep(0.05)
            told = process.communicate(timeout=60)
        return process.returncode, told

    def go_on(self):
        for _ in range(200):
            result = self.run_batch(program=self.slow())
            if result.returncode != 2:
                break
            self.assertIn("another run writes there", result.stderr)
            time.sleep(0.05)
        return result.returncode, result.stdout.splitlines()[0]

    def assert_whole(self):
        """What is there is whole."""
        for name in self.results():
            text = (self.out / name).read_text()
            end = {".svg": "</svg>\n", ".json": "}\n", ".txt": "at most\n"}[pathlib.Path(name).suffix]
            self.assertTrue(text.endswith(end), name)

    def test_an_interrupted_run_goes_on_with_none_done_twice_and_none_lost(self):
        names = [f"{i:02}.dxf" for i in range(12)]
        self.add(*names)
        for which in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(which=which):
                shutil.rmtree(self.out, ignore_errors=True)
                self.notes.unlink(missing_ok=True)
                status, (told, error) = self.interrupted(which)
                self.assertEqual(status, 130, error)
                done = self.counts("end")
                self.assertEqual(told.splitlines()[0],
                                 f"12 drawings: {len(done)} done, 0 failed, {12 - len(done)} left")
                self.assertIn("batch: interrupted; the same command goes on\n", error)
                self.assertLess(len(done), 12)
                self.assertEqual(self.counts("start"), done)
                self.assert_done(done)
                self.assertEqual(self.go_on(), (0, "12 drawings: 12 done, 0 failed"))
                self.assertEqual(self.counts("start"), {name: 1 for name in names})
                self.assert_done(names)

    def test_a_second_interruption_ends_the_drawings_under_way(self):
        names = [f"{i:02}.dxf" for i in range(12)]
        self.add(*names)
        status, (told, error) = self.interrupted(signal.SIGINT, signal.SIGINT)
        self.assertEqual(status, 130, error)
        self.assert_whole()
        self.assertEqual(self.go_on(), (0, "12 drawings: 12 done, 0 failed"))
        self.assertLessEqual(sum(self.counts("start").values()), 14)
        self.assert_done(names)

    def test_a_run_that_is_killed_goes_on(self):
        names = [f"{i:02}.dxf" for i in range(12)]
        self.add(*names)
        status, _ = self.interrupted(signal.SIGKILL)
        self.assertEqual(status, -signal.SIGKILL)
        self.assert_whole()
        self.assertEqual(self.go_on(), (0, "12 drawings: 12 done, 0 failed"))
        self.assertLessEqual(sum(self.counts("start").values()), 14)  # two were under way with nobody left to note them
        self.assert_done(names)

    def test_a_drawing_that_is_killed_or_takes_too_long_fails(self):
        self.add("a.dxf", "b.dxf")
        shutil.copy(HERE.parent / "samples" / "gear.dxf", self.drawings / "kill.dxf")
        program = self.script("moody", f"""#!/bin/sh
for drawing; do :; done
case $drawing in
*/a.dxf) sleep 60 ;;
*/kill.dxf) kill -KILL $$ ;;
esac
exec '{PROGRAM}' "$@"
""")
        result = self.run_batch("--timeout", "2", program=program)
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stdout, r"^3 drawings: 1 done, 2 failed\n    a.dxf: was ended by signal \d+\n"
                                        r"    kill.dxf: was ended by signal 9\n")
        self.assert_done(["b.dxf"])

    def test_other_drawings_or_options_start_anew_only_when_asked(self):
        self.add("a.dxf")
        self.assertEqual(self.run_batch("--", "--fillet", "2").returncode, 0)
        self.assertEqual(json.loads((self.out / "a.dxf.json").read_text())["fillets"], 0)
        result = self.run_batch("--", "--fillet", "3")
        self.assertEqual((result.returncode, result.stderr.count("\n")), (2, 1))
        self.assertIn("--anew starts over", result.stderr)
        self.assertEqual(self.run_batch("--anew", "--", "--chamfer", "2").returncode, 0)
        self.assertIn("chamfers", json.loads((self.out / "a.dxf.json").read_text()))

    def test_a_drawing_that_fails_now_keeps_no_results(self):
        self.add("a.dxf", "b.dxf")
        self.run_batch()
        (self.drawings / "b.dxf").write_text("")
        result = self.run_batch("--anew")
        self.assertIn("    b.dxf: is empty\n", result.stdout)
        self.assert_done(["a.dxf"])

    def test_wrong_use_gives_one_line(self):
        missing = self.folder / "missing"
        for arguments in ((), ("--no-such",), (missing,), (self.drawings,), (self.drawings, "b"), ("--jobs",)):
            with self.subTest(arguments=arguments):
                result = subprocess.run([BATCH, "--out", self.out, "--program", PROGRAM, *arguments],
                                        capture_output=True, text=True, timeout=60, env=self.environment())
                self.assertEqual((result.returncode, result.stdout, result.stderr.count("\n")), (2, "", 1),
                                 result.stderr)

    def test_a_program_that_is_not_there_is_told(self):
        self.add("a.dxf")
        self.assertIn("    a.dxf: the program is not there\n", self.run_batch(program="no-such-program").stdout)

    def test_help_tells_the_options(self):
        result = subprocess.run([BATCH, "--help"], capture_output=True, text=True, timeout=60)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        for word in ("--out", "--anew", "--jobs", "--timeout", "--sshlogin", "--program", "Exit status"):
            self.assertIn(word, result.stdout)
        self.assertNotIn("#", result.stdout)


class Machines(BatchTest):
    def hosts(self):
        with (self.out / ".batch" / "jobs.log").open(newline="", errors="replace") as file:
            return [row["Host"] for row in csv.DictReader(file, delimiter="\t", quoting=csv.QUOTE_NONE)]

    def test_this_machine_by_name(self):
        self.add(*ODD_NAMES)
        result = self.run_batch("--sshlogin", "1/:")
        self.assertEqual((result.returncode, result.stderr), (0, ""), result.stdout)
        self.assert_done(ODD_NAMES)
        self.assertEqual(set(self.hosts()), {":"})

    @unittest.skipUnless(shutil.which("rsync"), "rsync is not installed: scripts/setup batch")
    def test_drawings_go_to_another_machine_and_results_come_back(self):
        names = ["a b.dxf", "q'uote.dxf", "$HOME.dxf", "{}.dxf", "ä.dxf", "sub folder/x'y/c;d&e.dxf"]
        self.add(*names)
        self.add_faults()
        programs = self.folder / "programs"
        programs.mkdir()
        (programs / "kartory-drawing").symlink_to(PROGRAM)
        ssh = self.script("ssh", SSH.format(folder=self.folder, programs=programs))
        first = f"2/{ssh} far"
        self.assertEqual(self.run_batch("--sshlogin", first, program="kartory-drawing").returncode, 1)
        self.assert_done(names)
        self.assertEqual(set(self.hosts()), {f"{ssh} far"})
        self.assertEqual(list((self.folder / "home-far").iterdir()), [])  # nothing stays there
        (self.drawings / "empty.dxf").write_bytes(SAMPLE.read_bytes())
        relative = os.path.join(".", os.path.relpath(PROGRAM))
        result = self.run_batch("--sshlogin", first, "--sshlogin", "1/:", program=relative)
        self.assertIn(f"{len(names) + 3} drawings: {len(names) + 1} done, 2 failed\n", result.stdout)
        self.assert_done([*names, "empty.dxf"])
        for home in (self.folder, self.folder / "home-far"):    # nor here
            self.assertEqual([path for path in home.glob(".parallel/tmp/*") if path.name != "sshlogin"], [])

    @unittest.skipUnless(shutil.which("rsync"), "rsync is not installed: scripts/setup batch")
    def test_a_machine_without_the_program_is_told(self):
        self.add("a.dxf")
        ssh = self.script("ssh", SSH.format(folder=self.folder, programs=self.folder))
        result = self.run_batch("--sshlogin", f"1/{ssh} far", program="no-such-program")
        self.assertIn(f"    a.dxf: the program is not on {ssh} far\n", result.stdout)
        result = self.run_batch("--sshlogin", "1/:", program="no-such-program")
        self.assertIn("    a.dxf: the program is not there\n", result.stdout)

    def test_a_machine_out_of_reach_is_told(self):
        self.add("a.dxf")
        ssh = self.script("ssh", "#!/bin/sh\nexit 255\n")
        result = self.run_batch("--sshlogin", f"1/{ssh} nowhere")
        self.assertEqual(result.returncode, 1)
        self.assertIn(f"    a.dxf: {ssh} nowhere could not be reached\n", result.stdout)


if __name__ == "__main__":
    unittest.main()
