#!/usr/bin/env python3
"""Tests that an archive of a corpus keeps its inputs, and that the fuzzers start from the pieces of the other tests."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import corpus

INPUTS = {b"", b"\0", b"te(60)\n", b"te(60)", bytes(range(256)) * 40}


class CorpusTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = Path(temporary.name)

    def corpus(self, *arguments):
        command = [sys.executable, "-B", corpus.__file__, *arguments]
        return subprocess.run(command, cwd=self.root, capture_output=True, text=True, check=False)

    def write(self, folder, inputs, date):
        (self.root / folder).mkdir()
        for number, data in enumerate(inputs):
            path = self.root / folder / f"input {number}"
            path.write_bytes(data)
            os.utime(path, (date, date))

    def read(self, folder):
        return sorted(path.read_bytes() for path in (self.root / folder).iterdir())

    def test_what_is_packed_comes_out_again(self):
        self.write("in", INPUTS, 0)
        self.assertEqual(self.corpus("pack", "a.tar.xz", "in").returncode, 0)
        self.write("out", [b"an input of before"], 0)
        self.assertEqual(self.corpus("unpack", "a.tar.xz", "out").returncode, 0)
        self.assertEqual(self.read("out"), sorted(INPUTS))

    def test_the_same_inputs_give_the_same_archive(self):
        self.write("a", sorted(INPUTS), 1)
        self.write("b", [*sorted(INPUTS, reverse=True), b"te(60)"], 1000000000)
        for name in ("a", "b"):
            self.corpus("pack", f"{name}.tar.xz", name)
        self.assertEqual((self.root / "a.tar.xz").read_bytes(), (self.root / "b.tar.xz").read_bytes())

    def test_without_an_archive_there_are_no_inputs(self):
        self.assertEqual(self.corpus("unpack", "none.tar.xz", "out").returncode, 0)
        self.assertEqual(self.read("out"), [])

    def test_every_kept_archive_can_be_read(self):
        archives = sorted((corpus.TESTS / "fuzz/corpus").glob("*.tar.xz"))
        self.assertEqual(len(archives), 5)
        for archive in archives:
            inputs = corpus.read_archive(archive)
            self.assertGreater(len(inputs), 10, archive)
            self.assertEqual(inputs, sorted(set(inputs)), archive)

    def test_seeds_are_the_pieces(self):
        self.assertEqual(self.corpus("seeds", "seeds").returncode, 0)
        seeds = self.read("seeds")
        self.assertEqual(seeds, sorted(set(seeds)))
        self.assertLessEqual(max(map(len, seeds)), corpus.LONGEST_SEED)
        self.assertIn((corpus.EXAMPLES / "first/piece.txt").read_bytes(), seeds)
        self.assertIn(b"te(1#include |piece.sco|20)\ni1 = 3 0 -1 {p2 1 p3 1}\n", seeds)  # of runs/regressions.txt

    def test_another_word_is_told_what_there_is(self):
        self.assertIn("corpus.py unpack ARCHIVE FOLDER", self.corpus("list").stderr)


if __name__ == "__main__":
    unittest.main(verbosity=0)
