#!/usr/bin/env python3
"""A run that is interrupted at any moment leaves no temporary file, and a piece as it was.

    interruption_test.py KORVO_BINARY
"""

import os
import random
import signal
import subprocess
import time

import support

ROUNDS = 12  # for each signal


def temporary_names():
    """What the C library's temporary files are called where they have a name."""
    return {name for name in os.listdir("/tmp") if name.startswith("tmpf")}


class Interruption(support.FaultTest):
    def setUp(self):
        super().setUp()
        self.write("part.txt", b"; a comment\n" * 20000)
        block = b"i1 = 5 0 -40000 { p2 1 p3 RA(T 1 [0 1]) p4 RW(T 1 [0 1] .1 .5) p5 ho(1 1) }\n"
        self.piece = b"#include |part.txt|\n" * 10 + block * 2
        self.write("piece.txt", self.piece)
        started = time.monotonic()
        self.assertEqual(self.run_korvo("piece.txt", "a.sco").returncode, 0)
        self.whole_time = time.monotonic() - started

    def interrupt(self, number):
        generator = random.Random(number)
        before = temporary_names()
        ended = 0
        for _ in range(ROUNDS):
            process = subprocess.Popen([support.KORVO, "-l", "a.log", "-x", "a.exp", "piece.txt", "a.sco"],
                                       cwd=self.folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            time.sleep(generator.random() * self.whole_time)
            process.send_signal(number)
            status = process.wait(support.TIME_LIMIT)
            self.assertIn(status, (0, -number))
            ended += status != 0
        self.assertGreater(ended, 0)
        self.assertEqual(temporary_names() - before, set())
        self.assertEqual(self.read("piece.txt"), self.piece)
        self.assertEqual({path.name for path in self.folder.iterdir()},
                         {"piece.txt", "part.txt", "a.sco", "a.log", "a.exp"})

    def test_interrupt(self):
        self.interrupt(signal.SIGINT)

    def test_terminate(self):
        self.interrupt(signal.SIGTERM)

    def test_hang_up(self):
        self.interrupt(signal.SIGHUP)

    def test_kill(self):
        self.interrupt(signal.SIGKILL)


if __name__ == "__main__":
    support.main()
