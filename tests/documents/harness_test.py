#!/usr/bin/env python3
"""Tests the tests of the documents: what blocks are found, and that each mark, a claim and an example can fail.

    harness_test.py KORVO_BINARY
"""

import sys
import tempfile
import unittest
from pathlib import Path

import blocks
import blocks_test
import claims_test
import examples_test

KORVO = None
PIECE = "    i1 = 4 0 2 { p2 1 p3 1 p4 60 }\n"
EVENTS = "    i1    0.000  1.000    60.000 \n    i1    1.000  1.000    60.000 \n"
FRAME = "<!-- frame -->\n\n    i1 = 4 0 2 {\n      p2 1\n      p3 1\n      p4 60\n    }\n"


def marked(mark, code):
    return f"\n<!-- {mark} -->\n\n{code}\n"


class Markdown(unittest.TestCase):
    def found(self, text):
        return [(block.line, block.mark, block.argument, block.text) for block in blocks.blocks_of(text)]

    def test_indented_and_fenced_blocks(self):
        self.assertEqual(self.found("a\n\n    b\n\n    c\n\nd\n"), [(3, "", "", "b\n\nc\n")])
        self.assertEqual(self.found("a\n```sh\nb\n```\n\n~~~\nc\n~~~\n"), [(3, "", "", "b\n"), (7, "", "", "c\n")])
        self.assertEqual(self.found("a\n    a goes on\n"), [])

    def test_a_mark_belongs_to_the_block_behind_it_alone(self):
        self.assertEqual(self.found("<!-- piece: -m -->\n\n    a\n\nb\n\n    c\n"), [(3, "piece", "-m", "a\n"), (7, "", "", "c\n")])
        self.assertEqual(self.found("<!-- piece -->\n\nb\n\n    c\n"), [(5, "", "", "c\n")])
        self.assertEqual(self.found("<!-- not run: why -->\n```\na\n```\n"), [(3, "not run", "why", "a\n")])

    def test_dots_stand_for_any_lines(self):
        self.assertTrue(blocks.shows(["a", "...", "d"], ["a", "b", "c", "d"]))
        self.assertTrue(blocks.shows(["a", "...", "d"], ["a", "d"]))
        self.assertFalse(blocks.shows(["a", "...", "d"], ["a", "b"]))
        self.assertFalse(blocks.shows(["a"], ["a", "b"]))
        self.assertFalse(blocks.shows(["a "], ["a"]))
        self.assertTrue(blocks.contains(["b"], ["a", "b", "c"]))
        self.assertFalse(blocks.contains(["a", "c"], ["a", "b", "c"]))

    def test_p_fields_take_their_place_in_the_frame(self):
        frame = "i1 = 4 0 2 {\n  p2 1\n  p3 1\n  p4 60\n}\n"
        self.assertEqual(blocks.in_frame(frame, "p6 1\n"), "i1 = 6 0 2 {\n  p2 1\n  p3 1\n  p4 60\n  p5 60\np6 1\n}\n")
        self.assertEqual(blocks.in_frame(frame, "p2 4\n"), "i1 = 4 0 2 {\np2 4\n  p3 1\n  p4 60\n}\n")


class Marks(unittest.TestCase):
    def faults(self, text):
        with tempfile.TemporaryDirectory(prefix="korvo-documents-") as name:
            path = Path(name) / "text.md"
            path.write_text(text, encoding="utf-8")
            return blocks_test.faults_of(KORVO, path)

    def good(self, text):
        self.assertEqual(self.faults(text), [])

    def bad(self, text, what):
        faults = self.faults(text)
        self.assertEqual(len(faults), 1, faults)
        self.assertIn(what, faults[0])

    def test_every_block_needs_a_mark_that_is_known(self):
        self.bad(f"\n{PIECE}", "no mark")
        self.bad(marked("peace", PIECE), "no mark is called 'peace'")

    def test_piece(self):
        self.good(marked("piece", PIECE))
        self.bad(marked("piece", "    i1 = 4 0 2 { p2 1 p3 1 }\n"), "some p-fields were skipped")
        self.bad(marked("piece", "    i1 = 4 0 2 { p2 1 p3 1 p4 1 2 3 }\n"), "event(s) not added")
        self.bad(marked("piece", "    i1 = 4 0 2 { p2 1 p3 1 p4 MO(T 1 f* 1 2) }\n"), "it prints")

    def test_p_fields(self):
        self.good(FRAME + marked("p-fields", "    p4 1\n    p5 2\n"))
        self.bad(FRAME + marked("p-fields", "    p4 no 4\n"), "ERROR")
        self.bad(FRAME + marked("p-fields", "    te(60)\n"), "no p-field")
        self.bad(marked("p-fields", "    p4 1\n"), "no frame")

    def test_statements(self):
        self.good(FRAME + marked("statements", "    te(90)\n"))
        self.bad(FRAME + marked("statements", "    te(0)\n"), "ERROR")
        self.bad(marked("statements", "    te(90)\n"), "no frame")

    def test_events_and_score(self):
        self.good(marked("piece", PIECE) + marked("events", EVENTS))
        self.bad(marked("piece", PIECE) + marked("events", EVENTS.replace("60", "61")), "the events are")
        self.bad(marked("piece", PIECE) + marked("events", EVENTS.replace(" \n", "\n")), "the events are")
        self.bad(marked("events", EVENTS), "no piece")
        score = f"    ;I-block #1 (i1):\n{EVENTS}\n    e\n"
        self.good(marked("piece", PIECE) + marked("score", score))
        self.bad(marked("piece", PIECE) + marked("score", score.replace("#1", "#2")), "the score is")

    def test_messages(self):
        wrong = "    i1 = 4 0 2 { p2 1 p3 1 }\n"
        shown = "    ERROR: Line 1: Whoops, some p-fields were skipped.\n"
        self.good(marked("piece", wrong) + marked("messages", shown))
        self.bad(marked("piece", wrong) + marked("messages", shown.replace("Whoops", "Hello")), "the messages are")
        self.assertEqual(len(self.faults(marked("piece", PIECE) + marked("messages", shown))), 2)
        self.good(marked("messages: -m examples/midi_etude", "    102 events generated in block #1 (i1).\n"))
        self.bad(marked("messages: -m examples/midi_etude", "    103 events generated in block #1 (i1).\n"), "the messages are")

    def test_file_and_shell(self):
        run = marked("shell", "    korvo new.txt new.sco\n")
        score = f"    ;I-block #1 (i1):\n{EVENTS}\n    e\n"
        self.good(marked("file: new.txt", PIECE) + run + marked("file: new.sco", score))
        self.bad(marked("file: new.txt", PIECE) + run + marked("file: new.sco", score.replace("60", "61")), "new.sco is")
        self.bad(marked("file: examples/first/piece.txt", PIECE), "examples/first/piece.txt is")
        self.bad(marked("shell", "    korvo none.txt none.sco\n"), "it ends with status 1")
        self.bad(marked("file: new.txt", PIECE.replace("60", "1 2 3")) + run, "event(s) not added")

    def test_commands_stay_where_they_went(self):
        self.good(marked("shell", "    cd examples/first\n") + marked("session", "    $ ls\n    piece.txt\n"))

    def test_session(self):
        self.good(marked("session", "    $ echo a\n    a\n    $ echo b\n    b\n"))
        self.bad(marked("session", "    $ echo a\n    b\n"), "echo a prints")
        self.bad(marked("session", "    $ false\n"), "status 1")
        self.bad(marked("session", "    echo a\n"), "does not begin with a command")

    def test_usage(self):
        self.good(marked("usage", "    korvo [options] infile outfile\n"))
        self.bad(marked("usage", "    korvo infile outfile\n"), "the usage text is")

    def test_not_run(self):
        self.good(marked("not run: it builds", "    scripts/build release\n    cmake --preset release\n"))
        self.bad(marked("not run", "    ls\n"), "it does not say why")
        self.bad(marked("not run: it builds", "    scripts/none\n"), "there is no scripts/none")
        self.bad(marked("not run: it builds", "    cmake --preset none\n"), "there is no preset none")


class Claims(unittest.TestCase):
    def bad(self, what, **changes):
        claim = claims_test.Claim("a.md", "one two", claims_test.frame(), **changes)
        faults = claims_test.faults_of(KORVO, claim, "one\n  two")
        self.assertEqual(len(faults), 1, faults)
        self.assertIn(what, faults[0])

    def test_what_is_not_so_is_a_fault(self):
        self.assertEqual(claims_test.faults_of(KORVO, claims_test.Claim("a.md", "one two", claims_test.frame()), "one\n two"), [])
        self.bad("P4 is", values={4: "61"})
        self.bad("P4 is", values={4: "60 60 60 60 60"})
        self.bad("4 events, not 3", count=3)
        self.bad("P4 is from", within=(4, 55, 65))
        self.bad("P4 is", only=(4, (60, 61)))
        self.bad("does not say", says="5 events")
        self.bad("it says", silent="4 events")
        self.bad("status 0, not 1", status=1)

    def test_a_sentence_that_is_gone_is_a_fault(self):
        claim = claims_test.Claim("a.md", "one two", claims_test.frame())
        self.assertEqual(claims_test.faults_of(KORVO, claim, "one three"), ["the document does not say this"])

    def test_a_warning_that_is_not_told_is_a_fault(self):
        claim = claims_test.Claim("a.md", "one", claims_test.fields("p4 1 2 3", -2))
        self.assertIn("event(s) not added", claims_test.faults_of(KORVO, claim, "one")[0])


class Examples(unittest.TestCase):
    def test_an_example_that_warns_is_a_fault(self):
        with tempfile.TemporaryDirectory(prefix="korvo-documents-") as name:
            folder = Path(name) / "examples" / "one"
            folder.mkdir(parents=True)
            for text, what in (("p4 1", []), ("p4 1 2 3", ["one says"]), ("p5 1", ["one says", "one ends", "one has no"])):
                (folder / "piece.txt").write_text(f"i1 = 4 0 2 {{ p2 1 p3 1 {text} }}\n", encoding="utf-8")
                faults = examples_test.faults_of_example(KORVO, folder)
                self.assertEqual([fault[: len(start)] for fault, start in zip(faults, what)], what, faults)
                self.assertEqual(len(faults), len(what), faults)

    def test_an_example_that_the_course_leaves_out_is_a_fault(self):
        readme = f"- {examples_test.COURSE}`a`, `b` (so).\n- more `c`"
        self.assertEqual(examples_test.faults_of_course(readme, ["a", "b"]), [])
        self.assertEqual(len(examples_test.faults_of_course(readme, ["a", "c"])), 2)


if __name__ == "__main__":
    KORVO = str(Path(sys.argv.pop(1)).resolve())
    unittest.main()
