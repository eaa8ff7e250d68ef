#!/usr/bin/env python3
"""Runs the examples as a reader would, and checks that none of them raises a warning or an error.

    examples_test.py KORVO_BINARY [EXAMPLES]

A folder with a `piece.txt` is an example; one that holds a file named `midi` too is run with -m. README.md names every
example, and none that is not there.
"""

import re
import sys
from pathlib import Path

import blocks

ROOT = Path(__file__).resolve().parents[2]
COURSE = "In this order they read like a course: "


def faults_of_example(korvo, folder):
    """What is wrong with a run of the example. The files that it includes lie beside it, so it runs in a copy."""
    options = ["-m"] if (folder / "midi").exists() else []
    run = blocks.run_beside(korvo, folder, options)
    faults = [f"{folder.name} says: {line}" for line in run.complaints]
    if run.status != 0:
        faults.append(f"{folder.name} ends with status {run.status}")
    if run.stdout:
        faults.append(f"{folder.name} prints {run.stdout!r}")
    if not options and not run.events:
        faults.append(f"{folder.name} has no events")
    return faults


def faults_of_course(readme, names):
    """README.md leads through the examples, each once."""
    start = readme.index(COURSE) + len(COURSE)
    told = re.findall(r"`(\w+)`", readme[start : readme.index("\n- ", start)])
    return [f"README.md and examples/ differ in {name}" for name in sorted(set(told) ^ set(names))]


def main():
    korvo = sys.argv[1]
    examples = Path(sys.argv[2]) if len(sys.argv) > 2 else ROOT / "examples"
    folders = sorted(path.parent for path in examples.glob("*/piece.txt"))
    faults = [fault for folder in folders for fault in faults_of_example(korvo, folder)]
    if examples == ROOT / "examples":
        readme = re.sub(r"\n {2}", " ", (ROOT / "README.md").read_text(encoding="utf-8"))
        faults += faults_of_course(readme, [folder.name for folder in folders])
    print("\n".join([*faults, f"{len(folders)} examples, {len(faults)} faults"]))
    return 1 if faults or not folders else 0


if __name__ == "__main__":
    sys.exit(main())
