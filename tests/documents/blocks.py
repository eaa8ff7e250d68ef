"""What the tests of the documents share: the code blocks of a Markdown file with their marks, runs of a piece in a folder
of its own, and the comparison of shown lines with real ones.

A code block is indented by four blanks or more behind an empty line, or fenced with ``` or ~~~. Its mark is the HTML
comment in front of it: `<!-- piece -->`, or with an argument `<!-- not run: it installs packages -->`. What marks there
are is the business of the tests.
"""

import re
import shutil
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

TIME_LIMIT = 600  # seconds for one run, which only one that hangs needs
GAP = "..."  # a shown line that stands for any number of lines
COMMENT = re.compile(r"<!--\s*(.*?)\s*-->")
FENCE = re.compile(r" {0,3}(```+|~~~+)")


@dataclass(frozen=True)
class Block:
    """A code block: `line` is that of its first line of code, counted from 1; `text` ends with a line feed. `mark` is the
    word or words of the comment in front of it and `argument` what stands behind their colon; both are empty without."""

    path: Path
    line: int
    mark: str
    argument: str
    text: str

    @property
    def place(self):
        return f"{self.path.name}:{self.line}"

    @property
    def lines(self):
        return self.text.splitlines()


@dataclass(frozen=True)
class Run:
    """What a run of the program left behind. `messages` is standard error without the banner."""

    status: int
    score: str
    stdout: str
    stderr: str

    @property
    def messages(self):
        head, found, rest = self.stderr.partition('[Csound score-file]\n')
        if not found:
            head, found, rest = self.stderr.partition('[MIDI file (type 1)]\n')
        return rest if found else head

    @property
    def events(self):
        """The lines of the score's events, each with the blank that it ends with."""
        return [line for line in self.score.split("\n") if re.match(r"i-?\d+ ", line)]

    @property
    def complaints(self):
        """The lines of the messages that tell of a warning or an error, whether they have a number or not."""
        return [line for line in self.messages.splitlines() if complains(line)]


def complains(line):
    """Whether a line of messages tells of a warning or an error, be it numbered or not."""
    return re.search(r"\b(WARNING|ERROR|Error|Oops|Bad include)\b|Too many embedded|preceeded by a \|", line) is not None


def read_blocks(path):
    """All code blocks of a Markdown file, in order."""
    path = Path(path)
    return blocks_of(path.read_text(encoding="utf-8"), path)


def blocks_of(text, path=Path("text.md")):
    lines = text.split("\n")
    blocks = []
    mark = ("", "")
    empty_before = True
    index = 0
    while index < len(lines):
        line = lines[index]
        fence = FENCE.match(line)
        if fence or (empty_before and line.startswith("    ") and line.strip()):
            first, code, index = _fenced(lines, index, fence[1]) if fence else _indented(lines, index)
            blocks.append(Block(path, first + 1, *mark, "".join(f"{one}\n" for one in code)))
            mark = ("", "")
            empty_before = True
            continue
        comment = COMMENT.fullmatch(line.strip())
        if comment:
            word, _, argument = comment[1].partition(":")
            mark = (word.strip(), argument.strip())
        elif line.strip():
            mark = ("", "")
        empty_before = not line.strip() or comment is not None
        index += 1
    return blocks


def _fenced(lines, index, fence):
    end = index + 1
    while end < len(lines) and not lines[end].strip().startswith(fence):
        end += 1
    return index + 1, lines[index + 1 : end], end + 1


def _indented(lines, index):
    end = index
    while end < len(lines) and (lines[end].startswith("    ") or not lines[end].strip()):
        end += 1
    code = lines[index:end]
    while not code[-1].strip():
        code.pop()
    return index, [line[4:] for line in code], index + len(code)


def in_frame(frame, text):
    """The frame of an example that shows p-fields only: they take the place of those with their numbers. The header gets
    as many p-fields as there are then; the ones in between that nobody shows are 60."""
    shown = p_fields(text)
    own = {p_fields(line)[0]: line for line in frame.splitlines() if p_fields(line)}
    count = max([*shown, *own])
    before, behind = [], []
    for number in range(2, count + 1):
        if number not in shown:
            (before if number < min(shown, default=2) else behind).append(own.get(number, f"  p{number} 60"))
    header = re.sub(r"^(\s*i\d+\s*=\s*)\d+", rf"\g<1>{count}", frame.splitlines()[0])
    return "\n".join([header, *before, text.rstrip("\n"), *behind, "}\n"])


def p_fields(text):
    """The numbers of the p-fields that a text gives, in order; each of them opens its line."""
    return [int(number) for number in re.findall(r"^\s*p(\d+)", text, re.M)]


def run_piece(korvo, text, options=(), files=None):
    """Runs a piece in an empty folder, in which `files` (name to text) lie beside it, and gives what came out."""
    with tempfile.TemporaryDirectory(prefix="korvo-documents-") as name:
        folder = Path(name)
        for file, content in (files or {}).items():
            (folder / file).parent.mkdir(parents=True, exist_ok=True)
            (folder / file).write_text(content, encoding="utf-8")
        (folder / "piece.txt").write_text(text, encoding="utf-8")
        return run_in(korvo, folder, options)


def run_in(korvo, folder, options=()):
    """Runs the piece.txt of a folder there; the output, piece.sco or with -m piece.mid, stays in it."""
    output = Path(folder) / ("piece.mid" if "-m" in options else "piece.sco")
    command = [str(Path(korvo).resolve()), *options, "piece.txt", output.name]
    done = subprocess.run(command, cwd=folder, capture_output=True, timeout=TIME_LIMIT, check=False)
    score = output.read_bytes() if output.exists() else b""
    return Run(done.returncode, *(each.decode("utf-8", "replace") for each in (score, done.stdout, done.stderr)))


def run_beside(korvo, folder, options=()):
    """Runs the piece.txt of a folder in a copy of it and of the folders beside it, which it may include from."""
    with tempfile.TemporaryDirectory(prefix="korvo-documents-") as name:
        beside = copy_of(Path(folder).parent, Path(name) / "copy")
        return run_in(korvo, beside / Path(folder).name, options)


def run_shell(commands, folder, programs):
    """Runs lines of shell commands in a folder, with the folder `programs` first on the path; gives status and output,
    standard error included, and the folder in which the commands ended."""
    script = f'PATH="{Path(programs).resolve()}:$PATH"\n{commands}\nstatus=$?\npwd > "$0.folder"\nexit $status\n'
    with tempfile.TemporaryDirectory(prefix="korvo-shell-") as name:
        file = Path(name) / "commands"
        file.write_text(script, encoding="utf-8")
        done = subprocess.run(
            ["sh", "-e", str(file)], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            stdin=subprocess.DEVNULL, timeout=TIME_LIMIT, check=False,
        )
        left = Path(f"{file}.folder")
        ended = Path(left.read_text(encoding="utf-8").rstrip("\n")) if left.exists() else Path(folder)
    return done.returncode, done.stdout.decode("utf-8", "replace"), ended


def copy_of(source, target):
    """A copy of a folder as it lies in the repository."""
    shutil.copytree(source, target)
    return Path(target)


def shows(shown, actual):
    """Whether the shown lines are the actual ones; a line of dots in the former stands for any number of the latter."""
    if not shown:
        return not actual
    if shown[0].strip() == GAP:
        return any(shows(shown[1:], actual[start:]) for start in range(len(actual) + 1))
    return bool(actual) and shown[0] == actual[0] and shows(shown[1:], actual[1:])


def contains(shown, actual):
    """Whether the shown lines stand somewhere among the actual ones, one behind the other but for lines of dots."""
    return shows([GAP, *shown, GAP], actual)
