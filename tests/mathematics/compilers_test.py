#!/usr/bin/env python3
"""The functions of base/mathematics.h give the same bits whoever compiles them and however hard the compiler tries, and
the switches that would change them are refused.

    compilers_test.py KORVO_VALUES
"""

import platform
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
SOURCES = [ROOT / "tests/mathematics/values.cc", ROOT / "src/base/mathematics.cc"]
VALUES = None

SWITCHES = ["-O0", "-O2", "-Os", "-O3 -march=native"]
REFUSED = ["-O2 -ffast-math"] + (["-O2 -mfpmath=387"] if platform.machine() == "x86_64" else [])


def compilers():
    """Every compiler with the C++ libraries it has."""
    found = [[name] for name in ("g++", "clang++") if shutil.which(name)]
    with_libcxx = ["clang++", "-stdlib=libc++"]
    probe = [*with_libcxx, "-x", "c++", "-std=c++20", "-include", "version", "-fsyntax-only", "/dev/null"]
    if ["clang++"] in found and subprocess.run(probe, capture_output=True).returncode == 0:
        found.append(with_libcxx)
    return found


def build(compiler, switches, program):
    """Compiles as the project does; what the compiler says when it fails, else nothing."""
    options = ["-std=c++20", "-ffp-contract=off", *switches.split(), f"-I{ROOT / 'src'}"]
    done = subprocess.run([*compiler, *options, *SOURCES, "-o", program], capture_output=True, text=True)
    return done.stderr if done.returncode != 0 else ""


def digests(program):
    return subprocess.run([program, "--digest"], check=True, capture_output=True, text=True).stdout


class Compilers(unittest.TestCase):
    def test_give_the_same_bits(self):
        expected = digests(VALUES)
        self.assertEqual(len(set(expected.split())), 12, "six functions, each with a number of its own")
        with tempfile.TemporaryDirectory(prefix="korvo-") as folder:
            program = Path(folder, "values")
            for compiler in compilers():
                for switches in SWITCHES:
                    with self.subTest(compiler=" ".join(compiler), switches=switches):
                        self.assertEqual(build(compiler, switches, program), "")
                        self.assertEqual(digests(program), expected)

    def test_refuse_what_would_change_them(self):
        with tempfile.TemporaryDirectory(prefix="korvo-") as folder:
            for switches in REFUSED:
                with self.subTest(switches=switches):
                    self.assertIn("changes digits of scores", build(compilers()[0], switches, Path(folder, "values")))


if __name__ == "__main__":
    VALUES = sys.argv.pop(1)
    unittest.main()
