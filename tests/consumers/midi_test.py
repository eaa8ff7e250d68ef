#!/usr/bin/env python3
"""Reads Korvo's MIDI files with other people's programs and checks that they find the notes of the piece.

    midi_test.py KORVO_BINARY EXAMPLES [--keep FOLDER]

The subjects are the folders of EXAMPLES that hold a file named `midi`, and the pieces at the top of this file. Of each,
Korvo writes a score, which tells what the notes are, and a MIDI file. Then

  - the lengths that the chunks declare are exact, and each track ends with its end;
  - midicsv and mido read the same records from the file;
  - the records are the note-ons and note-offs of the score's notes, each note-on before its note-off;
  - every step from one record to the next is as long as in the score, within one tick (Korvo drops the fraction of a tick
    at every step). Where the piece keeps to whole ticks, as the examples do, nothing adds up, and every single time and
    length is right within one tick;
  - FluidSynth plays every example into a sound file that is as long as the piece and not silent.

A program that is missing is a failure. With --keep the files of the run stay in FOLDER.
"""

import argparse
import array
import math
import operator
import re
import shutil
import struct
import subprocess
import sys
import tempfile
import wave
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

TICKS = 480.0  # in a second: one quarter note
SILENCE = 100.0  # root mean square of 16-bit samples
MEGABYTES = 4  # of the large file, at least
SOUND_FONTS = (
    "/usr/share/sounds/sf2/TimGM6mb.sf2",
    "/usr/share/sounds/sf2/FluidR3_GM.sf2",
    "/usr/share/sounds/sf2/default-GM.sf2",
    "/usr/share/soundfonts/default.sf2",
)

# What the pieces are about: where notes meet, what the numbers become, and size. P5 is the key as it is, so that score
# and MIDI file agree on it. `whole`: all times are whole ticks.


@dataclass
class Piece:
    name: str
    text: str
    whole: bool = True


def block(count, p2, p3, p4="16384", p5="60"):
    text = f"i1 = 5 0 -{count} {{\n  p2 {p2}\n  p3 {p3}\n  p4 {p4}\n"
    return f"{text}  p5 {p5}\n}}\n"


PIECES = [
    Piece("one note", block(1, "1", "1")),
    Piece("touching on one key", block(16, ".5", "1")),
    Piece("overlapping on one key", block(16, ".5", "3.5", "< 8000 12000 16000 >")),
    Piece("together", block(24, "< 0 0 0 1 >", "< 1001 1002 1000.5 1001 >", p5="< 60 64 67 72 >")),
    Piece("together on one key", block(12, "< 0 0 1 >", "< 1001 1002 1000.5 >")),
    Piece("shorter than a tick", block(8, "1", ".001"), whole=False),
    Piece("lasting nothing", block(9, "4096 < 0 1 >", "1 < 1001 400.0001 >", p5="60 62 64 65")),
    Piece("long deltas", block(6, "40 5000 10000 1 1 1", "1016 5369.0625 1000.25 1", p5="60 61 62")),
    Piece("tempo 120", "te(120)\n" + block(32, "< 1 .5 .25 .25 >", "< 1 2 .5 >", p5="< 60 62 64 65 67 >")),
    Piece("tempo 72", "te(72)\n" + block(64, "< 1 .5 .25 .25 >", "< 1 2 .5 >"), whole=False),
    Piece("tempo that changes", "te(0, 32, 60, 200, s)\n" + block(96, ".3333", ".8"), whole=False),
    Piece("rests", block(20, "< .5 -.5 1 >", "< 1 1 -1 2 0 >", p5="< 60 62 64 >")),
    Piece("every key", block(128, ".125", "1", p5="< " + " ".join(map(str, range(128))) + " >")),
    Piece("every velocity", block(127, ".125", "1", "pf(258.1) " + " ".join(map(str, range(1, 128))))),
    Piece(
        "random",
        "rs(7)\n"
        + block(
            3000,
            "RA(-3000 1 [x 0 .2])",
            "RA(-3000 1 [1000.0001 1003])",
            "RA(-3000 1 [260 32767])",
            "in RA(-3000 1 [36 96])",
        ),
        whole=False,
    ),
    # More than the million records that make four megabytes.
    Piece(
        "large",
        block(
            600000,
            "< .125 0 .0625 .0625 .125 >",
            "< 1000.0625 1003.5 1000.25 1060 1000.125 1001 1200.0625 >",
            "< 8000 16000 24000 >",
            "< 36 43 60 64 67 72 74 76 79 84 91 >",
        ),
    ),
]


class Fault(Exception):
    """What is wrong with a subject."""


def run(words, folder, output=subprocess.PIPE, messages=subprocess.PIPE):
    """Runs a program to its end. What it writes comes back, or goes into the files `output` and `messages`."""
    name = Path(words[0]).name
    try:
        done = subprocess.run(
            words,
            cwd=folder,
            stdin=subprocess.DEVNULL,
            stdout=output,
            stderr=messages,
            timeout=clock.HANG,
            check=False,
        )
    except subprocess.TimeoutExpired:
        raise Fault(f"{name} did not end within {clock.HANG} seconds") from None
    if done.returncode != 0:
        text = done.stderr if messages == subprocess.PIPE else Path(messages.name).read_bytes()
        lines = text.decode("utf-8", "replace").rstrip().splitlines()[-10:]
        raise Fault(f"{name} ended with status {done.returncode}" + "".join(f"\n    {x}" for x in lines))
    return done


# ---- the notes, from the score


@dataclass
class Note:
    start: float  # seconds
    end: float
    amplitude: float
    key: int


def single(value):
    return struct.unpack("f", struct.pack("f", value))[0]


def precise(text):
    """A piece whose P2 and P3 are printed with all their decimals."""
    return re.sub(r"^(\s*)p([23])(?=\s)(?!\s*\()", r"\1p\2(re7)", text, flags=re.M)


def notes_of_score(path):
    """The notes of the first i-block; a MIDI file holds no other."""
    blocks = path.read_text().split("\n;I-block #")
    notes = []
    for line in blocks[1].splitlines() if len(blocks) > 1 else []:
        if line.startswith("i"):
            start, duration, *rest = map(float, line.split()[1:])
            amplitude = rest[0] if rest else 64.5 * 32767 / 127
            key = int(rest[1]) if len(rest) > 1 else 60
            notes.append(Note(start, single(single(start) + single(duration)), amplitude, key))
    if not notes:
        raise Fault("the score has no events")
    return notes


# ---- the records, from the MIDI file


@dataclass(frozen=True)
class Record:
    tick: int
    on: bool
    key: int
    velocity: int


def check_chunks(data):
    """Walks through the file by its own lengths: every chunk ends where its last event ends."""
    if data[:14] != bytes.fromhex("4d546864 00000006 0001 0002 01e0"):
        raise Fault(f"the header is {data[:14].hex(' ')}")
    at = 14
    for track in (1, 2):
        if data[at : at + 4] != b"MTrk":
            raise Fault(f"no track {track} at byte {at}")
        (length,) = struct.unpack(">I", data[at + 4 : at + 8])
        at += 8
        end = at + length
        if end > len(data):
            raise Fault(f"track {track} declares {length} bytes, {len(data) - at} are there")
        status = last = None
        while at < end:
            while data[at] & 0x80:
                at += 1
            at += 1
            status = data[at]
            if status == 0xFF:
                last = data[at + 1]
                at += 3 + data[at + 2]
            elif status in (0x80, 0x90):
                last = None
                if data[at + 1] > 127 or data[at + 2] > 127:
                    raise Fault(f"a data byte above 127 at byte {at}")
                at += 3
            else:
                raise Fault(f"status byte {status:02x} at byte {at}")
            if last == 0x2F and at != end:
                raise Fault(f"track {track} goes on behind its end at byte {at}")
        if at != end or last != 0x2F:
            raise Fault(f"track {track} does not end with its end at byte {end}")
    if at != len(data):
        raise Fault(f"{len(data) - at} bytes behind the last track")


@dataclass
class Contents:
    """What a reader finds in a file."""

    header: tuple  # format, tracks, ticks in a quarter note
    conductor: list  # (tick, words) of what is no note
    records: list


def contents(header, events):
    """events: (track, tick, kind, numbers), as midicsv names them."""
    conductor = [(tick, kind, *numbers) for track, tick, kind, numbers in events if track == 1]
    records = []
    for track, tick, kind, numbers in events:
        if kind in ("Note_on_c", "Note_off_c"):
            channel, key, velocity = numbers
            if (track, channel) != (2, 0):
                raise Fault(f"a note in track {track} on channel {channel}")
            records.append(Record(tick, kind == "Note_on_c", key, velocity))
    return Contents(header, conductor, records)


def read_rows(lines):
    """Rows as midicsv writes them."""
    header, events = None, []
    for line in lines:
        track, tick, kind, *numbers = line.rstrip("\n").split(", ")
        if kind == "Header":
            header = tuple(map(int, numbers))
        else:
            events.append((int(track), int(tick), kind, tuple(map(int, numbers))))
    return contents(header, events)


MIDO_READER = """
import sys, mido
file = mido.MidiFile(sys.argv[1])
print("0, 0, Header, %d, %d, %d" % (file.type, len(file.tracks), file.ticks_per_beat))
for number, track in enumerate(file.tracks, 1):
    tick = 0
    for m in track:
        tick += m.time
        head = "%d, %d, " % (number, tick)
        if m.type == "note_on" or m.type == "note_off":
            name = "Note_on_c" if m.type == "note_on" else "Note_off_c"
            print(head + "%s, %d, %d, %d" % (name, m.channel, m.note, m.velocity))
        elif m.type == "set_tempo":
            print(head + "Tempo, %d" % m.tempo)
        elif m.type == "time_signature":
            power = m.denominator.bit_length() - 1
            print(head + "Time_signature, %d, %d, %d, %d" % (
                m.numerator, power, m.clocks_per_click, m.notated_32nd_notes_per_beat))
        elif m.type == "end_of_track":
            print(head + "End_track")
        else:
            print(head + m.type)
"""


def read_with_midicsv(tools, path):
    rows = path.with_suffix(".csv")
    with open(rows, "wb") as output:
        done = run([tools.midicsv, path], path.parent, output)
    if done.stderr:
        raise Fault(f"midicsv complains: {done.stderr.decode('utf-8', 'replace').strip()}")
    with open(rows) as lines:
        # Beside the rows of the file there are three that midicsv makes up.
        return read_rows(x for x in lines if not re.match(r"\d+, \d+, (Start_track|End_of_file)", x))


def read_with_mido(tools, path):
    rows = path.with_suffix(".mido")
    with open(rows, "wb") as output:
        run([tools.mido, "-c", MIDO_READER, path], path.parent, output)
    with open(rows) as lines:
        return read_rows(lines)


# ---- comparing


def compare_readers(one, other):
    if one.header != other.header or one.conductor != other.conductor:
        raise Fault("midicsv and mido read different conductor tracks")
    if one.records != other.records:
        raise Fault("midicsv and mido read different notes")


def check_conductor(found):
    """One quarter note a second, and an end behind all notes."""
    if found.header != (1, 2, 480):
        raise Fault(f"the header says {found.header}")
    if found.conductor[:-1] != [(0, "Time_signature", 4, 2, 24, 8), (0, "Tempo", 1000000)]:
        raise Fault(f"the conductor track says {found.conductor}")
    tick, kind = found.conductor[-1]
    if kind != "End_track" or tick < found.records[-1].tick:
        raise Fault(f"the conductor track ends at {tick}, the last note at {found.records[-1].tick}")


def key_offset(notes, records):
    """12 where the piece gives its pitches by name (they are an octave higher in a MIDI file), otherwise 0."""
    found = Counter(record.key for record in records if record.on)
    for offset in (0, 12):
        if Counter((note.key + offset) % 128 for note in notes) == found:
            return offset
    raise Fault("the keys are not those of the score")


def moments_of(notes, offset):
    """(seconds, on, key, velocity) of what must happen, in the order of time."""
    moments = []
    for note in notes:
        key = (note.key + offset) % 128
        moments.append((note.start, True, key, int(note.amplitude * 127 / 32767 + 1e-5)))
        moments.append((note.end, False, key, 64))
    return sorted(moments, key=operator.itemgetter(0))


def check_records(moments, records):
    """The same things happen at the same moments; what falls on one moment may come in any order."""
    if len(moments) != len(records):
        raise Fault(f"{len(records)} records for {len(moments) // 2} notes")
    begin = 0
    for end in range(1, len(moments) + 1):
        here = moments[begin][0]
        # The score's decimals and single precision leave a little room.
        if end < len(moments) and moments[end][0] - moments[end - 1][0] < 2e-6 + 2e-7 * here:
            continue
        wanted = Counter(moment[1:] for moment in moments[begin:end])
        found = Counter((x.on, x.key, x.velocity) for x in records[begin:end])
        if wanted != found:
            raise Fault(f"at {here} s the file has {dict(found)}, the score {dict(wanted)}")
        begin = end


def check_sounding(records):
    """No note-off without its note-on before it, and no note-on without its note-off."""
    sounding = Counter()
    for record in records:
        sounding[record.key] += 1 if record.on else -1
        if sounding[record.key] < 0:
            raise Fault(f"key {record.key} is let go at tick {record.tick} but not held")
    held = [key for key, count in sounding.items() if count]
    if held:
        raise Fault(f"the keys {held} are held for ever")


def check_steps(moments, records):
    """Every step is as long as it should be, its fraction of a tick dropped."""
    second = tick = 0.0
    for moment, record in zip(moments, records):
        exact = (moment[0] - second) * TICKS
        room = (2e-6 + 3e-7 * moment[0]) * TICKS
        if not exact - 1 - room <= record.tick - tick <= exact + room:
            raise Fault(f"at {moment[0]} s a step of {record.tick - tick} ticks instead of {exact}")
        second, tick = moment[0], record.tick


def check_times(moments, records):
    """No fraction was dropped, so that every time is right."""
    for moment, record in zip(moments, records):
        if abs(record.tick - moment[0] * TICKS) > 1:
            raise Fault(f"what happens at {moment[0]} s (tick {moment[0] * TICKS}) stands at {record.tick}")


def check_lengths(notes, offset, records):
    """The length of every note whose end can be told, that is, on keys where notes do not overlap."""
    by_key, started, lengths = {}, {}, {}
    for note in notes:
        by_key.setdefault((note.key + offset) % 128, []).append(note)
    for record in records:
        if record.on:
            started.setdefault(record.key, []).append(record.tick)
        else:
            lengths.setdefault(record.key, []).append(record.tick - started[record.key].pop(0))
    for key, wanted in by_key.items():
        if any(a.end > b.start for a, b in zip(wanted, wanted[1:])):
            continue
        for note, length in zip(wanted, lengths[key]):
            if abs(length - (note.end - note.start) * TICKS) > 1:
                raise Fault(f"the note at {note.start} s lasts {length} ticks")


# ---- sound


def check_sound(tools, path, seconds):
    sound = path.with_suffix(".wav")
    run([tools.fluidsynth, "-ni", "-T", "wav", "-O", "s16", "-r", "22050", "-F", sound, tools.font, path], path.parent)
    if not sound.exists():
        raise Fault("fluidsynth made no sound file")
    with wave.open(str(sound)) as file:
        length = file.getnframes() / file.getframerate()
        samples = array.array("h", file.readframes(file.getnframes()))
    if sys.byteorder == "big":
        samples.byteswap()
    if length < seconds:
        raise Fault(f"fluidsynth played {length:.1f} of {seconds:.1f} seconds")
    level = math.sqrt(sum(map(operator.mul, samples, samples)) / max(len(samples), 1))
    if level < SILENCE:
        raise Fault(f"silence: the root mean square of the samples is {level:.1f}")


# ---- a subject


@dataclass
class Tools:
    midicsv: str
    mido: str  # a Python that has it
    fluidsynth: str
    font: str


def has_mido(python):
    return subprocess.run([python, "-c", "import mido"], capture_output=True, check=False).returncode == 0


def find_tools():
    """The programs, or the end with a list of what is missing."""
    pythons = [sys.executable, "/usr/bin/python3"]
    tools = Tools(
        shutil.which("midicsv"),
        next((python for python in pythons if Path(python).exists() and has_mido(python)), None),
        shutil.which("fluidsynth"),
        next((font for font in SOUND_FONTS if Path(font).exists()), None),
    )
    packages = {
        "midicsv": tools.midicsv,
        "python3-mido": tools.mido,
        "fluidsynth": tools.fluidsynth,
        "timgm6mb-soundfont": tools.font,
    }
    missing = [package for package, tool in packages.items() if tool is None]
    if missing:
        print(f"FAIL: cannot test without the Debian packages {' '.join(missing)}")
        sys.exit("midi_test: run scripts/install-packages test")
    return tools


def run_korvo(korvo, words, folder):
    # Into a file, for the listing of the large piece has many megabytes.
    with open(folder / "messages.txt", "wb") as messages:
        run([korvo, *words], folder, messages=messages)


def check_folder(tools, korvo, folder, whole):
    """A folder with a piece: everything but the sound. Returns the piece's length in seconds."""
    piece = folder / "piece.txt"
    (folder / "precise.txt").write_text(precise(piece.read_text()))
    run_korvo(korvo, ["-s", "precise.txt", "precise.sco"], folder)
    run_korvo(korvo, ["-s", "-m", "piece.txt", "piece.mid"], folder)

    check_chunks((folder / "piece.mid").read_bytes())
    found = read_with_midicsv(tools, folder / "piece.mid")
    compare_readers(found, read_with_mido(tools, folder / "piece.mid"))
    notes = notes_of_score(folder / "precise.sco")
    offset = key_offset(notes, found.records)
    moments = moments_of(notes, offset)
    check_conductor(found)
    check_records(moments, found.records)
    check_sounding(found.records)
    check_steps(moments, found.records)
    if whole:
        check_times(moments, found.records)
        check_lengths(notes, offset, found.records)
    return moments[-1][0]


def check_example(tools, korvo, example, folder):
    shutil.copytree(example, folder, dirs_exist_ok=True)
    seconds = check_folder(tools, korvo, folder, whole=True)
    check_sound(tools, folder / "piece.mid", seconds)


def check_piece(tools, korvo, piece, folder):
    (folder / "piece.txt").write_text(piece.text)
    check_folder(tools, korvo, folder, piece.whole)
    size = (folder / "piece.mid").stat().st_size
    if piece.name == "large" and size < MEGABYTES << 20:
        raise Fault(f"the large file has {size} bytes only")


def main():
    parser = argparse.ArgumentParser(description="Reads MIDI files with other programs.")
    parser.add_argument("korvo", type=Path, help="the program")
    parser.add_argument("examples", type=Path, help="the folder of the examples")
    parser.add_argument("--keep", type=Path, metavar="FOLDER", help="keep the files of the run here")
    arguments = parser.parse_args()
    korvo = arguments.korvo.resolve()
    tools = find_tools()

    examples = sorted(mark.parent for mark in arguments.examples.resolve().glob("*/midi"))
    if not examples:
        sys.exit("midi_test: no examples")
    subjects = [(example.name, check_example, example) for example in examples]
    subjects += [(piece.name, check_piece, piece) for piece in PIECES]

    failed = 0
    with tempfile.TemporaryDirectory(prefix="korvo-midi-") as temporary:
        root = arguments.keep or Path(temporary)
        for name, check, subject in subjects:
            folder = root / name.replace(" ", "-")
            folder.mkdir(parents=True, exist_ok=True)
            try:
                check(tools, korvo, subject, folder.resolve())
            except (Fault, LookupError, ValueError, struct.error, OSError) as fault:
                failed += 1
                print(f"FAIL {name}: {fault!s}")
            if arguments.keep is None:
                shutil.rmtree(folder)
    print(f"{len(subjects) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
