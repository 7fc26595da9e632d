"""The sample program as its tests run it, and drawings for it to read.

Each test file takes PROGRAM and FAULTS, a library of faults, before the arguments of unittest."""
import math
import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

PROGRAM = str(pathlib.Path(sys.argv.pop(1)).resolve())
FAULTS = str(pathlib.Path(sys.argv.pop(1)).resolve())
HERE = pathlib.Path(__file__).resolve().parent
SAMPLES = HERE.parent / "samples"

SVG = "{http://www.w3.org/2000/svg}"

HEADER = "0\nSECTION\n2\nHEADER\n0\nENDSEC\n"
FOOTER = "0\nENDSEC\n0\nEOF\n"


def environment(**changes):
    kept = {name: value for name, value in os.environ.items() if not name.startswith("LC_")}
    return {**kept, "LANG": "C", "TERM": "xterm", **changes}


def open_terminal():
    """Both ends of a pseudo-terminal; where the machine has none, the test is skipped."""
    try:
        return pty.openpty()
    except OSError as error:
        raise unittest.SkipTest(f"this machine has no pseudo-terminals: {error}")


def run(*arguments, **changes):
    """The program with standard output and standard error as texts; `changes` go to its environment."""
    return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True, timeout=120,
                          env=environment(**changes))


def run_on_terminal(*arguments, **changes):
    """The same with standard error on a pseudo-terminal: exit status and what the terminal got."""
    terminal, end = open_terminal()
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


def drawing(entities, blocks="", tables=""):
    """A whole drawing text around the groups of entities, blocks and tables."""
    text = HEADER + tables
    if blocks:
        text += "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n"
    return text + "0\nSECTION\n2\nENTITIES\n" + entities + FOOTER


def layers(colours):
    rows = "".join(f"0\nLAYER\n2\n{name}\n70\n0\n62\n{colour}\n6\nCONTINUOUS\n" for name, colour in colours.items())
    return f"0\nSECTION\n2\nTABLES\n0\nTABLE\n2\nLAYER\n70\n{len(colours)}\n{rows}0\nENDTAB\n0\nENDSEC\n"


def line(x1="0.0", layer="A", handle="10"):
    return f"0\nLINE\n5\n{handle}\n8\n{layer}\n10\n{x1}\n20\n0.0\n11\n1.0\n21\n1.0\n"


# Entities by their numbers; `extra` are further groups.

def point(x, y):
    return f"0\nPOINT\n8\nA\n10\n{x}\n20\n{y}\n"


def segment(x1, y1, x2, y2, extra="", layer="A"):
    return f"0\nLINE\n8\n{layer}\n10\n{x1}\n20\n{y1}\n11\n{x2}\n21\n{y2}\n" + extra


def circle(x, y, radius, extra="", layer="A"):
    return f"0\nCIRCLE\n8\n{layer}\n10\n{x}\n20\n{y}\n40\n{radius}\n" + extra


def arc(x, y, radius, start, end, extra="", layer="A"):
    return f"0\nARC\n8\n{layer}\n10\n{x}\n20\n{y}\n40\n{radius}\n50\n{start}\n51\n{end}\n" + extra


def ellipse(x, y, major_x, major_y, ratio, start=0, end=2 * math.pi):
    return (f"0\nELLIPSE\n8\nA\n10\n{x}\n20\n{y}\n11\n{major_x!r}\n21\n{major_y!r}\n40\n{ratio}\n"
            f"41\n{start!r}\n42\n{end!r}\n")


def polyline(vertices, closed=False, extra="", layer="A"):
    groups = "".join(f"10\n{x}\n20\n{y}\n42\n{bulge}\n" for x, y, bulge in vertices)
    return f"0\nLWPOLYLINE\n8\n{layer}\n90\n{len(vertices)}\n70\n{int(closed)}\n" + groups + extra


def label(x, y, text, extra=""):
    return f"0\nTEXT\n8\nA\n10\n{x}\n20\n{y}\n40\n2.5\n1\n{text}\n" + extra


def insert(block, x=0.0, y=0.0, extra="", layer="A"):
    return f"0\nINSERT\n8\n{layer}\n2\n{block}\n10\n{x}\n20\n{y}\n" + extra


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

    def report(self, path, *options, **changes):
        result = run(path, *options, **changes)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout

    def extents(self, path, *options):
        """{kind: [left, bottom, right, top] exact, the same sampled, the box on the grid}."""
        found = {}
        for name, *corners in re.findall(r"    (\S+) +exact \((\S+), (\S+)\) \((\S+), (\S+)\)  sampled "
                                         r"\((\S+), (\S+)\) \((\S+), (\S+)\)  on the grid (\S+) (\S+) (\S+) (\S+)\n",
                                         self.report(path, *options)):
            values = [float(corner) for corner in corners]
            found[name] = values[:4], values[4:8], values[8:]
        return found

    def lengths(self, path, *options):
        """{layer: length}; "all layers" among them."""
        rows = re.findall(r"    (\S+(?= +RGB)|all layers) +(?:RGB\(\d+,\d+,\d+\))? +(\S+)\n",
                          self.report(path, *options))
        return {layer: float(length) for layer, length in rows}

    def svg(self, path, *options):
        """The picture as a tree of elements."""
        out = self.folder / "out.svg"
        self.report(path, "--svg", out, *options)
        return xml.etree.ElementTree.parse(out).getroot()

    def paths(self, path, *options):
        """[(colour, path)] of the curves in the picture."""
        return [(element.get("stroke"), element.get("d")) for element in self.svg(path, *options).iter(SVG + "path")]

    def assert_refused(self, path, fault):
        """One clear line on standard error, nothing on standard output, exit status 2."""
        result = run(path)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertIn(str(path), result.stderr)
        self.assertIn(fault, result.stderr)
        self.assertEqual(result.returncode, 2)
