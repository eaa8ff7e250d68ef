#!/usr/bin/env python3
"""Tests that a chapter keeps every byte, and that one with a mistake is refused by its line."""

import itertools
import tempfile
import unittest
from pathlib import Path

from chapters import (
    BadChapter,
    Chapter,
    bytes_of,
    lines_of,
    new_section,
    read_chapter,
    read_chapters,
    with_expected,
    write_chapter,
)

# What could be taken for something else, in pieces.
AWKWARD = [b"\n", b" ", b"\t", b"===", b"--- ", b"\\", b"\\x41", b" (esc)", b" (no-eol)", b"x", b"\r", b"\0", b"}"]
AWKWARD += ["é".encode(), b"\xff"]

CHAPTER = b"""\
Rests, and
what is left of them.

=== first-case
Why it is here.

--- options -s -l 'run 1.log'
--- piece
i1 = 3 0 -1 {p2 1 p3 1} (no-eol)
--- file ' tail 1'
x\\x00\\t (esc)
--- file old.sco
--- status 1
--- score

e
--- stderr
no


=== second.case_2
--- command a 'b c'
--- stdout
"""


class LinesTest(unittest.TestCase):
    def assert_lines(self, data, *lines):
        self.assertEqual(lines_of(data), list(lines))
        self.assertEqual(bytes_of(lines), data)

    def assert_kept(self, data):
        for lines in (lines_of(data), lines_of(data, show_blanks=True)):
            self.assertEqual(bytes_of(lines), data)
            for line in lines:
                self.assertNotRegex(line.decode(), r"[\x00-\x08\n-\x1f\x7f]")
                self.assertFalse(line.startswith((b"===", b"---")), line)

    def test_text_stands_as_it_is(self):
        self.assert_lines(b"")
        self.assert_lines(b"\n", b"")
        self.assert_lines(b"\n\n", b"", b"")
        self.assert_lines(b"\ni1    0.000  1.000 \n\ne\n", b"", b"i1    0.000  1.000 ", b"", b"e")
        text = "\ta \\ é\u20ac == -- (esc) no-eol".encode()
        self.assert_lines(text + b"\n", text)

    def test_a_missing_line_feed_is_shown(self):
        self.assert_lines(b"a", b"a (no-eol)")
        self.assert_lines(b"a\n\nb", b"a", b"", b"b (no-eol)")
        self.assert_lines(b"a ", rb"a\x20 (esc) (no-eol)")

    def test_what_is_not_seen_is_escaped(self):
        self.assert_lines(b"a\r\nb\r\n", rb"a\r (esc)", rb"b\r (esc)")
        self.assert_lines(b"\\\x00\t\x7f\n", rb"\\\x00\t\x7f (esc)")
        self.assert_lines(b"\xff \xc3\n", rb"\xff \xc3 (esc)")
        self.assert_lines("\ufeffa\u00a0b\n".encode(), rb"\xef\xbb\xbfa\xc2\xa0b (esc)")

    def test_what_looks_like_the_chapter_itself_is_escaped(self):
        self.assert_lines(b"=== a\n", rb"\x3d== a (esc)")
        self.assert_lines(b"---\n", rb"\x2d-- (esc)")
        self.assert_lines(b"a (esc)\n", b"a (esc) (esc)")
        self.assert_lines(b"a (no-eol)\n", b"a (no-eol) (esc)")
        self.assert_lines(b"a (no-eol)", b"a (no-eol) (esc) (no-eol)")

    def test_what_is_repeated_for_long_is_counted(self):
        self.assert_lines(b"a" * 299 + b"\n", b"a" * 299)
        self.assert_lines(b">" + b"a" * 300 + b"<\n", rb">\{300*a}< (esc)")
        self.assert_lines(b"}\\\0" * 100 + b"\n", rb"\{100*\x7d\\\x00} (esc)")
        self.assert_lines(b"=" * 4095, rb"\{4095*=} (esc) (no-eol)")
        self.assert_lines(b"a\n" + b"\n" * 1000 + b"b\n", b"a", rb"\{1000*\n} (esc) (no-eol)", b"b")
        self.assert_lines(b"x\n" + b" $v\n" * 300, b"x", rb"\{300* $v\n} (esc) (no-eol)")
        self.assert_lines(b"\n $v" * 300, b"", rb"\{299* $v\n} (esc) (no-eol)", b" $v (no-eol)")

    def test_lines_written_by_hand(self):
        self.assertEqual(bytes_of([b"a (no-eol)", b"b"]), b"ab\n")
        self.assertEqual(bytes_of([rb"\x61\n\{3*b\t}c (esc)", b"\\x61"]), b"a\nb\tb\tb\tc\n\\x61\n")
        self.assertEqual(bytes_of([b" (esc)", b" (no-eol)"]), b"\n")

    def test_wrong_escapes_are_refused(self):
        for text in (rb"\q", rb"\x4", rb"\xZZ", b"a\\", rb"\{3*}", rb"\{x*a}", rb"\{3*a", rb"\{2*\{2*a}}", rb"\{2*\q}"):
            with self.assertRaises(ValueError, msg=text):
                bytes_of([text + b" (esc)"])

    def test_blanks_are_shown_where_they_are_to_be(self):
        self.assertEqual(lines_of(b"a \n\tb\nc d\n", show_blanks=True), [rb"a\x20 (esc)", rb"\tb (esc)", b"c d"])

    def test_every_byte_is_kept_wherever_it_stands(self):
        for value in range(256):
            byte = bytes([value])
            for data in (byte, byte * 2, byte * 400, byte * 1000):
                for head, tail in itertools.product((b"", b"a", b"a\n"), (b"", b"\n", b"b\n", b"\nb")):
                    self.assert_kept(head + data + tail)

    def test_everything_repeated_is_kept(self):
        for unit in (b"\n", b" ", b"a\n", b"\nab", b"a\nb", b"\n\na", b"a b", b"\r\n", b"}\xff"):
            for head, tail in itertools.product((b"", b"a", b"a\n", b"\n", unit[1:], b"xyz" * 200), repeat=2):
                for count in (8, 400, 1500):
                    self.assert_kept(head + unit * count + tail + unit * 500)

    def test_every_awkward_text_is_kept(self):
        for length in range(5):
            for parts in itertools.product(AWKWARD, repeat=length):
                self.assert_kept(b"".join(parts))


class ChapterTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.path = Path(temporary.name) / "topic.txt"

    def read(self, data=CHAPTER):
        self.path.write_bytes(data)
        return read_chapter(self.path)

    def assert_refused(self, data, line, words):
        self.path.write_bytes(data)
        with self.assertRaises(BadChapter) as caught:
            read_chapter(self.path)
        self.assertEqual(str(caught.exception), f"{self.path}:{line}: {words}")

    def assert_change_refused(self, old, new, line, words):
        self.assertEqual(CHAPTER.count(old), 1)
        self.assert_refused(CHAPTER.replace(old, new), line, words)

    def test_a_chapter_becomes_cases(self):
        first, second = self.read().cases
        self.assertEqual((first.topic, first.name, first.place), ("topic", "first-case", f"{self.path}:4"))
        self.assertEqual(first.options, ["-s", "-l", "run 1.log"])
        self.assertIsNone(first.command)
        piece = b"i1 = 3 0 -1 {p2 1 p3 1}"
        self.assertEqual(first.files, {"piece.txt": piece, " tail 1": b"x\0\t\n", "old.sco": b""})
        self.assertEqual(first.status, 1)
        self.assertEqual(first.expected, {"score": b"\ne\n", "stderr": b"no\n\n"})
        self.assertEqual(second.name, "second.case_2")
        self.assertEqual(second.command, ["a", "b c"])
        self.assertEqual((second.files, second.status, second.expected), ({}, 0, {"stdout": b""}))

    def test_writing_changes_nothing(self):
        chapter = self.read()
        self.path.unlink()
        write_chapter(chapter)
        self.assertEqual(self.path.read_bytes(), CHAPTER)

    def test_another_outcome_changes_its_sections_only(self):
        chapter = self.read(CHAPTER.replace(b"\ne\n", b"\n\\x65 (esc)\n"))
        first, second = chapter.cases
        expected = {"stderr": b"yes", "score": b"\ne\n", "log": b"--- \n"}
        chapter.cases = [with_expected(first, 2, expected), with_expected(second, 1, {})]
        write_chapter(chapter)
        wanted = CHAPTER.replace(b"\ne\n", b"\n\\x65 (esc)\n--- log\n\\x2d--\\x20 (esc)\n")
        wanted = wanted.replace(b"--- status 1", b"--- status 2").replace(b"\nno\n\n", b"\nyes (no-eol)\n")
        wanted = wanted.replace(b"--- stdout\n", b"--- status 1\n")
        self.assertEqual(self.path.read_bytes(), wanted)
        self.assertEqual(read_chapter(self.path).cases[0].expected, expected)

    def test_an_order_of_ones_own_is_kept(self):
        chapter = self.read(b"Words.\n\n=== a\n--- stderr\nx\n--- piece\n--- score\n")
        chapter.cases = [with_expected(chapter.cases[0], 0, {"stderr": b"y\n", "score": b"", "stdout": b"z\n"})]
        write_chapter(chapter)
        text = b"Words.\n\n=== a\n--- stderr\ny\n--- piece\n--- score\n--- stdout\nz\n"
        self.assertEqual(self.path.read_bytes(), text)

    def test_every_section_is_kept(self):
        sections = [new_section("command", "a\\ b (esc)"), new_section("file", "'\xa0'", b"=== \nx \n")]
        sections += [new_section(kind, "", b"x \n--- a\r\n") for kind in ("score", "stderr")]
        self.assertEqual(sections[1].lines[1:], [rb"\x3d==\x20 (esc)", rb"x\x20 (esc)"])
        self.assertEqual(sections[2].lines, [b"--- score", b"x ", rb"\x2d-- a\r (esc)"])
        chapter = self.read()
        chapter.cases[1].sections = sections
        write_chapter(Chapter(self.path, [b"Words."], chapter.cases[1:]))
        again = read_chapter(self.path).cases[0].sections
        self.assertEqual(again, sections)

    def test_folders_are_read_in_the_order_of_names(self):
        for name in ("b.txt", "a.txt"):
            self.path.with_name(name).write_bytes(CHAPTER)
        self.path.with_name("README.md").write_bytes(b"no chapter")
        found = read_chapters([self.path.parent, self.path.with_name("a.txt")])
        self.assertEqual([chapter.path.name for chapter in found], ["a.txt", "b.txt", "a.txt"])
        with self.assertRaises(BadChapter):
            read_chapters([Path(tempfile.mkdtemp(dir=self.path.parent))])

    def test_a_chapter_has_words_and_cases(self):
        words = "a chapter begins with a few words on its topic"
        self.assert_refused(b"", 1, words)
        self.assert_refused(b"\n=== a\n--- piece\n", 1, words)
        self.assert_refused(b"Words.\n", 1, "the chapter has no case")
        self.assert_refused(b"Words.\n\n--- piece\n\n=== a\n--- piece\n", 3, NAME)

    def test_headings_of_cases(self):
        words = "no empty line above the heading of a case"
        self.assert_change_refused(b"\n\n\n=== second", b"\nx\n=== second", 20, words)
        self.assert_change_refused(b"=== second.case_2", b"=== second case", 21, NAME)
        self.assert_change_refused(b"=== second.case_2", b"===", 21, NAME)
        self.assert_change_refused(b"=== second.case_2", b"=== first-case", 21, 'a second case "first-case"')
        self.assert_refused(b"Words.\n\n=== a\nmore\n", 3, "the case has neither a piece nor a command")
        self.assert_refused(b"Words.\n\n=== a\n--- score\n", 3, "the case has neither a piece nor a command")

    def test_headings_of_sections(self):
        self.assert_change_refused(b"--- stdout", b"--- output", 23, 'unknown section "--- output"')
        self.assert_change_refused(b"--- stdout", b"---stdout", 23, 'unknown section "---stdout"')
        self.assert_change_refused(b"--- stdout", b"--- stdout x", 23, 'nothing stands behind "--- stdout" on its line')
        self.assert_change_refused(b"--- stdout", b"--- stdout (no-eol)", 23, "a heading ends in a line feed")
        self.assert_change_refused(b"--- status 1", b"--- status one", 13, "a status is a number")
        words = 'what "--- status" says stands behind it on its line'
        self.assert_change_refused(b"--- status 1", b"--- status\n1", 14, words)
        self.assert_change_refused(b"--- score", b"--- stderr", 17, 'a second "--- stderr"')
        self.assert_change_refused(b"--- status 1", b"--- command x", 13, "options and a command in one case")
        self.assert_change_refused(b"'b c'", b"'b c", 22, "No closing quotation")

    def test_names_of_files(self):
        self.assert_change_refused(b"old.sco", b"' tail 1'", 12, 'a second file " tail 1"')
        self.assert_change_refused(b"old.sco", b"two names", 12, "a file has one name")
        self.assert_change_refused(b" old.sco", b"", 12, "a file has one name")
        for name in ("/a", "../a", "a/../b", "a//b", "./a", "a/", ".", "piece.txt", "''"):
            words = f'a file cannot be named "{name.strip(chr(39))}"'
            self.assert_change_refused(b"old.sco", name.encode(), 12, words)

    def test_what_cannot_be_seen_is_refused(self):
        self.assert_change_refused(b"\nno\n", b"\nno\r\n", 18, r'byte 13 is written "\r"')
        self.assert_change_refused(b"\nno\n", b"\nn\0\n", 18, r'byte 0 is written "\x00"')
        self.assert_change_refused(b"\nno\n", b"\nn\xff\n", 18, r'not UTF-8: such a byte is written "\xHH"')
        self.assert_refused(CHAPTER + b"x", 24, "the last line has no line feed")

    def test_a_wrong_escape_is_named_with_its_line(self):
        self.assert_change_refused(rb"x\x00\t", rb"x\x0g", 11, r'unknown escape "\x0g"')
        self.assert_change_refused(b"--- stdout", b"--- \\out (esc)", 23, r'unknown escape "\out"')


NAME = 'the heading of a case is "=== " and a name of letters, digits, "-", "_" and "."'

if __name__ == "__main__":
    unittest.main(verbosity=0)
