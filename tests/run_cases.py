#!/usr/bin/env python3
"""Runs whole runs of Korvo and compares every byte of what comes out.

    run_cases.py KORVO_BINARY [--filter TEXT] [--show] [--accept] [--unpack FOLDER] [--left-out LIST] CHAPTER...

runs/README.md says what a chapter is; chapters.py reads and writes them. Each CHAPTER is a file or a folder of them. A
failing case prints one line, with --show also a readable difference. The last line is the count, and the exit status is
1 when a case failed. The cases in LIST must fail: they are what a program that stands in for korvo cannot do.
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

import chapters
from chapters import PIECE, BadChapter

TIME_LIMIT = 600  # seconds for one run, which only one that hangs needs
MEMORY = "/dev/shm"  # where the runs happen, if it is there: they write and delete many small files
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


# ---- a run


class BadCase(Exception):
    """A case that cannot be run, compared or accepted."""


def arguments_of(case):
    """The complete argument list of a case."""
    if case.command is not None:
        return case.command
    midi = read_arguments([*case.options, PIECE, "piece"]).midi
    return [*case.options, PIECE, "piece.mid" if midi else "piece.sco"]


@dataclass
class Outcome:
    status: int | None  # None: the time limit was reached
    stdout: bytes
    stderr: bytes
    files: dict  # name -> contents, of every file in the folder after the run


def write_files(folder, files):
    for name, data in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)


def read_files(folder):
    return {
        str(path.relative_to(folder)): path.read_bytes()
        for path in sorted(folder.rglob("*"))
        if path.is_file()
    }


def run(korvo, case, arguments, environment, folder):
    """Runs a case in a folder that is there for this run only."""
    folder.mkdir()
    try:
        write_files(folder, case.files)
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
        return Outcome(status, stdout, stderr, read_files(folder))
    finally:
        shutil.rmtree(folder)


# ---- comparing


@dataclass
class Difference:
    summary: str
    expected: bytes = b""
    actual: bytes = b""
    name: str = ""  # of the section; none: there is nothing to show
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


def bytes_of_hex(text):
    try:
        return bytes.fromhex("".join(re.sub(";.*", "", text.decode("ascii")).split()))
    except ValueError as error:
        raise BadCase(f"midi: {error}") from None


def hex_dump(data):
    """Rows of 16 bytes; what bytes_of_hex reads back."""
    rows = (data[i : i + 16].hex(" ") for i in range(0, len(data), 16))
    return "".join(row + "\n" for row in rows).encode()


BANNER_MARK = b"{banner}\n"


def expected_bytes(case, kind, names):
    """What must come out, the banner put in and a MIDI file as it is; None where the case does not say."""
    data = case.expected.get(kind)
    if kind == "midi" and data is not None:
        return bytes_of_hex(data)
    if kind in ("stderr", "log") and data is not None and data.startswith(BANNER_MARK):
        return banner(names) + data[len(BANNER_MARK) :]
    return data


def folded(data, names):
    """The banner at the beginning as its mark."""
    head = banner(names)
    return BANNER_MARK + data[len(head) :] if data.startswith(head) else data


def compare_file(case, kind, file_name, names, outcome):
    """One output file of the program against the section that expects it."""
    actual = outcome.files.get(file_name)
    expected = expected_bytes(case, kind, names)
    if expected is None and actual is None:
        return []
    binary = kind == "midi"
    if expected is None:
        return [Difference(f"{file_name} was written, but there is no {kind}", b"", actual, kind, binary)]
    if actual is None:
        return [Difference(f"there is a {kind}, but nothing was written")]
    return compare(kind, expected, actual, binary)


def compare_stray_files(case, names, outcome):
    """The program must leave alone what is not an output."""
    outputs = {names.output, names.log, names.expansion} - {names.piece}
    differences = []
    for name in sorted(case.files.keys() | outcome.files.keys()):
        if name in outputs:
            continue
        if name not in case.files:
            differences.append(Difference(f"{name} was written, which is no output of this run"))
        elif case.files[name] != outcome.files.get(name):
            differences.append(Difference(f"{name} was changed"))
    return differences


def compare_case(case, names, outcome):
    differences = []
    if outcome.status != case.status:
        summary = f"{status_text(outcome.status)}, expected {case.status}"
        differences.append(Difference(summary, b"", outcome.stderr, "standard error"))

    output = "midi" if names.midi else "score"
    if output in case.expected or case.status == 0:
        differences += compare_file(case, output, names.output, names, outcome)
    differences += compare_file(case, "log", names.log, names, outcome)
    differences += compare_file(case, "expansion", names.expansion, names, outcome)
    for kind, actual in (("stdout", outcome.stdout), ("stderr", outcome.stderr)):
        differences += compare(kind, expected_bytes(case, kind, names) or b"", actual)
    for each in differences:
        each.expected, each.actual = folded(each.expected, names), folded(each.actual, names)
    return differences + compare_stray_files(case, names, outcome)


# ---- showing, accepting, unpacking


def visible_lines(data):
    """Lines as they may stand in a chapter, tabulators and blanks at the end in sight."""
    return [line.decode() for line in chapters.lines_of(data, show_blanks=True)]


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


def accepted(case, names, outcome):
    """The case, expecting what came out."""
    if outcome.status is None or outcome.status < 0 or outcome.status == SANITIZER_STATUS:
        raise BadCase(f"{status_text(outcome.status)}: nothing to accept")
    output = "midi" if names.midi else "score"
    found = {
        "expansion": outcome.files.get(names.expansion),
        "log": outcome.files.get(names.log),
        "stdout": outcome.stdout,
        "stderr": outcome.stderr,
    }
    if outcome.status == 0 or output in case.expected:
        found[output] = outcome.files.get(names.output)
    expected = {}
    for kind, data in found.items():
        silence = kind in ("stdout", "stderr") and data == b""
        if data is None or (silence and case.expected.get(kind) != b""):
            continue
        if data == expected_bytes(case, kind, names):
            expected[kind] = case.expected[kind]
        elif kind == "midi":
            expected[kind] = hex_dump(data)
        else:
            expected[kind] = folded(data, names) if kind in ("stderr", "log") else data
    return chapters.with_expected(case, outcome.status, expected)


def unpack(case, folder):
    """Writes a case as plain files, to be run by hand, and prints how."""
    arguments = arguments_of(case)
    names = read_arguments(arguments)
    place = folder / name_of(case)
    place.mkdir(parents=True, exist_ok=True)
    expected = {f"expected.{kind}": expected_bytes(case, kind, names) for kind in case.expected}
    write_files(place, {**expected, **case.files})
    print(f"cd {shlex.quote(str(place))} && korvo {shlex.join(arguments)}")


# ---- what a stand-in cannot do


def read_left_out(path, cases):
    """The names in a list of cases that are left out: reasons, and indented below each the cases that it is given for."""
    names = set()
    reason = ""
    for number, line in enumerate(path.read_text().splitlines(), 1):
        name = line.strip()
        if name and line == name:
            reason = name
        elif name:
            fault = "has no reason" if not reason else "is there twice" if name in names else ""
            fault = fault or ("" if name in cases else "is no case")
            if fault:
                raise BadCase(f"{path}:{number}: {name} {fault}")
            names.add(name)
        else:
            reason = ""
    return names


# ---- running them all


def name_of(case):
    return f"{case.topic}/{case.name}"


def selected(all_chapters, text):
    """The cases whose name has the text in it; a whole name, topic/case, means that case alone."""
    names = {name_of(case) for chapter in all_chapters for case in chapter.cases}
    return {text} if text in names else {name for name in names if text in name}


def memory_folder():
    return MEMORY if os.access(MEMORY, os.W_OK) else None


def environment_of_runs():
    environment = dict(os.environ)
    environment["LC_ALL"] = "C"
    for variable in ("ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"):
        environment[variable] = f"exitcode={SANITIZER_STATUS}:print_stacktrace=1"
    return environment


def judge(korvo, case, environment, folder, accept):
    """Runs a case. Gives the case, which is another one when what came out is accepted, and what is wrong with it."""
    try:
        arguments = arguments_of(case)
        names = read_arguments(arguments)
        outcome = run(korvo, case, arguments, environment, folder)
        if accept:
            case = accepted(case, names, outcome)
        return case, compare_case(case, names, outcome)
    except (BadCase, OSError, ValueError) as error:
        return case, [Difference(str(error))]


def read_command_line():
    parser = argparse.ArgumentParser(description="Runs whole runs of Korvo and compares every byte.")
    parser.add_argument("korvo", help="the program")
    parser.add_argument("chapters", nargs="+", type=Path, metavar="chapter", help="a file, or a folder of them")
    parser.add_argument("--filter", default="", metavar="TEXT", help="only cases whose topic/name has TEXT, or is TEXT")
    parser.add_argument("--show", action="store_true", help="print a readable difference")
    parser.add_argument("--accept", action="store_true", help="write what came out as expected")
    parser.add_argument("--left-out", type=Path, metavar="LIST", help="cases that must fail, each with a reason")
    parser.add_argument("--unpack", type=Path, metavar="FOLDER", help="only write the cases there as plain files")
    return parser.parse_args()


def run_chapter(chapter, names, left_out, arguments, environment, folder):
    """Runs the cases of a chapter that are among the names. Gives the number of those that fail."""
    faults = 0
    before = list(chapter.cases)
    for i, case in enumerate(before):
        if name_of(case) not in names:
            continue
        chapter.cases[i], differences = judge(arguments.korvo, case, environment, folder, arguments.accept)
        if name_of(case) in left_out:
            differences = [] if differences else [Difference("is left out, but passes")]
        if differences:
            faults += 1
            print(f"FAIL {name_of(case)} ({case.place}): {'; '.join(each.summary for each in differences)}")
        if arguments.show:
            for difference in differences:
                show(difference)
    if chapter.cases != before:
        chapters.write_chapter(chapter)
    return faults


def main():
    arguments = read_command_line()
    arguments.korvo = os.path.abspath(arguments.korvo)
    if not os.access(arguments.korvo, os.X_OK):
        sys.exit(f"run_cases: cannot run {arguments.korvo}")
    try:
        all_chapters = chapters.read_chapters(arguments.chapters)
    except (BadChapter, OSError) as error:
        sys.exit(f"run_cases: {error}")
    names = selected(all_chapters, arguments.filter)
    left_out = set()
    if arguments.left_out:
        try:
            left_out = read_left_out(arguments.left_out, selected(all_chapters, ""))
        except (BadCase, OSError) as error:
            sys.exit(f"run_cases: {error}")
    if not names:
        sys.exit("run_cases: no case matches")

    if arguments.unpack:
        for case in (case for chapter in all_chapters for case in chapter.cases):
            if name_of(case) in names:
                unpack(case, arguments.unpack)
        return 0
    environment = environment_of_runs()
    with tempfile.TemporaryDirectory(prefix="korvo-runs-", dir=memory_folder()) as folder:
        place = Path(folder, "run")
        faults = sum(run_chapter(each, names, left_out, arguments, environment, place) for each in all_chapters)
    left_out &= names
    passed = len(names) - len(left_out) - faults
    print(f"{passed} passed, {faults} failed" + (f", {len(left_out)} left out" if left_out else ""))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
