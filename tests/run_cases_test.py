#!/usr/bin/env python3
"""Tests the harness of the whole runs with a stand-in for the program: a shell script for each case."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import run_cases

HERE = Path(__file__).resolve().parent
GOOD = """printf '\\ni1    0.000  1.000 \\n\\ne\\n' > piece.sco"""
SCORE = "--- score\n\ni1    0.000  1.000 \n\ne\n"
PIECE = "--- piece\n"


class HarnessTest(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.root = Path(self.temporary.name)
        self.chapter = self.root / "topic.txt"

    def harness(self, script, *arguments):
        """Exit status and output of the harness, with a shell script as the program."""
        program = self.root / "korvo"
        program.write_text("#!/bin/sh\n" + script + "\n")
        program.chmod(0o755)
        command = [sys.executable, "-B", HERE / "run_cases.py", program, self.chapter, *arguments]
        done = subprocess.run(command, capture_output=True, text=True, check=False)
        return done.returncode, done.stdout + done.stderr

    def write(self, *cases):
        """A chapter of the sections of its cases, the first of which is named case, the others case2, case3."""
        names = ["case", *(f"case{i + 2}" for i in range(len(cases)))]
        self.chapter.write_text("Words.\n" + "".join(f"\n=== {n}\n{c}" for n, c in zip(names, cases, strict=False)))

    def assert_passes(self, script, case, *arguments):
        self.write(case)
        self.assertEqual(self.harness(script, *arguments), (0, "1 passed, 0 failed\n"))

    def assert_fails(self, script, case, words, *arguments):
        self.write(case)
        status, text = self.harness(script, *arguments)
        self.assertEqual(status, 1, text)
        self.assertIn(words, text)

    def test_a_right_score_passes(self):
        self.assert_passes(GOOD, PIECE + SCORE)

    def test_one_wrong_byte_is_named(self):
        self.assert_fails(
            GOOD,
            PIECE + SCORE.replace("1.0", "2.0"),
            f"FAIL topic/case ({self.chapter}:3): score differs at byte 14 (line 2)\n0 passed, 1 failed\n",
        )

    def test_every_single_byte_counts(self):
        script = "printf 'a \\tb\\r\\n\\0' > piece.sco"
        right = "a \\tb\\r (esc)\n\\x00 (esc) (no-eol)\n"
        self.assert_passes(script, f"{PIECE}--- score\n{right}")
        for wrong in ("a\\tb", "a \\x20b", "a \\tb\\r\\r", "a \\tb\\n"):
            text = right.replace("a \\tb", wrong)
            self.assert_fails(script, f"{PIECE}--- score\n{text}", "score differs at byte")
        self.assert_fails(script, f"{PIECE}--- score\n{right.replace(' (no-eol)', '')}", "differs at byte 7 (line 2)")

    def test_a_difference_is_shown_as_a_chapter_has_it(self):
        shown = "\n     e\n    -\n    +x\\x20 (esc)\n    +\\ty (esc) (no-eol)\n"
        case = PIECE + SCORE + "\n"
        self.assert_fails(GOOD + "; printf 'x \\n\\ty' >> piece.sco", case, shown, "--show")

    def test_every_output_needs_its_section(self):
        self.assert_fails(GOOD, PIECE, "piece.sco was written, but there is no score")
        script = GOOD + "; : > run.log"
        case = "--- options -l run.log\n" + PIECE + SCORE
        self.assert_fails(script, case, "run.log was written, but there is no log")
        script = GOOD + "; : > run.exp"
        case = "--- options -x run.exp\n" + PIECE + SCORE
        self.assert_fails(script, case, "run.exp was written, but there is no expansion")
        self.assert_passes(script, case + "--- expansion\n")

    def test_a_section_needs_its_output(self):
        self.assert_fails(":", PIECE + SCORE, "there is a score, but nothing was written")

    def test_the_score_of_a_failed_run_may_be_left_out(self):
        self.assert_passes(GOOD + "; echo no >&2; exit 1", PIECE + "--- status 1\n--- stderr\nno\n")

    def test_the_score_of_a_failed_run_counts_if_it_is_there(self):
        case = PIECE + "--- status 1\n--- score\n"
        self.assert_passes(": > piece.sco; exit 1", case)
        self.assert_fails(GOOD + "; exit 1", case, "score differs at byte 0")

    def test_a_failed_run_needs_its_words(self):
        self.assert_fails("echo no >&2; exit 1", PIECE + "--- status 1\n", "stderr differs at byte 0")

    def test_status_signal_and_standard_output_are_compared(self):
        self.assert_fails(GOOD + "; exit 3", PIECE + SCORE, "status 3, expected 0")
        self.assert_fails(GOOD, PIECE + SCORE + "--- status 1\n", "status 0, expected 1")
        self.assert_fails(GOOD + "; kill -9 $$", PIECE + SCORE, "killed by signal 9, expected 0")
        self.assert_fails(GOOD + "; exit 99", PIECE + SCORE, "a sanitizer's report")
        self.assert_fails(GOOD + "; echo x", PIECE + SCORE, "stdout differs at byte 0")

    def test_the_banner_is_put_in(self):
        names = run_cases.read_arguments(["-l", "run.log", "-xe", "piece.txt", "piece.sco"])
        self.assertEqual(names.expansion, "e")
        text = run_cases.banner(names)
        self.assertTrue(text.endswith(b'Log \t= "run.log"\nMExp\t= "e"\n'), text)
        self.assertIn(b'\n\n\n\nInput\t= "piece.txt"\nOutput\t= "piece.sco" [Csound', text)
        plain = run_cases.banner(run_cases.Names("piece.txt", "piece.sco"))
        (self.root / "banner").write_bytes(plain)
        script = GOOD + f"; cat {self.root}/banner >&2; printf '\\nend' >&2"
        case = PIECE + SCORE + "--- stderr\n{banner}\n\n"
        self.assert_passes(script, case + "end (no-eol)\n")
        shown = "\n     {banner}\n     \n    -and (no-eol)\n    +end (no-eol)\n"
        self.assert_fails(script, case + "and (no-eol)\n", shown, "--show")
        self.assert_fails(script, PIECE + SCORE + "--- stderr\n\nend (no-eol)\n", "stderr differs at byte 1 ")
        self.assert_passes(script, PIECE + SCORE, "--accept")
        self.assertTrue(self.chapter.read_text().endswith("--- stderr\n{banner}\n\nend (no-eol)\n"))

    def test_midi_is_compared_as_bytes(self):
        case = "--- options -m\n" + PIECE + "--- midi\n4d 54 ; head\n68 64\n"
        self.assert_passes("printf MThd > piece.mid", case)
        self.assert_fails("printf MThe > piece.mid", case, "midi differs at byte 3")
        self.assert_fails("printf MThd > piece.mid", case + "x\n", "FAIL topic/case")

    def test_a_command_is_the_whole_argument_list(self):
        case = "--- command -q 'a b' c\n--- status 1\n--- stdout\n3|a b\n"
        self.assert_passes('echo "$#|$2"; exit 1', case)

    def test_files_are_there_before_the_run(self):
        case = PIECE + "x\n--- file folder/part\ny\\x00 (esc) (no-eol)\n" + SCORE + "--- stdout\n78 0a 79 00\n"
        self.assert_passes(GOOD + "; cat piece.txt folder/part | od -An -tx1 | cut -c2-", case)

    def test_what_is_left_out_must_fail(self):
        left_out = self.root / "left_out.txt"
        self.write(PIECE + SCORE, PIECE + SCORE)
        left_out.write_text("No second run.\n    topic/case2\n")
        script = f"[ -e {self.root}/ran ] || {{ {GOOD}; touch {self.root}/ran; }}"
        status, text = self.harness(script, "--left-out", left_out)
        self.assertEqual((status, text), (0, "1 passed, 0 failed, 1 left out\n"))
        status, text = self.harness(GOOD, "--left-out", left_out)
        self.assertEqual(status, 1)
        self.assertIn("FAIL topic/case2", text)
        self.assertIn(": is left out, but passes\n", text)

    def test_a_list_of_what_is_left_out_is_read_with_care(self):
        left_out = self.root / "left_out.txt"
        self.write(PIECE + SCORE)
        for text, words in (
            ("Why.\n    topic/other\n", "left_out.txt:2: topic/other is no case"),
            ("    topic/case\n", "left_out.txt:1: topic/case has no reason"),
            ("Why.\n\n    topic/case\n", "left_out.txt:3: topic/case has no reason"),
            ("Why.\n    topic/case\n\nAgain.\n    topic/case\n", "left_out.txt:5: topic/case is there twice"),
        ):
            left_out.write_text(text)
            status, said = self.harness(GOOD, "--left-out", left_out)
            self.assertEqual(status, 1)
            self.assertIn(words, said)

    def test_input_and_other_files_must_be_left_alone(self):
        case = PIECE + "x (no-eol)\n--- file part\n" + SCORE
        self.assert_fails(GOOD + "; echo y > piece.txt", case, "piece.txt was changed")
        self.assert_fails(GOOD + "; rm part", case, "part was changed")
        self.assert_fails(GOOD + "; echo y > other", case, "other was written")

    def test_a_run_begins_with_nothing_of_the_run_before(self):
        self.write(PIECE + SCORE, PIECE + SCORE)
        self.assertEqual(self.harness(f"[ -e piece.sco ] || {GOOD}"), (0, "2 passed, 0 failed\n"))

    def test_a_hanging_run_is_ended_and_told(self):
        self.write(PIECE)
        case = run_cases.chapters.read_chapter(self.chapter).cases[0]
        limit, run_cases.TIME_LIMIT = run_cases.TIME_LIMIT, 0.1
        self.addCleanup(setattr, run_cases, "TIME_LIMIT", limit)
        program = self.root / "korvo"
        program.write_text("#!/bin/sh\nexec sleep 100\n")
        program.chmod(0o755)
        _, differences = run_cases.judge(program, case, None, self.root / "run", False)
        self.assertEqual(differences[0].summary, "still running after 0.1 seconds, expected 0")

    def test_one_case_can_be_run_by_itself(self):
        self.write(PIECE + SCORE, PIECE, PIECE)
        self.assertEqual(self.harness(GOOD, "--filter", "topic/case"), (0, "1 passed, 0 failed\n"))
        for text, counts in (("case", "1 passed, 2"), ("ic/case2", "0 passed, 1"), ("", "1 passed, 2")):
            self.assertIn(f"\n{counts} failed\n", self.harness(GOOD, "--filter", text)[1])

    def test_what_cannot_be_run_is_told(self):
        self.write(PIECE)
        self.assertEqual(self.harness(GOOD, "--filter", "nothing"), (1, "run_cases: no case matches\n"))
        self.write("--- peace\n")
        refusal = f'run_cases: {self.chapter}:4: unknown section "--- peace"\n'
        self.assertEqual(self.harness(GOOD), (1, refusal))

    def test_accept_writes_what_passes_afterwards(self):
        script = GOOD + "; echo word >&2; printf x"
        self.assert_passes(script, PIECE, "--accept")
        self.assertEqual(self.harness(script), (0, "1 passed, 0 failed\n"))
        text = f"Words.\n\n=== case\n{PIECE}{SCORE}--- stdout\nx (no-eol)\n--- stderr\nword\n"
        self.assertEqual(self.chapter.read_text(), text)

    def test_accept_changes_nothing_else(self):
        other = "Odd, but kept.\n--- stdout\n\\x78 (esc)\n" + PIECE + "\\x61 (esc)\n\n\n"
        self.write(other, "Mine.\n" + PIECE + "--- stderr\n\\x79 (esc)\n", other)
        before = self.chapter.read_text()
        script = GOOD + "; echo y >&2"
        self.assertEqual(self.harness(script, "--filter", "topic/case2", "--accept"), (0, "1 passed, 0 failed\n"))
        after = before.replace("Mine.\n--- piece\n", "Mine.\n--- piece\n" + SCORE)
        self.assertEqual(self.chapter.read_text(), after)

    def test_accept_keeps_the_remarks_of_a_midi_file_that_is_right(self):
        case = "--- options -m\n" + PIECE + "--- midi\n4d 54 ; head\n68 64\n"
        self.assert_passes("printf MThd > piece.mid; echo x", case, "--accept")
        self.assertIn("4d 54 ; head\n68 64\n--- stdout\nx\n", self.chapter.read_text())
        self.assert_passes("printf MThe > piece.mid", case, "--accept")
        self.assertTrue(self.chapter.read_text().endswith("--- midi\n4d 54 68 65\n"))

    def test_accept_keeps_that_nothing_is_said(self):
        self.assert_passes(GOOD, PIECE + "--- stderr\n", "--accept")
        self.assertTrue(self.chapter.read_text().endswith(PIECE + SCORE + "--- stderr\n"))

    def test_accept_of_a_failed_run(self):
        script = GOOD + "; echo no >&2; exit 1"
        self.assert_passes(script, PIECE + "--- stdout\nx\n", "--accept")
        self.assertTrue(self.chapter.read_text().endswith("--- piece\n--- status 1\n--- stderr\nno\n"))
        self.assert_passes(script, PIECE + "--- score\n", "--accept")
        self.assertTrue(self.chapter.read_text().endswith(f"--- piece\n--- status 1\n{SCORE}--- stderr\nno\n"))

    def test_a_crash_is_not_accepted(self):
        self.assert_fails("kill -9 $$", PIECE, "killed by signal 9: nothing to accept", "--accept")

    def test_a_case_can_be_unpacked(self):
        self.write(PIECE + "x\n--- file 'deep/a b'\ny (no-eol)\n" + SCORE + "--- stderr\n{banner}\nend\n", PIECE)
        folder = self.root / "cases"
        status, text = self.harness("exit 1", "--filter", "topic/case", "--unpack", folder)
        self.assertEqual((status, text), (0, f"cd {folder}/topic/case && korvo piece.txt piece.sco\n"))
        found = run_cases.read_files(folder)
        banner = run_cases.banner(run_cases.Names("piece.txt", "piece.sco"))
        self.assertEqual(
            found,
            {
                "topic/case/piece.txt": b"x\n",
                "topic/case/deep/a b": b"y",
                "topic/case/expected.score": b"\ni1    0.000  1.000 \n\ne\n",
                "topic/case/expected.stderr": banner + b"end\n",
            },
        )


if __name__ == "__main__":
    unittest.main(verbosity=0)
