"""Random pieces that cross every feature of the input language.

    generate.py SEED [FOLDER]        writes the files of one piece into FOLDER (or prints them)

`generate(seed)` makes one `Piece`: its text, the same text cut into include files, the places where a line may be put
in without changing what the piece means, and what is known of its blocks. The same seed always makes the same piece.
Most pieces are valid; some hold one thing that is wrong, some a macro that calls itself without end. Blocks are small,
so that a piece runs in a few milliseconds; about one piece in five hundred holds a block of as many events as fill a
chunk of the event list, or of more.

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
KINDS = ["", "", "", "(in)", "(db)", "(hz)", "(op)", "(od)", "(tr)", "(bn)", "(xx)", "(re)", "( RE7 )", "(IN)", "(Hz )",
         "(re 4)", "(re%d)", "(Re%d)", "(bn%d)", "(BN%d)"]  # with a digit from 0 to 7 for "%d"
TEMPO_CURVES = ["e", "f", "l", "s", "c", "E", "F", "L", "S", "C", "v", "V"]
LINE = 4095  # the characters of a line, its line feed included, that are read at once
CHUNK = 16384  # the events that the event list holds in one chunk
FILES = 12  # the files that one run may read, the piece itself included
WORDS = ["te(", "rd(", "rs(", "sr(", "pf(", "dv(", "RA(", "RW(", "MO(", "MS(", "SE(", "S2(", "HO(", "EX(", "T", "T*.5",
         "p2", "p3", "p4", "p5", "i1", "i-1", "re", "in", "db", "no", "nox", "op", "opx", "rh", "od", "hz", "xx", "z",
         "x2", "x", "*", "/", "//", ":", "'", ",", "<", ">", "[", "]", "(", ")", "{", "}", "#define ", "#undef ", "#const ",
         "#if(", "#if(0)\n", "#if(1)\n", "#endif", "#endif\n", "#include |", "#", "$", "~", "~[", "~@1", "~@2", "@1", "?",
         "%", "+", "-", ";", "/*", "*/", "\n", "\r\n", "\t", " ", ".", "0", "1", "4.", "-2", "200", "400", "1000.5", "1e5",
         "99999", "12345678901", "0.0000000001", ".", "=", "|", "e", "v2", "v", "dx", "sa", "\xff", "\xe9", "ra", "\f",
         "\v", "\0", "\x80", "\xa0", "dx(", "dx(1)", "~@3", "~@4", "p0 ", "p1 1 ", " : >", " > :", "#if(1\n", "#if(0\n",
         "\n#if(2 x)\n", ".000001 ", ".00000001", "i1 = 3 100 2 {"]


@dataclass
class Piece:
    seed: int
    text: str  # the whole piece in one text
    files: dict  # name: text; "piece.txt" is the piece, the others are what it includes
    gaps: list  # offsets into `text` where a whole line may be put in between two items
    blocks: dict  # instrument: (p-fields, hidden p-fields); blocks of one instrument have the same text
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


def include_name(number, rng):
    """The name of an include file, and how a directive writes it: a line feed in it does not count."""
    name = rng.choice(["part{}.txt"] * 12 + ["part {}.txt", " part{}", "part{} ", "./part{}.txt"]).format(number)
    written = name
    if rng.random() < 0.06:
        at = rng.randrange(len(name) + 1)
        written = name[:at] + rng.choice(["\n", "\n", "\n\n"]) + name[at:]
    return name, written


def split_into_includes(text, rng):
    """Cut stretches out of the text (and again out of these), each into a file of its own, now and then as many as one
    run may read; a stretch that the text holds twice may become one file that is included twice."""
    most = 4 if rng.random() < 0.9 else rng.randrange(5, FILES)
    files, directives = {}, []

    def directive(written):
        directives.append("#include" + rng.choice([" ", " ", "", "  ", "\n", "\t"]) + "|" + written + "|")
        return directives[-1]

    def split(part, depth):
        if "#inc" in part or len(directives) + depth >= most:
            return part
        places = neutral_places(part)
        lines = [p for p in places if p and part[p - 1] == "\n" or rng.random() < 0.1]
        if len(lines) < 2:
            return part
        begin, end = sorted(rng.sample(lines, 2))
        name, written = include_name(len(files) + 1, rng)
        files[name] = ""
        inside = part[begin:end]
        if depth < 3 and rng.random() < (0.4 if most == 4 else 0.7):
            inside = split(inside, depth + 1)
        files[name] = inside
        return part[:begin] + directive(written) + part[end:]

    def split_twice(part):
        """One file for a stretch of whole lines that the part holds twice."""
        neutral = set(neutral_places(part))
        lines = sorted(p for p in neutral if p == 0 or part[p - 1] == "\n")
        known = {}
        for begin, end in zip(lines, lines[1:]):
            known.setdefault(part[begin:end], []).append(begin)
        twice = [(stretch, places) for stretch, places in known.items() if len(places) > 1]
        if not twice:
            return part
        stretch, places = max(twice, key=lambda item: len(item[0]))
        name, written = include_name(len(files) + 1, rng)
        files[name] = stretch
        for place in reversed(places[-3:]):
            part = part[:place] + directive(written) + part[place + len(stretch):]
        return part

    if rng.random() < 0.08 and "#inc" not in text:
        main = split_twice(text)
    else:
        main = split(text, 0)
    # further cuts behind the last directive
    for _ in range(most - 1):
        if "#include" not in main or rng.random() < (0.5 if most == 4 else 0.1):
            continue
        cut = main.rindex("|") + 1
        main = main[:cut] + split(main[cut:], 0)
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
        self.plainly = False  # inside a macro's body: no comment that lasts to the line's end, no number sign
        self.free = False  # a value here may be anything
        self.played = False  # there was a block
        self.endless = []  # calls that end the run

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
        if self.plainly:
            return self.pick("/* so */", "/**/", "/* a, 'b'\n\n */")
        text = " ".join(self.word() for _ in range(self.rng.randrange(3)))
        if self.chance(0.01):
            text += self.pick("\xe9t\xe9", "\x80\xfe\xff", " \xa0", "\f", "\v ")
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
        """A number in the range: by hand, by a constant, an equation or a macro."""
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
        text = self.plain(low, high)
        return self.call("the argument", text) or text if kind == 3 else text

    def run_value(self):
        """What has been played so far: seconds or beats, of the last block or of all."""
        return "~@" + self.pick("1", "2", "3", "4")

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
        kind = rng.randrange(9) if self.chance(0.75) else rng.randrange(9, 14)
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
        elif kind == 8:
            body, count, gives = "< 1 $v >", 1, "loop of one"
        elif kind == 9:
            body, count, gives = "$v", 1, "the argument"
        elif kind == 10:
            a, b = rng.randrange(1, 9), rng.randrange(1, 4)
            body, count, gives = f"~[{a} * {b}]", 0, float(a * b)
        elif kind == 11:
            body = self.pick("\n", " ", "\n \n").join(
                self.pick(self.case("rd") + "(.1)", "rd(0)", self.case("rs") + f"({rng.randrange(65536)})", "rs(\n7\n)")
                for _ in range(rng.randrange(1, 4)))
            count, gives = 0, "settings"
        elif kind == 12:
            body = self.pick("", " ", "\n") + "te(" + self.pick("90", "120.5\n", "0, 8, 60, 90", "2,9,80,\n120,S") + ")"
            body += self.pick("", "\n", " rd(.05)")
            count, gives = 0, "tempo"
        else:
            return self.list_macro()
        parameters = {0: "", 1: "q" if "$q" in body else "v", 2: "a b", 3: "span low high"}[count].split()
        return self.definition(self.name(), parameters, body, gives)

    def list_macro(self):
        """A macro with many parameters, rarely as many as there may be, rarely one too many."""
        count = self.pick(128, 128, 129) if self.chance(0.03) else self.rng.randrange(4, 14)
        parameters = [self.pick("a", "v", "P", "q_") + str(number) for number in range(count)]
        used = [self.rng.choice(parameters) for _ in range(self.rng.randrange(1, 9))] + parameters[-1:]
        body = used[0]
        for parameter in used[1:]:
            body += self.pick(" $", " $", ", $", " x2 $", "\n$", " / $") + parameter
        return self.definition(self.name(), parameters, "$" + body, ("list", count))

    def definition(self, name, parameters, body, gives):
        """The statement that defines a macro."""
        gap = self.here()
        text = "#" + self.pick("define", "define", "define", "dxxxxx") + self.pick(" ", " ", "\t", "  ") + name
        if parameters:
            between = self.pick(", ", ",", " , ", "' ", ",\n  " if len(parameters) > 3 else ", ")
            text += "(" + self.here() + between.join(parameters) + self.here() + ")"
        elif gap == "":
            gap = " "
        if self.chance(0.06):
            gap = self.pick("\n", " /* body */ ", " ; body\n")
        text += gap + "#" + body + "#"
        if not self.dead:
            self.macros[name] = (len(parameters), gives)
            self.bodies[name] = body
        return text + self.pick("", "", "", " ", " ; defined")

    def made_macro(self, text, gives):
        """What stands for a text that becomes a macro's body, perhaps of several lines: the statement and the call."""
        name = self.name()
        body = text.replace(GAP, "")
        return self.definition(name, [], body, gives) + "\n" + GAP, "$" + name

    def recursion(self):
        """Macros that call themselves or one another; a call of one ends the run."""
        one, other = self.name(), self.name()
        value = self.plain(1, 9)
        bodies, call = self.pick(
            ([("", "$" + one)], "$" + one),
            ([("", value + " $" + one)], "$" + one),
            ([("", f"${one} ${one}")], f"${one}({value})"),
            ([("(v)", f"${one}($v)")], f"${one}({value})"),
            ([("(v)", f"$v ${one}($v 1) $v")], f"${one}({value})"),
            ([("(v)", "$v")], f"${one}($v)"),
            ([("(v)", "1 $v")], f"${one}(${one}({value}))"),
            ([("", "$" + other), ("", "$" + one)], "$" + one),
            ([("", value + "\n$" + other), ("", f"( ${one}")], "$" + one),
            ([("(v)", f"$v ${other}($v)"), ("(w)", f"${one}(1 $w)")], f"${one}({value})"))
        text = "".join(f"#define {name}{parameters} #{body}#\n" + GAP
                       for name, (parameters, body) in zip((one, other), bodies))
        if not self.dead:
            self.endless.append(call)
        if self.chance(0.5):
            text += self.pick("", " ", "  ")
            text += self.pick(call, f"te({call})", f"> {call}", f"i{call} = 3", f"#if({call})\n#endif") + "\n" + GAP
        return text

    def call(self, wanted, *arguments):
        """A call of a macro that gives what is wanted, or nothing."""
        fitting = [n for n, (_, gives) in self.macros.items() if gives == wanted]
        if not fitting or self.dead:
            return None
        text = "$" + self.rng.choice(fitting)
        if arguments:
            text += "(" + self.pick("'", "'", "'" if self.plainly else "#", " ' ").join(arguments) + ")"
        return text

    def list_call(self):
        """A call of a macro with many parameters, or nothing."""
        fitting = [(n, count) for n, (count, gives) in self.macros.items() if gives == ("list", count)]
        if not fitting or self.dead:
            return None
        name, count = self.rng.choice(fitting)
        return f"${name}(" + self.pick("'", " ' ", "'" if self.plainly else "#").join(
            self.plain(1, 9) for _ in range(count)) + ")"

    def constant(self):
        name = self.name()
        value = self.plain(self.pick(0.1, 0.1, -5), self.pick(2, 8, 20))
        if self.chance(0.2):
            value = self.equation(0.5, 9)
            number = None
        elif self.constants and self.chance(0.15):
            other = self.rng.choice(list(self.constants))
            value, number = "~" + other, self.constants[other]
        elif self.chance(0.1):
            value, number = self.run_value(), None
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
            curve = self.rng.choice(TEMPO_CURVES)
            parts.append(curve + self.plain(0.2, 3) if curve in "vV" else curve)
        text = name + "(" + self.here()
        return text + self.sep().join(parts) + self.pick("", " ", "\n") + ")"

    def statement(self):
        """One statement of the global area, with what may stand behind it on its line."""
        if self.chance(0.002):
            return self.recursion()
        if self.chance(0.005):
            return self.long_line()
        what = self.rng.randrange(14)
        if what <= 1:
            text = self.tempo()
        elif what <= 4 and self.chance(0.15):
            text = self.call("settings") or self.call("tempo") or "rd (0)"
        elif what == 2:
            text = self.case("rd") + self.maybe() + "(" + self.maybe() + self.number(0, 0.4) + self.maybe() + ")"
        elif what <= 4:
            text = self.case("rs") + self.maybe() + "(" + self.maybe() + str(self.rng.randrange(65536)) + self.maybe() + ")"
        elif what == 5:
            text = self.case("sr") + "(" + self.pick("44100", "48000", "96000", "22050 ", " +8000", "1") + ")"
        elif what == 6:
            text = ">" + self.pick("", " ") + self.pick(
                "f1 0 4096 10 1", "; a note" if self.dead else "; a note /* open", "", "t 0 60 # 1", "a > b < c",
                "f2 0 ~[1 + 2 * 3] 7", "f3 0 ~@1 ~@2 ~@3 ~@4", "\xe9t\xe9 \xff \x80\f.", self.list_call() or "f4")
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

    def long_line(self):
        """A line of about so many characters as are read at once; where it is longer, blanks are left as a rule."""
        rng = self.rng
        length = self.length()
        kind = rng.randrange(8)
        if kind == 0:
            text = " " * (length - 1)
        elif kind <= 2:
            text = self.pick("; ", "> f1 0 ", "; it's # ") + self.pick("x", "1 ", "}") * rng.randrange(500, 2000)
            text = text[:min(length - 1, LINE)].ljust(length - 1)
        elif kind <= 4:
            text = "/*" + self.pick(" ", "x", "* ", ". ") * length
            text = text[:length - 3] + "*/"
        elif kind == 5:
            text = self.pick("te(90)", "rs(7)", "rd( .1)", "#const long" + self.name() + " 7").rjust(length - 1)
        else:
            # a little more or less when expanded
            grows = [text for text in ["$" + name for name, (count, gives) in self.macros.items() if count == 0] +
                     ["~" + name for name in self.constants] if not self.dead]
            text = "> " + "x" * max(0, length - 20 - rng.randrange(8)) + rng.choice(grows + ["~[1 + 1]", "~@1"])
        return text + "\n" + GAP

    def length(self):
        """The length of a long line, its line feed included."""
        return self.rng.choice([LINE - 1, LINE, LINE + 1, LINE + 2, self.rng.randrange(LINE - 90, LINE + 15), 2 * LINE,
                                2 * LINE + 1, 5000])

    def section(self, inside):
        """A conditional section around what `inside` makes."""
        kind = self.rng.randrange(8)
        before = self.condition
        special = self.special_condition() if self.chance(0.15) else None
        if special:
            text, value = special
        elif kind == 0:
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

    def special_condition(self):
        """A condition by a macro or by what has been played, and its value; or nothing."""
        kind = self.rng.randrange(6)
        numbers = [n for n, (count, gives) in self.macros.items() if count == 0 and isinstance(gives, float)]
        if kind <= 1 and numbers and not self.dead:
            name = self.rng.choice(numbers)
            well = self.bodies[name][0] in "~0123456789"  # a sign or a point is no condition
            return self.pick("", " ") + "$" + name + self.pick("", " ", "()", "( x )"), \
                self.macros[name][1] if well else self.condition
        if kind <= 3:
            value = self.pick("0", "1", "0.25", "00", "3.")
            text = self.call("the argument", value)
            return (text + self.pick("", " "), float(value)) if text else None
        if kind == 4:
            return self.pick(("~[@2 + 1]", 1.0), ("~[@1 * 0]", 0.0)) if self.played else (self.run_value(), 0.0)
        # not found, which is said but no error: the condition before it holds; so does it where a macro calls itself
        return self.rng.choice(["$gone", "~gone", "$gone(1)"] + self.endless), self.condition

    # -- values

    def value(self, mode, low=None, high=None):
        """The text of one value in an input mode."""
        rng = self.rng
        if mode == "re" and self.free and self.chance(0.004):
            return self.run_value()
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
        if name == "EX" and self.chance(0.15):
            # the other name of EX is a name only where the bracket stands on the same line
            return self.case("dx") + self.here() + "(" + self.maybe() + span + self.sep()
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
        self.free = number >= 4
        kinds = KINDS if number >= 4 else ["", "", "", "(re)", "(re%d)", "(RE%d)"]
        kind = rng.choice(kinds)
        if "%" in kind:
            kind %= rng.randrange(8)
        if kind.lower() == "(xx)":
            block["hidden"] += 1
        kind = kind.replace("(re 4)", "(re)")
        text = f"p{number}" + self.pick("", " ", "  ") + kind + self.pick(" ", " ", "\n", "\t")
        modes = ["re", "re", "in", "rh"] if number == 2 else ["re", "re", "in"] if number == 3 else \
            ["re", "re", "in", "db", "no", "nox", "op", "opx", "rh"]
        if kind.lower()[:3] in ("(hz", "(op", "(od", "(bn") and self.chance(0.7):
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
            if mode == "re" and self.chance(0.04):
                text += (self.list_call() or "") + " "
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
                item = self.chance(0.2) and self.call("settings") or self.pick(
                    self.case("rd") + "(" + self.number(0, 0.5) + ")", self.case("dv") + "(.1)",
                    self.case("rs") + f"({rng.randrange(65536)})",
                    self.case("pf") + "(" + self.pick("2", ".5", "-1", "1", "0") + ")" if number > 2 else "")
                text += item + self.pick(" ", "\n" + GAP)
                item = self.value(mode, low, high)
            elif kind == 17 and self.endless and not self.dead and self.chance(0.3):
                item = rng.choice(self.endless)
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
            if self.chance(0.001):
                item = self.value(mode, low, high)
                text = text.rstrip(" \t,") + "\n" + item.rjust(self.length() - 1) + "\n"
            if self.chance(0.02) and not self.plainly:
                text = text.rstrip(" \t,") + "\n" + GAP + self.section(lambda: self.value(mode, low, high) + "\n" + GAP)
        if first:
            text += self.value(mode, low, high)
        return text.rstrip(GAP) + self.pick(" ", "\n", "\n", "\n")

    def block(self):
        definitions, text = self.block_parts()
        return definitions + text

    def block_parts(self, start=None):
        """A block, and the definitions of macros that stand before it for parts of it."""
        rng = self.rng
        if not self.dead:
            self.instrument += 1
        number = self.instrument + (90 if self.dead else 0)
        fields = rng.choice([3, 4, 5, 5, 6, 7, 9])
        if self.chance(0.02):
            fields = rng.choice([10, 12, 14, 20, 50, 51, 64, 128])
        events = self.chance(0.45)
        size = rng.randrange(1, 40) if events else rng.uniform(0.5, 12)
        if self.chance(0.03):
            size *= rng.choice([5, 5, 20, 50])
        block = {"events": events, "size": size, "given": [], "hidden": 0}
        definitions = []

        def perhaps_called(text):
            """A number of the header, rarely by a macro."""
            if self.dead or self.plainly or self.chance(0.95):
                return text
            call = self.call("the argument", text)
            if call and self.chance(0.5):
                return call
            statement, call = self.made_macro(text, float(text))
            definitions.append(statement)
            return call

        sign = "-" if self.chance(0.03) else ""
        text = self.pick("", "", "  ") + "i" + self.pick("", "", " ", "\n") + perhaps_called(sign + str(number))
        if sign and self.chance(0.3):
            return "".join(definitions), text + self.nothing()
        text += self.maybe() + "=" + self.maybe() + perhaps_called(str(fields)) + self.sep()
        text += (start or self.start()) + self.sep()
        if self.chance(0.1):
            text += self.sep()
        text += "-" + str(size) if events else self.number(size, size + 0.5)
        text += self.pick(" ", "", "\n", self.sep()) + "{" + \
            self.pick(" ", "\n", "\n", "\n" + GAP, " " if self.plainly else " ; opens\n")
        if self.chance(0.15):
            text += self.pick("", "  ") + (self.chance(0.4) and self.call("settings") or
                                           self.pick("rs(%d)" % rng.randrange(65536), "rd(.1)", "RS(3) rd(0)")) + "\n"
        order = list(range(3, fields + 1))
        if self.chance(0.3):
            rng.shuffle(order)
        for p in [2] + order:
            if text.endswith("\n") and self.chance(0.6):
                text += GAP + self.pick("", "  ", "\t")
            if not self.plainly and self.chance(0.02):
                text = text.rstrip(" \t" + GAP)
                text += ("" if text.endswith("\n") else "\n") + GAP
                dropped = []

                def whole_field():
                    dropped.append(self.dead)
                    field = self.pfield(dict(block) if self.dead else block, p)
                    return field.rstrip(" " + GAP) + "\n" + GAP

                text += self.section(whole_field)
                if not dropped[0] or self.dead:
                    block["given"].append(p)
                    continue
            if fields > 20 and self.chance(0.9):
                plain = p == 2 or self.chance(0.7)
                text += f"p{p} " + (self.number(0.1, 1.5) if plain else self.function(block, p, "re", 1, 9))
            elif not self.plainly and not self.dead and self.chance(0.02):
                self.plainly = True
                statement, call = self.made_macro(self.pfield(block, p), "a p-field")
                self.plainly = False
                definitions.append(statement)
                text += call
            else:
                text += self.pfield(block, p)
            if not text.endswith(("\n", " ")):
                text += " "
            block["given"].append(p)
        if not self.dead and not sign:
            self.blocks[number] = (fields, block["hidden"])
        self.played = self.played or not self.dead
        return "".join(definitions), text + "}" + \
            self.pick("", "", "", " ignored i9 = te(", "" if self.plainly else " ; done", "  ") + "\n" + GAP

    def start(self):
        """The start of a block in seconds."""
        if self.chance(0.94):
            return self.pick("0", "0", self.number(0, 6))
        if self.chance(0.5):
            return self.pick("240", "240.5", "241", "600.25", "3600", "9999.5", "86400", "1000000")
        return self.pick("~@1", "~@2", "~@2", "~@3", "~@4", "~[@2 + 1]")

    def nothing(self):
        """What is passed over behind a negative instrument number."""
        text = self.pick("", " =", "= 5 0 4 {")
        text += self.pick(" p2 RA(T", " 'x' [", "\n te(q)\np1", " { /* } */ ; }\n", "\xe9")
        return text + self.pick(" }", "\n}", "\n} ignored") + "\n" + GAP

    def block_macro(self):
        """A block that is a macro's body, sometimes called again."""
        self.plainly, given = True, self.chance(0.3)
        definitions, text = self.block_parts("$at" if given else None)
        self.plainly = False
        name = self.name()
        body = text.replace(GAP, "").rstrip("\n")
        if len(body) > LINE - 50:
            # no line would hold it
            return definitions + text.replace("$at", "0")
        if self.chance(0.1):
            body += self.pick("\n te(90)", "\nrd(0)", "\n?\n")
            self.no_feedback = "what a macro's body holds on the lines behind a block is not read"
        text = definitions + self.definition(name, ["at"] if given else [], body, "a block") + "\n" + GAP
        for _ in range(self.pick(1, 1, 2)):
            text += self.pick("", "", "  ") + "$" + name + ("(" + self.start() + ")" if given else "") + \
                self.pick("", "", " ; and on", " ") + "\n" + GAP
        return text

    def large_block(self):
        """A block with about as many events as a chunk of the event list holds, made of what is worked out quickly."""
        self.instrument += 1
        fields = self.pick(3, 4, 4, 5)
        count = CHUNK + self.pick(-1, 0, 1, 1, 2, 100) if self.chance(0.9) else 2 * CHUNK + self.pick(-1, 0, 1)
        in_beats = self.chance(0.3)
        size = str(count * 0.25) if in_beats else f"-{count}"
        text = f"i{self.instrument} = {fields} 0 {size} {{\n" + GAP
        text += "p2 " + (".25" if in_beats else self.pick("1", ".5", "RA(T 1 .5)", "< 1 : .5 2 >")) + "\n" + GAP
        text += "p3 " + self.pick(".5", "1", "RA(T 1 [.5 1])", "< 1 1 -1 1 >", "1 : .5") + "\n" + GAP
        if fields > 3:
            groups = f"S2(-{count - 3} 1 [1:2 3])"
            text += "p4 " + self.pick("1", "RA(T 1 [1 9])", "< 1 : 2 3 4 5 >", groups) + "\n" + GAP
        if fields > 4:
            text += "p5(in) " + self.pick("60", "EX(T 1 [p3 * 2])", "z : 61") + "\n" + GAP
        self.blocks[self.instrument] = (fields, 0)
        self.played = True
        return text + "}\n" + GAP

    def piece(self):
        parts = [self.pick("", "", "; a piece\n", "\n") + GAP]
        for _ in range(self.rng.randrange(5)):
            parts.append(self.statement() if self.chance(0.9) else self.section(self.statement))
        if self.chance(0.002):
            parts.append(self.large_block())
        for _ in range(self.rng.choice([1, 1, 1, 2, 2, 3])):
            parts.append(self.whole_block())
            for _ in range(self.rng.choice([0, 0, 1, 1, 2, 4])):
                parts.append(self.statement() if self.chance(0.85) else
                             self.section(lambda: self.statement() + self.section(self.statement) + self.statement()))
            if self.chance(0.04):
                # once more what stood there before
                said = [part for part in parts if not re.search("#d|#c|#u", part) and part.strip(GAP + "\n")]
                parts += said[-1:] * self.pick(1, 1, 2)
        return "".join(parts)

    def whole_block(self):
        if self.chance(0.03):
            return self.block_macro()
        return self.block() if self.chance(0.92) else self.section(self.block)


def strange(marked, rng):
    """Put in what an editor seldom does: zero bytes, behind which a line is not read, and other blanks than usual."""
    if rng.random() < 0.04:
        ends = [m.start() for m in re.finditer("\n" + GAP, marked)]
        for at in sorted(rng.sample(ends, min(len(ends), rng.choice([1, 1, 2, 5]))), reverse=True):
            rest = rng.choice(["", "", "junk", "9 } {", "\0\0", " te(", "; x", "\xff\xfe"])
            marked = marked[:at] + "\0" + rest + marked[at:]
    if rng.random() < 0.06:
        # in an equation they are not blanks
        blanks = [m.start() for m in re.finditer(" ", re.sub(r"~\[[^\]]*\]", lambda m: "~" * len(m[0]), marked))]
        for at in rng.sample(blanks, min(len(blanks), rng.choice([1, 2, 5]))):
            marked = marked[:at] + rng.choice("\f\v\xff") + marked[at + 1:]
    return marked


def generate(seed):
    rng = random.Random(seed)
    maker = Maker(rng)
    marked = strange(maker.piece(), rng)
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
