#!/usr/bin/env python3
"""Runs the benchmark and prints its tables.

    bench.py KORVO FLOOR TINY STRUDEL_FOLDER [--rounds N] [--events N] [--readme README] [--quick]

All programs of a table run in turn, several rounds, and each figure is the median; a ratio compares medians of the same
run, since machines are noisy. With --readme the tables replace what stands between the bench marks of that file. The exit
status is 1 when a bar is missed. --quick leaves out the slow companions and the ten million events.
"""

import argparse
import os
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

import piece

HERE = Path(__file__).resolve().parent
SCLANG_ENVIRONMENT = {"QT_QPA_PLATFORM": "offscreen", "QTWEBENGINE_DISABLE_SANDBOX": "1"}
TINY_RUNS = 200  # starts that make one figure of the smallest piece


class Bench:
    def __init__(self, arguments, folder):
        self.arguments = arguments
        self.folder = folder
        self.lines = []
        self.missed = []

    def path(self, name):
        return str(self.folder / name)

    def write(self, name, text):
        (self.folder / name).write_text(text)
        return self.path(name)

    def say(self, line=""):
        print(line, flush=True)
        self.lines.append(line)

    def bar(self, what, ratio, limit, at_least=False):
        """Notes a ratio against its bar and returns the words for the table."""
        good = ratio >= limit if at_least else ratio <= limit
        if not good:
            self.missed.append(f"{what}: {ratio:.2f}, wanted {'at least' if at_least else 'at most'} {limit}")
        return f"{'at least' if at_least else 'at most'} {limit}"


def seconds_of(words, stderr=subprocess.DEVNULL, times=1):
    environment = {**os.environ, **SCLANG_ENVIRONMENT}
    begin = time.perf_counter()
    for _ in range(times):
        subprocess.run(words, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=stderr,
                       env=environment)
    return (time.perf_counter() - begin) / times


def medians(jobs, rounds):
    """jobs: name -> function that gives seconds. One round runs each once."""
    figures = {name: [] for name in jobs}
    for _ in range(rounds):
        for name, job in jobs.items():
            figures[name].append(job())
    return {name: statistics.median(values) for name, values in figures.items()}


def peak_bytes(words):
    """The largest memory of one run of `words`."""
    child = os.fork()
    if child == 0:
        null = os.open(os.devnull, os.O_RDWR)
        for stream in (0, 1, 2):
            os.dup2(null, stream)
        os.execv(words[0], words)
    _, status, usage = os.wait4(child, 0)
    if status != 0:
        raise RuntimeError(f"{words} failed")
    return usage.ru_maxrss * 1024


def common_piece(bench):
    """The common piece against the floor and what people use instead."""
    arguments = bench.arguments
    events = arguments.events
    korvo, floor = arguments.korvo, arguments.floor
    text = bench.write("common.txt", piece.COMMON.format(events=events))
    jobs = {
        "Korvo": lambda: seconds_of([korvo, "-s", text, bench.path("korvo.sco")]),
        "the floor": lambda: seconds_of([floor, str(events), bench.path("floor.sco")]),
    }
    if not arguments.quick:
        strudel = shutil.copy(HERE / "event_stream.mjs", arguments.strudel)
        jobs["Python"] = lambda: seconds_of(
            [sys.executable, str(HERE / "event_stream.py"), str(events), bench.path("python.sco")])
        jobs["SuperCollider patterns"] = lambda: seconds_of(
            ["sclang", str(HERE / "event_stream.scd"), str(events), bench.path("sclang.sco")])
        jobs["Strudel patterns"] = lambda: seconds_of(["node", strudel, str(events), bench.path("strudel.sco")])
    figures = medians(jobs, arguments.rounds)
    if Path(bench.path("korvo.sco")).read_bytes() != Path(bench.path("floor.sco")).read_bytes():
        raise RuntimeError("the floor's score is not Korvo's")
    own = figures["Korvo"]
    bars = {"Python": 5, "SuperCollider patterns": 15, "Strudel patterns": 30}
    bench.say(f"A score of {events:,} events with six p-fields:")
    bench.say()
    bench.say("| program | seconds | against Korvo | bar |")
    bench.say("|---|---|---|---|")
    for name, seconds in figures.items():
        ratio = seconds / own
        words = ""
        if name == "the floor":
            words = f"Korvo {bench.bar('Korvo / floor', own / seconds, 1.5)}"
        elif name in bars:
            words = bench.bar(name, ratio, bars[name], at_least=True)
        bench.say(f"| {name} | {seconds:.3f} | {ratio:.2f} | {words} |")
    bench.say()
    return own


def ratio_row(bench, what, ratio, limit):
    bench.say(f"| {what} | {ratio:.2f} | {bench.bar(what, ratio, limit)} |")


def compare(bench, what, first, second, limit, rounds):
    figures = medians({"first": first, "second": second}, rounds)
    ratio_row(bench, what, figures["first"] / figures["second"], limit)


def growth(bench, what, make, small, times, limit, rounds):
    """The time of a piece `times` as large, for each times one of the small one's."""
    korvo = bench.arguments.korvo
    small_piece = bench.write("small.txt", make(small))
    large_piece = bench.write("large.txt", make(small * times))
    compare(bench, what, lambda: seconds_of([korvo, "-s", large_piece, bench.path("large.sco")]),
            lambda: seconds_of([korvo, "-s", small_piece, bench.path("small.sco")]), limit, rounds)


def midi_with_listing(bench, text):
    def job():
        with open(bench.path("listing.txt"), "wb") as listing:
            return seconds_of([bench.arguments.korvo, "-m", text, bench.path("notes.mid")], stderr=listing)
    return job


def further_bars(bench):
    arguments = bench.arguments
    korvo, events, rounds = arguments.korvo, arguments.events, arguments.rounds
    bench.say("| what | ratio | bar |")
    bench.say("|---|---|---|")
    if not arguments.quick:
        growth(bench, "ten times the events, time", lambda n: piece.COMMON.format(events=n), events, 10, 10.5,
               max(3, rounds // 2))
    text = bench.write("memory.txt", piece.COMMON.format(events=events))
    peak = peak_bytes([korvo, "-s", text, bench.path("memory.sco")])
    ratio_row(bench, f"peak memory of {events:,} events, against 48 bytes an event and 8 MB",
              peak / (48 * events + 8 * 2**20), 1)
    tiny = bench.write("tiny.txt", piece.TINY)
    compare(bench, "ten lines, start to exit, against a C program that only copies",
            lambda: seconds_of([korvo, tiny, bench.path("tiny.sco")], times=TINY_RUNS),
            lambda: seconds_of([arguments.tiny, tiny, bench.path("tiny.copy")], times=TINY_RUNS), 2, rounds)
    midi = bench.write("midi.txt", piece.MIDI.format(events=events))
    compare(bench, f"MIDI file of {events:,} notes, a hundred at once, listing to a file, against its score",
            midi_with_listing(bench, midi),
            lambda: seconds_of([korvo, midi, bench.path("notes.sco")]), 2.5, rounds)
    lines = max(1000, events // 10)
    called = bench.write("macros.txt", piece.macros(lines))
    written = bench.write("written.txt", piece.written_out(lines))
    compare(bench, f"{lines:,} lines of macro calls, against the same written out",
            lambda: seconds_of([korvo, "-s", called, bench.path("macros.sco")]),
            lambda: seconds_of([korvo, "-s", written, bench.path("written.sco")]), 3, rounds)
    growth(bench, "ten times the lines with macros and constants, time", piece.macros, 10000, 10, 12, rounds)
    growth(bench, "10,000 data function calls in a p-field against 1,000, time", piece.calls, 1000, 10, 12, rounds)
    growth(bench, "ten times the groups of S2, time", piece.groups, 100000, 10, 12, rounds)
    growth(bench, "ten times the insertions by a looped \":\", time", piece.insertions, 100000, 10, 12, rounds)
    bench.say()


def machine():
    model = "unknown processor"
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    return f"{os.cpu_count()} cores, {model}"


def update_readme(path, lines):
    begin, end = "<!-- bench:begin -->", "<!-- bench:end -->"
    text = Path(path).read_text()
    head, rest = text.split(begin, 1)
    tail = rest.split(end, 1)[1]
    body = "\n".join(lines).strip()
    Path(path).write_text(f"{head}{begin}\n{body}\n{end}{tail}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("korvo")
    parser.add_argument("floor")
    parser.add_argument("tiny")
    parser.add_argument("strudel")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--events", type=int, default=1_000_000)
    parser.add_argument("--readme")
    parser.add_argument("--quick", action="store_true")
    arguments = parser.parse_args()
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    with tempfile.TemporaryDirectory(prefix="korvo-bench-") as folder:
        bench = Bench(arguments, Path(folder))
        common_piece(bench)
        further_bars(bench)
        bench.say(f"Medians of {arguments.rounds} rounds on {machine()}. `./scripts/bench` makes these tables.")
    if arguments.readme:
        update_readme(arguments.readme, bench.lines)
    for line in bench.missed:
        print(f"missed: {line}", file=sys.stderr)
    return 1 if bench.missed else 0


sys.exit(main())
