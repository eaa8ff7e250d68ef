#!/usr/bin/env python3
"""Compares Korvo with the model of tests/model on random pieces, byte for byte.

    compare.py KORVO_BINARY [--pieces N] [--seed S] [--jobs N] [--options SET] [--no-reduce]
    compare.py KORVO_BINARY --piece FILE [--options SET]      one piece of your own; its differences are printed

    compare.py KORVO_BINARY --pieces 1000000 --seed 1000000   before a release

Every piece runs with a set of options drawn from all combinations of -m, -t, -x, -l and -s, as it was made and again
with damage done to its text. The score or MIDI file, standard output, standard error, the log, the expansion file and
the status must be the same. For each kind of difference a piece is made as small as it gets and printed, with the seed
that makes it. The last line is 'N passed, N failed'; the status is 1 when something differed.
"""

import argparse
import itertools
import multiprocessing
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.dont_write_bytecode = True
sys.path[:0] = [str(HERE), str(HERE.parent), str(HERE.parent / "model")]

import clock  # noqa: E402
import generate  # noqa: E402
import korvo_model  # noqa: E402

NO_END = "no end"  # in place of a status, or of the model's fault
OPTION_SETS = ["".join(s) for n in range(6) for s in itertools.combinations("mtxls", n)]
OUTPUTS = ["output", "stdout", "stderr", "log", "expansion", "status"]


def arguments(options):
    result = []
    for letter in options:
        result += {"l": ["-l", "run.log"], "x": ["-x", "run.exp"]}.get(letter, ["-" + letter])
    return result + ["piece.txt", "out.sco"]


def take_files():
    """What a run has written, and away with it."""
    result = []
    for name in ("out.sco", "run.log", "run.exp"):
        try:
            with open(name, "rb") as file:
                result.append(file.read())
            os.remove(name)
        except FileNotFoundError:
            result.append(None)
    return result


def run_program(binary, options):
    try:
        done = subprocess.run([binary, *arguments(options)], stdin=subprocess.DEVNULL, capture_output=True,
                              timeout=clock.HANG)
        status, out, err = done.returncode, done.stdout, done.stderr
    except subprocess.TimeoutExpired as late:
        status, out, err = NO_END, late.stdout or b"", late.stderr or b""
    output, log, expansion = take_files()
    return dict(zip(OUTPUTS, (output, out, err, log, expansion, status)))


def too_long(*_):
    raise TimeoutError


signal.signal(signal.SIGALRM, too_long)


def run_model(options):
    """The same by the model, in this process; None when the model gives the piece up as too large."""
    stdout, stderr, run = [], [], None
    signal.setitimer(signal.ITIMER_REAL, clock.HANG)
    try:
        run = korvo_model.Run(korvo_model.Options(arguments(options)))
        stdout, stderr = run.stdout, run.screen.err
        status = run.execute()
    except korvo_model.Stop as stop:
        stderr, stdout, status = stderr + [stop.text], stdout + [stop.stdout], stop.status
    except (korvo_model.GiveUp, RecursionError, MemoryError):
        take_files()
        return None
    except TimeoutError:
        take_files()
        return dict(zip(OUTPUTS, (b"", b"", NO_END.encode(), None, None, "fault")))
    except Exception as fault:  # a fault of the model is a difference like any other
        take_files()
        trace = fault.__traceback__
        while trace.tb_next:
            trace = trace.tb_next
        where = f"{Path(trace.tb_frame.f_code.co_filename).name}:{trace.tb_lineno}"
        return dict(zip(OUTPUTS, (b"", b"", f"{type(fault).__name__} at {where}: {fault}".encode(), None, None, "fault")))
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
    output, log, expansion = take_files()
    return dict(zip(OUTPUTS, (output, "".join(stdout).encode("latin-1"), "".join(stderr).encode("latin-1"), log,
                              expansion, status)))


def last_message(a, b):
    """The last error or warning before the first lines that differ."""
    message = ""
    for x, y in zip((a or b"").decode("latin-1").split("\n"), (b or b"").decode("latin-1").split("\n")):
        if x != y:
            break
        message = x if x.startswith(("ERROR", "WARNING")) else message
    return re.sub(r"\d+", "N", message)


def first_difference(a, b):
    """The first lines that differ."""
    lines_a = (a or b"").decode("latin-1").split("\n")
    lines_b = (b or b"").decode("latin-1").split("\n")
    for x, y in itertools.zip_longest(lines_a, lines_b, fillvalue="(end)"):
        if x != y:
            return x, y
    return "", ""


def kind_of(program, model):
    """What makes two differences one kind: where they are and how the first one reads; None without a difference."""
    if program["status"] not in (0, 1):
        return ("status", str(program["status"]))
    if model is None:
        return None
    where = [name for name in OUTPUTS if program[name] != model[name]]
    if not where:
        return None
    if model["status"] == "fault":
        return ("fault", model["stderr"].decode("latin-1")[:60])
    statuses = program["status"], model["status"]
    reading = ""
    for name in ("stderr", "stdout"):
        if name in where:
            texts = first_difference(program[name], model[name])
            # an echoed line says nothing about the kind
            plain = [re.sub(r"\d+(\.\d+)?|-?\binf\b|-?\bnan\b", "N", re.sub(r'"[^"]*"', '""', text)) for text in texts]
            known = [text if re.match(r"\s*(ERROR|WARNING|Old|T?\s*Line|Expanding|Total|Cumul|Global|N events|P\d|> Beat)", text)
                     else "..." for text in plain]
            reading = " | ".join(known)
            if known == ["...", "..."]:
                reading += " after " + last_message(program[name], model[name])
            break
    else:
        where = where[:1]
    return (statuses, where[0], reading)


def difference(binary, text, options, files=None):
    generate.write(files or {"piece.txt": text}, ".")
    program = run_program(binary, options)
    model = run_model(options)
    return program, model


def reduce_piece(binary, text, options, kind, budget=1500):
    """The smallest text found that still differs in the same way."""
    tries = [0]

    def still(candidate):
        tries[0] += 1
        if tries[0] > budget:
            return False
        return kind_of(*difference(binary, candidate, options)) == kind

    def shrink(parts, join):
        size = max(1, len(parts) // 2)
        while size and tries[0] <= budget:
            at, changed = 0, False
            while at < len(parts):
                candidate = parts[:at] + parts[at + size:]
                if candidate and still(join(candidate)):
                    parts, changed = candidate, True
                else:
                    at += size
            size = size // 2 if size > 1 else (1 if changed else 0)
        return parts

    text = "\n".join(shrink(text.split("\n"), "\n".join))
    text = "".join(shrink(re.findall(r"[A-Za-z0-9_.]+|\s+|.", text, re.S), "".join))
    text = "".join(shrink(list(text), "".join))
    return text


def show(text):
    return text.encode("unicode_escape").decode().replace("\\n", "\n").replace("\\t", "\t")


def report(kind, count, seed, options, text, program, model):
    print(f"---- {kind}: {count} times; seed {seed}, options '{options}'")
    print(show(text))
    for name in OUTPUTS:
        if program[name] != (model or {}).get(name):
            if name == "status":
                print(f"  status: program {program[name]}, model {(model or {}).get(name)}")
                continue
            ours, theirs = first_difference(program[name], (model or {}).get(name))
            print(f"  {name}: program {ours!r}\n  {' ' * len(name)}  model   {theirs!r}")
    sys.stdout.flush()


def one(task):
    """Runs the pieces of one seed; a list of (kind, seed, options, text, files)."""
    binary, seed, only = task
    rng = random.Random(f"compare {seed}")
    piece = generate.generate(seed)
    found, ran = [], 0
    options = rng.choice(OPTION_SETS) if only is None else only
    texts = [(piece.text, piece.files)]
    for _ in range(2):
        damaged = generate.mutate(piece.text, rng)
        texts.append((damaged, {"piece.txt": damaged}))
    if len(piece.files) > 1 and rng.random() < 0.5:
        files = dict(piece.files)
        name = rng.choice(list(files))
        files[name] = generate.mutate(files[name], rng)
        texts.append((None, files))
    for text, files in texts:
        ran += 1
        kind = kind_of(*difference(binary, text, options, files))
        if kind:
            found.append((kind, seed, options, text, files))
    return ran, found


def begin_worker(folder):
    os.chdir(tempfile.mkdtemp(dir=folder))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("binary")
    parser.add_argument("--pieces", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=0)
    parser.add_argument("--jobs", type=int, default=min(2, os.cpu_count() or 1))
    parser.add_argument("--options")
    parser.add_argument("--no-reduce", action="store_true")
    parser.add_argument("--kinds", type=int, default=40, help="how many kinds of difference are shown at most")
    parser.add_argument("--piece")
    given = parser.parse_args()
    binary = str(Path(given.binary).resolve())
    if given.piece:
        given.piece = Path(given.piece).read_bytes().decode("latin-1")
    shared = "/dev/shm" if os.path.isdir("/dev/shm") else None
    folder = tempfile.mkdtemp(prefix="korvo-compare-", dir=shared)
    os.chdir(folder)
    try:
        if given.piece:
            program, model = difference(binary, given.piece, given.options or "lx")
            kind = kind_of(program, model)
            if kind:
                report(kind, 1, "-", given.options or "lx", given.piece, program, model)
            print(f"{int(not kind)} passed, {int(bool(kind))} failed")
            return 1 if kind else 0
        kinds, passed, failed = {}, 0, 0
        tasks = ((binary, seed, given.options) for seed in range(given.seed, given.seed + given.pieces))
        with multiprocessing.Pool(given.jobs, begin_worker, (folder,)) as pool:
            for ran, found in pool.imap_unordered(one, tasks, chunksize=16):
                passed += ran - len(found)
                failed += len(found)
                for kind, seed, options, text, files in found:
                    kinds.setdefault(kind, []).append((len(text or "".join(files.values())), seed, options, text, files))
        for kind, cases in sorted(kinds.items(), key=lambda item: -len(item[1]))[:given.kinds]:
            _, seed, options, text, files = min(cases, key=lambda case: case[0])
            if text is None or kind_of(*difference(binary, text, options)) != kind:
                text = None
            if text is not None and not given.no_reduce and kind[1] != NO_END:  # a hundred hangs take days
                text = reduce_piece(binary, text, options, kind)
            program, model = difference(binary, text, options, None if text is not None else files)
            report(kind, len(cases), seed, options, text if text is not None else str(files), program, model)
        print(f"{passed} passed, {failed} failed")
        return 1 if failed else 0
    finally:
        os.chdir("/")
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    sys.exit(main())
