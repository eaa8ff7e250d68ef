"""Random pieces that cross every feature of the input language.

    generate.py SEED [FOLDER]        writes the files of one piece into FOLDER (or prints them)

`generate(seed)` makes one `Piece`: its text, the same text cut into include files, the places where a line may be put
in without changing what the piece means, and what is known of its blocks. The same seed always makes the same piece.
Most pieces are valid; some hold one thing that is wrong. Blocks are small, so that a piece runs in a few milliseconds.

`mutate(text, rng)` damages a text the way an unlucky hand does.
"""

import random
import re
import sys
from dataclasses import dataclass, field
from pathlib import Path

GAP = "\x01"  # stands in the text, while it is made, where a whole line may be put in

CURVES = ["", "f", "e", "l", "s", "c", "E", "L", "S", "C", "F"]
DISTRIBUTIONS = ["", "", "", "f ", "l ", "h ", "t ", "g ", "x ", "b ", "L ", "H", "T ", "G", "X ", "B "]
KINDS = ["", "", "", "(in)", "(db)", "(hz)", "(op)", "(od)", "(tr)", "(bn)", "(bn3)", "(xx)", "(re)", "(re5)", "(re0)",
         "( RE7 )", "(IN)", "(Hz )", "(bn0)", "(BN7)", "(re 4)"]
WORDS = ["te(", "rd(", "rs(", "sr(", "pf(", "dv(", "RA(", "RW(", "MO(", "MS(", "SE(", "S2(", "HO(", "EX(", "T", "T*.5",
         "p2", "p3", "p4", "p5", "i1", "i-1", "re", "in", "db", "no", "nox", "op", "opx", "rh", "od", "hz", "xx", "z",
         "x2", "x", "*", "/", "//", ":", "'", ",", "<", ">", "[", "]", "(", ")", "{", "}", "#define ", "#undef ", "#const ",
         "#if(", "#if(0)\n", "#if(1)\n", "#endif", "#endif\n", "#include |", "#", "$", "~", "~[", "~@1", "~@2", "@1", "?",
         "%", "+", "-", ";", "/*", "*/", "\n", "\r\n", "\t", " ", ".", "0", "1", "4.", "-2", "200", "400", "1000.5", "1e5",
         "99999", "12345678901", "0.0000000001", ".", "=", "|", "e", "v2", "v", "dx", "sa", "\xff", "\xe9", "ra", "\f"]


@dataclass
class Piece:
    seed: int
    text: str  # the whole piece in one text
    files: dict  # name: text; "piece.txt" is the piece, the others are what it includes
    gaps: list  # offsets into `text` where a whole line may be put in between two items
    blocks: dict  # instrument: (p-fields, hidden p-fields); every instrument is used once
    broken: bool  # something was made wrong on purpose
    no_feedback: str = ""  # why the expansion file of this piece need not give the same score when it is fed back


# ---- cutting a text into include files


def neutral_places(text):
    """The offsets where the include pass is outside comments and looks at nothing but the next character."""
    places, depth, line, previous = [], 0, False, " "
    for index, character in enumerate(text):
        near = text[max(0, index - 8):index + 1]
        if depth == 0 and not line and previous not in "/*#" and character not in "/*" and "#" not in near:
            places.append(index)
        if character in ">;":
            line = previous != "/"
        elif character == "*" and previous == "/":
            depth += 1
        elif character == "/" and previous == "*" and depth:
            depth -= 1
        elif character == "\n":
            line = False
        previous = character
    return places


def split_into_includes(text, rng, most=4, first=1):
    """Cut up to `most` stretches out of the text (and again out of these), each into a file of its own."""
    files = {}

    def split(part, budget, depth):
        if "#include" in part or "#inc" in part:
            return part
        for _ in range(budget):
            places = neutral_places(part)
            lines = [p for p in places if p and part[p - 1] == "\n" or rng.random() < 0.1]
            if len(lines) < 2:
                return part
            begin, end = sorted(rng.sample(lines, 2))
            if len(files) >= most:
                return part
            name = f"part{len(files) + first}.txt"
            files[name] = ""
            inside = part[begin:end]
            if depth < 3 and rng.random() < 0.4:
                inside = split(inside, 1, depth + 1)
            files[name] = inside
            blank = rng.choice([" ", " ", "", "  ", "\n", "\t"])
            part = part[:begin] + f"#include{blank}|{name}|" + part[end:]
            return part
        return part

    main = split(text, 1, 0)
    # further cuts behind and before the first directive
    for _ in range(most - 1):
        if rng.random() < 0.5 or "#include" not in main:
            continue
        cut = main.rindex("|") + 1
        head, tail = main[:cut], main[cut:]
        main = head + split(tail, 1, 0)
    return {"piece.txt": main, **files}


# ---- damage


def mutate(text, rng, times=None):
    """Damage a text: characters deleted, doubled or replaced, words of the language put in, lines moved, the end cut."""
    for _ in range(times or rng.choice([1, 1, 1, 2, 3])):
        at = rng.randrange(len(text) + 1)
        what = rng.randrange(12)
        if what <= 1:
            text = text[:at] + text[at + rng.choice([1, 1, 1, 2, 5]):]
        elif what == 2:
            text = text[:at] + text[at:at + 1] * 2 + text[at + 1:]
        elif what <= 6:
            text = text[:at] + rng.choice(WORDS) + text[at:]
        elif what == 7:
            text = text[:at] + rng.choice(WORDS) + text[at + 1:]
        elif what == 8:
            lines = text.split("\n")
            del lines[rng.randrange(len(lines))]
            text = "\n".join(lines)
        elif what == 9:
            lines = text.split("\n")
            lines.insert(rng.randrange(len(lines) + 1), rng.choice(lines))
            text = "\n".join(lines)
        elif what == 10:
            numbers = [m for m in re.finditer(r"\d+", text)]
            if numbers:
                number = rng.choice(numbers)
                new = rng.choice(["0", "1", "-1", "2", "128", "129", "65535", "65536", "4294967296", "240.5", "1000000",
                                  ".", "", "600.5", "99999999999999999999", "0.00001"])
                text = text[:number.start()] + new + text[number.end():]
        elif rng.random() < 0.3:
            text = text[:at]
        else:
            other = rng.randrange(len(text) + 1)
            begin, end = min(at, other), max(at, other)
            text = text[:begin] + text[end:] if end - begin < 40 else text[:begin] + text[begin + 10:]
    return text


# ---- the generator


class Maker:
    def __init__(self, rng):
        self.rng = rng
        self.constants = {}  # name: value
        self.macros = {}  # name: (number of parameters, what it gives)
        self.bodies = {}
        self.condition = 0.0
        self.blocks = {}
        self.instrument = 0
        self.no_feedback = ""
        self.names = 0
        self.rhythm = False  # values are rhythms here
        self.early = True  # nothing can have filled the block yet
        self.dead = False  # inside a section that is dropped

    # -- little choices

    def chance(self, p):
        return self.rng.random() < p

    def pick(self, *options):
        return self.rng.choice(options)

    def name(self):
        self.names += 1
        return self.pick("a", "b", "note", "x", "p", "T", "loud_", "i", "te") + str(self.names) + self.pick("", "", "_q", "Z")

    def word(self):
        return self.pick("note", "it's", "100%", "p4", "i1 = 3 0 4 {", "}", "te(9)", "$gone", "~gone", "[2]", "a, b: c", "x3",
                         "#define", "#endif", ">", "<", "''", "")

    def comment(self):
        text = " ".join(self.word() for _ in range(self.rng.randrange(3)))
        kind = self.rng.randrange(6)
        if kind == 0:
            return "/*" + text.replace(">", "") + "*/"
        if kind == 1:
            return "/* " + text + "\n " + self.word().replace("#", "") + " */"
        if kind == 2:
            return "/* a /* " + text.replace("#", "") + " */ b */"
        if kind == 3:
            return "/*" + "*" * self.rng.randrange(4) + " */"
        return "; " + text.replace("/*", "") + "\n"

    def blank(self):
        """Blanks only; they may cross a line's end."""
        return self.pick(" ", " ", " ", " ", "  ", "\t", "\n", " \n  ", "", " ") or " "

    def maybe(self):
        return self.pick("", "", "", "", " ", "\t", "  ", "\n")

    def here(self):
        """Blanks, perhaps none, within the line."""
        return self.pick("", "", "", " ", "\t")

    def sep(self):
        """What the separator skipper takes: blanks, at most one comment or separator, blanks."""
        if self.rhythm:
            # a "," right behind a rhythm ties the next one to it
            return self.pick(" ", " ", "  ", "\n", " , ", "/", " / ", "\t", " /* and */ ")
        if self.chance(0.85):
            return self.pick(" ", " ", " ", ", ", ",", " , ", "/", " / ", "\n", "\t", "  ")
        comment = self.comment()
        # a separator behind a comment counts only when it stands right behind it, on the same line
        return self.pick(" ", "", "\n") + comment + (self.pick(" ", "") if comment[-1] == "\n" else
                                                     self.pick(" ", "\n", ", ", "/ "))

    def before(self, text):
        """A separator that makes no comment with what follows it."""
        sep = self.sep()
        return sep + " " if sep.endswith("/") and text.startswith("*") else sep

    def case(self, text):
        return self.pick(text, text.lower(), text.upper(), text[0].lower() + text[1:].upper())

    # -- numbers

    def plain(self, low, high):
        """A number in the range as it may be written by hand."""
        rng = self.rng
        value = rng.uniform(low, high)
        form = rng.randrange(8)
        if form <= 2 and int(value) >= low:
            text = str(int(value))
        elif form == 3:
            text = f"{value:.1f}"
        elif form == 4:
            text = f"{value:.{rng.choice([0, 4, 6, 9])}f}"
        elif form == 5 and float(int(value)) >= low:
            text = f"{int(value)}."
        else:
            text = f"{value:.2f}"
        if float(text) < low or float(text) > high:
            text = f"{value:.3f}"
        if text.startswith("0.") and text != "0." and self.chance(0.5):
            text = text[1:]
        if text.startswith("-0.") and self.chance(0.5):
            text = "-" + text[2:]
        if text[0] not in "-" and self.chance(0.03):
            text = "+" + text
        return text

    def number(self, low, high):
        """A number in the range: by hand, by a constant, an equation, a macro or what has been played so far."""
        if self.chance(0.8):
            return self.plain(low, high)
        kind = self.rng.randrange(4)
        if kind == 0:
            fitting = [n for n, v in self.constants.items() if low <= v <= high]
            if fitting:
                return "~" + self.rng.choice(fitting)
        if kind == 1:
            return self.equation(low, high)
        if kind == 2:
            fitting = [n for n, (count, gives) in self.macros.items()
                       if count == 0 and isinstance(gives, float) and low <= gives <= high]
            if fitting:
                return "$" + self.rng.choice(fitting) + self.pick("", "", "", " ", "()", "(x)")
        return self.plain(low, high)

    def equation(self, low, high):
        """An equation whose value is near the middle of the range; the range is wide enough for it as a rule."""
        value = self.rng.uniform(low, high)
        terms = self.rng.randrange(0, 4)
        text, total = self.equation_term()
        for _ in range(terms):
            operator = self.rng.choice("+-*/%")
            term, amount = self.equation_term()
            if operator in "/%" and (amount == 0 or "@" in term or term == "?"):
                operator = "+"
            if operator == "+":
                total += amount
            elif operator == "-":
                total -= amount
            elif operator == "*":
                total *= amount
            elif operator == "/":
                total /= amount
            else:
                total = total - int(total / abs(amount)) * abs(amount)
            text += self.pick(" ", "", "\t") + operator + self.pick(" ", "", " ") + term
        # the last step brings the value into the range
        change = value - total
        text += f" + {abs(change):.4f}" if change >= 0 else f" - {abs(change):.4f}"
        return "~[" + self.here() + text + self.here() + "]"

    def equation_term(self):
        rng = self.rng
        if self.constants and self.chance(0.3):
            name = rng.choice(list(self.constants))
            return name, self.constants[name]
        if self.chance(0.04):
            self.no_feedback = "a random term in an equation draws once more or once less"
            return "?", 0.5
        if self.chance(0.06):
            return self.pick("@1", "@2"), 1.0
        value = round(rng.uniform(0, 9), rng.choice([0, 1, 2]))
        return f"{value:g}", value

    def percentages(self, count):
        """Texts of fractions that add up to one."""
        if count == 1:
            return [self.pick("1", "1", "1.", "1.0", "+1", "1.000001", ".999999")]
        cuts = sorted(self.rng.sample(range(1, 100), count - 1))
        parts = [b - a for a, b in zip([0] + cuts, cuts + [100])]
        return [f".{part:02d}" if self.chance(0.8) else f"0.{part:02d}" for part in parts]

    # -- macros and constants

    def define(self):
        """One macro; returns its statement."""
        rng = self.rng
        name = self.name()
        kind = rng.randrange(9)
        gap = self.here()
        if kind <= 1:
            value = self.plain(0.1, 20)
            body, count, gives = value, 0, float(value)
        elif kind == 2:
            body, count, gives = "$a" + self.pick(" ", ",", " , ") + "$b", 2, "two numbers"
        elif kind == 3:
            body, count, gives = "RA($span 1 [$low $high])", 3, "function"
        elif kind == 4:
            body = " ".join(self.plain(1, 9) for _ in range(rng.randrange(1, 5)))
            if self.chance(0.5):
                body = body.replace(" ", "\n", 1)
            if self.chance(0.25):
                body += " ; more\n" + self.plain(1, 9)
                self.no_feedback = "the body of a macro holds a comment and a line's end"
            if self.chance(0.2):
                body += " /* odd # mark */ " + self.plain(1, 9)
            count, gives = 0, "numbers"
        elif kind == 5:
            inner = [n for n, (c, g) in self.macros.items() if c == 2 and g == "two numbers"]
            if inner:
                body = "$" + rng.choice(inner) + self.pick("($q'$q)", "($q#1)", "( $q ' 2)")
                count, gives = 1, "two numbers of one"
            else:
                body, count, gives = "", 0, "nothing"
        elif kind == 6:
            inner = [n for n, (c, g) in self.macros.items() if c == 0 and g == "numbers"]
            if inner and "comment" not in self.no_feedback:
                body, count, gives = "$" + rng.choice(inner) + " $" + rng.choice(inner), 0, "numbers"
            else:
                body, count, gives = "2 $v", 1, "number list of one"
        elif kind == 7:
            body, count, gives = "$v x3" + self.pick("", "\n"), 1, "number list of one"
        else:
            body, count, gives = "< 1 $v >", 1, "loop of one"
        parameters = {0: "", 1: "q" if "$q" in body else "v", 2: "a b", 3: "span low high"}[count].split()
        text = "#" + self.pick("define", "define", "define", "dxxxxx") + self.pick(" ", " ", "\t", "  ") + name
        if count:
            text += "(" + self.here() + self.pick(", ", ",", " , ", "' ").join(parameters) + self.here() + ")"
        elif gap == "":
            gap = " "
        if self.chance(0.06):
            gap = self.pick("\n", " /* body */ ", " ; body\n")
        text += gap + "#" + body + "#"
        if not self.dead:
            self.macros[name] = (count, gives)
            self.bodies[name] = body
        return text + self.pick("", "", "", " ", " ; defined")

    def call(self, wanted, *arguments):
        """A call of a macro that gives what is wanted, or nothing."""
        fitting = [n for n, (_, gives) in self.macros.items() if gives == wanted]
        if not fitting:
            return None
        text = "$" + self.rng.choice(fitting)
        if arguments:
            text += "(" + self.pick("'", "'", "#", " ' ").join(arguments) + ")"
        return text

    def constant(self):
        name = self.name()
        value = self.plain(self.pick(0.1, 0.1, -5), self.pick(2, 8, 20))
        if self.chance(0.2):
            value = self.equation(0.5, 9)
            number = None
        elif self.constants and self.chance(0.15):
            other = self.rng.choice(list(self.constants))
            value, number = "~" + other, self.constants[other]
        else:
            number = float(value)
        if number is not None and not self.dead:
            self.constants[name] = number
        return "#" + self.pick("const", "const", "const", "cxnzt") + self.pick(" ", "\t", "  ") + name + \
            self.pick(" ", "  ", "\t") + value + self.pick("", " ", " ; kept", " /* kept */")

    def undefine(self):
        if not self.macros:
            return None
        name = self.rng.choice(list(self.macros))
        if any("$" + name in body for body in self.bodies.values()) or self.dead:
            return None
        del self.macros[name], self.bodies[name]
        return "#" + self.pick("undef", "undef", "unzzz") + " " + name + self.pick("", " ", " ; gone")

    # -- the global area

    def tempo(self):
        rng = self.rng
        name = self.case("te") + self.maybe()
        if self.chance(0.4):
            return name + "(" + self.here() + self.number(20, 400) + self.maybe() + ")"
        start = self.pick("0", "0", self.plain(0.5, 20))
        end = self.plain(float(start), float(start) + 20) if self.chance(0.9) else start
        parts = [start, end, self.number(25, 350), self.number(25, 350)]
        if self.chance(0.6):
            parts.append(self.pick("e", "f", "l", "s", "c", "E", "C", f"v{self.plain(0.2, 3)}", "V2"))
        text = name + "(" + self.here()
        return text + self.sep().join(parts) + self.pick("", " ", "\n") + ")"

    def statement(self):
        """One statement of the global area, with what may stand behind it on its line."""
        what = self.rng.randrange(14)
        if what <= 1:
            text = self.tempo()
        elif what == 2:
            text = self.case("rd") + self.maybe() + "(" + self.maybe() + self.number(0, 0.4) + self.maybe() + ")"
        elif what <= 4:
            text = self.case("rs") + self.maybe() + "(" + self.maybe() + str(self.rng.randrange(65536)) + self.maybe() + ")"
        elif what == 5:
            text = self.case("sr") + "(" + self.pick("44100", "48000", "96000", "22050 ", " +8000", "1") + ")"
        elif what == 6:
            text = ">" + self.pick("", " ") + self.pick("f1 0 4096 10 1", "; a note" if self.dead else "; a note /* open", "", "t 0 60 # 1", "a > b < c",
                                                         "f2 0 ~[1 + 2 * 3] 7")
        elif what <= 8:
            text = self.constant()
        elif what <= 10:
            text = self.define()
        elif what == 11:
            text = self.undefine() or self.constant()
        elif what == 12:
            return self.comment() + "\n" + GAP
        else:
            return self.pick("", " ", "\t", "  ", "\r") + "\n" + GAP
        if text[0] == ">" or text.endswith(("defined", "gone", "kept")):
            return self.pick("", "", "  ") + text + "\n" + GAP
        if text[0] == "#":
            return self.pick("", "", "  ") + text + "\n" + GAP
        tail = self.pick("", "", "", " ", " ; done", " /* done */", " " + self.comment().rstrip("\n"))
        if self.chance(0.1):
            tail = " " + self.tempo()
        return self.pick("", "", " ") + text + tail + "\n" + GAP

    def section(self, inside):
        """A conditional section around what `inside` makes."""
        kind = self.rng.randrange(8)
        before = self.condition
        if kind == 0:
            text, value = "0", 0.0
        elif kind == 1:
            text, value = "0.0", 0.0
        elif kind == 2:
            text, value = "1", 1.0
        elif kind == 3:
            text, value = "0.5", 0.5
        elif kind == 4 and before == 0:
            # not a condition: the one before it holds
            text, value = self.pick("x", "-1", ".5", ""), before
        elif kind == 5 and self.constants and not self.dead:
            name = self.rng.choice(list(self.constants))
            value = self.constants[name]
            text = "~" + name
            if value < 0 and before != 0:
                text, value = "1", 1.0
            elif value < 0:
                value = before
            elif value < 0.001:
                text, value = "1", 1.0
        else:
            text, value = self.pick((" 1 ", 1.0), (" 0", 0.0), ("~[0 * 3]", 0.0), ("~[2 * 3]", 6.0))
        live = value != 0.0
        if not self.dead:
            self.condition = value
        was_dead = self.dead
        self.dead = was_dead or not live
        text = self.pick("", "", "  ", "\t") + f"#if({text})" + self.pick("", "", " ") + "\n" + GAP
        text += inside()
        self.dead = was_dead
        return text + self.pick("", "", "  ") + "#endif" + self.pick("", "", " ") + "\n" + GAP

    # -- values

    def value(self, mode, low=None, high=None):
        """The text of one value in an input mode."""
        rng = self.rng
        if mode == "re":
            return self.number(0.1 if low is None else low, 9 if high is None else high)
        if mode == "in":
            text = self.plain(1 if low is None else low, 12 if high is None else high)
            return "0" + text if text.startswith(".") else text.replace("-.", "-0.")
        if mode == "db":
            return self.plain(0, 96)
        if mode == "rh":
            text = self.pick("", "", "", "", "-", "+") + rng.choice(["1", "2", "4", "8", "16", "3", "5", "12"])
            text += self.pick("", "", "", ".", "..")
            if self.chance(0.15):
                text += self.pick(",", ", ") + rng.choice(["4", "8", "16."])
            return text
        if mode in ("no", "nox"):
            if self.chance(0.08):
                return "r"
            text = rng.choice("cdefgab") + self.pick("", "", "s", "f", "n", "s", "ss", "sf")
            if mode == "nox" and self.chance(0.5):
                text += self.pick("+", "-")
            return text + self.pick("", "", str(rng.randrange(10)), str(rng.randrange(3, 7)))
        text = self.pick("", "", "", "", "+", "-") + str(rng.randrange(4, 11)) + "."
        return text + self.pick("", "00", "01", "07", "11", "065", "1")

    def values(self, mode, count):
        """A list in brackets or one value."""
        if count == 1 and self.chance(0.5):
            return self.value(mode)
        pair = self.call("two numbers", self.plain(1, 9), self.plain(1, 9)) if mode in ("re", "in") else None
        inside = [self.value(mode) for _ in range(count)]
        if pair and self.chance(0.2):
            inside.append(pair)
        text = inside[0]
        for item in inside[1:]:
            text += self.sep() + item
        return "[" + self.pick("", "", " ", "\n") + text + self.pick("", "", " ", "\n") + "]"

    def range(self, mode, low, high):
        if self.chance(0.2):
            return self.value(mode, low, high)
        count = self.pick(1, 2, 2, 2, 2)
        notes = mode in ("no", "nox")  # whose first letter would be taken for a distribution
        text = "[" + self.here() + (self.pick("f ", "t ", "g ") if notes else self.rng.choice(DISTRIBUTIONS))
        text += self.value(mode, low, high)
        if count == 2:
            text += self.sep() + self.value(mode, low, high)
        return text + self.here() + "]"

    def curve(self, beats):
        text = self.rng.choice(CURVES)
        if self.chance(0.15):
            text = self.pick("v", "V") + self.plain(0.2, 4)
        if beats and self.chance(0.4):
            text += self.pick("*", " *")
        return text

    def span(self, block):
        """The text of a span, and whether it is a positive number of beats."""
        kind = self.rng.randrange(10)
        if kind <= 3:
            return "T", not block["events"]
        if kind <= 5:
            return "T*" + self.pick(".5", ".25", "0.3", "1", "1.5", ".34"), not block["events"]
        if kind <= 7:
            return self.number(0.5, block["size"] * 0.7 + 0.5), True
        return "-" + self.plain(1, max(2, block["size"] * 0.7)).lstrip("+"), False

    def open(self, names, span):
        name = self.rng.choice(names)
        return self.case(name) + self.maybe() + "(" + self.maybe() + span + self.sep()

    def function(self, block, number, mode, low, high):
        """One call of a data function."""
        self.rhythm = mode == "rh"
        text = self.function_call(block, number, mode, low, high)
        self.rhythm = False
        return text

    def function_call(self, block, number, mode, low, high):
        rng = self.rng
        span, beats = self.span(block)
        names = ["RA", "RA", "RA", "RW", "MO", "MO", "MS", "SE", "SE", "HO"]
        if number >= 3:
            names += ["EX"] * (2 if block["given"] else 0)
        if number >= 4:
            names += ["S2", "S2"]
        name = rng.choice(names)
        close = self.pick("", "", " ", "\n") + ")"
        if name == "HO":
            return self.open(["HO"], span) + self.value(mode, low, high) + close
        call = self.call("function", span, self.plain(0.5, 2), self.plain(2, 3)) if mode == "re" else None
        if call and self.chance(0.3):
            return call
        segments = []
        shares = self.percentages(self.pick(1, 1, 1, 2, 2, 3, 5))
        refer = False
        for share in shares:
            if name == "RA":
                text = self.range(mode, low, high)
            elif name == "RW":
                a, b = sorted(rng.uniform(0.2, 9) for _ in range(2))
                if mode in ("no", "nox"):
                    text = "[c3 c6] " + self.plain(0.05, 1) + " " + self.pick("c4", "fs5")
                elif mode == "rh":
                    text = "8 2 " + self.plain(0.05, 1) + " 4"
                elif mode in ("op", "opx"):
                    text = "[7.00 9.00]" + self.plain(0.05, 1) + " 8.05"
                elif mode == "db":
                    text = "[40 80] .3 60"
                else:
                    a, b = (f"{x:.1f}" if mode == "re" else str(int(x) + 1) for x in (a, b + 1))
                    text = self.pick("[%s %s]", "%s %s", "[ %s, %s ]") % (a, b) + " " + \
                        self.pick(self.plain(0, 1), "1", "0", ".5", ".1") + self.sep() + self.pick(a, b, a)
                    if text.count(" ") and self.chance(0.1):
                        text = self.pick("%s %s", "[%s %s]") % (b, a) + " .2 " + a
            elif name == "MO":
                text = self.curve(beats) + " " + self.range(mode, low, high) + self.sep() + self.range(mode, low, high)
            elif name == "MS":
                text = self.curve(beats) + " " + self.values(mode, rng.randrange(1, 5)) + self.sep() + \
                    self.values(mode, rng.randrange(1, 5))
            elif name == "SE":
                text = self.pick("", "", "*", "x", "* ", "x ") + self.values(mode, rng.randrange(1, 6))
            elif name == "S2":
                groups = []
                for _ in range(rng.randrange(1, 5)):
                    groups.append(self.pick(":", "'").join(self.value(mode) for _ in range(rng.choice([1, 1, 2, 3]))))
                text = self.pick("", "", "*", "x")
                text += groups[0] if len(groups) == 1 and self.chance(0.5) else "[" + self.here() + \
                    self.pick(" ", "  ", "\n", " /* or */ ", "/", " , ").join(groups) + self.here() + "]"
            else:
                text = self.expression(block, number, refer)
                refer = True
            segments.append(share + (" " if text[:1].isdigit() or text[:1] in ".+-" else self.before(text)) + text)
        return self.open([name], span) + self.sep().join(segments) + close

    def expression(self, block, number, refer):
        rng = self.rng
        others = [p for p in block["given"] if p != number]
        reference = lambda: ("P" if self.chance(0.5) or not self.early else "p") + str(rng.choice(others))
        text = self.pick("", "", "", "F ", "i ", "I", "f")
        if text and self.chance(0.2):
            text += self.pick(" ", ", ")
        if self.chance(0.3):
            return text + reference()
        terms = [reference() if self.chance(0.5) else self.number(0.5, 9) for _ in range(rng.randrange(1, 5))]
        if not refer and not any(term[0] in "pP" for term in terms):
            terms[rng.randrange(len(terms))] = reference()
        equation = terms[0]
        for term in terms[1:]:
            operators = "+-*%" if term[0] in "pP" and self.chance(0.9) else "+-*/%"
            equation += self.here() + rng.choice(operators) + self.here() + term
        return text + "[" + self.here() + equation + self.here() + "]"

    # -- p-fields

    def pfield(self, block, number):
        """One p-field: its specifier and its items, a line here and there between them."""
        rng = self.rng
        kinds = KINDS if number >= 4 else ["", "", "", "(re)", "(re4)", "(re0)", "(RE7)"]
        kind = rng.choice(kinds)
        if kind.lower() == "(xx)":
            block["hidden"] += 1
        kind = kind.replace("(re 4)", "(re)")
        text = f"p{number}" + self.pick("", " ", "  ") + kind + self.pick(" ", " ", "\n", "\t")
        modes = ["re", "re", "in", "rh"] if number == 2 else ["re", "re", "in"] if number == 3 else \
            ["re", "re", "in", "db", "no", "nox", "op", "opx", "rh"]
        if kind.lower() in ("(hz)", "(op)", "(od)", "(bn3)", "(bn)") and self.chance(0.7):
            modes = ["no", "nox", "op"]
        mode = rng.choice(modes)
        low, high = {2: (0.1, 1.5), 3: (0.1, 2)}.get(number, (-3 if self.chance(0.2) else 0.1, 9))
        if number == 3 and self.chance(0.4):
            low, high = self.pick((200, 201), (300, 301), (400, 402), (1000, 1002), (-1, 2), (0, 1))
        if number == 2 and block["events"] and self.chance(0.2):
            low = 0
        if number == 2 and mode == "in":
            low, high = 1, 2
        if mode != "re" or self.chance(0.2):
            word = self.case(mode)
            if word.lower() == "re" and self.chance(0.3):
                word += str(rng.randrange(8))
            text += word + " "
        marked = looping = False
        first = self.early = True
        for _ in range(rng.choice([1, 1, 2, 2, 3, 4, 6])):
            kind = rng.randrange(20)
            item = ""
            if kind <= 6:
                item = self.value(mode, low, high)
            elif kind <= 12:
                item = self.function(block, number, mode, low, high)
            elif kind == 13 and not first:
                item = self.pick("/", "//", "/ /", "x2", "x3", "x1", " x4")
            elif kind == 14 and not looping:
                count = rng.randrange(1, 4)
                inner = [self.value(mode, low, high) if self.chance(0.7) else self.function(block, number, mode, low, high)
                         for _ in range(count)]
                if not marked and count > 1 and self.chance(0.2):
                    marked = True
                    inner.insert(rng.randrange(1, count), ":")
                item = "<" + self.pick("", " ") + " ".join(inner) + self.pick("", " ") + ">"
                looping = True
                if self.chance(0.05):
                    item = item[:-1]
            elif kind == 15 and not first and not marked:
                marked = True
                item = self.pick(":", "'", ": ", " ' ") + self.value(mode, low, high)
            elif kind == 16:
                item = self.pick(self.case("rd") + "(" + self.number(0, 0.5) + ")", self.case("dv") + "(.1)",
                                 self.case("rs") + f"({rng.randrange(65536)})",
                                 self.case("pf") + "(" + self.pick("2", ".5", "-1", "1", "0") + ")" if number > 2 else "")
                text += item + self.pick(" ", "\n" + GAP)
                item = self.value(mode, low, high)
            elif kind == 17 and mode == "re":
                item = self.call("numbers") or self.call("number list of one", self.plain(1, 2)) or \
                    ("" if looping else self.call("loop of one", self.plain(1, 2))) or ""
                if "$" in item and "loop" in str(self.macros.get(item[1:].split("(")[0], "")):
                    looping = True
            elif kind == 18:
                new = rng.choice(modes)
                if mode == "no" and new in ("no", "nox") or rng.random() < 0.5:
                    mode = new
                    text += self.case(mode) + " "
                item = self.value(mode, low, high)
            else:
                item = self.pick("", "z") if mode in ("re", "rh", "db") and not first else self.value(mode, low, high)
            if not item:
                continue
            first = self.early = False
            text += item
            # what separates two items: "," right behind a rhythm would tie it to the next one
            if self.chance(0.2):
                text += self.pick(" ", "\n") + self.comment() + self.pick(" ", "\n")
                if text.endswith("\n") and self.chance(0.7):
                    text += GAP
            else:
                text += self.pick(" ", " ", " ", "  ", "\n", "\n" + GAP, "\t", " , " if mode == "rh" else ", ")
            if self.chance(0.02):
                text = text.rstrip(" \t,") + "\n" + GAP + self.section(lambda: self.value(mode, low, high) + "\n" + GAP)
        if first:
            text += self.value(mode, low, high)
        return text.rstrip(GAP) + self.pick(" ", "\n", "\n", "\n")

    def block(self):
        rng = self.rng
        if not self.dead:
            self.instrument += 1
        number = self.instrument + (90 if self.dead else 0)
        fields = rng.choice([3, 4, 5, 5, 6, 7, 9])
        events = self.chance(0.45)
        size = rng.randrange(1, 40) if events else rng.uniform(0.5, 12)
        block = {"events": events, "size": size, "given": [], "hidden": 0}
        sign = ""
        if self.chance(0.03):
            sign = "-"
        text = self.pick("", "", "  ") + "i" + self.pick("", "", " ", "\n") + sign + str(number) + self.maybe() + "=" + \
            self.maybe() + str(fields) + self.sep() + self.pick("0", "0", self.number(0, 6)) + self.sep()
        if self.chance(0.1):
            text += self.sep()
        text += "-" + str(size) if events else self.number(size, size + 0.5)
        text += self.pick(" ", "", "\n", self.sep()) + "{" + self.pick(" ", "\n", "\n", "\n" + GAP, " ; opens\n")
        if self.chance(0.15):
            text += self.pick("", "  ") + self.pick("rs(%d)" % rng.randrange(65536), "rd(.1)", "RS(3) rd(0)") + "\n"
        order = list(range(3, fields + 1))
        if self.chance(0.3):
            rng.shuffle(order)
        for p in [2] + order:
            if text.endswith("\n") and self.chance(0.6):
                text += GAP + self.pick("", "  ", "\t")
            text += self.pfield(block, p)
            if not text.endswith(("\n", " ")):
                text += " "
            block["given"].append(p)
        if not self.dead and not sign:
            self.blocks[number] = (fields, block["hidden"])
        return text + "}" + self.pick("", "", "", " ignored i9 = te(", " ; done", "  ") + "\n" + GAP

    def piece(self):
        parts = [self.pick("", "", "; a piece\n", "\n") + GAP]
        for _ in range(self.rng.randrange(5)):
            parts.append(self.statement() if self.chance(0.9) else self.section(self.statement))
        for _ in range(self.rng.choice([1, 1, 1, 2, 2, 3])):
            parts.append(self.block() if self.chance(0.92) else self.section(self.block))
            for _ in range(self.rng.choice([0, 0, 1, 1, 2, 4])):
                parts.append(self.statement() if self.chance(0.85) else
                             self.section(lambda: self.statement() + self.section(self.statement) + self.statement()))
        return "".join(parts)


def generate(seed):
    rng = random.Random(seed)
    maker = Maker(rng)
    marked = maker.piece()
    if rng.random() < 0.1:
        # the last line without its end
        marked = marked.rstrip(GAP).rstrip("\n")
    if rng.random() < 0.05:
        marked = marked.replace("\n", "\r\n")
    text, gaps = "", []
    for part in marked.split(GAP):
        text += part
        if text.endswith("\n"):
            gaps.append(len(text))
    # a line at the very end may move the end of the input to another state
    gaps = [gap for gap in gaps if text[gap:].strip()]
    broken = rng.random() < 0.12
    if broken:
        text, gaps = mutate(text, rng, 1), []
    files = {"piece.txt": text}
    if not broken and rng.random() < 0.3:
        files = split_into_includes(text, rng)
    return Piece(seed, text, files, gaps, maker.blocks, broken, maker.no_feedback)


def write(piece_files, folder):
    for name, text in piece_files.items():
        (Path(folder) / name).write_bytes(text.encode("latin-1"))


def main():
    piece = generate(int(sys.argv[1]))
    if len(sys.argv) > 2:
        Path(sys.argv[2]).mkdir(parents=True, exist_ok=True)
        write(piece.files, sys.argv[2])
    else:
        for name, text in piece.files.items():
            print(f"==== {name}\n{text}")


if __name__ == "__main__":
    main()
