#!/usr/bin/env python3
"""Runs every code block of the project's documents, each by its mark, and says which do not hold.

    blocks_test.py KORVO_BINARY [DOCUMENT...]

Without documents: all of the project but those in TESTED_ELSEWHERE. README.md in this folder lists the marks. A block
without one, or with one that is not known, is a fault.
"""

import json
import os
import re
import shlex
import sys
import tempfile
from pathlib import Path

import blocks

ROOT = Path(__file__).resolve().parents[2]
TESTED_ELSEWHERE = {"docs/messages.md", "packages/korvo/README.md"}
NOT_OURS = ("build", ".git", "node_modules")
SHOWS_A_RUN = ("score", "events", "messages")


class Fault(Exception):
    """What does not hold about a block."""


def need(condition, what):
    if not condition:
        raise Fault(what)


def documents():
    """Every Markdown file of the project."""
    found = [path for path in ROOT.rglob("*.md") if not set(NOT_OURS) & set(path.relative_to(ROOT).parts)]
    return sorted(path for path in found if str(path.relative_to(ROOT)) not in TESTED_ELSEWHERE)


class Document:
    """One document on its way through its blocks: the copy of the project in which its commands run, where they are by
    now, the frame, and the last run of a piece."""

    def __init__(self, korvo, path, folder):
        self.korvo = Path(korvo).resolve()
        self.path = Path(path)
        self.project = Path(folder)
        self.programs = self.project / "build" / "release"
        self.here = self.project
        self.frame = None
        self.run = None
        blocks.copy_of(ROOT / "examples", self.project / "examples")
        self.programs.mkdir(parents=True)
        (self.programs / "korvo").symlink_to(self.korvo)
        for name in ("tests", "scripts", "docs"):
            (self.project / name).symlink_to(ROOT / name)

    def faults(self):
        """What does not hold, a line for each block."""
        found = []
        every = blocks.read_blocks(self.path)
        for index, block in enumerate(every):
            try:
                need(block.mark, "no mark says what it is")
                need(block.mark in HANDLERS, f"no mark is called {block.mark!r}")
                HANDLERS[block.mark](self, block, every[index + 1 :])
            except Fault as fault:
                found.append(f"{block.place}: {fault}")
        return found


def frame_block(document, block, _):
    document.frame = block.text
    run_checked(document, block.text, block, [])


def piece_block(document, block, following):
    run_checked(document, block.text, block, following)


def p_fields_block(document, block, following):
    need(document.frame, "there is no frame above it")
    need(blocks.p_fields(block.text), "it has no p-field")
    run_checked(document, blocks.in_frame(document.frame, block.text), block, following)


def statements_block(document, block, following):
    need(document.frame, "there is no frame above it")
    run_checked(document, block.text + document.frame, block, following)


def run_checked(document, text, block, following):
    """Runs a piece, which complains only of what the document goes on to show."""
    document.run = blocks.run_piece(document.korvo, text, shlex.split(block.argument))
    shown = []
    for next_block in following:
        if next_block.mark not in SHOWS_A_RUN:
            break
        if next_block.mark == "messages" and not next_block.argument:
            shown += [line for line in next_block.lines if blocks.complains(line)]
    complaints = document.run.complaints
    need(len(complaints) == len(shown), f"it says {complaints}, and the document shows {shown}")
    status = 1 if any("ERROR" in line for line in shown) else 0
    need(document.run.status == status, f"it ends with status {document.run.status}, not {status}")
    need(document.run.stdout == "", f"it prints {document.run.stdout!r}")


def score_block(document, block, _):
    need(document.run, "there is no piece above it")
    real = document.run.score.strip("\n").split("\n")
    need(blocks.shows(block.lines, real), "the score is\n" + "\n".join(real))


def events_block(document, block, _):
    need(document.run, "there is no piece above it")
    real = document.run.events
    need(blocks.shows(block.lines, real), "the events are\n" + "\n".join(real))


def messages_block(document, block, _):
    """The messages of the piece above it, or with an argument those of an example, run with the options before it."""
    if block.argument:
        *options, folder = shlex.split(block.argument)
        run = blocks.run_in(document.korvo, document.project / folder, options)
    else:
        need(document.run, "there is no piece above it")
        run = document.run
    need(blocks.contains(block.lines, run.messages.split("\n")), "the messages are\n" + run.messages)


def file_block(document, block, _):
    """A file: one that is there, by its name from the project's top, or a new one for the commands that follow."""
    need(block.argument, "it has no name")
    there = document.project / block.argument
    if there.exists():
        text = there.read_text(encoding="utf-8").removeprefix("\n").rstrip("\n") + "\n"
        need(text == block.text, f"{block.argument} is\n{text}")
    else:
        (document.here / block.argument).write_text(block.text, encoding="utf-8")


def shell_block(document, block, _):
    for name in block.argument.split():
        (document.here / name).write_bytes((document.here / "piece.txt").read_bytes())
    status, output, document.here = blocks.run_shell(block.text, document.here, document.programs)
    need(status == 0, f"it ends with status {status}\n{output}")
    told = [line for line in output.split("\n") if blocks.complains(line)]
    need(not told, f"it says {told}")


def session_block(document, block, _):
    """Commands behind "$ ", each with what it prints."""
    need(block.lines[0].startswith("$ "), "it does not begin with a command")
    commands = re.split(r"^\$ ", block.text, flags=re.M)[1:]
    for command in commands:
        line, _, shown = command.partition("\n")
        status, output, document.here = blocks.run_shell(line, document.here, document.programs)
        need(status == 0, f"{line} ends with status {status}\n{output}")
        need(blocks.shows(shown.splitlines(), output.strip("\n").split("\n")), f"{line} prints\n{output}")


def usage_block(document, block, _):
    status, output, _ = blocks.run_shell("korvo", document.project, document.programs)
    need(status == 1 and f"  Usage: {block.text}" in output, f"the usage text is\n{output}")


def not_run_block(_, block, __):
    """What is not run says why, and what it names is there."""
    need(block.argument, "it does not say why it is not run")
    presets = json.dumps(json.loads((ROOT / "CMakePresets.json").read_text(encoding="utf-8")))
    for preset in re.findall(r"--preset (\S+)", block.text):
        need(f'"name": "{preset}"' in presets, f"there is no preset {preset}")
    for name in re.findall(r"(?:^|\s)(?:\./)?((?:scripts|tests|docs|examples)/[\w./-]+)", block.text):
        need((ROOT / name).exists(), f"there is no {name}")


HANDLERS = {
    "frame": frame_block,
    "piece": piece_block,
    "p-fields": p_fields_block,
    "statements": statements_block,
    "score": score_block,
    "events": events_block,
    "messages": messages_block,
    "file": file_block,
    "shell": shell_block,
    "session": session_block,
    "usage": usage_block,
    "not run": not_run_block,
}


def faults_of(korvo, path):
    with tempfile.TemporaryDirectory(prefix="korvo-document-") as folder:
        return Document(korvo, path, os.path.realpath(folder)).faults()


def main():
    korvo, *paths = sys.argv[1:]
    count, failed = 0, 0
    for path in map(Path, paths or documents()):
        count += len(blocks.read_blocks(path))
        for fault in faults_of(korvo, path):
            failed += 1
            print(fault)
    print(f"{count} blocks, {failed} faults")
    return 1 if failed or not count else 0


if __name__ == "__main__":
    sys.exit(main())
