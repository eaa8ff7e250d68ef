#!/usr/bin/env python3
"""docs/messages.json against the program: the mistake of every entry brings its very message and no other error, what
is right runs without it, and every number of the catalogue is there once, with its exact text.

    messages_test.py KORVO_BINARY
"""

import json
import re
import sys
import unittest

from frames import MESSAGES, ROOT, complaints, first_line, run_lines

KORVO = None

SHORT_FORM_UP_TO = 9  # numbers that are told without a line
UNSPECIFIED = "Unspecified warning..."
STRING = r'"(?:[^"\\]|\\.)*"'
GENERIC = {"\nERROR: %s\n\n", "\n\nERROR: Line %d: %s\n", "\nWARNING: %s", "\n\nWARNING: Line %d: %s\n"}


def literal(text):
    """The text of C string literals that stand one behind the other."""
    return "".join(json.loads(part) for part in re.findall(STRING, text))


def catalogue():
    """The texts of src/base/catalogue.cc: errors by number, warnings by number."""
    source = (ROOT / "src/base/catalogue.cc").read_text(encoding="utf-8")
    rows = re.findall(r"\{(\d+),\s*((?:" + STRING + r"\s*)+)\}", source)
    table = re.search(r"kWarnings\[\] = \{(.*?)\};", source, re.DOTALL).group(1)
    cells = re.findall(STRING + "|kUnspecifiedWarning", table)
    warnings = [literal(cell) if cell.startswith('"') else UNSPECIFIED for cell in cells]
    return {int(number): literal(text) for number, text in rows}, dict(enumerate(warnings, 1))


def line_told(entry):
    """The number of the line that the entry's message names."""
    return first_line(entry["frame"]) + entry["line"] - 1


def as_printed(entry, kind):
    """The bytes of a numbered message."""
    if entry["number"] <= SHORT_FORM_UP_TO:
        return f"\n{kind}: {entry['text']}" + ("\n\n" if kind == "ERROR" else "")
    return f"\n\n{kind}: Line {line_told(entry)}: {entry['text']}\n"


def said_warnings(result, warnings):
    """The numbers of the warnings that a run has told."""
    return {n for n, text in warnings.items() if text != UNSPECIFIED and f": {text}" in result.stderr}


def raised(entries):
    return [entry for entry in entries if "mistake" in entry]


class MessagesTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.errors, cls.warnings = catalogue()

    def expect_right(self, entry, shown):
        """What is right runs to its end without the message, and without any warning that is not announced."""
        result = run_lines(KORVO, entry, entry["right"])
        self.assertEqual(result.status, 0, result.stderr)
        self.assertNotIn(shown, result.stderr + result.stdout)
        also = set(entry.get("alsoRight", []))
        self.assertEqual(said_warnings(result, self.warnings), also, result.stderr)
        self.assertEqual(complaints(result), (0, len(also)))

    def expect_mistake(self, entry, shown, status, told):
        """The mistake ends with the status and says the message; `told` is how many errors it tells."""
        result = run_lines(KORVO, entry, entry["mistake"])
        self.assertEqual(result.status, status, result.stderr)
        self.assertIn(shown, result.stdout if entry.get("stream") == "stdout" else result.stderr)
        self.assertEqual(complaints(result)[0], told, result.stderr)
        return result

    def test_the_catalogue_is_complete(self):
        for kind, texts in ("errors", self.errors), ("warnings", self.warnings):
            entries = MESSAGES[kind]
            with self.subTest(kind):
                self.assertEqual([entry["number"] for entry in entries], sorted(texts))
                self.assertEqual([entry["text"] for entry in entries], [texts[n] for n in sorted(texts)])

    def test_every_entry_has_a_mistake_or_a_reason(self):
        told = {"when", "usually", "frame", "mistake", "right"}
        for entry in MESSAGES["errors"] + MESSAGES["warnings"] + MESSAGES["others"]:
            with self.subTest(entry.get("number", entry.get("id"))):
                self.assertIn(set(entry) & (told | {"reason"}), [told, {"reason"}])
                self.assertTrue(all(entry[key] for key in set(entry) & (told | {"reason", "text"})))
                self.assertNotEqual(entry.get("mistake", "a"), entry.get("right", "b"))

    def test_errors(self):
        for entry in raised(MESSAGES["errors"]):
            with self.subTest(entry["number"]):
                shown = as_printed(entry, "ERROR")
                result = self.expect_mistake(entry, shown, 1, 1)
                self.assertEqual(said_warnings(result, self.warnings), set(entry.get("also", [])), result.stderr)
                self.expect_right(entry, shown)

    def test_warnings(self):
        for entry in raised(MESSAGES["warnings"]):
            with self.subTest(entry["number"]):
                shown = as_printed(entry, "WARNING")
                result = self.expect_mistake(entry, shown, 0, 0)
                also = {entry["number"], *entry.get("also", [])}
                self.assertEqual(said_warnings(result, self.warnings), also, result.stderr)
                self.expect_right(entry, shown)

    def test_others(self):
        for entry in raised(MESSAGES["others"]):
            with self.subTest(entry["id"]):
                is_error = entry["kind"] == "error"
                has_word = is_error and "ERROR: " in entry["shown"].upper()
                result = self.expect_mistake(entry, entry["shown"], 1 if is_error else 0, 1 if has_word else 0)
                self.assertEqual(said_warnings(result, self.warnings), set(entry.get("also", [])), result.stderr)
                self.expect_right(entry, entry["shown"])

    def test_what_is_shown_is_the_text(self):
        for entry in raised(MESSAGES["others"]):
            with self.subTest(entry["id"]):
                pattern = re.escape(entry["text"]).replace("%d", r"\d+").replace("%s", ".+")
                self.assertRegex(entry["shown"], pattern)

    def test_ids_are_unique(self):
        ids = [entry["id"] for entry in MESSAGES["others"]]
        self.assertEqual(len(ids), len(set(ids)))

    def test_every_message_of_the_source_has_an_entry(self):
        """Texts with ERROR or WARNING that are printed directly, not through the catalogue."""
        texts = [entry["text"] for entry in MESSAGES["others"]]
        found = set()
        for path in sorted((ROOT / "src").rglob("*.cc")):
            source = path.read_text(encoding="utf-8")
            found |= {literal(text) for text in re.findall(STRING, source) if re.search(r"(?i)(error|warning): ", text)}
        found -= GENERIC
        self.assertTrue(found)
        for text in found:
            with self.subTest(text):
                core = re.sub(r"^\s*(?i:error|warning): (Line %d: )?", "", text).strip()
                core = core.replace("There is no %s", "There is no macro").replace("beats = %s", "beats = 10000.000000")
                core = core.replace("(3 - %d)", "(3 - 128)")
                self.assertTrue(any(known.startswith(core) for known in texts), core)


if __name__ == "__main__":
    KORVO = sys.argv.pop(1)
    unittest.main()
