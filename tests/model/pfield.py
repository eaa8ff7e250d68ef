"""One p-field: output specifier, body, input modes, plain data and completion.

P2 makes the events, P3 gives them durations, P4 and up fill further values.
Whatever the source of a value - plain data, a repeat, a data function, a loop,
the completion - it reaches its event through `plain_value` or `store` here.
"""

import math

import ddf
import names
import reader as lex
from messages import REPORTED, Fail
from numeric import GiveUp, add, div, f32, mul, round_half_up, sub, trunc_real

EVENTS_MAX = 67_108_864
MODEL_EVENTS_MAX = 5_000_000
STILL_MAX = 65_536
OUTPUT_NAMES = ('bn', 'in', 'db', 'hz', 'op', 'od', 're', 'tr', 'xx')
INPUT_MODES = (names.DB, names.IN, names.NO, names.OP, names.RE, names.RH, names.OD)
VALUE_STARTS = {
    names.RE: '+-.0123456789zZ',
    names.RH: '+-.0123456789zZ',
    names.DB: '+-.0123456789zZ',
    names.IN: '+-0123456789',
    names.NO: lex.LETTERS | lex.DIGITS,
    names.OP: '+-0123456789zZ',
}
NOTES = {'c': 0, 'd': 2, 'e': 4, 'f': 5, 'g': 7, 'a': 9, 'b': 11}


class Field:
    """State of the p-field that is being read; kept for the writers."""

    def __init__(self, number):
        self.number = number
        self.kind = names.RE
        self.precision = names.DEFAULT_PRECISION
        self.fft_index = names.DEFAULT_FFT_INDEX
        self.mode = names.RE
        self.quarter_tones = False
        self.last = 0.0            # the last value, "z"
        self.index = 0             # events that have their value
        self.dv = 0.0
        self.factor = 1.0
        self.marks = 0             # ":" and "'" seen
        self.pending = False       # the next value shares the previous event's start
        self.recording = False
        self.loop = []             # (value, shared-start flag)
        self.block_end = False
        self.seen = False
        self.last_rhythm = 0.0     # P2: what places the next event


def field_here(t):
    return t.ch() == 'p' and t.ch(1) in lex.DIGITS


def parse(run):
    """The text behind "p" and its number."""
    field, block = run.field, run.block
    before = block.target
    output_specifier(run)
    body(run)
    if not field.seen:
        run.screen.show('\nERROR: P%d is blank ... OY!\n\n', field.number)
        raise Fail(REPORTED)
    complete(run)
    if field.number > 2 and block.in_events and block.target != before:
        run.screen.show('\n\tP%d: Fused data changed "events" from %d to %d',
                        field.number, before, block.target)


def output_specifier(run):
    r, t, field = run.reader, run.reader.t, run.field
    r.skip_blanks()
    if t.ch() == '(':
        t.pos += 1
        r.skip_blanks()
        if lex.lower(t.ch()) + lex.lower(t.ch(1)) not in OUTPUT_NAMES:
            raise Fail(17)
        code = names.lookup(run, t)
        if code is None:
            raise Fail(17)
        if field.number <= 3 and code != names.RE:
            raise Fail(18)
        r.skip_blanks()
        if t.ch() != ')':
            raise Fail(19)
        t.pos += 1
        field.kind = code
    r.skip_blanks()


# The body

def body(run):
    r, t, field = run.reader, run.reader.t, run.field
    while True:
        if t.at_end() and r.read_line() < 0:
            raise Fail(5)
        if field.block_end:
            skip_rest(run)
        t.skip_ws()
        if t.at_end():
            continue
        if field_here(t) or t.ch() == '}':
            return
        item(run)


def skip_rest(run):
    """The block is full: on to the next p-field or the closing brace."""
    r, t = run.reader, run.reader.t
    while not field_here(t) and t.ch() != '}':
        if t.at_end():
            if r.read_line() < 0:
                raise Fail(5)
        elif r.comment_here():
            r.skip_body_comment()
        else:
            t.pos += 1


def item(run):
    r, t, field = run.reader, run.reader.t, run.field
    c = t.ch()
    if names.is_field_name(t):
        named_item(run)
    elif r.comment_here():
        r.skip_body_comment()
    elif c in '<>':
        if not loop_marker(field, c):
            raise Fail(43)
        t.pos += 1
    elif c in "',/:x":
        separator(run)
    elif c not in VALUE_STARTS.get(field.mode, ''):
        raise Fail(27)
    else:
        data_value(run)


def named_item(run):
    field = run.field
    code = names.lookup(run, run.reader.t)
    if code is None:
        raise Fail(20)
    if code not in INPUT_MODES:
        ddf.dispatch(run, code)
        return
    if field.number == 3 and code not in (names.RE, names.IN):
        raise Fail(26)
    if field.number == 2 and code not in (names.RE, names.IN, names.RH):
        raise Fail(21)
    field.mode = code


def loop_marker(field, c):
    if c == '>' and not field.recording:
        return False
    if c == '<' and (field.recording or field.pending):
        return False
    field.recording = c == '<'
    return True


def separator(run):
    t, field = run.reader.t, run.field
    c = t.ch()
    t.pos += 1
    if c in "':":
        field.marks += 1
        if field.marks > 1:
            raise Fail(49)
        if field.index > 0:
            field.pending = True
            if field.number > 2:
                run.block.target += 1
    elif c == '/':
        repeat(run, 1)
    elif c == 'x':
        count = t.read_ulong() if t.ch() in lex.DIGITS else None
        if count is None:
            raise Fail(24)
        repeat(run, count - 1)


def repeat(run, count):
    for _ in range(count):
        if is_full(run):
            run.screen.warning(12)
            run.field.block_end = True
            return
        plain_value(run, run.field.last, record=True)


def data_value(run):
    if is_full(run):
        run.screen.warning(10)
        run.field.block_end = True
        return
    value = read_value(run)
    if value is None:
        raise Fail(23)
    run.field.last = value
    plain_value(run, value, record=True)


# Values reaching events

def is_full(run):
    field, block = run.field, run.block
    if field.number == 2 and not block.in_events:
        return block.clock >= block.end_clock
    return field.index >= block.target


def deviate(run, value, deviation):
    """value within the deviation around it; always takes one draw."""
    u = run.random.unit()
    d = mul(value, deviation)
    return add(sub(value, div(d, 2.0)), mul(d, u))


def plain_value(run, value, record):
    """A value from the text, a repeat, a loop or the completion."""
    field = run.field
    if record and field.recording:
        field.loop.append((value, int(field.pending)))
    if field.number == 2:
        make_event(run, value, zero_is_error=True)
        return
    event = next_event(run)
    if field.number == 3:
        duration_step(run, event, value)
    else:
        if field.mode == names.NO and value < 0:
            event.duration = -event.duration
        store(run, event, deviated_parameter(run, value))
    advance(field)


def advance(field):
    field.index += 1
    field.seen = True


def make_event(run, value, zero_is_error):
    """P2: a new event for a rhythm in beats; returns the magnitude in seconds."""
    field, block = run.field, run.block
    seconds = run.tempo.seconds(value)
    clock = add(block.clock, abs(value))
    if zero_is_error and not block.in_events and seconds == 0:
        raise Fail(54)
    seconds = deviate(run, seconds, add(run.rd, field.dv))
    append_event(run, seconds)
    if clock != block.clock:
        block.still = 0
    elif not block.in_events:
        block.still += 1
        if block.still > STILL_MAX:
            raise Fail(54)
    block.clock = clock
    return abs(seconds)


def append_event(run, seconds):
    from iblock import Event
    field, block = run.field, run.block
    if len(block.events) >= EVENTS_MAX:
        raise Fail(32)
    if len(block.events) >= MODEL_EVENTS_MAX:
        raise GiveUp
    shared = int(field.pending)
    field.pending = False
    start, beat = block.start, block.clock
    if block.events:
        previous = block.events[-1]
        start = previous.start
        if shared:
            beat = previous.beat
        else:
            start = add(start, field.last_rhythm)
    values = [0.0] * (block.fields - 3)
    block.events.append(Event(shared, start, seconds, beat, values))
    field.last_rhythm = abs(seconds)
    advance(field)


def next_event(run):
    """P3 and up: the event to fill, a copy of the previous one when asked for."""
    field, events = run.field, run.block.events
    if field.pending:
        field.pending = False
        events.insert(field.index, events[field.index - 1].copy())
        if len(events) > EVENTS_MAX:
            raise Fail(32)
        if len(events) > MODEL_EVENTS_MAX:
            raise GiveUp
    return events[field.index]


def duration_step(run, event, value):
    """P3: the band of the value says how it is related to the rhythm."""
    field, rhythm = run.field, event.duration
    magnitude = abs(value)
    code = next((c for c, end in ((0, 200), (200, 300), (300, 400), (400, 1000))
                 if magnitude < end), 1000)
    x = sub(magnitude, float(code))
    if value < 0:
        x = -x
    x = deviate(run, x, run.rd)
    x = deviate(run, x, field.dv)
    if code == 0:
        x = mul(x, rhythm)
    elif code == 200:
        x = add(x, rhythm)
    elif code == 300:
        if x < rhythm:
            run.screen.warning(1)
        x = sub(rhythm, x)
    elif code == 400:
        x = mul(x, div(60.0, run.tempo.current))
    event.duration = mul(x, field.factor)


def deviated_parameter(run, value):
    """P4 and up: deviation, and rounding of pitches without quarter tones."""
    field = run.field
    value = deviate(run, value, add(run.rd, field.dv))
    if field.mode in (names.NO, names.OP) and not field.quarter_tones:
        value = round_half_up(value)
    return value


def store(run, event, value):
    event.values[run.field.number - 4] = mul(value, run.field.factor)


# Completion

def complete(run):
    """Replay the loop, or hold the last value, until the block is full."""
    field, block = run.field, run.block
    loop = field.loop if any(not flag for _, flag in field.loop) else []
    if loop and field.number == 2:
        field.pending = False
    grows = field.number > 2 or block.in_events
    if loop and loop[0][1] and grows:
        block.target += 1
        grown = True
    else:
        grown = False
    k = 0
    while not is_full(run):
        value, flag = loop[k % len(loop)] if loop else (field.last, 0)
        k += 1
        if flag:
            field.pending = True
            if grows and not grown:
                block.target += 1
            grown = False
        plain_value(run, value, record=False)


# Reading one value in the input mode

def read_value(run):
    """The value at the position, None when there is none."""
    t, field = run.reader.t, run.field
    if t.ch() in 'zZ':
        t.pos += 1
        return field.last
    if field.mode == names.RE:
        return t.read_float()
    if field.mode == names.IN:
        value = t.read_float()
        return None if value is None else round_half_up(value)
    readers = {names.DB: decibels, names.RH: rhythm, names.NO: note, names.OP: octave_class}
    reader = readers.get(field.mode)
    return reader(run, t) if reader else None


def decibels(run, t):
    value = t.read_float()
    if value is None or not 0 <= value <= 96:
        return None
    return f32(trunc_real(math.exp(int(value) * 0.11512925)))


def rhythm(run, t):
    """4 is one beat; each dot adds half of what was added last; "," adds the next length, dots and
    all. The first number's sign negates the sum, a later one's its own part."""
    total, negative = 0.0, None
    while True:
        number = t.read_short()
        if not number:
            return None
        if negative is None:
            negative, number = number < 0, abs(number)
        length = part = div(4.0, float(number))
        while t.ch() == '.':
            t.pos += 1
            part = div(part, 2.0)
            length = add(length, part)
        total = add(total, length)
        if t.ch() != ',':
            return -total if negative else total
        t.pos += 1


def note(run, t):
    t.skip_ws()
    if t.ch() == 'r':
        t.pos += 1
        return -1.0
    if t.ch() not in NOTES:
        return None
    value = float(NOTES[t.ch()])
    t.pos += 1
    while t.ch() in ('s', 'f', 'n', '+', '-'):
        mark = t.ch()
        t.pos += 1
        if mark in '+-' and not run.field.quarter_tones:
            return None
        value += {'s': 1, 'f': -1, 'n': 0, '+': 0.5, '-': -0.5}[mark]
    if t.ch() in lex.DIGITS:
        octave = t.read_short()
        if octave is None or octave > 9:
            return None
        run.octave = octave
    return value + run.octave * 12 + (12 if run.midi else 0)


def octave_class(run, t):
    octave = t.read_short()
    if octave is None:
        return None
    fraction = 0.0
    if t.ch() == '.':
        fraction = t.read_float()
        if fraction is None:
            return None
    value = sub(add(mul(fraction, 100.0), float(abs(octave) * 12)), 48.0)
    if octave < 0 and not run.midi:
        value = -value
    return add(value, 12.0) if run.midi else value
