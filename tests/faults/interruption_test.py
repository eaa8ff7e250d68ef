#!/usr/bin/env python3
"""A run that is interrupted at any moment leaves no temporary file, and a piece as it was.

    interruption_test.py KORVO_BINARY
"""

import fcntl
import os
import random
import signal
import subprocess
import time

import support
from clock import HANG

ROUNDS = 6  # for each signal, of each kind
PIPE = 4096  # bytes, the least that a pipe holds


def temporary_names():
    """What the C library's temporary files are called where they have a name."""
    return {name for name in os.listdir("/tmp") if name.startswith("tmpf")}


class Interruption(support.FaultTest):
    def setUp(self):
        super().setUp()
        self.write("part.txt", b"; a comment\n" * 20000)
        block = b"i1 = 5 0 -40000 { p2 1 p3 RA(T 1 [0 1]) p4 RW(T 1 [0 1] .1 .5) p5 ho(1 1) }\n"
        self.piece = b"te(61)\n" + b"#include |part.txt|\n" * 10 + block * 2
        self.write("piece.txt", self.piece)
        started = time.monotonic()
        result = self.run_korvo("-t", "piece.txt", "a.sco")
        self.whole_time = time.monotonic() - started
        self.assertEqual(result.returncode, 0)
        self.messages = len(result.stderr)

    def begin(self, messages):
        return subprocess.Popen([support.KORVO, "-t", "-l", "a.log", "-x", "a.exp", "piece.txt", "a.sco"],
                                cwd=self.folder, stdout=subprocess.DEVNULL, stderr=messages)

    def interrupt_held(self, number, place):
        """At a place of the messages: the run waits there, as nobody takes more than a pipe holds. It cannot have ended."""
        reader, writer = os.pipe()
        fcntl.fcntl(writer, fcntl.F_SETPIPE_SZ, PIPE)
        process = self.begin(writer)
        os.close(writer)
        while place > 0:
            place -= len(os.read(reader, min(place, PIPE)))
        process.send_signal(number)
        status = process.wait(HANG)
        os.close(reader)
        self.assertEqual(status, -number)

    def interrupt_running(self, number, seconds):
        """At a moment, which may be too late."""
        process = self.begin(subprocess.DEVNULL)
        time.sleep(seconds)
        process.send_signal(number)
        self.assertIn(process.wait(HANG), (0, -number))

    def interrupt(self, number):
        generator = random.Random(number)
        before = temporary_names()
        self.assertGreater(self.messages, 100 * PIPE)
        for _ in range(ROUNDS):
            self.interrupt_held(number, generator.randrange(self.messages - 2 * PIPE))
            self.interrupt_running(number, generator.random() * self.whole_time)
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
