#!/usr/bin/env python3
"""Plays the examples with Csound and checks that it plays what the scores say.

    csound_test.py [--csound CSOUND] KORVO_BINARY EXAMPLES
    csound_test.py [--csound CSOUND] --scores ORCHESTRA SCORE...

For each folder of EXAMPLES with a `piece.txt` (one that holds a file named `midi` is meant for MIDI and is left out):
Korvo writes the score, Csound renders it with EXAMPLES/orchestra.orc, reports no error and no sample out of range,
performs exactly the events that the score lists, and the sound is not silence. With --scores, the same for scores that
are there already.
"""

import argparse
import array
import math
import operator
import re
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

SILENCE = 30.0  # root mean square of 16-bit samples; below it nobody hears anything


class Fault(Exception):
    """What is wrong with an example."""


def run(words, folder):
    try:
        return subprocess.run(
            words,
            cwd=folder,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            timeout=clock.HANG,
            check=False,
        )
    except subprocess.TimeoutExpired:
        raise Fault(f"{Path(words[0]).name} did not end within {clock.HANG} seconds") from None


def last_lines(output, count=15):
    lines = output.decode("utf-8", "replace").rstrip().splitlines()[-count:]
    return "".join(f"\n    {line}" for line in lines)


def notes_of_score(path):
    """(instrument, start, duration) of every i-statement; the score must end with its end statement."""
    text = path.read_text()
    if not text.endswith("\ne\n"):
        raise Fault("the score does not end with an end statement")
    notes = []
    for line in text.splitlines():
        if line.startswith("i"):
            fields = line[1:].split()
            notes.append((int(fields[0]), float(fields[1]), float(fields[2])))
    if not notes:
        raise Fault("the score has no events")
    return notes


def render(csound, orchestra, score, sound):
    """Plays a score into a sound file. Returns the notes that Csound performed."""
    done = run([csound, "-d", "-W", "-s", "-o", sound, orchestra, score], sound.parent)
    text = done.stdout.decode("utf-8", "replace")
    text = re.sub(r"\x1b\[[0-9;]*m", "", text)  # colours
    if done.returncode != 0:
        raise Fault(f"csound ended with status {done.returncode}{last_lines(done.stdout)}")
    errors = re.search(r"(\d+) errors in performance", text)
    if errors is None or errors[1] != "0" or re.search(r"^(INIT|PERF) ERROR|error:", text, re.M):
        raise Fault(f"csound reports errors{last_lines(done.stdout)}")
    for match in re.finditer(r"overall samples out of range:([\s\d]*)$", text, re.M):
        if any(count != "0" for count in match[1].split()):
            raise Fault(f"too loud: {match[0]}")
    lines = re.findall(r"^\s*note (\d+) (\S+) (\S+)$", text, re.M)
    return [(int(number), float(start), float(length)) for number, start, length in lines]


def compare_notes(listed, performed):
    listed, performed = sorted(listed), sorted(performed)
    if len(listed) != len(performed):
        raise Fault(f"the score lists {len(listed)} events, csound performed {len(performed)}")
    for wanted, played in zip(listed, performed):
        near = all(math.isclose(a, b, rel_tol=1e-6, abs_tol=1e-6) for a, b in zip(wanted, played))
        if not near:
            raise Fault(f"the score lists i{wanted}, csound performed i{played}")


def loudness(path):
    """Root mean square of all samples of a 16-bit WAV file."""
    with wave.open(str(path)) as file:
        if file.getsampwidth() != 2:
            raise Fault("the sound does not have 16-bit samples")
        samples = array.array("h", file.readframes(file.getnframes()))
    if sys.byteorder == "big":
        samples.byteswap()
    if not samples:
        raise Fault("the sound file is empty")
    return math.sqrt(sum(map(operator.mul, samples, samples)) / len(samples))


def check_score(csound, orchestra, score, folder):
    sound = Path(folder) / "out.wav"
    compare_notes(notes_of_score(score), render(csound, orchestra, score, sound))
    level = loudness(sound)
    if level < SILENCE:
        raise Fault(f"silence: the root mean square of the samples is {level:.1f}")


def check_example(csound, orchestra, korvo, example, folder):
    score = Path(folder) / "piece.sco"
    # The example's folder is the place where its include files are looked for.
    done = run([korvo, "piece.txt", score], example)
    if done.returncode != 0:
        raise Fault(f"korvo ended with status {done.returncode}{last_lines(done.stdout)}")
    check_score(csound, orchestra, score, folder)


def main():
    parser = argparse.ArgumentParser(description="Plays the examples with Csound.")
    parser.add_argument("--csound", default="csound", help="the program that plays")
    parser.add_argument("--scores", action="store_true", help="play scores, not examples")
    parser.add_argument("korvo", type=Path, help="the program; with --scores, the orchestra")
    parser.add_argument("paths", nargs="+", type=Path, help="the examples; with --scores, scores")
    arguments = parser.parse_args()

    if arguments.scores:
        orchestra = arguments.korvo.resolve()
        subjects = [path.resolve() for path in arguments.paths]
    else:
        examples = arguments.paths[0].resolve()
        orchestra = examples / "orchestra.orc"
        folders = sorted(piece.parent for piece in examples.glob("*/piece.txt"))
        subjects = [folder for folder in folders if not (folder / "midi").exists()]
    if not subjects:
        sys.exit("csound_test: no examples")

    failed = 0
    for subject in subjects:
        with tempfile.TemporaryDirectory(prefix="korvo-csound-") as folder:
            try:
                if arguments.scores:
                    check_score(arguments.csound, orchestra, subject, folder)
                else:
                    korvo = arguments.korvo.resolve()
                    check_example(arguments.csound, orchestra, korvo, subject, folder)
            except Fault as fault:
                failed += 1
                print(f"FAIL {subject.name}: {fault}")
    print(f"{len(subjects) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
