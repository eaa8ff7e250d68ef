#!/usr/bin/env python3
"""Checks laws that every run of Korvo keeps, on random pieces.

    laws.py KORVO_BINARY [--pieces N] [--seed S] [--jobs N] [--keep FOLDER]
    laws.py KORVO_BINARY --pieces 1000000 --seed 1000000      before a release

The laws, each with its name in the report:
  status     the status is 0 or 1
  cost       a run takes little of the processor, and a little more for each event
  twice      the same input gives the same bytes twice
  silent     -s changes messages only: what is left of them stands in the full messages in the same order
  log        the log is what stood on standard error
  options    -l, -x and -t change neither score nor MIDI file
  feedback   the expansion file, fed back as a piece, gives the same score
  line       a comment line or an empty line put in between items changes only line numbers
  includes   a piece cut into include files gives what it gave in one
  sorted     the events of a block are sorted by their start
  columns    every line of the score has the header's number of columns less the hidden ones
  summary    the figures of the summary are those of the score
  midi       the MIDI file has the chunks it announces, and its notes end as often as they begin

The laws twice, line and includes are looked at under -m too, each for one piece in five.

A failing piece is kept in a folder of its own, with a note that names the law and the seed that makes it. The last
line is 'N passed, N failed', counting pieces; the status is 1 when one failed.
"""

import argparse
import math
import multiprocessing
import os
import random
import re
import shutil
import signal
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(HERE), str(HERE.parent)]

import clock  # noqa: E402
import generate  # noqa: E402

MOST_YARDSTICKS = 2  # for one run; clock.py has the yardstick
MORE_FOR_AN_EVENT = 5e-6  # five times what the yardstick takes
NUMBER = r"[ ]*(-?[\d.]+|-?inf|-?nan)"


@dataclass
class Result:
    status: object
    stdout: bytes
    stderr: bytes
    output: bytes
    log: bytes
    expansion: bytes


FILES = ("stdout", "stderr", "out.sco", "run.log", "run.exp")  # in the order of Result
STREAMS = [
    (os.POSIX_SPAWN_OPEN, 0, "/dev/null", os.O_RDONLY, 0),
    (os.POSIX_SPAWN_OPEN, 1, "stdout", os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600),
    (os.POSIX_SPAWN_OPEN, 2, "stderr", os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600),
]


def take(name):
    """What a file holds, and away with it; nothing where there is none."""
    try:
        with open(name, "rb", buffering=0) as file:
            data = file.read()
        os.remove(name)
        return data
    except FileNotFoundError:
        return b""


def out_of_time(number, frame):
    raise TimeoutError


class Broken(Exception):
    """A law that does not hold."""


class Checker:
    def __init__(self, binary, yardstick):
        self.binary = binary
        self.yardstick = yardstick
        self.written = None  # the files that lie in the folder
        self.held = 0  # laws that were looked at and held

    # ---- runs

    def run(self, files, *options):
        """One run of the piece, without a trace of the run before. Its streams are files, which costs less than pipes."""
        if files is not self.written:
            generate.write(files, ".")
            self.written = files
        result, seconds = self.spawn(options)
        if result.status not in (0, 1):
            raise Broken(f"status: {result.status} with {options}: {result.stderr[-200:]!r}")
        events = sum(int(count) for count in re.findall(rb"\n(\d+) events generated", result.stderr))
        most = MOST_YARDSTICKS + MORE_FOR_AN_EVENT * events
        cost = self.yardstick.cost(seconds, lambda: self.spawn(options)[1], most)
        if cost > most:
            raise Broken(f"cost: {cost:.1f} yardsticks for {events} events with {options}")
        self.held += 2  # status and cost
        return result

    def spawn(self, options):
        """What a run gives, and its seconds of the processor. It leaves nothing behind."""
        arguments = [self.binary, *options, "piece.txt", "out.sco"]
        pid = os.posix_spawn(self.binary, arguments, os.environ, file_actions=STREAMS)
        signal.setitimer(signal.ITIMER_REAL, clock.HANG)
        try:
            _, status, usage = os.wait4(pid, 0)
        except TimeoutError:
            os.kill(pid, signal.SIGKILL)
            os.waitpid(pid, 0)
            raise Broken(f"status: no end after {clock.HANG} seconds with {options}") from None
        finally:
            signal.setitimer(signal.ITIMER_REAL, 0)
        result = Result(os.waitstatus_to_exitcode(status), *(take(name) for name in FILES))
        return result, usage.ru_utime + usage.ru_stime

    def same(self, law, a, b, fields="status stdout output stderr"):
        for field in fields.split():
            x, y = getattr(a, field), getattr(b, field)
            if x != y:
                if isinstance(x, bytes):
                    for one, other in zip(x.split(b"\n") + [b"(end)"], y.split(b"\n") + [b"(end)"]):
                        if one != other:
                            raise Broken(f"{law}: {field}: {one[:150]!r} and {other[:150]!r}")
                raise Broken(f"{law}: {field}: {x!r:.100} and {y!r:.100}")
        self.held += 1

    # ---- the laws

    def check(self, seed):
        piece = generate.generate(seed)
        rng = random.Random(f"laws {seed}")
        plain = self.run(piece.files, "-l", "run.log", "-x", "run.exp")
        self.same("twice", plain, self.run(piece.files, "-l", "run.log", "-x", "run.exp"),
                  "status stdout output stderr log expansion")
        self.check_log(plain)
        bare = self.run(piece.files)
        self.same("options", plain, bare, "status stdout output")
        self.check_silent(plain, self.run(piece.files, "-s", "-l", "run.log", "-x", "run.exp"))
        if rng.random() < 0.3:
            self.same("options", plain, self.run(piece.files, "-t"), "status stdout output")
        self.check_feedback(piece, plain)
        whole = bare if len(piece.files) == 1 else self.run({"piece.txt": piece.text})
        if whole is not bare:
            self.check_includes(whole, bare)
        elif not piece.broken and "#inc" not in piece.text:
            self.check_includes(bare, self.run(generate.split_into_includes(piece.text, rng)))
        if piece.gaps:
            self.check_line(piece, whole, rng)
        if plain.status == 0:
            self.check_score(piece, plain)
        self.check_under_midi(piece, rng)

    def check_under_midi(self, piece, rng):
        options = "-m", "-l", "run.log"
        midi = self.run(piece.files, *options)
        self.check_log(midi)
        if rng.random() < 0.2:
            self.same("twice", midi, self.run(piece.files, *options), "status stdout output stderr log")
        if rng.random() < 0.3:
            self.check_silent(midi, self.run(piece.files, "-s", *options))
        if midi.output:
            self.check_midi(midi)
        whole = midi if len(piece.files) == 1 else None
        if rng.random() < 0.2:
            if whole is None:
                whole = self.run({"piece.txt": piece.text}, *options)
                self.check_includes(whole, midi)
            elif not piece.broken and "#inc" not in piece.text:
                self.check_includes(whole, self.run(generate.split_into_includes(piece.text, rng), *options))
        if piece.gaps and rng.random() < 0.2:
            self.check_line(piece, whole or self.run({"piece.txt": piece.text}, *options), rng, *options)

    def check_log(self, result):
        """The log begins with the banner, like standard error, and ends where the run closes it: the line feed that
        follows the clean-up is the one thing that only standard error receives. Errors of the include pass are no
        exception."""
        ending = b"\n" if result.status == 0 else b""
        if result.log + ending != result.stderr:
            self.same("log", Result(0, b"", result.log + ending, b"", b"", b""), result, "stderr")
        self.held += 1

    def check_silent(self, loud, silent):
        self.same("silent", loud, silent, "status stdout output expansion")
        position = 0
        lines = [line for line in silent.stderr.split(b"\n") if line]
        for line in lines:
            position = loud.stderr.find(line, position)
            if position < 0:
                raise Broken(f"silent: {line!r} stands only in the messages of -s")
            position += len(line)

    def check_feedback(self, piece, plain):
        """It does not apply
        - to a run that failed: what was not read is not in the file;
        - to pieces with a random term in an equation: the term is a number in the file and draws nothing;
        - where a macro's body holds a line comment: in the piece it hides the rest of the line, in the file only the
          rest of the body's line;
        - to lines of 4000 characters and more, which the reader splits at other places;
        - to text on the line of an #if or #endif, which is read but not written, and to "#in" elsewhere (the include
          pass would look at it anew);
        - to a "$" that stayed in the line because the line began with the call that left it;
        - where a body is so near its limit that the blank at the end of each of its lines makes it too long;
        - where a macro's body goes on behind the end of a block: in the piece that is the rest of the block's last line,
          which is not read, in the file it is lines of its own.
        Trailing blanks of the lines taken literally into the score may differ: a line's end becomes a blank each time."""
        if plain.status or piece.no_feedback:
            return
        text = piece.text
        if "?" in text or any(len(line) > 3900 for line in plain.expansion.split(b"\n")):
            return
        if piece.broken or re.search(r"#if\([^)\n]*\)[^\n]*\S|#endif[ \t\r]*[^\s]", text):
            return
        if b"#in" in plain.expansion or re.search(rb"(?m)^\$", plain.expansion):
            return
        fed = self.run({"piece.txt": plain.expansion.decode("latin-1")}, "-s")
        strip = lambda data: re.sub(rb"[ \r]+\n", b"\n", data)
        plain = Result(plain.status, plain.stdout, b"", strip(plain.output), b"", b"")
        # a blank for each of its lines can make a body too long by itself
        if b"The macro body has exceeded" in fed.stderr:
            return
        fed.output = strip(fed.output)
        self.same("feedback", plain, fed, "status stdout output")

    def check_includes(self, whole, parts):
        opened = re.compile(rb'\n\tOpening include file "[^"]*"\.\.\.')
        parts.stderr = opened.sub(b"", parts.stderr)
        self.same("includes", whole, parts)

    def check_line(self, piece, whole, rng, *options):
        """It does not apply to pieces with lines that the reader splits: a comment whose end is cut in two goes on, and
        within it no line is put in for nothing."""
        text = piece.text
        if any(len(line) > 4000 for line in text.split("\n")):
            return
        for gap in sorted(rng.sample(piece.gaps, min(len(piece.gaps), rng.choice([1, 2, 5]))), reverse=True):
            line = rng.choice(["\n", "; put in\n", "   \n", "\t; it's new: $no ~no p2 }\n", "/* put in */\n", "\r\n"])
            text = text[:gap] + line + text[gap:]
        longer = self.run({"piece.txt": text}, *options)
        for result in (whole, longer):
            result.stderr = re.sub(rb"([Ll]ine) \d+", rb"\1 N", result.stderr)
        self.same("line", whole, longer)

    def check_score(self, piece, plain):
        blocks = []  # (number of the block, instrument, rows of texts)
        for line in plain.output.decode("latin-1").split("\n"):
            head = re.fullmatch(r";I-block #(\d+) \(i(-?\d+)\):", line)
            if head:
                blocks.append((int(head[1]), int(head[2]), []))
            elif blocks and re.match(r"i-?\d+ +(-?\d|-?inf|-?nan)", line):
                blocks[-1][2].append(line.split())
        if not plain.output.endswith(b"\ne\n"):
            raise Broken("columns: the score does not end in its last line")
        text = plain.stderr.decode("latin-1")
        said = re.findall(r"\n\n(\d+) events generated in block #(\d+) \(i(-?\d+)\)\.\n"
                          rf"Total i-block duration: {NUMBER} \(secs\), {NUMBER} \(beats\)\n"
                          rf"Cumulative i-block duration: {NUMBER} \(secs\)\n", text)
        # a block of rests only leaves its comment line and no summary
        sounding = [block for block in blocks if block[2]]
        if len(said) != len(sounding):
            raise Broken(f"summary: {len(said)} summaries for {len(sounding)} blocks")
        last = 0.0
        for (number, instrument, rows), words in zip(sounding, said):
            where = f"block #{number} (i{instrument})"
            if (int(words[1]), int(words[2])) != (number, instrument):
                raise Broken(f"summary: {where} is called #{words[1]} (i{words[2]})")
            if len({len(row) for row in rows}) != 1:
                raise Broken(f"columns: {where} has lines of different lengths")
            if not piece.broken and instrument in piece.blocks:
                fields, hidden = piece.blocks[instrument]
                if len(rows[0]) != fields - hidden:
                    raise Broken(f"columns: {where} has {len(rows[0])}, its header says {fields} with {hidden} hidden")
            if any(row[0] != f"i{instrument}" for row in rows):
                raise Broken(f"columns: {where} holds a line of another instrument")
            if int(words[0]) != len(rows):
                raise Broken(f"summary: {words[0]} events in {where}, {len(rows)} in the score")
            starts = [float(row[1]) for row in rows]
            durations = [float(row[2]) for row in rows]
            if any(a > b for a, b in zip(starts, starts[1:])):
                raise Broken(f"sorted: {where}")
            end = max([0.0] + [s + d for s, d in zip(starts, durations)])
            last = max(last, end)
            seconds, beats, said_end = (float(word) for word in words[3:])
            if not (math.isfinite(end) and math.isfinite(seconds)):
                continue
            # what is printed is rounded, in the score to its own decimals
            error = 0.011 + max(self.rounding(rows[0][1]) * 2 + self.rounding(rows[0][2]), end * 1e-6)
            if abs(said_end - end) > error or abs(seconds - (end - starts[0])) > error:
                raise Broken(f"summary: {where} ends at {end}, said {said_end}; lasts {end - starts[0]}, said {seconds}")
        total = re.search(rf"Global cumulative duration of all i-blocks = {NUMBER} \(secs\)\n", text)
        if not total:
            raise Broken("summary: no global duration")
        ends = [float(words[5]) for words in said] + [0.0]
        if float(total[1]) != max(ends) and not math.isnan(float(total[1])):
            raise Broken(f"summary: {total[1]} seconds in all, the blocks say {max(ends)}")
        self.held += 3  # sorted, columns and summary

    @staticmethod
    def rounding(text):
        return 0.5 * 10.0 ** -(len(text.split(".")[1]) if "." in text else 0)

    def check_midi(self, result):
        data = result.output
        if data[:14] != bytes.fromhex("4d54686400000006000100 0201e0".replace(" ", "")):
            raise Broken(f"midi: the header is {data[:14].hex()}")
        data, tracks = data[14:], []
        while data:
            if data[:4] != b"MTrk":
                raise Broken(f"midi: {data[:4]!r} where a track begins")
            length = int.from_bytes(data[4:8], "big")
            tracks.append(data[8:8 + length])
            if len(tracks[-1]) != length:
                raise Broken("midi: a track shorter than announced")
            data = data[8 + length:]
        if len(tracks) != 2:
            raise Broken(f"midi: {len(tracks)} tracks")
        notes, at, counts, order = tracks[1], 0, {0x90: 0, 0x80: 0}, []
        while True:
            delta = 0
            while notes[at] & 0x80:
                delta, at = delta << 7 | notes[at] & 0x7F, at + 1
            delta, at = delta << 7 | notes[at], at + 1
            order.append(delta)
            if notes[at] == 0xFF:
                break
            counts[notes[at]] += 1
            at += 3
        if notes[at:] != b"\xff\x2f\x00":
            raise Broken("midi: the note track does not end in its end mark")
        if counts[0x90] != counts[0x80] or not counts[0x90]:
            raise Broken(f"midi: {counts[0x90]} notes begin, {counts[0x80]} end")
        said = re.search(rb"\n(\d+) events generated", result.stderr)
        if not said or int(said[1]) != counts[0x90] * 2:
            raise Broken("midi: the summary counts other events")
        listed = re.findall(rb"(?m)^" + NUMBER.encode() + rb"\t.*\t(?:ON|OFF)\tN: ", result.stderr)
        starts = [float(start) for start in listed]
        if len(starts) != counts[0x90] * 2 or any(a > b for a, b in zip(starts, starts[1:])):
            raise Broken("midi: the listing is not that of the track, in order")
        self.held += 1


# ---- many pieces

yardstick = None  # of a worker


def begin_worker(binary, folder):
    global yardstick
    yardstick = clock.Yardstick(binary)
    signal.signal(signal.SIGALRM, out_of_time)
    os.chdir(tempfile.mkdtemp(dir=folder))


def one(task):
    binary, seed = task
    checker = Checker(binary, yardstick)
    try:
        checker.check(seed)
    except Broken as law:
        return seed, str(law), checker.held
    except (IndexError, KeyError) as fault:
        return seed, f"midi: cannot be read: {fault!r}", checker.held
    return seed, None, checker.held


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("binary")
    parser.add_argument("--pieces", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=0, help="the first piece's seed; the others follow it")
    parser.add_argument("--jobs", type=int, default=min(2, os.cpu_count() or 1))
    parser.add_argument("--keep", help="the folder for failing pieces")
    given = parser.parse_args()
    binary = str(Path(given.binary).resolve())
    keep = Path(given.keep or Path(tempfile.gettempdir()) / "korvo-failing-pieces").resolve()
    folder = tempfile.mkdtemp(prefix="korvo-laws-", dir="/dev/shm" if os.path.isdir("/dev/shm") else None)
    passed = failed = held = 0
    try:
        tasks = ((binary, seed) for seed in range(given.seed, given.seed + given.pieces))
        with multiprocessing.Pool(given.jobs, begin_worker, (binary, folder)) as pool:
            for seed, law, count in pool.imap_unordered(one, tasks, chunksize=8):
                held += count
                if law is None:
                    passed += 1
                    continue
                failed += 1
                place = keep / f"seed-{seed}"
                place.mkdir(parents=True, exist_ok=True)
                piece = generate.generate(seed)
                generate.write(piece.files, place)
                (place / "law.txt").write_text(f"{law}\n\nmade by: generate.py {seed}\n"
                                               f"again:   laws.py {binary} --pieces 1 --seed {seed}\n")
                print(f"seed {seed}: {law}\n    kept in {place}", flush=True)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    print(f"{held} times a law held")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
