"""What the tests of docs/messages.json and docs/words.json share: lines put into a frame, and runs of Korvo."""

import json
import re
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
TIME_LIMIT = 600  # seconds for one run, which only one that hangs needs
GAP = "..."  # where an entry's lines stand in their frame
STRETCH = "…"

MESSAGES = json.loads((ROOT / "docs/messages.json").read_text(encoding="utf-8"))
FRAMES = {name: frame["lines"] for name, frame in MESSAGES["frames"].items()}
SMALL_PIECE = "i1 = 3 0 -4 {\n  p2 1\n  p3 .9\n}\n"


@dataclass
class Result:
    status: int
    stdout: str
    stderr: str
    score: str


def stretched(text, stretch):
    """The text with what its ellipsis stands for."""
    if stretch is None:
        return text
    numbers = range(stretch["from"], stretch["to"] + 1)
    return text.replace(STRETCH, "".join(stretch["each"].replace("{n}", str(n)) for n in numbers))


def piece_of(frame, lines, stretch=None):
    """The whole piece: the lines in their frame, indented as the gap is."""
    whole = []
    for line in FRAMES[frame]:
        indent = line[: len(line) - len(line.lstrip())]
        whole += [indent + part for part in lines] if line.strip() == GAP else [line]
    return stretched("\n".join(whole) + "\n", stretch)


def first_line(frame):
    """The number of the line that the gap of a frame is."""
    return [line.strip() for line in FRAMES[frame]].index(GAP) + 1


def run(korvo, command, piece, files=None):
    """Runs a command line, whose first word stands for the program, in a folder of its own that holds piece.txt."""
    with tempfile.TemporaryDirectory(prefix="korvo-documents-") as name:
        folder = Path(name)
        for file, text in {"piece.txt": piece, **(files or {})}.items():
            (folder / file).write_text(text, encoding="utf-8")
        result = subprocess.run(
            [str(korvo), *command.split()[1:]], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True,
            timeout=TIME_LIMIT, check=False,
        )
        score = folder / "piece.sco"
        written = score.read_text(encoding="latin-1") if score.exists() else ""
    return Result(result.returncode, result.stdout.decode("latin-1"), result.stderr.decode("latin-1"), written)


def run_lines(korvo, entry, lines):
    """Runs lines of an entry in its frame; in the frame "command" they are a command line."""
    if entry["frame"] == "command":
        return run(korvo, lines[0], SMALL_PIECE, entry.get("files"))
    piece = piece_of(entry["frame"], lines, entry.get("stretch"))
    return run(korvo, "korvo " + entry.get("options", "") + " piece.txt piece.sco", piece, entry.get("files"))


def complaints(result):
    """How often a run says ERROR and WARNING."""
    said = result.stderr + result.stdout
    return len(re.findall(r"\bERROR: ", said, re.IGNORECASE)), len(re.findall(r"\bWARNING: ", said))
