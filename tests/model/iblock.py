"""One instrument block: header, body, and what is done with its events.

A block is `i` number `=` p-field count, start, length, then the p-field
text between braces.  A negative instrument number skips the block.
"""

import globals_area
import names
import output
import pfield
import reader as lex
import tempo
from messages import CONTEXT_ONLY, Fail
from numeric import add, f32, sub

FIELDS_MAX = 128
BEATS_MAX = 10000.0


class Event:
    """One event; `values` holds P4 and up."""

    __slots__ = ('shared', 'start', 'duration', 'beat', 'values', 'on')

    def __init__(self, shared, start, duration, beat, values):
        self.shared, self.start, self.duration = shared, start, duration
        self.beat, self.values, self.on = beat, values, True

    def copy(self):
        return Event(1, self.start, self.duration, self.beat, list(self.values))


class Block:
    """Header values, p-field table, events and the beat clock of a block."""

    def __init__(self):
        self.number = 0             # the instrument
        self.fields = 3             # p-fields, P1 included
        self.start = 0.0            # seconds
        self.length = 0.0           # beats, when not measured in events
        self.in_events = False
        self.target = 0             # events that the p-fields must fill
        self.clock = 0.0            # beats
        self.end_clock = 0.0
        self.still = 0              # events in a row that did not move the clock
        self.events = []
        self.given = {}             # p-field number: its pfield.Field


def run_block(run):
    """Parse, generate and write one block."""
    run.block = Block()
    parse_block(run)
    if not write_block(run):
        if run.block_number == 1:
            run.screen.show('\n\n\t(N.B. No I-Block Data Written)')
        return
    summary(run)


def write_block(run):
    block = run.block
    if run.midi:
        return output.write_midi(run)
    if not block.events:
        return False
    run.output.write('\n;I-block #%d (i%d):' % (run.block_number, block.number))
    return output.write_score(run)


def summary(run):
    block = run.block
    events = block.events
    end = max([0.0] + [add(e.start, e.duration) for e in events])
    seconds = end - events[0].start
    beats = sub(events[-1].beat, events[0].beat)
    run.total_seconds = max(run.total_seconds, end)
    run.last_seconds = seconds
    show = run.screen.show
    show('\n\n%d events generated in block #%d (i%d).\n',
         len(events), run.block_number, block.number)
    show('Total i-block duration: %f (secs), %f (beats)\n', seconds, beats)
    show('Cumulative i-block duration: %f (secs)\n', end)
    run.block_number += 1


# Parsing

def parse_block(run):
    """Fills run.block; a skipped block is left without events."""
    r, t = run.reader, run.reader.t
    while True:
        if t.at_end() and r.read_line() < 0:
            return
        t.skip_ws()
        if t.at_end():
            continue
        if t.ch() == 'i':
            if not parse_header(run):
                run.screen.warning(2)
                return
        elif pfield.field_here(t):
            parse_field(run)
        elif t.ch() == '}':
            if any(n not in run.block.given for n in range(2, run.block.fields + 1)):
                raise Fail(71)
            t.pos += 1
            return
        else:
            parse_statements(run)


def parse_field(run):
    block, t = run.block, run.reader.t
    if run.field.recording:
        run.screen.warning(15)
    t.pos += 1
    number = t.read_short()
    if number is None:
        raise Fail(16)
    if number > block.fields:
        raise Fail(44)
    if number != 2 and 2 not in block.given:
        raise Fail(15)
    if number < 2:
        raise Fail(16)
    if number in block.given:
        raise Fail(70)
    run.field = pfield.Field(number)
    pfield.parse(run)
    block.given[number] = run.field
    if number == 2:
        block.target = len(block.events)


def parse_statements(run):
    """RD and RS statements and comments, up to a p-field or the line's end."""
    r, t = run.reader, run.reader.t
    while True:
        t.skip_ws()
        if t.at_end() or pfield.field_here(t):
            return
        if r.comment_here():
            r.skip_body_comment()
            continue
        if not names.is_block_name(t):
            raise Fail(73)
        code = names.lookup(run, t)
        if code is None:
            raise Fail(20)
        if code not in (names.RD, names.RS):
            raise Fail(23)
        globals_area.setting(run, code)


def parse_header(run):
    """False when the instrument number is negative and the block was skipped."""
    r, t, block = run.reader, run.reader.t, run.block
    t.pos += 1
    r.skip_blanks_and_comments()
    number = t.read_long() if t.ch() == '-' or t.ch() in lex.DIGITS else None
    if number is None or not -2**31 <= number < 2**31:
        raise Fail(11)
    block.number = number
    if number < 0:
        skip_block(run)
        return False
    r.skip_blanks_and_comments()
    if t.ch() != '=':
        raise Fail(34)
    t.pos += 1
    r.skip_blanks_and_comments()
    field_count(run)
    r.skip_separator(4)
    block.start = t.read_float()
    if block.start is None or block.start < 0:
        raise Fail(12)
    if block.start > 240.0:
        run.screen.warning(20)
    r.skip_separator(4)
    read_length(run)
    r.skip_separator(4)
    if t.ch() != '{':
        raise Fail(30)
    t.pos += 1
    block.clock = tempo.start_clock(run, block.start)
    block.end_clock = tempo.block_end(block.clock, block.length)
    return True


def field_count(run):
    count = run.reader.t.read_long()
    if count is None:
        raise Fail(35)
    if not 3 <= count <= FIELDS_MAX:
        run.screen.show('\n\nERROR: Bad number of p-fields (3 - %d)\n', FIELDS_MAX)
        raise Fail(CONTEXT_ONLY)
    if count >= 51:
        run.screen.warning(19)
    run.block.fields = count


def read_length(run):
    t, block = run.reader.t, run.block
    block.target, block.length, block.in_events = 0, 0.0, False
    if t.ch() == '-':
        t.pos += 1
        count = t.read_ulong()
        if count is None:
            raise Fail(14)
        block.in_events, block.target = True, count
    elif t.ch() in '.+' or t.ch() in lex.DIGITS:
        beats = t.read_float()
        if beats is None or beats < 0:
            raise Fail(13)
        block.length = beats
    else:
        raise Fail(120 if t.ch() == '{' else 121)
    if block.length > BEATS_MAX:
        run.screen.show('\n\nERROR: Line %d: Maximum number of beats = 10000.000000\n',
                        run.reader.number)
        raise Fail(CONTEXT_ONLY)
    if block.length > 600.0:
        run.screen.warning(21)


def skip_block(run):
    """Everything up to and including the next "}"."""
    r, t = run.reader, run.reader.t
    while True:
        if t.at_end():
            if r.read_line() < 0:
                return
        elif r.comment_here():
            r.skip_body_comment()
        else:
            t.pos += 1
            if t.s[t.pos - 1] == '}':
                return
