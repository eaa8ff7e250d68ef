#!/usr/bin/env python3
"""Tests the harness of the whole runs with a stand-in for the program: a shell script for each case."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

import run_cases  # noqa: E402

GOOD = """printf '\\ni1    0.000  1.000 \\n\\ne\\n' > piece.sco"""
SCORE = b"\ni1    0.000  1.000 \n\ne\n"


class HarnessTest(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.root = Path(self.temporary.name)

    def judge(self, script, files, *switches):
        """Exit status and output of the harness for one case."""
        case = self.root / "topic" / "case"
        case.mkdir(parents=True, exist_ok=True)
        for name, data in files.items():
            (case / name).write_bytes(data)
        program = self.root / "korvo"
        program.write_text("#!/bin/sh\n" + script + "\n")
        program.chmod(0o755)
        done = subprocess.run(
            [sys.executable, "-B", HERE / "run_cases.py", program, *switches, self.root / "topic"],
            capture_output=True,
            text=True,
            check=False,
        )
        return done.returncode, done.stdout + done.stderr

    def assert_passes(self, script, files, *switches):
        self.assertEqual(self.judge(script, files, *switches), (0, "1 passed, 0 failed\n"))

    def assert_fails(self, script, files, words, *switches):
        status, text = self.judge(script, files, *switches)
        self.assertEqual(status, 1, text)
        self.assertIn(words, text)

    def test_a_right_score_passes(self):
        self.assert_passes(GOOD, {"piece.txt": b"", "expected.sco": SCORE})

    def test_one_wrong_byte_is_named(self):
        self.assert_fails(
            GOOD,
            {"piece.txt": b"", "expected.sco": SCORE.replace(b"1.0", b"2.0")},
            "FAIL topic/case: expected.sco differs at byte 14 (line 2)\n0 passed, 1 failed",
        )

    def test_a_missing_last_line_feed_is_seen_and_shown(self):
        self.assert_fails(GOOD, {"piece.txt": b"", "expected.sco": SCORE[:-1]}, "+e¶", "--show")

    def test_every_output_needs_its_expected_file(self):
        self.assert_fails(GOOD, {"piece.txt": b""}, "expected.sco is missing")
        self.assert_fails(
            GOOD + "; : > run.log",
            {"piece.txt": b"", "options": b"-l run.log\n", "expected.sco": SCORE},
            "expected.log is missing",
        )

    def test_an_expected_file_needs_its_output(self):
        self.assert_fails(":", {"piece.txt": b"", "expected.sco": SCORE}, "nothing was written")

    def test_the_score_of_a_failed_run_may_be_left_out(self):
        files = {"piece.txt": b"", "expected.status": b"1\n", "expected.stderr": b"no\n"}
        self.assert_passes(GOOD + "; echo no >&2; exit 1", files)

    def test_a_failed_run_needs_its_words(self):
        files = {"piece.txt": b"", "expected.status": b"1\n"}
        self.assert_fails("echo no >&2; exit 1", files, "expected.stderr differs at byte 0")

    def test_status_signal_and_standard_output_are_compared(self):
        files = {"piece.txt": b"", "expected.sco": SCORE}
        self.assert_fails(GOOD + "; exit 3", files, "status 3, expected 0")
        self.assert_fails(GOOD + "; kill -9 $$", files, "killed by signal 9, expected 0")
        self.assert_fails(GOOD + "; echo x", files, "expected.stdout differs at byte 0")

    def test_the_banner_is_put_in(self):
        names = run_cases.read_arguments(["-l", "run.log", "-xe", "piece.txt", "piece.sco"])
        self.assertEqual(names.expansion, "e")
        text = run_cases.banner(names)
        self.assertTrue(text.endswith(b'Log \t= "run.log"\nMExp\t= "e"\n'), text)
        self.assertIn(b'\n\n\n\nInput\t= "piece.txt"\nOutput\t= "piece.sco" [Csound', text)
        plain = run_cases.banner(run_cases.Names("piece.txt", "piece.sco"))
        (self.root / "banner").write_bytes(plain)
        files = {"piece.txt": b"", "expected.sco": SCORE, "expected.stderr": b"{banner}\n\nend"}
        self.assert_passes(GOOD + f"; cat {self.root}/banner >&2; printf '\\nend' >&2", files)

    def test_midi_is_compared_as_bytes(self):
        files = {
            "piece.txt": b"",
            "options": b"-m\n",
            "expected.mid.hex": b"4d 54 ; head\n68 64\n",
        }
        self.assert_passes("printf MThd > piece.mid", files)
        self.assert_fails("printf MThe > piece.mid", files, "expected.mid.hex differs at byte 3")

    def test_a_command_is_the_whole_argument_list(self):
        files = {"command": b"-q 'a b' c\n", "expected.status": b"1", "expected.stdout": b"3|a b\n"}
        self.assert_passes('echo "$#|$2"; exit 1', files)

    def test_input_and_other_files_must_be_left_alone(self):
        files = {"piece.txt": b"x", "expected.sco": SCORE}
        self.assert_fails(GOOD + "; echo y > piece.txt", files, "piece.txt was changed")
        self.assert_fails(GOOD + "; echo y > other", files, "other was written")

    def test_accept_writes_what_passes_afterwards(self):
        script = GOOD + "; echo word >&2"
        self.assert_passes(script, {"piece.txt": b""}, "--accept")
        self.assert_passes(script, {"piece.txt": b""})
        self.assertEqual((self.root / "topic/case/expected.stderr").read_bytes(), b"word\n")


if __name__ == "__main__":
    unittest.main(verbosity=0)
