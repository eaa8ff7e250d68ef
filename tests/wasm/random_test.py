#!/usr/bin/env python3
"""Random pieces by the program and by the library in WebAssembly: the same bytes. One module makes them all.

    random_test.py KORVO NODE RUNS_JS [--pieces N] [--first SEED]

RUNS_JS makes whole runs as runs_test.py prepares them. A difference prints one line; to see the piece:
tests/random/generate.py SEED. The last line is the count.
"""

import argparse
import itertools
import os
import random
import sys
import tempfile
from pathlib import Path

TESTS = Path(__file__).resolve().parent.parent
sys.path[:0] = [str(TESTS), str(TESTS / "random")]

import chapters  # noqa: E402
import generate  # noqa: E402
import run_cases  # noqa: E402
import runs_test  # noqa: E402

OPTION_SETS = ["".join(letters) for count in range(6) for letters in itertools.combinations("mstlx", count)]


def options_of(letters):
    """The arguments for some option letters."""
    words = {"l": ["-l", "run.log"], "x": ["-x", "run.exp"]}
    return [word for letter in letters for word in words.get(letter, ["-" + letter])]


def random_case(seed):
    letters = random.Random(f"wasm {seed}").choice(OPTION_SETS)
    files = {name: text.encode("latin-1") for name, text in generate.generate(seed).files.items()}
    return chapters.Case("random", str(seed), "", options=options_of(letters), files=files)


def differing_parts(program, wasm):
    """What differs between two outcomes."""
    parts = [name for name in ("status", "stdout", "stderr") if getattr(program, name) != getattr(wasm, name)]
    names = program.files.keys() | wasm.files.keys()
    return parts + sorted(name for name in names if program.files.get(name) != wasm.files.get(name))


def read_command_line():
    parser = argparse.ArgumentParser(description="Compares program and WebAssembly on random pieces.")
    parser.add_argument("korvo", type=os.path.abspath, help="the program")
    parser.add_argument("node", help="Node.js")
    parser.add_argument("module", type=Path, help="makes whole runs in WebAssembly")
    parser.add_argument("--pieces", type=int, default=2000, metavar="N")
    parser.add_argument("--first", type=int, default=1, metavar="SEED")
    return parser.parse_args()


def main():
    arguments = read_command_line()
    cases = [random_case(seed) for seed in range(arguments.first, arguments.first + arguments.pieces)]
    names = [run_cases.read_arguments(run_cases.arguments_of(case)) for case in cases]
    environment = run_cases.environment_of_runs()
    faults = 0
    with tempfile.TemporaryDirectory(prefix="korvo-wasm-", dir=run_cases.memory_folder()) as folder:
        folders = [Path(folder, str(i)) for i in range(len(cases))]
        for each in zip(cases, names, folders):
            runs_test.prepare(*each)
        runs_test.make_all(arguments, folder, len(cases))
        for case, case_names, place in zip(cases, names, folders):
            wasm = runs_test.outcome_of(case, case_names, place)
            program = run_cases.run(
                arguments.korvo, case, run_cases.arguments_of(case), environment, Path(folder, "program")
            )
            if parts := differing_parts(program, wasm):
                faults += 1
                print(f"FAIL seed {case.name}, options {' '.join(case.options)}: {', '.join(parts)}")
    print(f"{len(cases) - faults} passed, {faults} failed")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
