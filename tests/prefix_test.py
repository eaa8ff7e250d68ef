#!/usr/bin/env python3
"""Cuts a piece off after every single byte: whatever is left of it, Korvo must say its word and end.

    prefix_test.py KORVO_BINARY

The piece is data/rich_piece.txt, which has one of everything. Every prefix of it is run as a score with a log, an
expansion file and all messages; the prefixes that end in the first i-block are run as a MIDI file, too, which is as far
as a MIDI run reads. A run must cost little, end with status 0 or 1, and no sanitizer may have anything to report.
"""

import os
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import clock

MOST_YARDSTICKS = 2
WORKERS = 4
SANITIZER_STATUS = 99
SANITIZER_WORDS = (b"Sanitizer", b"runtime error:")
INCLUDED = "te(40 50 60 60)\n#const inside .5 ; a constant"  # without a line feed at the end

SCORE = ["-t", "-l", "run.log", "-x", "run.exp"]
MIDI = ["-m", *SCORE]


def environment_of_runs():
    environment = dict(os.environ)
    environment["LC_ALL"] = "C"
    for variable in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
        environment[variable] = f"exitcode={SANITIZER_STATUS}:print_stacktrace=1"
    return environment


def fault_of(korvo, yardstick, folder, environment, options, text):
    """Runs one piece. Gives what is wrong, or nothing, and the status."""
    (folder / "piece.txt").write_bytes(text)
    blocks = []

    def run():
        blocks.clear()
        return clock.run([korvo, *options, "piece.txt", "piece.out"], blocks.append, cwd=folder, env=environment)

    ended = run()
    messages = b"".join(blocks)
    if any(words in messages for words in SANITIZER_WORDS):
        return "a sanitizer's report:\n" + messages.decode("utf-8", "backslashreplace"), ended.status
    if ended.hung:
        return f"still running after {clock.HANG} seconds", ended.status
    if ended.status not in (0, 1):
        return f"status {ended.status}", ended.status
    cost = yardstick.cost(ended.seconds, lambda: run().seconds, MOST_YARDSTICKS)
    if cost > MOST_YARDSTICKS:
        return f"costs {cost:.1f} yardsticks", ended.status
    return None, ended.status


def sweep(korvo, yardstick, environment, jobs):
    """Runs a list of (options, text) in a folder of its own. Gives the faults."""
    faults = []
    with tempfile.TemporaryDirectory(prefix="korvo-prefix-") as temporary:
        folder = Path(temporary)
        (folder / "included.txt").write_text(INCLUDED)
        for options, text in jobs:
            fault, _ = fault_of(korvo, yardstick, folder, environment, options, text)
            if fault:
                kind = "as MIDI" if options is MIDI else "as a score"
                faults.append(f"cut after byte {len(text)}, {kind}: {fault}")
    return faults


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    korvo = os.path.abspath(sys.argv[1])
    if not os.access(korvo, os.X_OK):
        sys.exit(f"prefix_test: cannot run {sys.argv[1]}")
    yardstick = clock.Yardstick(korvo)
    environment = environment_of_runs()
    piece = (Path(__file__).resolve().parent / "data" / "rich_piece.txt").read_bytes()

    # A piece with a mistake in it would test nothing behind the mistake.
    with tempfile.TemporaryDirectory(prefix="korvo-prefix-") as temporary:
        (Path(temporary) / "included.txt").write_text(INCLUDED)
        fault, status = fault_of(korvo, yardstick, Path(temporary), environment, SCORE, piece)
        if fault or status != 0:
            sys.exit(f"prefix_test: the whole piece must succeed: {fault or f'status {status}'}")

    first_block_end = piece.index(b"\n}") + 2
    jobs = [(SCORE, piece[:length]) for length in range(len(piece) + 1)]
    jobs += [(MIDI, piece[:length]) for length in range(first_block_end + 1)]
    with ThreadPoolExecutor(WORKERS) as workers:
        results = workers.map(lambda i: sweep(korvo, yardstick, environment, jobs[i::WORKERS]), range(WORKERS))
        faults = [fault for some in results for fault in some]
    for fault in faults:
        print("FAIL " + fault)
    print(f"{len(jobs) - len(faults)} passed, {len(faults)} failed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
