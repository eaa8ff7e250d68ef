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

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

KORVO = None

OUT_OF_MEMORY = "Yikes, out of memory!"


def run(text, *options):
    """The status of a run whose output is dropped, the number of bytes that it says, the last messages."""
    total, last = 0, b""

    def count(block):
        nonlocal total, last
        total += len(block)
        last = (last + block)[-20000:]

    with tempfile.TemporaryDirectory(prefix="korvo-limits-") as folder:
        (Path(folder) / "piece.txt").write_text(text)
        ended = clock.run([KORVO, *options, "piece.txt", "/dev/null"], count, cwd=folder,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        return ended.status, total, last.decode()


class LargeLimits(unittest.TestCase):
    def test_messages_of_a_run(self):
        """Three gigabytes are said, then no further line is read. The blanks at the end of a line are shown with it, so
        that the number of bytes can be had to the last one."""
        limit = 3221225472

        def piece(full_lines, short_lines, blanks):
            short = "rd(2)" + " " * 1000 + "\n"
            return "\n" * 1000 + ("rd(2)" * 800 + "\n") * full_lines + short * short_lines + "rd(2);last" + " " * blanks + "\n"

        def said(full_lines, short_lines, blanks):
            """The status, the bytes up to the last warning with its caret, the messages behind it."""
            status, total, messages = run(piece(full_lines, short_lines, blanks))
            behind = messages[messages.rindex("\n     ^\n") + len("\n     ^\n"):]
            return status, total - len(behind), behind

        _, none, _ = said(0, 0, 0)
        _, full, _ = said(1, 0, 0)
        _, short, _ = said(0, 1, 0)
        full_lines, rest = divmod(limit - none, full - none)
        short_lines, blanks = divmod(rest, short - none)
        for more, expected in ((-1, 0), (0, 0), (1, 1)):
            status, size, behind = said(full_lines, short_lines, blanks + more)
            self.assertEqual((size, status), (limit + more, expected), behind)
            self.assertEqual(OUT_OF_MEMORY in behind, status == 1, behind)

    def test_most_events_of_a_block(self):
        for events, status in ((67108863, 0), (67108864, 0), (67108865, 1)):
            ended, _, messages = run(f"i1 = 3 0 -{events} {{ p2 1 p3 1 }}\n", "-s")
            self.assertEqual(ended, status, messages[-300:])
            expected = OUT_OF_MEMORY if status else f"{events} events generated in block #1 (i1)."
            self.assertIn(expected, messages)


if __name__ == "__main__":
    KORVO = os.path.abspath(sys.argv.pop(1))
    unittest.main()
