#!/usr/bin/env python3
"""Runs the benchmark and prints its tables.

    bench.py TOOLS_FOLDER [--before KORVO NAME] [--rounds N] [--events N] [--readme README] [--quick]

Every goal is a row: a ratio of times, beside it the ratio of instructions, and its bar. A ratio is the median of so many
pairs that run in turn, since machines are noisy; instructions are counted once, for a smaller piece. With --readme the
tables replace what stands between the bench marks of that file. The exit status is 1 when a goal is missed.

--before    an older program, which some goals are measured against; its name is for the tables
--quick     leaves out the slow companions and the ten million events, and the README as it is
"""

import argparse
import os
import sys
import tempfile
from pathlib import Path

import goals
import measure
import pieces

MOST_BYTES_AN_EVENT = 36  # of memory, for six p-fields


def bytes_of(path):
    return Path(path).read_bytes()


def check_floors(shop, events):
    """The floors count only as long as they write what Korvo writes."""
    for command in (shop.korvo_on(pieces.common)(events), shop.score_floor(events), shop.korvo_midi(events),
                    shop.midi_floor(events)):
        measure.run(command.words, command.messages)
    if bytes_of(shop.path("korvo.sco")) != bytes_of(shop.path("floor.sco")):
        raise RuntimeError("the floor's score is not Korvo's")
    if bytes_of(shop.path("korvo.mid")) != bytes_of(shop.path("floor.mid")):
        raise RuntimeError("the floor's MIDI file is not Korvo's")
    if listed(bytes_of(shop.path("korvo.listing"))) != bytes_of(shop.path("floor.listing")):
        raise RuntimeError("the floor's listing is not Korvo's")


def listed(messages):
    """The listing in Korvo's messages: from the line feed behind the last span to the tab of the last note."""
    begin = messages.find(b"\n", messages.rfind(b"T evaluated at"))
    return messages[begin:messages.rfind(b"\t\n\n", begin) + 1]


class Tables:
    """Rows on their way to the screen and to the README."""

    def __init__(self, rounds):
        self.rounds = rounds
        self.lines = []
        self.missed = []

    def say(self, line=""):
        print(line, flush=True)
        self.lines.append(line)

    def head(self):
        self.say("| what | time | instructions | bar | |")
        self.say("|---|---|---|---|---|")

    def row(self, what, figure, counted="", bar="", good=None):
        verdict = "" if good is None else "met" if good else "missed"
        if good is False:
            self.missed.append(f"{what}: {figure}, wanted {bar}")
        self.say(f"| {what} | {figure} | {counted} | {bar} | {verdict} |")

    def goal(self, goal):
        ratio = measure.time_ratio(goal.first(goal.size), goal.second(goal.size), self.rounds)
        counted = ""
        if goal.counted_size and measure.can_count():
            above, below = (measure.instructions(of(goal.counted_size)) for of in (goal.first, goal.second))
            counted = figure_of(above / below)
        self.row(goal.what, figure_of(ratio), counted, goal.bar(), goal.met(ratio))


def figure_of(ratio):
    return f"{ratio:.1f}" if ratio >= 20 else f"{ratio:.2f}"


def memory_row(tables, shop, events):
    each = measure.peak_bytes(shop.korvo_on(pieces.common)(events)) / events
    tables.row("peak memory, bytes an event", f"{each:.1f}", bar=f"at most {MOST_BYTES_AN_EVENT}",
               good=each <= MOST_BYTES_AN_EVENT)


def copy_row(tables, shop, events):
    """No goal: what of Korvo's time is the machine's for so many bytes."""
    ratio = measure.time_ratio(shop.copy(events), shop.korvo_on(pieces.common)(events), tables.rounds)
    tables.row("a copy of the score / Korvo", figure_of(ratio))


def run_all(tables, shop, events, quick):
    check_floors(shop, events)
    size = os.path.getsize(shop.path("korvo.sco")) / 1e6
    tables.say(f"A score of {events:,} events with six p-fields, {size:.0f} MB, in"
               f" {measure.median_seconds(shop.korvo_on(pieces.common)(events), tables.rounds):.2f} seconds:")
    tables.say()
    tables.head()
    for goal in goals.events_goals(shop, events, quick):
        tables.goal(goal)
    memory_row(tables, shop, events)
    copy_row(tables, shop, events)
    tables.say()
    tables.say("Other work:")
    tables.say()
    tables.head()
    for goal in goals.source_goals(shop, events) + goals.other_goals(shop, events):
        tables.goal(goal)
    tables.say()


def machine():
    model = "unknown processor"
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    return f"{os.cpu_count()} cores, {model}"


def closing_words(rounds, before_name):
    words = f"Times are medians of {rounds} pairs that ran in turn, on {machine()}; instructions are counted by callgrind."
    if before_name:
        words += f" The program before is that of the commit `{before_name}`."
    return f"{words} `./scripts/bench` makes these tables."


def update_readme(path, lines):
    begin, end = "<!-- bench:begin -->", "<!-- bench:end -->"
    text = Path(path).read_text()
    head, rest = text.split(begin, 1)
    tail = rest.split(end, 1)[1]
    body = "\n".join(lines).strip()
    Path(path).write_text(f"{head}{begin}\n{body}\n{end}{tail}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tools")
    parser.add_argument("--before", nargs=2, default=(None, None))
    parser.add_argument("--rounds", type=int, default=9)
    parser.add_argument("--events", type=int, default=1_000_000)
    parser.add_argument("--readme")
    parser.add_argument("--quick", action="store_true")
    arguments = parser.parse_args()
    before, before_name = arguments.before
    measure.leave_no_cores()
    tables = Tables(arguments.rounds)
    with tempfile.TemporaryDirectory(prefix="korvo-bench-") as folder:
        run_all(tables, goals.Workshop(arguments.tools, before, folder), arguments.events, arguments.quick)
    tables.say(closing_words(arguments.rounds, before_name))
    if arguments.readme and not arguments.quick:
        update_readme(arguments.readme, tables.lines)
    for line in tables.missed:
        print(f"missed: {line}", file=sys.stderr)
    return 1 if tables.missed else 0


if __name__ == "__main__":
    sys.exit(main())
