"""The text score and the MIDI file.

Both writers first remove the block's rests (events without a positive
duration).  The text score has one line per event with every p-field in its own
output kind.  The MIDI file is a header, a conductor track and a note track.
"""

import names
from numeric import (INT32_MAX, INT32_MIN, UINT64_MAX, add, ddiv, dexp2, div, dlog, f32,
                     mul, nearest_power, real_text, remainder, round_half_up, shrink, sub, to_int, trunc_real)

DECIBEL = 0.11512925
LOWEST_HZ = 16.35159783
SEMITONE = 1.059463094359
FFT_SIZES = (256, 512, 1024, 2048, 4096, 8192, 16384, 16384)
VELOCITY_SCALE = 0.003875850703452
OFF_VELOCITY = 15480.47265625
TICKS = 480.0
DEFAULT_VELOCITY, DEFAULT_KEY = 64.0, 60.0


def remove_rests(run, message):
    """False, with a message, when nothing sounds."""
    block = run.block
    block.events = [e for e in block.events if not e.duration <= 0.0]
    if block.events:
        return True
    run.screen.show(message, block.number)
    return False


# Text score

def write_score(run):
    block = run.block
    if not remove_rests(run, '\n\nOops i-block %d is all rests '
                             '(check p2=0 and p3 != 400+n OR 1000+n?)! '):
        return False
    for event in block.events:
        run.output.write(score_line(run, event))
    run.output.write('\n')
    return True


def score_line(run, event):
    block = run.block
    p2, p3 = block.given[2].precision, block.given[3].precision
    parts = ['\ni%d ' % block.number,
             real_text(p2 + 5, p2, event.start), ' ',
             real_text(p3 + 3, p3, event.duration), ' ']
    for number in range(4, block.fields + 1):
        text = field_text(run, block.given[number], event.values[number - 4])
        if text:
            parts.append(text + ' ')
    return ''.join(parts)


def field_text(run, field, v):
    kind = field.kind
    if kind == names.RE:
        return real_text(field.precision + 6, field.precision, v)
    if kind == names.IN:
        return '%5d' % to_int(round_half_up(v))
    if kind == names.DB:
        k = float(to_int(round_half_up(v)))
        return real_text(4, 1, f32(ddiv(dlog(k), DECIBEL)))
    if kind == names.TR:
        return real_text(8, 6, nearest_power(SEMITONE, v))
    if kind in (names.HZ, names.OP, names.OD, names.BN):
        return pitch_text(run, field, v)
    return ''


def pitch_text(run, field, v):
    within = shrink(sub(v, mul(trunc_real(div(v, 12.0)), 12.0)), 12.0)
    whole = to_int(v, INT32_MIN, INT32_MAX)
    octave = -(-whole // 12) if whole < 0 else whole // 12
    if field.kind == names.OP:
        return real_text(6, 3, add(f32(octave + 4), div(within, 100.0)))
    if field.kind == names.OD:
        return real_text(4, 2, add(f32(octave + 4), div(within, 12.0)))
    hertz = f32(dexp2(octave + within / 12.0) * LOWEST_HZ)
    if field.kind == names.HZ:
        return real_text(11, 5, hertz)
    width = div(f32(run.sample_rate), float(FFT_SIZES[field.fft_index]))
    return '%5d' % to_int(round_half_up(div(hertz, width)))


# MIDI

def write_midi(run):
    block = run.block
    if not block.events:
        return False
    if not remove_rests(run, '\n\nOops i-block %d is all rests! '):
        return False
    size = prepare(run)
    events = block.events
    end = add(add(events[-1].start, events[-1].duration), 1.0)
    data = header() + conductor_track(end) + note_track(events, size)
    run.output.write(data.decode('latin-1'))
    return True


def prepare(run):
    """Add the note-off events and scale the values; the size of the events' bytes."""
    events = run.block.events
    size, previous, k = 0, 0.0, 0
    while k < len(events):
        event = events[k]
        end = add(event.start, event.duration)
        if event.values:
            event.values[0] = f32(event.values[0] * VELOCITY_SCALE)
        if len(event.values) > 1:
            event.values[1] = remainder(event.values[1], 128.0)
        size += 3 + len(variable_length(ticks(sub(event.start, previous))))
        if event.on:
            insert_note_off(events, k, event, end)
        run.screen.show('\n%f\t', event.start)
        run.screen.show('%f\t', event.duration)
        run.screen.show('%s\t', 'ON' if event.on else 'OFF')
        run.screen.show('N: %f\t', key(event))
        run.screen.show('V: %f\t', velocity(event))
        previous = event.start
        k += 1
    return size


def insert_note_off(events, k, event, end):
    off = event.copy()
    off.start, off.on = end, False
    if off.values:
        off.values[0] = OFF_VELOCITY
    place = k + 1
    while place < len(events) and not events[place].start > end:
        place += 1
    events.insert(place, off)


def velocity(event):
    if event.values:
        return event.values[0]
    return DEFAULT_VELOCITY if event.on else f32(OFF_VELOCITY * VELOCITY_SCALE)


def key(event):
    return event.values[1] if len(event.values) > 1 else DEFAULT_KEY


def ticks(seconds):
    return to_int(mul(seconds, TICKS), 0, UINT64_MAX)


def variable_length(value):
    data = [value & 0x7F]
    while value > 0x7F:
        value >>= 7
        data.insert(0, value & 0x7F | 0x80)
    return bytes(data)


def length_bytes(value):
    return (value & 0xFFFFFFFF).to_bytes(4, 'big')


def header():
    return b'MThd' + bytes([0, 0, 0, 6, 0, 1, 0, 2, 0x01, 0xE0])


def conductor_track(end):
    at = variable_length(ticks(end))
    return (b'MTrk' + length_bytes(18 + len(at))
            + bytes([0x00, 0xFF, 0x58, 0x04, 0x04, 0x02, 0x18, 0x08])
            + bytes([0x00, 0xFF, 0x51, 0x03, 0x0F, 0x42, 0x40])
            + at + bytes([0xFF, 0x2F, 0x00]))


def note_track(events, size):
    data, previous = bytearray(b'MTrk' + length_bytes(size + 4)), 0.0
    for event in events:
        data += variable_length(ticks(sub(event.start, previous)))
        pitch = to_int(key(event)) & 0xFF
        if event.on:
            data += bytes([0x90, pitch, to_int(velocity(event)) & 0xFF])
        else:
            data += bytes([0x80, pitch, 0x40])
        previous = event.start
    return bytes(data) + bytes([0x00, 0xFF, 0x2F, 0x00])
