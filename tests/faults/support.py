"""What the fault tests share: a folder of their own, and runs of the program in it."""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

KORVO = None  # set by main()

# What a build that counts its lines says when it cannot write the counts.
NOT_COUNTED = re.compile(rb"(?:libgcov profiling error|profiling):[^\n]*\.gcda:[^\n]*\n")

PIECE = b"i1 = 4 0 4 {\n  p2 1\n  p3 1\n  p4 no c4 d e f\n}\n"
SCORE = (
    b"\n;I-block #1 (i1):"
    b"\ni1    0.000  1.000    48.000 \ni1    1.000  1.000    50.000 "
    b"\ni1    2.000  1.000    52.000 \ni1    3.000  1.000    53.000 \n"
    b"\ne\n"
)


def cannot_open(name):
    return f'\nERROR: Can\'t open "{name}".\n\n'.encode()


def cannot_write(name):
    return f'\nERROR: Can\'t write "{name}".\n\n'.encode()


class FaultTest(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory(prefix="korvo-faults-")
        self.addCleanup(holder.cleanup)
        self.folder = Path(holder.name)
        self.write("piece.txt", PIECE)

    def write(self, name, content):
        (self.folder / name).write_bytes(content)

    def read(self, name):
        return (self.folder / name).read_bytes()

    def run_korvo(self, *arguments, **options):
        """Runs the program in the test's folder; standard output and error are caught."""
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stderr", subprocess.PIPE)
        options.setdefault("stdin", subprocess.DEVNULL)
        result = subprocess.run(
            [KORVO, *map(str, arguments)], cwd=self.folder, timeout=clock.HANG, **options
        )
        if result.stderr is not None:
            result.stderr = NOT_COUNTED.sub(b"", result.stderr)
        return result


def main():
    """Takes the path of the program off the command line and runs the tests of the file."""
    global KORVO
    KORVO = os.path.abspath(sys.argv.pop(1))
    sys.modules["support"].KORVO = KORVO
    unittest.main(module="__main__")
