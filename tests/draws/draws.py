#!/usr/bin/env python3
"""What the data functions draw, in which order, and what they make of it; worked out once more, apart from the program.

    draws.py KORVO_BINARY     runs the pieces of pieces.py and some random ones, and compares the scores byte for byte

A seed must give the same score for ever, so the order of the draws and the precision of each step are part of what
Korvo is. This file is the second opinion: glibc's `rand`, single precision by hand, the seven distributions, the data
functions, and as much of an i-block around them as is needed to get from a piece to its score. A piece is not read from
text here; it is put together from objects that know both their text and their effect (see the end of the file).
"""

import argparse
import math
import os
import struct
import subprocess
import sys
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

# ---- numbers


def single(x):
    """The nearest single-precision number."""
    return struct.unpack("f", struct.pack("f", x))[0]


def real(text):
    """A real number as the language reads it: digits gathered in single precision, then one division."""
    digits, _, fraction = text.lstrip("+-").partition(".")
    value = 0.0
    for digit in digits + fraction:
        value = single(single(value * 10) + int(digit))
    value = single(value / 10 ** len(fraction))
    return -value if text.startswith("-") else value


def nearest(x):
    """The nearest integer, halves up."""
    above, below = math.ceil(x), math.floor(x)
    return float(below if above - x > x - below else above)


# ---- the generator


class Rand:
    """glibc's rand: additive feedback over 31 words (r[i] = r[i-3] + r[i-31]), the lowest bit dropped."""

    def __init__(self):
        self.seed(1)

    def seed(self, seed):
        words = [seed or 1]
        for _ in range(30):
            words.append(16807 * words[-1] % 2147483647)
        self.words = words[3:] + words[:3]
        for _ in range(310):
            self.next()

    def next(self):
        word = (self.words[-31] + self.words[-3]) & 0xFFFFFFFF
        self.words.append(word)
        del self.words[0]
        return word >> 1

    def unit(self):
        """A draw in 0..1, in single precision: both ends are possible."""
        return single(single(self.next()) * single(4.656613e-10))

    def unit_above_zero(self):
        u = self.unit()
        while u == 0:
            u = self.unit()
        return u


# ---- the seven distributions: each gives the place in the range, 0..1


def uniform(rand):
    return rand.unit()


def low_exponential(rand):
    w = single(math.log(rand.unit_above_zero()) / single(-6.9078))
    return min(w, 1.0)


def high_exponential(rand):
    return single(1 - low_exponential(rand))


def triangle(rand):
    u1 = rand.unit()
    u2 = rand.unit()
    return single(single(u1 + u2) / 2)


def gaussian(rand):
    total = 0.0
    for _ in range(12):
        total = single(total + rand.unit())
    return min(max(single((total - 6) * 0.155 + 0.5), 0.0), 1.0)


def double_exponential(rand):
    t = single(2 * rand.unit())
    while t in (0.0, 2.0):
        t = single(2 * rand.unit())
    sign = 1
    if t > 1:
        t, sign = single(2 - t), -1
    w = single(math.log(t) * sign / 14)
    return single(min(max(w, -0.5), 0.5) + 0.5)


def beta(rand):
    while True:
        y1 = single(math.pow(rand.unit_above_zero(), 5))
        y2 = single(math.pow(rand.unit_above_zero(), 5))
        total = single(y1 + y2)
        if total <= 1:
            return single(y1 / total)


DISTRIBUTIONS = {
    "f": uniform,
    "l": low_exponential,
    "h": high_exponential,
    "t": triangle,
    "g": gaussian,
    "x": double_exponential,
    "b": beta,
}


# ---- values


NOTES = {"c": 0, "d": 2, "e": 4, "f": 5, "g": 7, "a": 9, "b": 11}


def rhythm(text):
    total = 0.0
    for part in text.lstrip("-").split(","):
        dots = len(part) - len(part.rstrip("."))
        amount = single(4 / int(part.rstrip(".")))
        total = single(total + amount)
        for _ in range(dots):
            amount = single(amount / 2)
            total = single(total + amount)
    return -total if text.startswith("-") else total


def note(text):
    if text == "r":
        return -1.0
    name = NOTES[text[0]]
    marks = {"s": 1, "f": -1, "n": 0, "+": 0.5, "-": -0.5}
    for mark in text[1:-1]:
        name += marks[mark]
    return float(name + 12 * int(text[-1]))


def octave_pitch_class(text):
    octave, _, fraction = text.partition(".")
    return single(single(single(real("0." + fraction) * 100) + int(octave) * 12) - 48)


VALUE_READERS = {
    "re": real,
    "in": lambda text: nearest(real(text)),
    "db": lambda text: float(math.trunc(math.exp(int(real(text)) * 0.11512925))),
    "rh": rhythm,
    "no": note,
    "op": octave_pitch_class,
}


# ---- curves, and the tempo map that uses the same shapes


def shape(code, t, exponent):
    """The share of the way, for t from 0 to 1."""
    if code == 0:
        return t
    if code in (1, 2, 3):
        return math.pow(t, {1: 2.0, 2: 0.5, 3: exponent}[code])
    sine = math.sin(t * (math.pi / 2))
    return sine if code == 4 else t - (sine - t)


def along_time(code, x, length, start, end, exponent):
    if x >= length:
        return end
    if x <= 0:
        return start
    if code > 5:
        return end
    return single(start + (end - start) * shape(code, x / length, exponent))


def along_events(code, i, n, start, end, exponent):
    if n == 1:
        return start
    if i > n - 1:
        return end
    return single(start + (end - start) * shape(code, i / (n - 1), exponent))


@dataclass
class Tempo:
    start: float
    end: float
    start_tempo: float
    end_tempo: float
    code: int
    exponent: float


class TempoMap:
    def __init__(self):
        self.tempos = [Tempo(0, 0, 60, 60, 1, 0)]
        self.current = 60.0

    def define(self, text):
        terms = text.split()
        if len(terms) == 1:
            self.tempos[0] = Tempo(0, 1000, real(terms[0]), real(terms[0]), 0, self.tempos[0].exponent)
            return
        code, exponent = (curve(terms[4]) if len(terms) > 4 else (1, 1.0))
        tempo = Tempo(*map(real, terms[:4]), code, exponent)
        if tempo.start == 0:
            self.tempos[0] = tempo
        else:
            self.tempos.append(tempo)

    def at(self, beat):
        found = self.tempos[0]
        if beat >= found.start:
            for tempo in self.tempos[1:]:
                if tempo.start > beat:
                    break
                found = tempo
        return along_time(
            found.code,
            single(beat - found.start),
            single(found.end - found.start),
            found.start_tempo,
            found.end_tempo,
            found.exponent,
        )

    def seconds(self, beats, clock):
        self.current = self.at(clock)
        return single(single(60 / self.current) * beats)


def curve(text):
    """A curve's code and exponent."""
    if not text:
        return 0, 1.0
    return "felvsc".index(text[0]), real(text[1:]) if text[0] == "v" else 1.0


# ---- the run, its blocks and p-fields


@dataclass
class Event:
    together: bool  # starts with the event before it
    start: float
    duration: float  # P2 leaves the rhythm here, P3 makes the duration of it
    beat: float
    values: dict = field(default_factory=dict)

    def get(self, number):
        return {2: self.start, 3: self.duration}.get(number, self.values.get(number, 0.0))


class Run:
    """What lasts from block to block."""

    def __init__(self):
        self.rand = Rand()
        self.tempo = TempoMap()
        self.rd = 0.0
        self.score = ""
        self.stdout = ""
        self.blocks = 0

    def deviate(self, value, share):
        """Always takes its draw."""
        width = single(value * share)
        return single(single(value - single(width / 2)) + single(width * self.rand.unit()))


class Pfield:
    """A p-field while it is being made; `index` is the next event."""

    def __init__(self, run, block, number):
        self.run = run
        self.block = block
        self.number = number
        self.mode = "re"
        self.quarter_tones = False
        self.dv = 0.0
        self.pf = 1.0
        self.last = 0.0
        self.index = 0
        self.pending = False  # ":" was read, the next value is inserted
        self.copied = False  # the next event is such a copy
        self.recording = False
        self.loop = []  # (value, inserted)
        self.over = False  # the block is full, the rest is skipped

    # -- how much there is

    def full(self):
        if self.number == 2 and self.block.beats is not None:
            return self.block.clock >= self.block.end_of_clock
        return self.index >= self.block.target

    def count_of(self, span):
        """The number of events that a span covers from here on; from P3 on."""
        if span < 0:
            return math.trunc(-span)
        rest = self.block.events[self.index : self.block.target]
        if not rest:
            return 0
        end = single(rest[0].beat + span)
        return sum(event.beat <= end for event in rest)

    # -- single values

    def read(self, text):
        return self.last if text == "z" else VALUE_READERS[self.mode](text)

    def record(self, value, inserted):
        if self.recording:
            self.loop.append((value, inserted))

    def insert_copy(self):
        """Behind the event just filled."""
        before = self.block.events[self.index - 1]
        copy = Event(True, before.start, before.duration, before.beat, dict(before.values))
        self.block.events.insert(self.index, copy)
        self.pending = False
        self.copied = True

    def next_event(self):
        """The event to fill, and whether it was inserted for this value."""
        if self.pending:
            self.insert_copy()
        inserted, self.copied = self.copied, False
        return self.block.events[self.index], inserted

    def make_event(self, value):
        """P2: one rhythm, one event. Gives the rhythm in seconds, deviated."""
        block = self.block
        seconds = self.run.tempo.seconds(value, block.clock)
        seconds = self.run.deviate(seconds, single(self.run.rd + self.dv))
        inserted = self.pending and bool(block.events)
        self.pending = False
        if not block.events:
            event = Event(False, block.start, seconds, block.clock)
        elif inserted:
            before = block.events[-1]
            event = Event(True, before.start, seconds, before.beat)
        else:
            event = Event(
                False, single(block.events[-1].start + block.last_rhythm), seconds, block.clock
            )
        block.events.append(event)
        block.last_rhythm = abs(seconds)
        block.clock = single(block.clock + abs(value))
        self.record(value, inserted)
        self.index += 1
        return seconds

    def fill_duration(self, value):
        """P3."""
        event, inserted = self.next_event()
        self.record(value, inserted)
        size = abs(value)
        code = next(c for c in (1000, 400, 300, 200, 0) if size >= c)
        x = math.copysign(single(size - code), value)
        x = self.run.deviate(x, self.run.rd)
        x = self.run.deviate(x, self.dv)
        r = event.duration
        result = {
            0: lambda: x * r,
            200: lambda: x + r,
            300: lambda: r - x,
            400: lambda: x * single(60 / self.run.tempo.current),
            1000: lambda: x,
        }[code]()
        event.duration = single(single(result) * self.pf)
        self.index += 1

    def fill_parameter(self, value, from_function=False):
        """P4 and above."""
        event, inserted = self.next_event()
        negative = value < 0
        if not from_function:
            self.record(value, inserted)
        value = self.run.deviate(value, single(self.run.rd + self.dv))
        if self.mode in ("no", "op") and not self.quarter_tones:
            value = nearest(value)
        if from_function:
            self.record(value, inserted)
        elif self.mode == "no" and negative:
            event.duration = -event.duration
        event.values[self.number] = single(value * self.pf)
        self.index += 1

    def apply(self, value, from_function=False):
        if self.number == 2:
            self.make_event(value)
        elif self.number == 3:
            self.fill_duration(value)
        else:
            self.fill_parameter(value, from_function)

    # -- the items of the text

    def take(self, item):
        if self.over:
            return
        if not isinstance(item, str):
            item.apply(self)
            return
        for word in item.split():
            self.take_word(word)

    def take_word(self, word):
        if self.over:
            return
        if word in ("re7", "in", "db", "no", "op", "rh", "nox", "opx"):
            self.mode = word[:2]
            self.quarter_tones = word.endswith("x")
        elif word in "<>":
            self.recording = word == "<"
        elif word == ":":
            if self.index > 0:
                self.pending = True
                if self.number > 2:
                    self.block.target += 1
        elif word == "/":
            self.over = self.full()
            if not self.over:
                self.apply(self.last)
        elif self.full():
            self.over = True
        else:
            self.last = self.read(word)
            self.apply(self.last)

    def complete(self):
        """Holds the last value, or replays the loop, until the block is full."""
        block = self.block
        grows = not (self.number == 2 and block.beats is not None)
        loop = self.loop if any(not inserted for _, inserted in self.loop) else []
        if loop and self.number == 2:
            self.pending = False  # what a ":" at the end asked for is forgotten
        self.recording = False
        grown = False
        if loop and loop[0][1] and grows:
            block.target += 1
            grown = True
        turn = 0
        while not self.full():
            value = self.last
            if loop:
                value, inserted = loop[turn % len(loop)]
                self.pending = self.pending or inserted
                if inserted and grows and not grown:
                    block.target += 1
                grown = False
                turn += 1
            self.apply(value)

    # -- choosing

    def choose(self, shares):
        """The index of a segment. Takes a draw for a single segment, too."""
        u = self.run.rand.unit()
        total = 0.0
        for i, share in enumerate(shares):
            total = single(total + share)
            if total >= u:
                return i
        return len(shares) - 1

    def span(self, text):
        if not text.startswith("T"):
            return real(text)
        share = real(text[2:]) if text != "T" else 1.0
        if self.block.beats is not None:
            return single(share * self.block.beats)
        return -nearest(single(share * self.block.target))


# ---- data functions. Each object is one call: `text` writes it, `apply` runs it.


class Range:
    """"5", "[1 5]" or "[l 1 5]"."""

    def __init__(self, pfield, text):
        words = text.strip("[]").split()
        self.distribution = uniform
        if text.startswith("[") and words[0] in DISTRIBUTIONS:
            self.distribution = DISTRIBUTIONS[words.pop(0)]
        values = [pfield.read(word) for word in words]
        self.low, self.high = min(values), max(values)

    def draw(self, rand):
        return single(self.low + single(single(self.high - self.low) * self.distribution(rand)))


class Walk:
    def __init__(self, pfield, bounds, window, start):
        self.low, self.high = sorted(pfield.read(word) for word in bounds.strip("[]").split())
        self.window = real(window)
        width = single(self.high - self.low)
        self.place = single(single(pfield.read(start) - self.low) / width) if width else 0.0

    def step(self, rand):
        value = single(self.low + single(single(self.high - self.low) * self.place))
        half = single(self.window / 2)
        bottom, top = single(self.place - half), single(self.place + half)
        if bottom >= 0 and top > 1:
            bottom, top = single(1 - self.window), 1.0
        elif bottom < 0:
            bottom, top = 0.0, self.window
        u = rand.unit()
        if self.window < 0.00001:
            return value  # the one draw is spent, the place stays
        while not bottom <= u <= top:
            u = rand.unit()
        self.place = u
        return value


class Selection:
    """Draws an index below `size`: "" freely, "*" no index again before all had their turn, "x" never twice in a row."""

    def __init__(self, mode, size):
        self.mode = mode if size > 1 else ""
        self.size = size
        self.used = set()
        self.before = -1

    def draw(self, rand):
        if self.mode == "*" and len(self.used) == self.size:
            self.used.clear()
        index = rand.next() % self.size
        while (self.mode == "*" and index in self.used) or (
            self.mode == "x" and index == self.before
        ):
            index = rand.next() % self.size
        self.used.add(index)
        self.before = index
        return index


class Call:
    """A call with segments, each a tuple of texts that begins with its percentage."""

    name = ""

    def __init__(self, span, *segments):
        self.span_text = span
        self.segment_texts = segments

    @property
    def text(self):
        segments = "  ".join(" ".join(filter(None, parts)) for parts in self.segment_texts)
        return f"{self.name}({self.span_text}  {segments})"

    def prepare(self, pfield, parts):
        """One segment, read."""
        raise NotImplementedError

    def raw(self, pfield, segment, place):
        """One value from the chosen segment."""
        raise NotImplementedError

    def shares(self):
        return [real(parts[0]) for parts in self.segment_texts]

    def begin(self, pfield):
        """Reads the arguments; then a pending insertion gets its copy."""
        span = pfield.span(self.span_text)
        segments = [self.prepare(pfield, parts[1:]) for parts in self.segment_texts]
        if pfield.pending and pfield.number > 2:
            pfield.insert_copy()
        return span, segments

    def apply(self, pfield):
        span, segments = self.begin(pfield)
        if pfield.number == 2:
            self.apply_to_rhythm(pfield, span, segments)
            return
        events = pfield.block.events
        n = pfield.count_of(span)
        first = pfield.index
        last = min(first + n, len(events)) - 1
        for i in range(n):
            if pfield.full():
                pfield.over = True
                return
            place = Place(i, n)
            if n > 0 and first < len(events):
                place.elapsed = single(events[pfield.index].beat - events[first].beat)
                place.length = single(events[last].beat + events[first].beat)
            value = self.raw(pfield, segments[pfield.choose(self.shares())], place)
            if pfield.mode == "in":
                value = nearest(value)
            pfield.last = value
            pfield.apply(value, from_function=True)

    def apply_to_rhythm(self, pfield, span, segments):
        """P2: one event per value, nothing rounded; a span in beats is filled by what the events really last."""
        total, i = 0.0, 0
        while total < span if span >= 0 else i < math.trunc(-span):
            if pfield.full():
                pfield.over = True
                return
            place = Place(i, math.trunc(abs(span)))
            place.in_rhythm = True
            if span >= 0:
                place.elapsed, place.length = total, span
            value = self.raw(pfield, segments[pfield.choose(self.shares())], place)
            pfield.last = value
            total = single(total + abs(pfield.make_event(value)))
            i += 1


@dataclass
class Place:
    """Where in its span a call is."""

    i: int
    n: int
    elapsed: float | None = None  # beats
    length: float | None = None
    in_rhythm: bool = False


class Ra(Call):
    name = "ra"

    def prepare(self, pfield, parts):
        return Range(pfield, parts[0])

    def raw(self, pfield, segment, place):
        return segment.draw(pfield.run.rand)


class Rw(Call):
    name = "rw"

    def prepare(self, pfield, parts):
        return Walk(pfield, *parts)

    def raw(self, pfield, segment, place):
        return segment.step(pfield.run.rand)


class Ho(Call):
    """No percentage, but the draw that chooses the segment is taken."""

    name = "ho"

    def __init__(self, span, value):
        super().__init__(span, (value,))

    def shares(self):
        return [1.0]

    def begin(self, pfield):
        span = pfield.span(self.span_text)
        value = pfield.read(self.segment_texts[0][0])
        if pfield.pending and pfield.number > 2:
            pfield.insert_copy()
        return span, [value]

    def raw(self, pfield, segment, place):
        return segment


class Moving(Call):
    """What MO and MS have in common: a curve."""

    def interpolate(self, pfield, text, place, start, end, exponent_counts=True):
        code, exponent = curve(text.rstrip("*"))
        if not exponent_counts:
            exponent = 1.0
        if place.in_rhythm and place.elapsed is not None:
            code += 100 * text.endswith("*")
            return along_time(code, place.elapsed, place.length, start, end, exponent)
        if text.endswith("*"):
            return along_time(code, place.elapsed, place.length, start, end, exponent)
        return along_events(code, place.i, place.n, start, end, exponent)

    def tell_time(self, pfield, text, place):
        if text.endswith("*") and not place.in_rhythm:
            pfield.run.stdout += f"\ntime = {place.elapsed:f}"


class Mo(Moving):
    name = "mo"

    def prepare(self, pfield, parts):
        return parts[0], Range(pfield, parts[1]), Range(pfield, parts[2])

    def raw(self, pfield, segment, place):
        text, first, second = segment
        self.tell_time(pfield, text, place)
        start = first.draw(pfield.run.rand)
        end = second.draw(pfield.run.rand)
        return self.interpolate(pfield, text, place, start, end)


class Ms(Moving):
    name = "ms"

    def prepare(self, pfield, parts):
        lists = [[pfield.read(word) for word in part.strip("[]").split()] for part in parts[1:]]
        return parts[0], *lists

    def raw(self, pfield, segment, place):
        text, first, second = segment
        rand = pfield.run.rand
        self.tell_time(pfield, text, place)
        p = self.interpolate(pfield, text, place, 1.0, 0.0, exponent_counts=not place.in_rhythm)
        values = second if p < rand.unit() else first
        return values[rand.next() % len(values)]


class Se(Call):
    name = "se"

    def prepare(self, pfield, parts):
        values = [pfield.read(word) for word in parts[1].strip("[]").split()]
        return values, Selection(parts[0], len(values))

    def raw(self, pfield, segment, place):
        values, selection = segment
        return values[selection.draw(pfield.run.rand)]


class Ex(Call):
    """An equation's words stand apart here: "[p4 + 2]"."""

    name = "ex"

    def prepare(self, pfield, parts):
        return parts[0].lower() == "i", parts[1].strip("[]").split()

    def raw(self, pfield, segment, place):
        rounds, words = segment
        event = pfield.block.events[pfield.index]

        def term(word):
            return event.get(int(word[1:])) if word[0] in "pP" else real(word)

        value = term(words[0])
        for operator, word in zip(words[1::2], words[2::2]):
            value = self.OPERATORS[operator](value, term(word))
        return nearest(value) if rounds else value

    @staticmethod
    def remainder(a, b):
        m = abs(b)
        if m == 0:
            return 0.0
        r = single(a - single(math.trunc(single(a / m)) * m))
        while abs(r) > m:
            before, r = r, single(r - math.copysign(m, r))
            if r == before:
                return 0.0  # too large to lose anything
        return r


Ex.OPERATORS = {
    "+": lambda a, b: single(a + b),
    "-": lambda a, b: single(a - b),
    "*": lambda a, b: single(a * b),
    "/": lambda a, b: single(a / b),
    "%": Ex.remainder,
}


class S2(Call):
    """Groups "1:2:3": the first value fills the event, the others are inserted with it."""

    name = "s2"

    def prepare(self, pfield, parts):
        groups = [group.replace("'", ":").split(":") for group in parts[1].strip("[]").split()]
        groups = [[pfield.read(word) for word in group] for group in groups]
        return groups, Selection(parts[0], len(groups))

    def apply(self, pfield):
        span, segments = self.begin(pfield)
        for _ in range(pfield.count_of(span)):
            if pfield.full():
                pfield.over = True
                return
            groups, selection = segments[pfield.choose(self.shares())]
            group = groups[selection.draw(pfield.run.rand)]
            for place, value in enumerate(group):
                pfield.pending = place > 0
                pfield.block.target += place > 0
                pfield.fill_parameter(value, from_function=True)
            pfield.last = nearest(group[-1]) if pfield.mode == "in" else group[-1]


class Setting:
    """rs, rd, dv or pf."""

    def __init__(self, name, value):
        self.name = name
        self.value = value
        self.text = f"{name}({value})"

    def apply(self, pfield):
        if self.name == "dv":
            pfield.dv = real(self.value)
        elif self.name == "pf":
            pfield.pf = real(self.value)
        else:
            self.apply_globally(pfield.run)

    def apply_globally(self, run):
        if self.name == "rs":
            run.rand.seed(int(self.value))
        elif self.name == "rd":
            run.rd = real(self.value)
        else:
            run.tempo.define(self.value)


# ---- pieces


class Block:
    """An i-block: start and length as text ("-8" for events), and per p-field a list of texts and calls.

    Between texts blanks are enough: values, "<", ">", ":", "/" and input modes are words of their own. Every p-field is
    printed with seven decimals, so that the last bits are seen; hence the mode is called "re7".
    """

    def __init__(self, start, length, *pfields, instrument=1):
        self.start_text, self.length_text = start, length
        self.bodies = [[body] if not isinstance(body, list) else body for body in pfields]
        self.instrument = instrument

    @property
    def text(self):
        lines = [
            f"i{self.instrument} = {len(self.bodies) + 1} {self.start_text} {self.length_text} {{"
        ]
        for number, body in enumerate(self.bodies, 2):
            items = " ".join(item if isinstance(item, str) else item.text for item in body)
            lines.append(f"p{number}(re7) {items}")
        return "\n".join(lines) + "\n}\n"

    def apply(self, run):
        self.events = []
        self.last_rhythm = 0.0
        self.start = real(self.start_text)
        self.beats = self.count = None
        if self.length_text.startswith("-"):
            self.count = int(self.length_text[1:])
        else:
            self.beats = real(self.length_text)
        self.clock = single(single(run.tempo.at(self.start) / 60) * self.start)
        self.end_of_clock = single(self.clock + (self.beats or 0.0))
        self.target = self.count or 0
        for number, body in enumerate(self.bodies, 2):
            pfield = Pfield(run, self, number)
            for item in body:
                pfield.take(item)
            pfield.complete()
            if number == 2:
                self.target = len(self.events)
        self.write(run)

    def write(self, run):
        sounding = [event for event in self.events if not event.duration <= 0]
        run.blocks += 1
        run.score += f"\n;I-block #{run.blocks} (i{self.instrument}):"
        for event in sounding:
            run.score += f"\ni{self.instrument} {event.start:12.7f} {event.duration:10.7f} "
            for number in range(4, len(self.bodies) + 2):
                run.score += f"{event.values[number]:13.7f} "
        run.score += "\n"


class Piece:
    """A whole run: settings for the global area and blocks, in order."""

    def __init__(self, topic, name, comment, *parts):
        self.topic, self.name, self.comment, self.parts = topic, name, comment, parts

    @property
    def text(self):
        return f"; {self.comment}\n" + "".join(
            part.text if isinstance(part, Block) else part.text + "\n" for part in self.parts
        )

    def result(self):
        """The score and what is printed on standard output."""
        run = Run()
        for part in self.parts:
            if isinstance(part, Block):
                part.apply(run)
            else:
                part.apply_globally(run)
        return run.score + "\ne\n", run.stdout


def first_difference(piece, outcome, written):
    """In words; empty when the program did what was worked out."""
    score, stdout = piece.result()
    if written is None:
        return "ERROR" + outcome.stderr.decode().rpartition("ERROR")[2]
    if outcome.stdout.decode() != stdout:
        return f"standard output: expected {stdout!r}, written {outcome.stdout.decode()!r}"
    for number, (left, right) in enumerate(zip(score.split("\n"), written.split("\n")), 1):
        if left != right:
            return f"line {number}\n    expected {left}\n    written  {right}"
    return "" if written == score else "the number of lines differs"


def run(korvo, piece):
    with tempfile.TemporaryDirectory(prefix="korvo-draws-") as folder:
        Path(folder, "piece.txt").write_text(piece.text)
        outcome = subprocess.run(
            [korvo, "piece.txt", "piece.sco"],
            cwd=folder,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=clock.HANG,
        )
        done = outcome.returncode == 0
        return outcome, Path(folder, "piece.sco").read_text() if done else None


def main():
    parser = argparse.ArgumentParser(description="Compares what the data functions draw.")
    parser.add_argument("korvo", help="the program")
    parser.add_argument("--random", type=int, default=300, help="how many random pieces to add")
    parser.add_argument("--filter", default="", metavar="TEXT", help="only pieces whose name has TEXT")
    parser.add_argument("--print", action="store_true", help="print the pieces, too")
    arguments = parser.parse_args()
    from pieces import PIECES, random_piece

    pieces = PIECES + [random_piece(number) for number in range(arguments.random)]
    pieces = [piece for piece in pieces if arguments.filter in f"{piece.topic}/{piece.name}"]
    failed = 0
    for piece in pieces:
        difference = first_difference(piece, *run(os.path.abspath(arguments.korvo), piece))
        if difference:
            failed += 1
            print(f"FAIL {piece.topic}/{piece.name}: {difference}")
        if arguments.print:
            print(piece.text)
    print(f"{len(pieces) - failed} passed, {failed} failed")
    sys.exit(1 if failed or not pieces else 0)


if __name__ == "__main__":
    import draws  # the same module that pieces.py knows, so that there is one of each class

    draws.main()
