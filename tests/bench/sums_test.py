#!/usr/bin/env python3
"""Tests how the benchmark judges: bars, medians of pairs, its tables, with stand-ins for programs and clock."""

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "bench"))

import bench  # noqa: E402
import goals  # noqa: E402
import measure  # noqa: E402
import pieces  # noqa: E402


def goal(limit, at_least=False, counted_size=0):
    return goals.Goal("this / that", lambda size: f"this {size}", lambda size: f"that {size}", 40, limit, at_least,
                      counted_size)


def quiet():
    return contextlib.redirect_stdout(io.StringIO())


class Bars(unittest.TestCase):
    def test_a_bar_itself_is_met(self):
        for limit, at_least, ratio, met in ((2, False, 2, True), (2, False, 2.001, False), (2, False, 0.1, True),
                                            (2, True, 2, True), (2, True, 1.999, False), (2, True, 30, True)):
            with self.subTest(at_least=at_least, ratio=ratio):
                self.assertEqual(goal(limit, at_least).met(ratio), met)

    def test_bars_are_written_short(self):
        self.assertEqual(goal(0.45).bar(), "at most 0.45")
        self.assertEqual(goal(12, at_least=True).bar(), "at least 12")


class Pairs(unittest.TestCase):
    def ratio(self, figures, rounds):
        """Figures are given in the order in which the programs run."""
        left = list(figures)
        ran = []

        def seconds(command):
            ran.append(command)
            return left.pop(0)

        with mock.patch.object(measure, "seconds", seconds):
            result = measure.time_ratio("a", "b", rounds)
        self.assertEqual(left, [])
        return result, "".join(ran)

    def test_the_median_of_the_ratios_of_pairs_counts(self):
        # 1/2, 8/1 (the second ran first), 9/3: the ratios are 0.5, 8 and 3. Medians of each would give 8/2.
        self.assertEqual(self.ratio([1, 2, 1, 8, 9, 3], 3)[0], 3)

    def test_the_two_of_a_pair_take_turns(self):
        self.assertEqual(self.ratio([1] * 6, 3)[1], "abbaab")


class Tables(unittest.TestCase):
    def table(self, ratio, a_goal, counts=None):
        tables = bench.Tables(9)
        with quiet(), mock.patch.object(measure, "time_ratio", lambda first, second, rounds: ratio), \
                mock.patch.object(measure, "can_count", lambda: counts is not None), \
                mock.patch.object(measure, "instructions", lambda command: counts[command]):
            tables.goal(a_goal)
        return tables

    def test_a_goal_that_is_met(self):
        tables = self.table(1.25, goal(1.5))
        self.assertEqual(tables.lines, ["| this / that | 1.25 |  | at most 1.5 | met |"])
        self.assertEqual(tables.missed, [])

    def test_a_goal_that_is_missed(self):
        tables = self.table(1.55, goal(1.5))
        self.assertEqual(tables.lines, ["| this / that | 1.55 |  | at most 1.5 | missed |"])
        self.assertEqual(tables.missed, ["this / that: 1.55, wanted at most 1.5"])

    def test_instructions_are_counted_for_a_smaller_piece(self):
        counts = {"this 4": 300, "that 4": 200}
        self.assertEqual(self.table(1.25, goal(1.5, counted_size=4), counts).lines,
                         ["| this / that | 1.25 | 1.50 | at most 1.5 | met |"])

    def test_without_valgrind_their_column_is_empty(self):
        self.assertEqual(self.table(1.25, goal(1.5, counted_size=4)).lines,
                         ["| this / that | 1.25 |  | at most 1.5 | met |"])

    def test_the_readme_keeps_what_is_not_the_benchs(self):
        with tempfile.TemporaryDirectory() as folder:
            readme = Path(folder) / "README.md"
            readme.write_text("a\n<!-- bench:begin -->\nold\n<!-- bench:end -->\nb\n")
            bench.update_readme(readme, ["", "new", "table", ""])
            self.assertEqual(readme.read_text(), "a\n<!-- bench:begin -->\nnew\ntable\n<!-- bench:end -->\nb\n")


class Listing(unittest.TestCase):
    def test_it_stands_between_spans_and_summary(self):
        listing = b"\n   0.00\tON\tV: 1\t\n   1.00\tOFF\tV: 2\t"
        said = b"banner\n\n\tLine 2: T evaluated at = 1\n\tLine 3: T evaluated at = 2" + listing + b"\n\n2 events\n\n"
        self.assertEqual(bench.listed(said), listing)


class Choice(unittest.TestCase):
    def whats(self, before, quick):
        shop = goals.Workshop("build/bench", before, "/nowhere")
        chosen = goals.events_goals(shop, 1000, quick) + goals.source_goals(shop, 1000) + goals.other_goals(shop, 1000)
        return [one.what for one in chosen]

    def test_without_the_program_before_its_rows_are_left_out(self):
        with_it, without = self.whats("korvo", False), self.whats(None, False)
        self.assertEqual([what for what in with_it if "program before" not in what], without)
        self.assertEqual(len(with_it) - len(without), 4)

    def test_quick_leaves_out_what_is_slow(self):
        left_out = set(self.whats(None, False)) - set(self.whats(None, True))
        self.assertEqual(len(left_out), 4)
        self.assertFalse(any("floor" in what for what in left_out))


class Pieces(unittest.TestCase):
    def test_a_plain_number_takes_eight_bytes(self):
        difference = len(pieces.numbers(2000)) - len(pieces.numbers(1000))
        self.assertEqual(difference, 8 * 1000)


if __name__ == "__main__":
    unittest.main()
