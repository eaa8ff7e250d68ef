"""The tempo map and the curve shapes shared with the data functions.

The map is a list of definitions in the order in which they were written.  A
beat value is converted with the one tempo that holds at the beat clock.
"""

import math

from messages import Fail
from numeric import add, div, dpow, f32, mul, sub
from reader import LETTERS, lower

HALF_PI = 1.5707963267948966
DEFINITIONS_MAX = 50
CURVE_LETTERS = {'f': 0, 'e': 1, 'l': 2, 'v': 3, 's': 4, 'c': 5}
LISTING_LETTERS = 'FELUSX'


def read_curve(run, beats_allowed):
    """Curve letter, exponent and "*" mark: (code, exponent), "*" adding 100."""
    r, t = run.reader, run.reader.t
    letter = lower(t.ch())
    code, exponent = CURVE_LETTERS.get(letter, 0), 1.0
    if letter in CURVE_LETTERS:
        t.pos += 1
    if code == 3:
        value = t.read_float() if t.ch() in '+-.0123456789' else None
        if value is None or not value > 0:
            raise Fail(63)
        exponent = value
    r.skip_blanks()
    if t.ch() == '*':
        if not beats_allowed:
            raise Fail(64)
        t.pos += 1
        code += 100
    return code, exponent


def shape(code, u, exponent):
    """How far a curve has come at u, between 0 and 1."""
    if code == 0:
        return u
    if code == 1:
        return dpow(u, 2.0)
    if code == 2:
        return dpow(u, 0.5)
    if code == 3:
        return dpow(u, exponent)
    s = math.sin(u * HALF_PI)
    return s if code == 4 else u - (s - u)


def curve_value(code, x, length, start, end, exponent):
    """The curve from start to end at x, 0 to length."""
    if x >= length:
        return end
    if x <= 0:
        return start
    code = int(code)
    if not 0 <= code <= 5:
        return end
    return f32(start + (end - start) * shape(code, x / length, exponent))


class Definition:
    def __init__(self, start, start_tempo, end, end_tempo, curve, exponent):
        self.start, self.start_tempo = start, start_tempo
        self.end, self.end_tempo = end, end_tempo
        self.curve, self.exponent = curve, exponent


class TempoMap:
    def __init__(self, run):
        self.run = run
        self.definitions = [Definition(0.0, 60.0, 0.0, 60.0, 1, 0.0)]
        self.current = 60.0    # the tempo of the last conversion

    def at_beat(self, beat):
        found = self.definitions[0]
        for following in self.definitions[1:]:
            if beat < found.start or not following.start <= beat:
                break
            found = following
        return curve_value(found.curve, sub(beat, found.start), sub(found.end, found.start),
                           found.start_tempo, found.end_tempo, found.exponent)

    def seconds(self, beats):
        """Beats to seconds at the present beat clock."""
        clock = self.run.block.clock
        self.current = self.at_beat(clock)
        result = mul(div(60.0, self.current), beats)
        if self.run.verbose_tempo:
            self.run.screen.show('\n  > Beat %f Tempo = %f Val = %f (bts) %f (secs)',
                                 clock, self.current, beats, result)
        return result

    def list(self):
        show = self.run.screen.show
        show('\n  Stored Tempos (There are %d defs):', len(self.definitions))
        for k, d in enumerate(self.definitions, 1):
            show('\n\t%d: Stime %f, Etime %f, Stempo %f, Etempo %f, Type %c',
                 k, d.start, d.end, d.start_tempo, d.end_tempo, LISTING_LETTERS[d.curve])
            if d.curve == 3:
                show(', Vcurve = %f', d.exponent)
        show('\n')

    # The te statement

    def statement(self):
        r, t = self.run.reader, self.run.reader.t
        r.skip_blanks()
        if t.ch() != '(':
            raise Fail(96)
        t.pos += 1
        first = self._term(150)
        if t.ch() == ')':
            t.pos += 1
            self._constant(first)
        else:
            self._change(first)
        self._report_conflicts()

    def _term(self, error):
        value = self.run.reader.t.read_float()
        if value is None:
            raise Fail(error)
        self.run.reader.skip_separator()
        return value

    def _constant(self, tempo):
        if tempo > 4000.0 or tempo < 1.0:
            raise Fail(46)
        d = self.definitions[0]
        d.start, d.end, d.start_tempo, d.end_tempo, d.curve = 0.0, 1000.0, tempo, tempo, 0
        self._warn_tempo(tempo, 30)

    def _change(self, start):
        r, t = self.run.reader, self.run.reader.t
        end = self._term(151)
        start_tempo = self._term(152)
        end_tempo = self._term(153)
        curve, exponent = 1, 1.0
        if t.ch() in LETTERS:
            curve, exponent = read_curve(self.run, False)
            r.skip_separator()
        for value, low, high, error in ((start, 0.0, 10000.0, 155), (end, 0.0, 10000.0, 156),
                                        (start_tempo, 1.0, 4000.0, 157),
                                        (end_tempo, 1.0, 4000.0, 158)):
            if value > high or value < low:
                raise Fail(error)
        if start > end:
            raise Fail(159)
        if start > 600.0:
            self.run.screen.warning(34)
        if end > 600.0:
            self.run.screen.warning(35)
        self._warn_tempo(start_tempo, 30)
        self._warn_tempo(end_tempo, 32)
        new = Definition(start, start_tempo, end, end_tempo, curve, exponent)
        if start == 0.0:
            self.definitions[0] = new
        elif len(self.definitions) >= DEFINITIONS_MAX:
            raise Fail(32)
        else:
            self.definitions.append(new)
        if t.ch() != ')':
            raise Fail(19)
        t.pos += 1

    def _warn_tempo(self, tempo, fast):
        if tempo > 300.0:
            self.run.screen.warning(fast)
        elif tempo < 30.0:
            self.run.screen.warning(fast + 1)

    def _report_conflicts(self):
        previous_end = 0.0
        for k, d in enumerate(self.definitions, 1):
            if previous_end > d.start:
                self.run.screen.show(
                    "\nWARNING: Tempo #%d conflicts with previous tempo's end time!", k)
            previous_end = d.end


def start_clock(run, start):
    """A block's start, given in seconds, on the beat clock."""
    return mul(div(run.tempo.at_beat(start), 60.0), start)


def block_end(start_beats, length):
    return add(start_beats, length)
