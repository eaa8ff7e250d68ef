#!/usr/bin/env python3
"""Tests how the tests measure: clock.py with stand-ins for the program and for the yardstick."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(HERE))

import clock  # noqa: E402


class Runs(unittest.TestCase):
    def test_status_and_streams(self):
        written = []
        ended = clock.run(["sh", "-c", "echo one; echo two >&2; exit 3"], written.append)
        self.assertEqual((ended.status, ended.hung), (3, False))
        self.assertEqual(b"".join(written), b"one\ntwo\n")

    def test_one_stream(self):
        for streams, expected in (({"stdout": subprocess.DEVNULL, "stderr": subprocess.PIPE}, b"two\n"),
                                  ({"stderr": subprocess.DEVNULL}, b"one\n")):
            written = []
            clock.run(["sh", "-c", "echo one; echo two >&2"], written.append, **streams)
            self.assertEqual(b"".join(written), expected)

    def test_what_never_ends_is_killed(self):
        self.addCleanup(setattr, clock, "HANG", clock.HANG)
        clock.HANG = 0.2
        for script in ("exec sleep 86400", "while :; do :; done", "exec > /dev/null 2>&1; exec sleep 86400"):
            with self.subTest(script=script):
                ended = clock.run(["sh", "-c", script], lambda block: None)
                self.assertEqual((ended.status, ended.hung), (-9, True))

    def test_waiting_costs_nothing_and_counting_does(self):
        """Of the processor, not by the clock."""
        waiting = clock.run(["sleep", "1"], lambda block: None)
        counting = clock.run([sys.executable, "-c", "for i in range(5000000): pass"], lambda block: None)
        self.assertLess(waiting.seconds * 5, counting.seconds)


class Costs(unittest.TestCase):
    def measure(self, seconds, most, yardsticks, tries=()):
        """The cost, with yardsticks that take so long and further tries of so many seconds; all must be used."""
        yardstick = clock.Yardstick("korvo")
        lengths, further = list(yardsticks), list(tries)

        def next_length():
            length = lengths.pop(0)
            yardstick.shortest = min(length, yardstick.shortest or length)
            return length

        yardstick.seconds = next_length
        cost = yardstick.cost(seconds, lambda: further.pop(0), most)
        self.assertEqual((lengths, further), ([], []))
        return cost

    def test_a_cheap_run_needs_no_yardstick_of_its_own(self):
        self.assertEqual(self.measure(4, most=100, yardsticks=[0.5]), 8)

    def test_a_dear_run_is_compared_with_the_yardstick_beside_it(self):
        """On a machine that has become six times as slow."""
        self.assertEqual(self.measure(60, most=100, yardsticks=[0.5, 3]), 20)

    def test_a_run_too_dear_is_tried_again(self):
        self.assertEqual(self.measure(60, most=100, yardsticks=[0.5, 0.5, 1], tries=[50]), 50)

    def test_a_run_that_stays_too_dear(self):
        self.assertEqual(self.measure(60, most=100, yardsticks=[0.5, 0.5, 0.5, 0.5], tries=[70, 55]), 110)

    def test_a_yardstick_that_is_no_good(self):
        with tempfile.TemporaryDirectory() as folder:
            program = Path(folder) / "korvo_yardstick"
            program.write_text("#!/bin/sh\nexit 1\n")
            program.chmod(0o700)
            with self.assertRaises(RuntimeError):
                clock.Yardstick(Path(folder) / "korvo").seconds()


if __name__ == "__main__":
    unittest.main()
