#!/usr/bin/env python3
"""Random pieces by the library in WebAssembly: the same bytes as from the program.

    random_test.py KORVO NODE KORVO_WASM_RUNS_JS [--pieces N] [--seed S] [--keep FOLDER]

Every fourth piece is damaged. A batch of pieces is made in one module, one after the other, with options drawn from all
combinations of -m, -s, -t and -x. Score or MIDI file, expansion, both streams and the status must be the same. A piece
that differs is told with its seed and kept in FOLDER; the last line is the count.
"""

import argparse
import random
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(HERE), str(HERE.parent), str(HERE.parent / "random")]

import generate  # noqa: E402
import run_cases  # noqa: E402
import runs_test  # noqa: E402
from clock import HANG  # noqa: E402

BATCH = 500
DAMAGED = 4
KINDS = ("output", "expanded", "stdout", "stderr", "status")


def read_command_line():
    parser = argparse.ArgumentParser(description="Makes random pieces in WebAssembly and compares every byte.")
    parser.add_argument("program", type=Path, help="korvo")
    parser.add_argument("node", help="Node.js")
    parser.add_argument("module", type=Path, help="korvo_wasm_runs.js")
    parser.add_argument("--pieces", type=int, default=500, metavar="N")
    parser.add_argument("--seed", type=int, default=0, metavar="S", help="of the first piece")
    parser.add_argument("--keep", type=Path, metavar="FOLDER", help="where pieces that differ are kept")
    return parser.parse_args()


def prepare(seed, folder):
    """Writes a piece as the module finds it; its option letters."""
    rng = random.Random(f"wasm {seed}")
    piece = generate.generate(seed)
    files = piece.files if seed % DAMAGED else {"piece.txt": generate.mutate(piece.text, rng)}
    letters = "".join(letter for letter in "mstx" if rng.random() < 0.5)
    folder.mkdir()
    generate.write(files, folder)
    folder.with_suffix(".run").write_text(f"{letters}\npiece.txt\n")
    return letters


def made_by_module(folder):
    return {kind: folder.with_suffix(f".{kind}").read_bytes() for kind in KINDS}


def read_and_remove(file):
    data = file.read_bytes() if file.exists() else b""
    file.unlink(missing_ok=True)
    return data


def made_by_program(program, letters, folder):
    """The same; without the banner, which a library does not say, and the empty line that ends a complete run."""
    options = [word for letter in letters for word in (["-x", "run.exp"] if letter == "x" else ["-" + letter])]
    arguments = [*options, "piece.txt", "run.out"]
    done = subprocess.run([program, *arguments], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=HANG)
    banner = run_cases.banner(run_cases.read_arguments(arguments))
    said = done.stderr.removesuffix(b"\n") if done.returncode == 0 else done.stderr
    if not said.startswith(banner):
        sys.exit(f"random_test: the program began with\n{said[:500]!r}")
    output, expanded = read_and_remove(folder / "run.out"), read_and_remove(folder / "run.exp")
    return dict(zip(KINDS, (output, expanded, done.stdout, said[len(banner):], str(done.returncode).encode())))


def tell(seed, letters, program, module):
    for kind in KINDS:
        if program[kind] != module[kind]:
            pairs = zip(program[kind].split(b"\n"), module[kind].split(b"\n"))
            first = next(((a, b) for a, b in pairs if a != b), ("a beginning", "of the other"))
            print(f"FAIL seed {seed}, options '{letters}': {kind}: program {first[0]!r}, module {first[1]!r}")


def make_batch(arguments, seeds):
    """How many differ, and how many of the pieces were complete."""
    faults = complete = 0
    with tempfile.TemporaryDirectory(prefix="korvo-wasm-", dir=run_cases.memory_folder()) as folder:
        places = [Path(folder, str(i)) for i in range(len(seeds))]
        letters = [prepare(*each) for each in zip(seeds, places)]
        runs_test.make_all(arguments, folder, len(seeds))
        for seed, options, place in zip(seeds, letters, places):
            program = made_by_program(arguments.program.resolve(), options, place)
            module = made_by_module(place)
            complete += program["status"] == b"0"
            if program != module:
                faults += 1
                tell(seed, options, program, module)
                if arguments.keep:
                    shutil.copytree(place, arguments.keep / str(seed), dirs_exist_ok=True)
    return faults, complete


def main():
    arguments = read_command_line()
    faults = complete = 0
    end = arguments.seed + arguments.pieces
    for first in range(arguments.seed, end, BATCH):
        counts = make_batch(arguments, range(first, min(first + BATCH, end)))
        faults, complete = faults + counts[0], complete + counts[1]
    print(f"{arguments.pieces - faults} passed, {faults} failed; {complete} pieces were complete")
    return 1 if faults or complete == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
