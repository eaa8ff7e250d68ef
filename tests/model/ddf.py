"""The data functions RA, RW, MO, SE, EX, MS, HO and S2.

A call is a name, a span (beats, events, or T for the whole block) and weighted
segments.  Each event of the span draws a segment, and the segment produces the
event's value.  In P2 every value makes an event; from P3 on the values go to
the events that exist.
"""

import math

import globals_area
import names
import pfield
import reader as lex
from messages import Fail
from numeric import (add, ddiv, div, dlog, dpow, f32, mul, remainder, round_half_up, sub,
                     trunc_real)
from tempo import HALF_PI, curve_value, read_curve, shape

SEGMENTS_MAX = 128
VALUES_MAX = 65_536
DISTRIBUTIONS = {'f': 0, 'l': 1, 'h': 2, 't': 3, 'g': 4, 'x': 5, 'b': 6}
NARROW_WINDOW = 0.00001


def dispatch(run, code):
    """Run the data function or setting whose name has just been read."""
    if code in (names.DV, names.PF, names.RD, names.RS, names.SR):
        globals_area.setting(run, code)
    elif code == names.S2:
        grouped_selection(run)
    elif code in PARSERS:
        PARSERS[code](run)
    else:
        raise Fail(20)


# Spans and percentages

def read_span(run):
    r, t = run.reader, run.reader.t
    r.skip_blanks()
    if t.ch() != '(':
        raise Fail(36)
    t.pos += 1
    r.skip_blanks()
    if t.ch() == 'T':
        t.pos += 1
        span = whole_block_span(run)
        run.screen.info('\n\tLine %d: T evaluated at = %f', r.number, span)
    else:
        span = t.read_float()
        if span is None:
            raise Fail(40)
    r.skip_separator()
    return span


def whole_block_span(run):
    t, block = run.reader.t, run.block
    part = 1.0
    if t.ch() == '*':
        t.pos += 1
        part = t.read_float() if t.ch() == '.' or t.ch() in lex.DIGITS else None
        if part is None:
            raise Fail(53)
    if block.in_events:
        return -round_half_up(mul(part, f32(float(block.target))))
    return mul(part, block.length)


def read_percentage(run, error=38):
    value = run.reader.t.read_float()
    if value is None:
        raise Fail(error)
    run.reader.skip_separator()
    return value


def check_percentages(segments):
    total = 0.0
    for segment in segments:
        total = add(total, segment.part)
    if not 0.99999 < total < 1.00001:
        raise Fail(42)


def parse_segments(run, parse_one, check=lambda: None):
    """Segments up to and including the ")"; `check` looks at each one behind its separator."""
    r, t = run.reader, run.reader.t
    segments = []
    while True:
        if len(segments) >= SEGMENTS_MAX:
            raise Fail(32)
        segments.append(parse_one(run))
        r.skip_separator()
        check()
        if t.ch() == ')':
            t.pos += 1
            return segments


# Lists in brackets

def required_value(run, error):
    value = pfield.read_value(run)
    if value is None:
        raise Fail(error)
    return value


class Range:
    """A distribution type and two bounds."""

    def __init__(self, kind, low, high):
        self.kind = kind
        self.low, self.high = (high, low) if low > high else (low, high)


def parse_range(run):
    r, t = run.reader, run.reader.t
    if t.ch() != '[':
        value = required_value(run, 41)
        return Range(0, value, value)
    t.pos += 1
    r.skip_separator()
    kind = 0
    if lex.lower(t.ch()) in DISTRIBUTIONS:
        kind = DISTRIBUTIONS[lex.lower(t.ch())]
        t.pos += 1
    r.skip_separator()
    values = []
    while t.ch() != ']' or not values:
        value = required_value(run, 39)
        if len(values) == 2:
            raise Fail(37)
        values.append(value)
        r.skip_separator()
    t.pos += 1
    return Range(kind, values[0], values[-1])


def refuse_zero_rhythm(run, span, *ranges):
    if run.field.number == 2 and span > 0:
        if any(bound == 0 for x in ranges for bound in (x.low, x.high)):
            raise Fail(72)


def parse_list(run):
    """One value, or any number of values in brackets."""
    r, t = run.reader, run.reader.t
    if t.ch() != '[':
        return [required_value(run, 41)]
    t.pos += 1
    r.skip_separator()
    values = []
    while t.ch() != ']' or not values:
        value = required_value(run, 39)
        if len(values) >= VALUES_MAX:
            raise Fail(39)
        values.append(value)
        r.skip_separator()
    t.pos += 1
    return values


def parse_selection_mode(run):
    t = run.reader.t
    mode = {'*': 1, 'x': 2}.get(t.ch(), 0)
    if mode:
        t.pos += 1
        run.reader.skip_separator()
    return mode


# Random values

def draw_range(run, bounds):
    w = DRAWS[bounds.kind](run.random)
    return add(bounds.low, mul(sub(bounds.high, bounds.low), w))


def draw_low(random):
    return min(f32(ddiv(dlog(random.unit_not_zero()), f32(-6.9078))), 1.0)


def draw_high(random):
    return sub(1.0, draw_low(random))


def draw_triangle(random):
    first = random.unit()
    return div(add(first, random.unit()), 2.0)


def draw_gauss(random):
    total = 0.0
    for _ in range(12):
        total = add(total, random.unit())
    return min(max(f32((total - 6.0) * 0.155 + 0.5), 0.0), 1.0)


def draw_exponential(random):
    t = 0.0
    while t == 0 or t == 2:
        t = mul(2.0, random.unit())
    sign = 1.0
    if t > 1:
        t, sign = sub(2.0, t), -1.0
    w = f32(dlog(t) * sign / 14)
    return add(min(max(w, -0.5), 0.5), 0.5)


def draw_beta(random):
    while True:
        first = f32(dpow(random.unit_not_zero(), 5.0))
        second = f32(dpow(random.unit_not_zero(), 5.0))
        total = add(first, second)
        if total <= 1:
            return div(first, total)


DRAWS = [lambda random: random.unit(), draw_low, draw_high, draw_triangle, draw_gauss,
         draw_exponential, draw_beta]


# Positions in a call

class Call:
    """Where a call stands: by index, by the events' beats, or by P2's running total."""

    def __init__(self, span):
        self.span, self.total = span, 0.0
        self.i, self.n = 0, 0
        self.first_beat = self.length = 0.0   # for curves over the events' beats

    def cover(self, events):
        if events:
            self.first_beat = events[0].beat
            self.length = add(events[-1].beat, self.first_beat)

    def moment(self, run, code, event):
        """For a curve over the events' beats: the elapsed time, told on standard output."""
        if event is None or code < 100:
            return 0.0
        elapsed = sub(event.beat, self.first_beat)
        run.stdout.append('\ntime = %.6f' % elapsed)
        return elapsed

    def interpolate(self, code, exponent, event, elapsed, start, end):
        if event is None and self.span >= 0:
            return curve_value(code, self.total, self.span, start, end, exponent)
        if code >= 100:
            return curve_value(code - 100, elapsed, self.length, start, end, exponent)
        if self.n <= 1:
            return start
        if self.i > self.n - 1:
            return end
        u = self.i / (self.n - 1)
        c = 2 * u - math.sin(u * HALF_PI) if code == 5 else shape(code, u, exponent)
        return f32(start + (end - start) * c)


# Segments; value(run, call, event) gives the raw value, event being None in P2

class RangeSegment:
    def __init__(self, part, bounds):
        self.part, self.bounds = part, bounds

    def value(self, run, call, event):
        return draw_range(run, self.bounds)


class WalkSegment:
    def __init__(self, part, low, high, window, start):
        self.part, self.low, self.high, self.window = part, low, high, window
        self.at = div(sub(start, low), sub(high, low)) if low != high else 0.0

    def value(self, run, call, event):
        s, w = self.at, self.window
        bottom, top = sub(s, div(w, 2.0)), add(s, div(w, 2.0))
        if bottom >= 0 and top > 1:
            bottom, top = sub(1.0, w), 1.0
        elif bottom < 0:
            bottom, top = 0.0, w
        u = run.random.unit()
        if w >= NARROW_WINDOW:
            while not bottom <= u <= top:
                u = run.random.unit()
            self.at = u
        return add(self.low, mul(sub(self.high, self.low), s))


class HoldSegment:
    part = 1.0

    def __init__(self, held):
        self.held = held

    def value(self, run, call, event):
        return self.held


class MoveSegment:
    def __init__(self, part, curve, first, second):
        self.part, self.curve, self.first, self.second = part, curve, first, second

    def value(self, run, call, event):
        code, exponent = self.curve
        elapsed = call.moment(run, code, event)
        start = draw_range(run, self.first)
        end = draw_range(run, self.second)
        return call.interpolate(code, exponent, event, elapsed, start, end)


class TwoListSegment:
    def __init__(self, part, curve, first, second):
        self.part, self.curve, self.first, self.second = part, curve, first, second

    def value(self, run, call, event):
        code, exponent = self.curve
        if event is None:
            exponent = 1.0
        elapsed = call.moment(run, code, event)
        chance = call.interpolate(code, exponent, event, elapsed, 1.0, 0.0)
        values = self.second if chance < run.random.unit() else self.first
        return values[run.random.integer() % len(values)]


class Selection:
    """A choice among k items: free (0), all before any again (1), never twice in a row (2)."""

    def __init__(self, mode, items):
        self.mode, self.items = mode if len(items) > 1 else 0, items
        self.used = set()
        self.last = -1

    def choose(self, run):
        k = len(self.items)
        if len(self.used) == k:
            self.used.clear()
        while True:
            index = run.random.integer() % k
            if self.mode == 1 and index in self.used or self.mode == 2 and index == self.last:
                continue
            break
        if self.mode == 1:
            self.used.add(index)
        self.last = index
        return self.items[index]


class SelectSegment:
    def __init__(self, part, mode, items):
        self.part, self.selection = part, Selection(mode, items)

    def value(self, run, call, event):
        return self.selection.choose(run)


class EquationSegment:
    """`terms` are (operator, is a reference, number), the first operator being "+"."""

    def __init__(self, part, integer, terms):
        self.part, self.integer, self.terms = part, integer, terms

    def value(self, run, call, event):
        result = 0.0
        for k, (operator, is_reference, number) in enumerate(self.terms):
            term = event_value(event, number) if is_reference else number
            result = term if k == 0 else self.apply(result, operator, term)
        return round_half_up(result) if self.integer else result

    @staticmethod
    def apply(a, operator, b):
        if operator == '/' and b == 0:
            raise Fail(60)
        return {'+': add, '-': sub, '*': mul, '/': div, '%': remainder}[operator](a, b)


def event_value(event, number):
    if number == 2:
        return event.start
    return event.duration if number == 3 else event.values[number - 4]


# Argument lists

def run_ra(run):
    span = read_span(run)

    def one(run):
        part = read_percentage(run)
        bounds = parse_range(run)
        refuse_zero_rhythm(run, span, bounds)
        return RangeSegment(part, bounds)
    generate(run, span, parse_segments(run, one))


def run_rw(run):
    span = read_span(run)
    generate(run, span, parse_segments(run, parse_walk))


def parse_walk(run):
    r, t = run.reader, run.reader.t
    part = read_percentage(run)
    if t.ch() == '[':
        t.pos += 1
        r.skip_separator()
    low = required_value(run, 52)
    r.skip_separator()
    high = required_value(run, 52)
    r.skip_separator()
    if low > high:
        low, high = high, low
    if t.ch() == ']':
        t.pos += 1
        r.skip_separator()
    window = t.read_float()
    if window is None or not 0 <= window <= 1:
        raise Fail(50)
    r.skip_separator()
    start = required_value(run, 51)
    if start < low or start > high:
        raise Fail(51)
    return WalkSegment(part, low, high, window, start)


def run_ho(run):
    r, t = run.reader, run.reader.t
    span = read_span(run)
    held = required_value(run, 52)
    r.skip_separator()
    if t.ch() != ')':
        raise Fail(61)
    t.pos += 1
    generate(run, span, [HoldSegment(held)])


def run_mo(run):
    span, ranges = read_span(run), []

    def one(run):
        part = read_percentage(run)
        curve = read_curve(run, span > 0)
        run.reader.skip_separator()
        first = parse_range(run)
        run.reader.skip_separator()
        ranges[:] = first, parse_range(run)
        return MoveSegment(part, curve, *ranges)

    def check():
        refuse_zero_rhythm(run, span, *ranges)
    generate(run, span, parse_segments(run, one, check))


def run_ms(run):
    span = read_span(run)

    def one(run):
        part = read_percentage(run)
        curve = read_curve(run, span > 0)
        run.reader.skip_separator()
        first = parse_list(run)
        run.reader.skip_separator()
        return TwoListSegment(part, curve, first, parse_list(run))
    generate(run, span, parse_segments(run, one))


def run_se(run):
    span = read_span(run)

    def one(run):
        part = read_percentage(run)
        mode = parse_selection_mode(run)
        return SelectSegment(part, mode, parse_list(run))
    generate(run, span, parse_segments(run, one))


def run_ex(run):
    if run.field.number == 2:
        raise Fail(57)
    if run.field.number == 3:
        run.screen.warning(24)
    span = read_span(run)
    references = []

    def one(run):
        return parse_equation(run, references)

    def check():
        if not references:
            raise Fail(58)
    generate(run, span, parse_segments(run, one, check))


def parse_equation(run, references):
    r, t = run.reader, run.reader.t
    part = read_percentage(run, 48)
    integer = lex.lower(t.ch()) == 'i'
    if lex.lower(t.ch()) in 'fi':
        t.pos += 1
        r.skip_separator()
    if t.ch() != '[':
        if lex.lower(t.ch()) != 'p':
            raise Fail(57)
        return EquationSegment(part, integer, [('+',) + parse_term(run, references)])
    t.pos += 1
    r.skip_blanks()
    terms = [('+',) + parse_term(run, references)]
    r.skip_blanks()
    while t.ch() != ']':
        operator = t.ch()
        if operator == lex.NUL or operator not in '+-*/%':
            raise Fail(55)
        t.pos += 1
        r.skip_blanks()
        is_reference, number = parse_term(run, references)
        if operator == '/' and is_reference:
            run.screen.warning(22)
        elif operator == '/' and number == 0:
            raise Fail(59)
        terms.append((operator, is_reference, number))
        r.skip_blanks()
    t.pos += 1
    return EquationSegment(part, integer, terms)


def parse_term(run, references):
    t = run.reader.t
    if lex.lower(t.ch()) != 'p':
        number = t.read_float()
        if number is None:
            raise Fail(23)
        return False, number
    t.pos += 1
    number = t.read_short()
    if number is None:
        raise Fail(16)
    if number < 2 or number not in run.block.given or number > run.block.fields:
        raise Fail(57)
    references.append(number)
    return True, number


PARSERS = {names.RA: run_ra, names.RW: run_rw, names.MO: run_mo, names.SE: run_se,
           names.EX: run_ex, names.MS: run_ms, names.HO: run_ho}


# Generation

def choose_segment(run, segments):
    u = run.random.unit()
    total = 0.0
    for segment in segments:
        total = add(total, segment.part)
        if not total < u:
            return segment
    return segments[-1]


def generate(run, span, segments):
    check_percentages(segments)
    if run.field.number == 2:
        generate_events(run, Call(span), segments)
    else:
        fill_events(run, Call(span), segments)


def generate_events(run, call, segments):
    """P2: every value is the rhythm of a new event."""
    field = run.field
    call.n = int(abs(call.span)) if call.span < 0 else 0
    while call.total < call.span if call.span >= 0 else call.i < call.n:
        if pfield.is_full(run):
            run.screen.warning(11)
            field.block_end = True
            return
        value = choose_segment(run, segments).value(run, call, None)
        field.last = value
        if field.recording:
            field.loop.append((value, int(field.pending)))
        magnitude = pfield.make_event(run, value, zero_is_error=False)
        call.total = add(call.total, magnitude)
        call.i += 1


def copy_if_pending(run):
    """A pending request: the copy is made now; gives its shared-start flag."""
    field = run.field
    if not field.pending:
        return 0
    pfield.next_event(run)
    return 1


def count_events(run, span):
    """How many events, from the current one on, the span covers."""
    if span < 0:
        return int(abs(span))
    events = run.block.events[run.field.index:]
    if not events:
        return 0
    end = add(events[0].beat, span)
    n = 0
    while n < len(events) and events[n].beat <= end:
        n += 1
    last = events[n - 1].beat if n else events[0].beat
    if span - 5.0 > last and not run.screen.silent:
        run.screen.warning(14)
        run.screen.show('Old duration = %f, New duration = %f\n', span, last)
    return n


def out_of_events(run):
    if run.field.index < run.block.target:
        return False
    run.screen.warning(11)
    run.field.block_end = True
    return True


def fill_events(run, call, segments):
    """P3 and up: values for the events that exist."""
    field, block = run.field, run.block
    flag = copy_if_pending(run)
    call.n = count_events(run, call.span)
    if call.span >= 0:
        call.cover(block.events[field.index:field.index + call.n])
    while call.i < call.n:
        if out_of_events(run):
            return
        event = block.events[field.index]
        value = choose_segment(run, segments).value(run, call, event)
        if field.mode == names.IN:
            value = round_half_up(value)
        field.last = value
        if field.number == 3:
            pfield.duration_step(run, event, value)
        else:
            value = pfield.deviated_parameter(run, value)
            pfield.store(run, event, value)
        if field.recording:
            field.loop.append((value, flag))
        flag = 0
        pfield.advance(field)
        call.i += 1


# S2

def grouped_selection(run):
    if run.field.number < 4:
        raise Fail(62)
    span = read_span(run)
    segments = parse_segments(run, parse_groups)
    check_percentages(segments)
    generate_groups(run, span, segments)


def parse_groups(run):
    r, t = run.reader, run.reader.t
    part = read_percentage(run)
    mode = parse_selection_mode(run)
    if t.ch() != '[':
        return SelectSegment(part, mode, [parse_group(run, 41, 0)])
    t.pos += 1
    r.skip_separator()
    if t.ch() == ']':
        raise Fail(97)
    groups, count = [], 0
    while t.ch() != ']':
        groups.append(parse_group(run, 39, count))
        count += len(groups[-1])
        r.skip_separator()
    t.pos += 1
    return SelectSegment(part, mode, groups)


def parse_group(run, error, count):
    """Values joined by ":" or "'"; `count` values stand before them."""
    t = run.reader.t
    values = [required_value(run, error)]
    while t.ch() in (':', "'"):
        t.pos += 1
        values.append(required_value(run, error))
    if count + len(values) > VALUES_MAX:
        raise Fail(39)
    return values


def generate_groups(run, span, segments):
    field, block = run.field, run.block
    flag = copy_if_pending(run)
    for _ in range(count_events(run, span)):
        if out_of_events(run):
            return
        group = choose_segment(run, segments).value(run, None, None)
        for k, raw in enumerate(group):
            if k:
                field.pending, flag = True, 1
                block.target += 1
            event = pfield.next_event(run)
            value = pfield.deviated_parameter(run, raw)
            pfield.store(run, event, value)
            if field.recording:
                field.loop.append((value, flag))
            flag = 0
            pfield.advance(field)
        field.last = round_half_up(group[-1]) if field.mode == names.IN else group[-1]
