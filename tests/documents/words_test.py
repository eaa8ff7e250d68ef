#!/usr/bin/env python3
"""docs/words.json against the program: every name, letter and option that the sources know is there, nothing is there
that they do not know, and a tiny piece with each word runs and gives what is stated.

    words_test.py KORVO_BINARY
"""

import json
import re
import sys
import unittest

from frames import ROOT, complaints, run_lines

KORVO = None

WORDS = json.loads((ROOT / "docs/words.json").read_text(encoding="utf-8"))
KNOWN_PLACES = {"global", "block", "p2", "p3", "p4", "anywhere", "command"}


def words_of(group):
    return [word["word"] for word in WORDS["words"] if group in word["groups"]]


def source(path):
    return (ROOT / "src" / path).read_text(encoding="utf-8")


def found(path, pattern):
    """What a pattern captures in a source; something must be there."""
    matches = re.findall(pattern, source(path))
    assert matches, f"nothing in {path} looks like {pattern}"
    return matches


def table_names(path, table):
    """The k-names that begin the rows of a table, in lower case and without their k."""
    body = re.search(re.escape(table) + r"\[\] = \{(.*?)\n?\};", source(path), re.DOTALL).group(1)
    return [name.lower() for name in re.findall(r"\{k([A-Z][A-Z0-9])\b", body)]


def columns(score):
    """The p-fields of a score, an event a row, P1 first; the instrument keeps its i."""
    return [line.split() for line in score.splitlines() if re.match(r"i\d", line)]


class WordsTest(unittest.TestCase):
    def test_every_name_of_the_lookup_is_there(self):
        known = {word["word"].lower() for word in WORDS["words"]}
        names = {first + second for first, second in found("reader/names.cc", r"\{'(.)', '(.)', k\w+\}")}
        self.assertEqual(names - known, set())
        two_letters = ["statements", "modes", "kinds", "functions", "settings"]
        written = {word.lower() for group in two_letters for word in words_of(group) if re.fullmatch(r"\w\w", word)}
        self.assertEqual(written, names)

    def test_statements(self):
        names = re.search(r"kStatementNames\[\] = \{(.*?)\}", source("global/scanner.cc")).group(1)
        expected = set(re.findall(r'"(\w\w)"', names)) - {"pf"}  # known there only to be refused
        expected |= {">", "#define", "#undef", "#const", "#if", "#endif", "#include"}
        self.assertEqual(set(words_of("statements")), expected)

    def test_tables(self):
        self.assertEqual(set(words_of("modes")), set(table_names("ddf/input_modes.cc", "kModes")))
        self.assertEqual(words_of("kinds"), table_names("output/output_kinds.cc", "kKinds"))
        functions = {*table_names("ddf/generator_table.cc", "kGenerators"), "s2"}
        self.assertEqual({word.lower() for word in words_of("functions")}, functions)
        self.assertEqual(set(words_of("settings")), set(table_names("ddf/call.cc", "kSettings")) - {"s2"})

    def test_letters(self):
        letters = r'k(?:Letters|Notes)\[\] = "(\w+)"'
        self.assertEqual("".join(words_of("distributions")), found("ddf/ranges.cc", letters)[0])
        self.assertEqual("".join(words_of("curves")), found("global/curve.cc", letters)[0])
        self.assertEqual("".join(words_of("notes")), found("ddf/input_modes.cc", letters)[0] + "r")
        marks = found("ddf/input_modes.cc", r"case '(.)':")
        self.assertEqual(set(words_of("marks")), {*marks, "4"})
        in_expressions = re.findall(r"c == '(.)'", found("ddf/expression.cc", r"isOperator\(char c\) (.*)")[0])
        in_equations = list(found("preproc/equation.cc", r'kOperators\("([^"]+)"\)')[0])
        self.assertEqual(words_of("operators"), in_expressions)
        self.assertEqual(words_of("operators"), in_equations)

    def test_options(self):
        letters = found("program/arguments.cc", r"case '(\w)':")
        self.assertEqual(sorted(words_of("options")), sorted("-" + letter for letter in letters))

    def test_every_word_is_complete(self):
        groups = {group["id"]: group for group in WORDS["groups"]}
        for word in WORDS["words"]:
            with self.subTest(word["word"], groups=word["groups"]):
                self.assertTrue(word["help"] and word["forms"] and word["groups"] and word["where"])
                self.assertTrue(set(word["groups"]) <= set(groups))
                self.assertTrue(set(word["where"]) <= KNOWN_PLACES)
                self.assertNotIn("\n", word["help"])
        for name in groups:
            with self.subTest(name):
                words = words_of(name)
                self.assertTrue(words)
                self.assertEqual(len(words), len(set(words)))

    def expect_column(self, example, score):
        rows = columns(score)
        column = [row[example["p"] - 1] if len(row) >= example["p"] else "" for row in rows]
        if "between" in example:
            low, high = example["between"]
            self.assertTrue(column)
            self.assertTrue(all(low <= float(value) <= high for value in column), column)
        else:
            self.assertEqual(column[: len(example["gives"])], example["gives"])

    def test_every_example(self):
        for word in WORDS["words"]:
            example = word["example"]
            with self.subTest(word["word"], groups=word["groups"]):
                result = run_lines(KORVO, example, example["lines"])
                self.assertEqual(result.status, 0, result.stderr)
                errors, warnings = complaints(result)
                self.assertEqual((errors, warnings > 0), (0, "also" in example), result.stderr)
                self.assertTrue({"p", "writes", "columns", "stderr"} & set(example))
                if "p" in example:
                    self.expect_column(example, result.score)
                if "columns" in example:
                    self.assertEqual({len(row) for row in columns(result.score)}, {example["columns"]})
                self.assertIn(example.get("writes", ""), result.score)
                self.assertIn(example.get("stderr", ""), result.stderr)


if __name__ == "__main__":
    KORVO = sys.argv.pop(1)
    unittest.main()
