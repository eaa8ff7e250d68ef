"""The goals: what is measured against what, and the bar for it."""

import shutil
import sys
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

import pieces
from measure import Command

HERE = Path(__file__).resolve().parent
TINY_RUNS = 200  # starts that make one figure of the smallest piece


@dataclass(frozen=True)
class Goal:
    """The ratio of two commands for a piece of some size, and its bar. Instructions are counted for a smaller one."""

    what: str
    first: Callable[[int], Command]
    second: Callable[[int], Command]
    size: int
    limit: float
    at_least: bool = False
    counted_size: int = 0  # 0: instructions say nothing here

    def met(self, ratio):
        return ratio >= self.limit if self.at_least else ratio <= self.limit

    def bar(self):
        return f"{'at least' if self.at_least else 'at most'} {self.limit:g}"


class Workshop:
    """The programs, and commands that let them work on a piece of a size in a folder."""

    def __init__(self, tools, before, folder):
        self.tools = Path(tools)  # the floors, the tiny program, Strudel
        self.korvo = str(self.tools.parent / "release" / "korvo")
        self.before = before and str(before)
        self.folder = Path(folder)

    def path(self, name):
        return str(self.folder / name)

    def piece(self, make, size):
        path = self.folder / f"{make.__name__}-{size}.txt"
        if not path.exists():
            path.write_text(make(size))
        return str(path)

    def korvo_on(self, make, times=1):
        """Korvo with a piece: a command for every size (as many times as large)."""
        return lambda size: Command((self.korvo, "-s", self.piece(make, times * size), self.path("korvo.sco")))

    def before_on(self, make):
        return lambda size: Command((self.before, "-s", self.piece(make, size), self.path("before.sco")))

    def score_floor(self, size):
        return Command((str(self.tools / "score_floor"), str(size), self.path("floor.sco")))

    def copy(self, size):
        """Writes the bytes of Korvo's last score once more."""
        return Command(("dd", f"if={self.path('korvo.sco')}", f"of={self.path('copy.sco')}", "bs=256k"))

    def korvo_midi(self, size):
        return Command((self.korvo, "-m", self.piece(pieces.midi, size), self.path("korvo.mid")),
                       self.path("korvo.listing"))

    def midi_floor(self, size):
        return Command((str(self.tools / "midi_floor"), str(size), self.path("floor.mid")), self.path("floor.listing"))

    def python(self, size):
        return Command((sys.executable, str(HERE / "event_stream.py"), str(size), self.path("python.sco")))

    def supercollider(self, size):
        return Command(("sclang", str(HERE / "event_stream.scd"), str(size), self.path("sclang.sco")))

    def strudel(self, size):
        script = shutil.copy(HERE / "event_stream.mjs", self.tools)  # beside its modules
        return Command(("node", script, str(size), self.path("strudel.sco")))

    def korvo_tiny(self, _size):
        return Command((self.korvo, self.piece(pieces.tiny, 0), self.path("tiny.sco")), times=TINY_RUNS)

    def tiny_copy(self, _size):
        return Command((str(self.tools / "tiny"), self.piece(pieces.tiny, 0), self.path("tiny.copy")), times=TINY_RUNS)


def events_goals(shop, events, quick):
    """The common piece: against the program before, the floor and what people use instead."""
    korvo = shop.korvo_on(pieces.common)
    tenth = events // 10
    goals = []
    if shop.before:
        goals.append(Goal("Korvo / the program before", korvo, shop.before_on(pieces.common), events, 0.45,
                          counted_size=tenth))
    goals.append(Goal("Korvo / the floor", korvo, shop.score_floor, events, 1.5, counted_size=tenth))
    if not quick:
        goals += [
            Goal("Python / Korvo", shop.python, korvo, events, 12, at_least=True),
            Goal("SuperCollider patterns / Korvo", shop.supercollider, korvo, events, 40, at_least=True),
            Goal("Strudel patterns / Korvo", shop.strudel, korvo, events, 100, at_least=True),
            Goal("ten times the events / once", shop.korvo_on(pieces.common, 10), korvo, events, 10.5,
                 counted_size=tenth),
        ]
    return goals


def other_goals(shop, events):
    """MIDI, growth, start."""
    tenth = events // 10

    def growth(what, make, size, limit):
        return Goal(f"{what} / once", shop.korvo_on(make, 10), shop.korvo_on(make), size, limit, counted_size=size)

    return [
        Goal(f"MIDI file of {events:,} notes and its listing / a floor", shop.korvo_midi, shop.midi_floor, events, 1.5,
             counted_size=tenth),
        Goal("ten lines, start to exit / a C program that copies them", shop.korvo_tiny, shop.tiny_copy, 0, 1.15,
             counted_size=1),
        growth(f"ten times {max(1, events // 1000):,} data function calls in a p-field", pieces.function_calls,
               max(1, events // 1000), 10.5),
        growth("ten times the macro calls", pieces.macro_calls, max(1, events // 100), 10.5),
        growth("ten times the groups of S2", pieces.groups, tenth, 10.5),
        growth("ten times the insertions by a looped \":\"", pieces.insertions, tenth, 10.5),
    ]


def source_goals(shop, events):
    """The source side against the program before."""
    if not shop.before:
        return []
    tenth = events // 10

    def goal(what, make, size):
        return Goal(f"{size:,} {what} / the program before", shop.korvo_on(make), shop.before_on(make), size, 0.7,
                    counted_size=max(1, size // 10))

    return [
        goal("plain numbers in a p-field", pieces.numbers, events),
        goal("macro calls with arguments", pieces.macro_calls, tenth),
        goal("equations of constants", pieces.equations, tenth),
    ]
