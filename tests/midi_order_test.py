#!/usr/bin/env python3
"""Compares whole MIDI files of dense, overlapping notes with the rule for their order, followed to the letter.

    midi_order_test.py KORVO_BINARY

The rule: walk along the list of the events from its first one. At each note-on make its note-off, and put it behind the
event and behind every following one that starts no later than the note ends. Korvo sorts instead, which takes less time
and must come to the same. The pieces are made here, at random but always the same ones; many of their notes begin and
end at the same moments, on few keys, so that every mistake shows in the bytes.
"""

import math
import random
import struct
import subprocess
import sys
import tempfile
from dataclasses import dataclass, replace
from pathlib import Path

import clock

NOTE_OFF_AMPLITUDE = 15480.47265625


# ---- arithmetic in single precision


def single(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def whole(value):
    """An integer from a single: the fraction is dropped."""
    return math.trunc(value)


def ticks(seconds):
    return whole(single(seconds * 480.0))


def quantity(number):
    """The variable-length form of a number."""
    data = [number & 0x7F]
    while number := number >> 7:
        data.insert(0, number & 0x7F | 0x80)
    return bytes(data)


# ---- the rule


@dataclass
class Event:
    start: float
    duration: float
    amplitude: float
    key: float
    on: bool = True


def in_order(notes):
    """The list of all note-ons and note-offs."""
    events = list(notes)
    at = 0
    while at < len(events):
        event = events[at]
        if event.on:
            end = single(event.start + event.duration)
            place = at + 1
            while place < len(events) and not events[place].start > end:
                place += 1
            note_off = replace(event, start=end, amplitude=NOTE_OFF_AMPLITUDE, on=False)
            events.insert(place, note_off)
        at += 1
    return events


def midi_file(notes):
    events = in_order([note for note in notes if note.duration > 0])
    track = b""
    previous = 0.0
    for event in events:
        key = whole(math.fmod(event.key, 128)) & 0xFF
        velocity = whole(single(event.amplitude * 0.003875850703452)) & 0xFF
        track += quantity(ticks(single(event.start - previous)))
        track += bytes([0x90, key, velocity] if event.on else [0x80, key, 0x40])
        previous = event.start
    last = events[-1]
    end = quantity(ticks(single(single(last.start + last.duration) + 1.0)))
    conductor = bytes.fromhex("00ff580404021808 00ff51030f4240") + end + b"\xff\x2f\x00"
    track += b"\x00\xff\x2f\x00"
    header = b"MThd" + struct.pack(">IHHH", 6, 1, 2, 480)
    return header + b"".join(b"MTrk" + struct.pack(">I", len(x)) + x for x in (conductor, track))


# ---- pieces
# A number is kept as an integer and its number of decimals, which is how it is written and read: (1250, 3) is 1.25.


def value(number):
    digits, decimals = number
    return single(digits / 10**decimals)


def text(number):
    digits, decimals = number
    sign, digits = "-" * (digits < 0), abs(digits)
    if decimals == 0:
        return f"{sign}{digits}"
    return f"{sign}{digits // 10**decimals}.{digits % 10**decimals:0{decimals}}"


def p_field(number, values):
    lines = [" ".join(map(text, values[i : i + 16])) for i in range(0, len(values), 16)]
    return f"  p{number} " + "\n     ".join(lines) + "\n"


def piece(rhythms, lengths, amplitudes, keys):
    """The text of a block and its events. Lengths are in seconds; they are written 1000 higher, which says so."""
    lifted = [(digits + 1000 * 10**decimals, decimals) for digits, decimals in lengths]
    body = p_field(2, rhythms) + p_field(3, lifted) + p_field(4, amplitudes) + p_field(5, keys)
    notes = []
    start = 0.0
    for rhythm, length, amplitude, key in zip(rhythms, lifted, amplitudes, keys):
        duration = single(value(length) - 1000.0)
        notes.append(Event(start, duration, value(amplitude), value(key)))
        start = single(start + value(rhythm))
    return f"i1 = 5 0 -{len(notes)} {{\n{body}}}\n", notes


@dataclass
class Shape:
    name: str
    count: int
    rhythm: tuple  # the lowest and the highest, and the decimals
    length: tuple
    keys: int = 4


SHAPES = [
    Shape("few moments", 600, (0, 1, 0), (1, 4, 0)),
    Shape("halves", 600, (0, 2, 0), (1, 60, 1)),
    Shape("tenths", 600, (0, 3, 1), (1, 30, 1)),
    Shape("hundredths", 600, (0, 20, 2), (1, 300, 2)),
    Shape("no two alike", 600, (1, 99999, 5), (1, 99999, 3)),
    Shape("one chord", 300, (0, 0, 0), (1, 5, 0)),
    Shape("one key", 400, (0, 2, 0), (1, 9, 0), keys=1),
    Shape("tiny", 400, (0, 5, 3), (1, 9, 3)),
    Shape("far apart", 200, (0, 9999, 0), (1, 9000, 0), keys=100),
    Shape("all sound on", 2000, (0, 4, 1), (1, 999, 0), keys=128),
    Shape("rests between", 600, (0, 3, 0), (-2, 6, 0)),
]


def random_piece(shape, seed):
    draw = random.Random(f"{shape.name} {seed}")

    def values(bounds):
        low, high, decimals = bounds
        return [(draw.randint(low, high), decimals) for _ in range(shape.count)]

    rhythms, lengths = values(shape.rhythm), values(shape.length)
    # A length of 0 or less is a rest, written as such; 1000 and more is a length in seconds.
    lengths = [length if length[0] >= 0 else (0, 0) for length in lengths]
    return piece(rhythms, lengths, values((260, 32767, 0)), values((60, 59 + shape.keys, 0)))


# ---- running


def fault_of(korvo, words, notes, folder):
    """What is wrong; nothing when all is well."""
    (folder / "piece.txt").write_text(words)
    try:
        done = subprocess.run(
            [korvo, "-s", "-m", "piece.txt", "piece.mid"],
            cwd=folder,
            stdin=subprocess.DEVNULL,
            capture_output=True,
            timeout=clock.HANG,
            check=False,
        )
    except subprocess.TimeoutExpired:
        return f"did not end within {clock.HANG} seconds"
    if done.returncode != 0:
        return f"status {done.returncode}: {done.stderr.decode('utf-8', 'replace')[-500:]}"
    expected, found = midi_file(notes), (folder / "piece.mid").read_bytes()
    if expected == found:
        return None
    at = next((i for i, (a, b) in enumerate(zip(expected, found)) if a != b), min(len(expected), len(found)))
    return (
        f"differs at byte {at} of {len(expected)}: expected {expected[at : at + 12].hex(' ')}, "
        f"found {found[at : at + 12].hex(' ')}"
    )


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: midi_order_test.py KORVO_BINARY")
    korvo = Path(sys.argv[1]).resolve()
    failed = total = 0
    with tempfile.TemporaryDirectory(prefix="korvo-order-") as folder:
        for shape in SHAPES:
            for seed in range(3):
                words, notes = random_piece(shape, seed)
                fault = fault_of(korvo, words, notes, Path(folder))
                total += 1
                if fault:
                    failed += 1
                    print(f"FAIL {shape.name} {seed}: {fault}")
    print(f"{total - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
