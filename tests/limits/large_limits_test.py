#!/usr/bin/env python3
"""The limits of docs/limits.md that take gigabytes of memory or of messages to reach: below, at and above.

    large_limits_test.py KORVO_BINARY
"""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

KORVO = None

OUT_OF_MEMORY = "Yikes, out of memory!"


def run(text, *options):
    """The status of a run whose output is dropped, the number of bytes that it says, the last messages."""
    with tempfile.TemporaryDirectory(prefix="korvo-limits-") as folder:
        (Path(folder) / "piece.txt").write_text(text)
        process = subprocess.Popen([KORVO, *options, "piece.txt", "/dev/null"], cwd=folder,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        total, last = 0, b""
        while part := os.read(process.stderr.fileno(), 1 << 20):
            total += len(part)
            last = (last + part)[-20000:]
        process.stderr.close()
        return process.wait(), total, last.decode()


class LargeLimits(unittest.TestCase):
    def test_messages_of_a_run(self):
        """Warnings never stop a run, but behind a gigabyte of them no macro is expanded. The blanks at the end of a
        line are shown with it, so that the number of bytes can be had to the last one."""
        limit = 1 << 30
        lines = 340400

        def piece(blanks):
            return "#define e ##\n" + ("rd(2)" + " " * 1000 + "rd(2)\n") * lines + "rd(2)" + " " * blanks + "\n$e\n"

        def said_before_the_call(total, messages):
            behind = messages.partition(f'\n\tExpanding macro "e" into line {lines + 3}...')[2]
            return total - len(behind)

        status, total, messages = run(piece(0))
        self.assertEqual(status, 0)
        missing = limit - said_before_the_call(total, messages)
        self.assertIn(missing, range(1, 4000))
        for more, expected in ((-1, 0), (0, 0), (1, 1)):
            status, total, messages = run(piece(missing + more))
            self.assertEqual((said_before_the_call(total, messages), status), (limit + more, expected), messages[-300:])
            self.assertEqual(OUT_OF_MEMORY in messages, status == 1)

    def test_most_events_of_a_block(self):
        for events, status in ((67108863, 0), (67108864, 0), (67108865, 1)):
            ended, _, messages = run(f"i1 = 3 0 -{events} {{ p2 1 p3 1 }}\n", "-s")
            self.assertEqual(ended, status, messages[-300:])
            expected = OUT_OF_MEMORY if status else f"{events} events generated in block #1 (i1)."
            self.assertIn(expected, messages)


if __name__ == "__main__":
    KORVO = os.path.abspath(sys.argv.pop(1))
    unittest.main()
