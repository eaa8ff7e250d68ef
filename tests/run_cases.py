#!/usr/bin/env python3
"""Runs whole runs of Korvo and compares every byte of what comes out.

    run_cases.py KORVO_BINARY [--show] [--accept] [--filter TEXT] FOLDER...

A case is a folder with a `piece.txt` or a `command`; runs/README.md says what else may be in it. Each FOLDER is a case
or holds cases at any depth. A failing case prints one line, with --show also a readable difference. The last line is
the count, and the exit status is 1 when a case failed.
"""

import argparse
import difflib
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

TIME_LIMIT = 600  # seconds for one run
SANITIZER_STATUS = 99  # so that a sanitizer's report is never taken for the program's own status 1

BANNER_HEAD = (
    b"\nKorvo (2.1.3, Nov 21 2026, 12:00:00)\n"
    b"A score generator for algorithmic composition\n"
    b"Written by the Korvo developers\n"
    b"Copyright 2026, MIT license\n"
    b"Manual: docs/manual.md\n\n"
)


# ---- what a command line means


@dataclass
class Names:
    """The file names of a command line; None where there is none."""

    piece: str | None = None
    output: str | None = None
    log: str | None = None
    expansion: str | None = None
    midi: bool = False


def read_arguments(arguments):
    """The names in an argument list, read as the program reads it. A list that it would refuse gives no names."""
    names = Names()
    rest = list(arguments)
    while rest and rest[0].startswith("-"):
        option = rest.pop(0)
        letter, attached = option[1:2], option[2:]
        if letter in ("l", "x"):
            if not attached:
                if not rest or rest[0].startswith("-"):
                    return Names()
                attached = rest.pop(0)
            if letter == "l":
                names.log = attached
            else:
                names.expansion = attached
        elif letter == "m":
            names.midi = True
        elif letter not in ("s", "t"):
            return Names()
    if len(rest) != 2 or rest[1].startswith("-"):
        return Names()
    names.piece, names.output = rest
    return names


def banner(names):
    """What the program says of itself and of its files before it starts."""
    kind = "MIDI file (type 1)" if names.midi else "Csound score-file"
    text = f'\n\nInput\t= "{names.piece}"\nOutput\t= "{names.output}" [{kind}]\n'
    if names.log is not None:
        text += f'Log \t= "{names.log}"\n'
    if names.expansion is not None:
        text += f'MExp\t= "{names.expansion}"\n'
    return BANNER_HEAD + os.fsencode(text)


# ---- a case


class BadCase(Exception):
    """The folder of a case is not what it should be."""


def one_line(path):
    lines = os.fsdecode(path.read_bytes()).splitlines()
    if len(lines) > 1:
        raise BadCase(f"{path.name} has more than one line")
    try:
        return shlex.split(lines[0]) if lines else []
    except ValueError as error:
        raise BadCase(f"{path.name}: {error}") from None


def arguments_of(case):
    """The complete argument list of a case."""
    if (case / "command").exists():
        if (case / "options").exists():
            raise BadCase("has both options and command")
        return one_line(case / "command")
    options = one_line(case / "options") if (case / "options").exists() else []
    midi = read_arguments([*options, "piece.txt", "piece"]).midi
    return [*options, "piece.txt", "piece.mid" if midi else "piece.sco"]


def bytes_of_hex(path):
    text = re.sub(rb"[;].*", b"", path.read_bytes())
    try:
        return bytes.fromhex("".join(text.decode("ascii").split()))
    except ValueError as error:
        raise BadCase(f"{path.name}: {error}") from None


def hex_dump(data):
    """Rows of 16 bytes; what bytes_of_hex reads back."""
    rows = (data[i : i + 16].hex(" ") for i in range(0, len(data), 16))
    return "".join(row + "\n" for row in rows).encode()


@dataclass
class Outcome:
    status: int | None  # None: the time limit was reached
    stdout: bytes
    stderr: bytes
    files: dict  # name -> contents, of every file in the folder after the run


def all_files(folder):
    return {
        str(path.relative_to(folder)): path.read_bytes()
        for path in sorted(folder.rglob("*"))
        if path.is_file()
    }


def is_part_of_the_test(name):
    return name in ("options", "command") or name.startswith("expected.")


def run(korvo, case, arguments, environment):
    """Runs a case in a copy of its folder. Gives the outcome and the files that were there before the run."""
    with tempfile.TemporaryDirectory(prefix="korvo-run-") as temporary:
        folder = Path(temporary) / "case"
        shutil.copytree(
            case, folder, ignore=lambda _, names: [n for n in names if is_part_of_the_test(n)]
        )
        before = all_files(folder)
        process = subprocess.Popen(
            ["korvo", *arguments],
            executable=korvo,
            cwd=folder,
            env=environment,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.PIPE,
        )
        try:
            stdout, stderr = process.communicate(timeout=TIME_LIMIT)
            status = process.returncode
        except subprocess.TimeoutExpired:
            process.kill()
            stdout, stderr = process.communicate()
            status = None
        return Outcome(status, stdout, stderr, all_files(folder)), before


# ---- comparing


@dataclass
class Difference:
    summary: str
    expected: bytes = b""
    actual: bytes = b""
    name: str = ""  # of the expected file; none: there is nothing to show
    binary: bool = False


def first_difference(expected, actual):
    length = min(len(expected), len(actual))
    for i in range(length):
        if expected[i] != actual[i]:
            return i
    return length


def compare(name, expected, actual, binary=False):
    if expected == actual:
        return []
    at = first_difference(expected, actual)
    where = f"byte {at}"
    if not binary:
        where += f" (line {expected.count(10, 0, at) + 1})"
    return [Difference(f"{name} differs at {where}", expected, actual, name, binary)]


def status_text(status):
    if status is None:
        return f"still running after {TIME_LIMIT} seconds"
    if status < 0:
        return f"killed by signal {-status}"
    if status == SANITIZER_STATUS:
        return f"status {status} (a sanitizer's report)"
    return f"status {status}"


def expected_text(case, name, names):
    """An expected file, its banner put in; None when it is absent."""
    path = case / name
    if not path.exists():
        return None
    data = path.read_bytes()
    mark = b"{banner}\n"
    if name in ("expected.stderr", "expected.log") and data.startswith(mark):
        data = banner(names) + data[len(mark) :]
    return data


def compare_file(case, name, file_name, names, outcome):
    """One output file of the program against its expected file."""
    binary = name.endswith(".hex")
    actual = outcome.files.get(file_name) if file_name is not None else None
    if binary:
        expected = bytes_of_hex(case / name) if (case / name).exists() else None
    else:
        expected = expected_text(case, name, names)
    if expected is None and actual is None:
        return []
    if expected is None:
        return [Difference(f"{file_name} was written, {name} is missing", b"", actual, name, binary)]
    if actual is None:
        return [Difference(f"{name} is there, but nothing was written")]
    return compare(name, expected, actual, binary)


def compare_stray_files(names, before, outcome):
    """The program must leave alone what is not an output."""
    outputs = {names.output, names.log, names.expansion} - {names.piece}
    differences = []
    for name in sorted(before.keys() | outcome.files.keys()):
        if name in outputs:
            continue
        if name not in before:
            differences.append(Difference(f"{name} was written, which is no output of this run"))
        elif before[name] != outcome.files.get(name):
            differences.append(Difference(f"{name} was changed"))
    return differences


def compare_case(case, names, before, outcome):
    expected_status = 0
    if (case / "expected.status").exists():
        expected_status = int((case / "expected.status").read_text())
    differences = []
    if outcome.status != expected_status:
        differences.append(
            Difference(
                f"{status_text(outcome.status)}, expected {expected_status}",
                b"",
                outcome.stderr,
                "standard error",
            )
        )

    score = "expected.mid.hex" if names.midi else "expected.sco"
    if (case / score).exists() or expected_status == 0:
        differences += compare_file(case, score, names.output, names, outcome)
    differences += compare_file(case, "expected.log", names.log, names, outcome)
    differences += compare_file(case, "expected.exp", names.expansion, names, outcome)

    stdout = expected_text(case, "expected.stdout", names) or b""
    differences += compare("expected.stdout", stdout, outcome.stdout)
    stderr = expected_text(case, "expected.stderr", names) or b""
    differences += compare("expected.stderr", stderr, outcome.stderr)
    return differences + compare_stray_files(names, before, outcome)


# ---- showing and accepting


def visible_lines(data):
    text = data.decode("utf-8", "backslashreplace")
    marks = {" ": "·", "\t": "→\t", "\r": "␍", "\n": "¶", "\0": "␀"}
    lines = text.split("\n")
    lines = [line + "\n" for line in lines[:-1]] + lines[-1:]
    return ["".join(marks.get(c, c) for c in line) for line in lines if line]


def show(difference):
    if not difference.name:
        return
    if difference.binary:
        expected = hex_dump(difference.expected).decode().splitlines()
        actual = hex_dump(difference.actual).decode().splitlines()
    else:
        expected = visible_lines(difference.expected)
        actual = visible_lines(difference.actual)
    for line in difflib.unified_diff(expected, actual, difference.name, "what came out", lineterm=""):
        print("    " + line)


def accept(case, names, outcome):
    """Writes what came out as what is expected."""

    def put(name, data, wanted=True):
        if wanted and data is not None:
            (case / name).write_bytes(data)
        else:
            (case / name).unlink(missing_ok=True)

    def folded(data):
        head = banner(names)
        if data is not None and data.startswith(head):
            return b"{banner}\n" + data[len(head) :]
        return data

    if outcome.status is None or outcome.status < 0 or outcome.status == SANITIZER_STATUS:
        raise BadCase(f"{status_text(outcome.status)}: nothing to accept")
    done = outcome.status == 0
    score = outcome.files.get(names.output)
    put("expected.status", b"%d\n" % outcome.status, not done)
    put("expected.sco", score, done and not names.midi)
    put("expected.mid.hex", hex_dump(score or b""), done and names.midi)
    put("expected.log", folded(outcome.files.get(names.log)))
    put("expected.exp", outcome.files.get(names.expansion))
    put("expected.stdout", outcome.stdout, outcome.stdout != b"")
    put("expected.stderr", folded(outcome.stderr), outcome.stderr != b"")


# ---- finding the cases and running them all


def find_cases(folder):
    """The cases in a folder. A folder that leads to none is a mistake."""
    if (folder / "piece.txt").exists() or (folder / "command").exists():
        return [folder]
    inner = sorted(path for path in folder.iterdir() if path.is_dir())
    if not inner:
        raise BadCase(f"{folder}: neither piece.txt nor command")
    return [case for path in inner for case in find_cases(path)]


def environment_of_runs():
    environment = dict(os.environ)
    environment["LC_ALL"] = "C"
    for variable in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
        environment[variable] = f"exitcode={SANITIZER_STATUS}:print_stacktrace=1"
    return environment


def main():
    parser = argparse.ArgumentParser(description="Runs whole runs of Korvo and compares every byte.")
    parser.add_argument("korvo", help="the program")
    parser.add_argument("folders", nargs="+", type=Path, metavar="folder")
    parser.add_argument("--show", action="store_true", help="print a readable difference")
    parser.add_argument("--accept", action="store_true", help="write what came out as expected")
    parser.add_argument("--filter", default="", metavar="TEXT", help="only cases whose path has TEXT")
    arguments = parser.parse_args()

    korvo = os.path.abspath(arguments.korvo)
    if not os.access(korvo, os.X_OK):
        sys.exit(f"run_cases: cannot run {arguments.korvo}")
    environment = environment_of_runs()
    try:
        cases = [case for folder in arguments.folders for case in find_cases(folder.resolve())]
    except (BadCase, OSError) as error:
        sys.exit(f"run_cases: {error}")
    cases = [case for case in cases if arguments.filter in str(Path(*case.parts[-2:]))]
    if not cases:
        sys.exit("run_cases: no case matches")

    passed = 0
    for case in cases:
        differences = []
        try:
            words = arguments_of(case)
            names = read_arguments(words)
            outcome, before = run(korvo, case, words, environment)
            if arguments.accept:
                accept(case, names, outcome)
            differences = compare_case(case, names, before, outcome)
            faults = [difference.summary for difference in differences]
        except (BadCase, OSError, ValueError) as error:
            faults = [str(error)]
        if not faults:
            passed += 1
            continue
        print(f"FAIL {'/'.join(case.parts[-2:])}: {'; '.join(faults)}")
        if arguments.show:
            for difference in differences:
                show(difference)
    failed = len(cases) - passed
    print(f"{passed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
