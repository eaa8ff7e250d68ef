#!/usr/bin/env python3
"""Writes the pieces of the project as JSON, for the tests of what an editor knows of the language:

    [{"name": "loops/two-loops", "text": "...", "runs": true, "midi": false}, ...]

They are those of tests/runs and examples/, and the examples of docs/manual.md in their frame. "runs": the piece ends with
status 0. "midi": it does so with -m, that is with its first block.
"""

import json
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[3]
sys.path[:0] = [str(ROOT / "tests"), str(ROOT / "tests/documents")]

import blocks  # noqa: E402
import chapters  # noqa: E402


def piece(name, text, runs=True, midi=False):
    return {"name": name, "text": text, "runs": runs, "midi": midi}


def text_of(data):
    """The text in an editor, where byte 255, a blank to Korvo, is no character."""
    return data.replace(b"\xff", b" ").decode("utf-8", "replace")


def pieces_of_runs():
    for chapter in chapters.read_chapters([ROOT / "tests/runs"]):
        for case in chapter.cases:
            if chapters.PIECE in case.files:
                midi = any(word.startswith("-m") for word in case.options)
                name = f"{case.topic}/{case.name}"
                yield piece(name, text_of(case.files[chapters.PIECE]), case.status == 0, midi)


def pieces_of_examples():
    for path in sorted((ROOT / "examples").glob("*/piece.txt")):
        yield piece(f"examples/{path.parent.name}", path.read_text(encoding="utf-8"))


def pieces_of_manual():
    """As the tests of the documents run them."""
    frame = None
    for block in blocks.read_blocks(ROOT / "docs/manual.md"):
        frame = block.text if block.mark == "frame" else frame
        text = {
            "frame": lambda: block.text,
            "piece": lambda: block.text,
            "p-fields": lambda: blocks.in_frame(frame, block.text),
            "statements": lambda: block.text + frame,
        }.get(block.mark)
        if text:
            yield piece(f"{block.place}", text())


def main():
    json.dump([*pieces_of_runs(), *pieces_of_examples(), *pieces_of_manual()], sys.stdout)


if __name__ == "__main__":
    main()
