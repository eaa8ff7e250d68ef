"""Reads and writes chapters: files of plain text, each with the whole runs of one topic.

What a chapter looks like, and how bytes stand in it that text does not show, is told in runs/README.md. Here a chapter
becomes records (read_chapter), bytes become lines and lines bytes (lines_of, bytes_of), and what a case expects can be
changed without touching a byte of anything else (with_expected, write_chapter). Nothing here runs a program.
"""

import re
import shlex
from dataclasses import dataclass, field, replace
from pathlib import Path, PurePosixPath

INPUTS = ("options", "command", "piece", "file")
OUTPUTS = ("score", "midi", "expansion", "log", "stdout", "stderr")
ORDER = (*INPUTS, "status", *OUTPUTS)  # of the sections, where nobody has chosen another
ON_THE_HEADING = ("options", "command", "status")  # what these say stands behind their name
PIECE = "piece.txt"  # the file of the section "piece"


class BadChapter(Exception):
    """A chapter that cannot be read; the words begin with its name and the line."""


@dataclass
class Section:
    kind: str
    argument: str  # what stands behind the kind
    data: bytes  # what the lines below mean
    lines: list  # all of its lines as they stand in the chapter, heading first


@dataclass
class Case:
    """One run: what goes in and what must come out, and nothing of how it is run."""

    topic: str
    name: str
    place: str  # chapter:line, for messages
    options: list = field(default_factory=list)
    command: list | None = None  # the complete argument list, where the case is about it
    files: dict = field(default_factory=dict)  # name -> bytes, of what is there before the run
    status: int = 0
    expected: dict = field(default_factory=dict)  # one of OUTPUTS -> bytes
    heading: list = field(default_factory=list)  # the lines above the first section
    sections: list = field(default_factory=list)


@dataclass
class Chapter:
    path: Path
    introduction: list  # its lines
    cases: list


# ---- bytes that text does not show

ESCAPED = b" (esc)"
NO_LINE_FEED = b" (no-eol)"
HEADINGS = (b"===", b"---")
ESCAPE = re.compile(rb"\\(?:\{(\d+)\*((?:[^\\}]|\\[^{])+)\}|x([0-9a-f]{2})|([\\tnr])|)")
LETTERS = {b"\\": b"\\", b"t": b"\t", b"n": b"\n", b"r": b"\r"}

RUN = re.compile(rb"(?s)(.{1,64}?)\1{7,}")
LONG_RUN = 300  # bytes, in a line
LONG_RUN_OF_LINES = 1000


def unescaped(text):
    """What the text of an escaped line means. A ValueError says what is wrong with it."""

    def meaning(match):
        count, repeated, digits, letter = match.groups()
        if count:
            return int(count) * unescaped(repeated)
        if digits:
            return bytes.fromhex(digits.decode())
        if letter:
            return LETTERS[letter]
        raise ValueError(f'unknown escape "{text[match.start() :][:4].decode()}"')

    return ESCAPE.sub(meaning, text)


def escaped(data, also=""):
    """Bytes as the text of an escaped line; the characters of `also` are escaped, too."""
    letters = {value.decode(): "\\" + key.decode() for key, value in LETTERS.items()}

    def shown(character):
        if character in letters:
            return letters[character]
        if character.isprintable() and character not in also:
            return character
        return "".join(f"\\x{byte:02x}" for byte in character.encode("utf-8", "surrogateescape"))

    return "".join(map(shown, data.decode("utf-8", "surrogateescape"))).encode()


def can_stand(line):
    """Whether a line means itself in a chapter."""
    text = line.decode("utf-8", "surrogateescape").replace("\t", "")
    return text.isprintable() and not line.startswith(HEADINGS) and not line.endswith((ESCAPED, NO_LINE_FEED))


def escaped_line(parts):
    """A line of an escaped text; its parts are bytes and (unit, count) for what is repeated."""
    text = b""
    for part in parts:
        if isinstance(part, tuple):
            text += b"\\{%d*%s}" % (part[1], escaped(part[0], also="}"))
        else:
            text += escaped(part)
    if text.startswith(HEADINGS):
        text = b"\\x%02x" % text[0] + text[1:]
    if text.endswith(b" "):
        text = text[:-1] + b"\\x20"
    return text + ESCAPED


def in_whole_lines(data, unit, start, end):
    """The same run, where line feeds are repeated, cut so that its units are whole lines as far as may be."""
    turn = unit.index(b"\n") + 1
    if not unit.endswith(b"\n"):
        start, end = start + turn, end - len(unit) + turn
        unit = unit[turn:] + unit[:turn]
        end += len(unit) if data.startswith(unit, end) else 0
    if start > 0 and data[start - 1 : start] != b"\n":
        start += len(unit)
    return unit, start, end


def long_runs(data):
    """Bytes in parts: bytes, and (unit, count) where something is repeated for very long."""
    parts = []
    at = 0  # where what is not in parts yet begins
    position = 0
    while match := RUN.search(data, position):
        unit, start, end = match[1], match.start(), match.end()
        enough = LONG_RUN
        if b"\n" in unit:
            unit, start, end = in_whole_lines(data, unit, start, end)
            enough = LONG_RUN_OF_LINES
        position = max(end, match.end())
        if end - start >= enough:
            parts += [data[at:start], (unit, (end - start) // len(unit))]
            at = end
    return [*parts, data[at:]]


def parts_of_lines(data):
    """The lines that some bytes have in a chapter: their parts, and whether a line feed ends them."""
    line = []
    for part in long_runs(data):
        if isinstance(part, tuple):
            line.append(part)
            if part[0].endswith(b"\n"):
                yield line, False
                line = []
            continue
        *whole, rest = part.split(b"\n")
        for text in whole:
            yield [*line, text], True
            line = []
        line += [rest] if rest else []
    if line:
        yield line, False


def lines_of(data, show_blanks=False):
    """The lines that stand for some bytes in a chapter. With show_blanks, none has a tabulator or ends in a blank."""
    lines = []
    for parts, ends in parts_of_lines(data):
        stands = not any(isinstance(part, tuple) for part in parts) and can_stand(b"".join(parts))
        if stands and (show_blanks or not ends):
            text = b"".join(parts)
            stands = not text.endswith((b" ", b"\t")) and not (show_blanks and b"\t" in text)
        line = b"".join(parts) if stands else escaped_line(parts)
        lines.append(line if ends else line + NO_LINE_FEED)
    return lines


def meaning_of(line):
    """The bytes that a line of a chapter stands for. A ValueError says what is wrong with it."""
    ends = not line.endswith(NO_LINE_FEED)
    text = line if ends else line.removesuffix(NO_LINE_FEED)
    if text.endswith(ESCAPED):
        text = unescaped(text.removesuffix(ESCAPED))
    return text + b"\n" if ends else text


def bytes_of(lines):
    return b"".join(map(meaning_of, lines))


# ---- reading


def words_of(text):
    """Words as a shell would read them."""
    return shlex.split(text)


def file_name_of(argument):
    words = words_of(argument)
    if len(words) != 1:
        raise ValueError("a file has one name")
    path = PurePosixPath(words[0])
    if path.is_absolute() or ".." in path.parts or str(path) != words[0] or words[0] in (".", PIECE):
        raise ValueError(f'a file cannot be named "{words[0]}"')
    return words[0]


def add_section(case, section):
    """Puts what a section says into its case. A ValueError says why it cannot be."""
    kind, argument = section.kind, section.argument
    if kind == "file":
        name = file_name_of(argument)
        if name in case.files:
            raise ValueError(f'a second file "{name}"')
        case.files[name] = section.data
    elif any(other.kind == kind for other in case.sections):
        raise ValueError(f'a second "--- {kind}"')
    elif {kind, *(other.kind for other in case.sections)} >= {"options", "command"}:
        raise ValueError("options and a command in one case")
    elif kind == "options":
        case.options = words_of(argument)
    elif kind == "command":
        case.command = words_of(argument)
    elif kind == "piece":
        case.files[PIECE] = section.data
    elif kind == "status":
        if not re.fullmatch("[0-9]+", argument):
            raise ValueError("a status is a number")
        case.status = int(argument)
    else:
        case.expected[kind] = section.data
    case.sections.append(section)


class Reader:
    """Goes through the lines of a chapter."""

    def __init__(self, path):
        self.path = Path(path)
        data = self.path.read_bytes()
        self.lines = data.split(b"\n")
        if self.lines.pop() != b"":
            self.refuse(len(self.lines), "the last line has no line feed")
        for number, line in enumerate(self.lines):
            self.check_line(number, line)

    def refuse(self, number, words):
        raise BadChapter(f"{self.path}:{number + 1}: {words}")

    def check_line(self, number, line):
        """Nothing stands in a chapter that cannot be seen, but for blanks and tabulators."""
        try:
            line.decode()
        except UnicodeDecodeError:
            self.refuse(number, r'not UTF-8: such a byte is written "\xHH"')
        control = re.search(rb"[\x00-\x08\x0b-\x1f\x7f]", line)
        if control:
            self.refuse(number, f'byte {control[0][0]} is written "{escaped(control[0]).decode()}"')

    def next_heading(self, start, headings):
        """The first line from `start` on that begins with one of the headings."""
        for number in range(start, len(self.lines)):
            if self.lines[number].startswith(headings):
                return number
        return len(self.lines)

    def chapter(self):
        at = self.next_heading(0, HEADINGS)
        introduction = self.lines[:at]
        if not any(introduction):
            self.refuse(0, "a chapter begins with a few words on its topic")
        if at == len(self.lines):
            self.refuse(at - 1, "the chapter has no case")
        cases = {}
        while at < len(self.lines):
            if self.lines[at - 1] != b"":
                self.refuse(at, "no empty line above the heading of a case")
            end = self.next_heading(at + 1, HEADINGS[:1])
            case = self.case(at, end if end == len(self.lines) else end - 1)
            if case.name in cases:
                self.refuse(at, f'a second case "{case.name}"')
            cases[case.name] = case
            at = end
        return Chapter(self.path, introduction[:-1], list(cases.values()))

    def case(self, start, end):
        """The case between two lines; `start` is its heading."""
        heading = re.fullmatch(rb"=== ([A-Za-z0-9][A-Za-z0-9._-]*)", self.lines[start])
        if not heading:
            self.refuse(start, 'the heading of a case is "=== " and a name of letters, digits, "-", "_" and "."')
        at = min(self.next_heading(start + 1, HEADINGS[1:]), end)
        case = Case(self.path.stem, heading[1].decode(), f"{self.path}:{start + 1}", heading=self.lines[start:at])
        while at < end:
            following = min(self.next_heading(at + 1, HEADINGS[1:]), end)
            section = self.section(at, following)
            try:
                add_section(case, section)
            except ValueError as error:
                self.refuse(at, str(error))
            at = following
        if case.command is None and PIECE not in case.files:
            self.refuse(start, "the case has neither a piece nor a command")
        return case

    def section(self, start, end):
        """The section between two lines; `start` is its heading."""
        heading = self.meaning(start)
        if not heading.endswith(b"\n"):
            self.refuse(start, "a heading ends in a line feed")
        words = heading[:-1].decode("utf-8", "surrogateescape")
        kind, blank, argument = words.removeprefix("--- ").partition(" ")
        if not words.startswith("--- ") or kind not in ORDER:
            self.refuse(start, f'unknown section "{self.lines[start].decode()}"')
        if blank and kind not in ("file", *ON_THE_HEADING):
            self.refuse(start, f'nothing stands behind "--- {kind}" on its line')
        if kind in ON_THE_HEADING and end > start + 1:
            self.refuse(start + 1, f'what "--- {kind}" says stands behind it on its line')
        data = b"".join(map(self.meaning, range(start + 1, end)))
        return Section(kind, argument, data, self.lines[start:end])

    def meaning(self, number):
        try:
            return meaning_of(self.lines[number])
        except ValueError as error:
            return self.refuse(number, str(error))


def read_chapter(path):
    return Reader(path).chapter()


def read_chapters(paths):
    """The chapters of files and folders. A folder without a chapter is a mistake."""
    chapters = []
    for path in map(Path, paths):
        files = sorted(path.glob("*.txt")) if path.is_dir() else [path]
        if not files:
            raise BadChapter(f"{path}: no chapter")
        chapters += [read_chapter(file) for file in files]
    return chapters


# ---- writing


def new_section(kind, argument="", data=b""):
    """A section as this module writes it. In what goes in, a line does not end in a blank that nobody sees."""
    heading = f"--- {kind} {argument}".rstrip(" ").encode("utf-8", "surrogateescape")
    if not can_stand(heading[1:]) or any(isinstance(part, tuple) for part in long_runs(heading)):
        heading = b"--- " + escaped_line(long_runs(heading.removeprefix(b"--- ")))
    lines = [heading]
    for line in lines_of(data):
        if kind in INPUTS and line.endswith((b" ", b"\t")):
            line = escaped_line([line])
        lines.append(line)
    return Section(kind, argument, data, lines)


def with_expected(case, status, expected):
    """The case with another outcome. Sections that say the same as before keep their lines."""
    wanted = {"status": (str(status), b"")} if status else {}
    wanted |= {kind: ("", data) for kind, data in expected.items()}
    sections = []
    for section in case.sections:
        argument, data = wanted.pop(section.kind, (None, None))
        if section.kind in INPUTS or (argument, data) == (section.argument, section.data):
            sections.append(section)
        elif data is not None:
            sections.append(new_section(section.kind, argument, data))
    for kind in sorted(wanted, key=ORDER.index):
        before = [i + 1 for i, other in enumerate(sections) if ORDER.index(other.kind) < ORDER.index(kind)]
        sections.insert(max(before, default=0), new_section(kind, *wanted[kind]))
    return replace(case, status=status, expected=dict(expected), sections=sections)


def write_chapter(chapter):
    """Writes a chapter into its file."""
    lines = list(chapter.introduction)
    for case in chapter.cases:
        lines += [b"", *case.heading]
        for section in case.sections:
            lines += section.lines
    chapter.path.write_bytes(b"".join(line + b"\n" for line in lines))
