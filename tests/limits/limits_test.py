#!/usr/bin/env python3
"""Every limit of docs/limits.md: one below and at it a piece runs, one above it ends with the message that is stated.
The two that take gigabytes are in large_limits_test.py.

    limits_test.py KORVO_BINARY
"""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

KORVO = None

OUT_OF_MEMORY = "Yikes, out of memory!"
TERMS = 'Illegal number of terms or operations in"const" equation.'


def block(pfields="", events=4):
    """A block of three p-fields, or of four with what is given as the fourth."""
    count = 4 if pfields else 3
    return f"i1 = {count} 0 -{events} {{\np2 1\np3 1\n{pfields}\n}}\n"


def words(count, word="1", per_line=1000):
    """`count` words, broken into lines."""
    lines = [" ".join([word] * min(per_line, count - i)) for i in range(0, count, per_line)]
    return "\n".join(lines)


def line_of(length):
    """A literal line of so many characters, its line end included, and one behind it."""
    return ">" + "b" * (length - 2) + "\n>c\n"


def expanded_line(length):
    return "#define m #" + "b" * 4000 + "#\n>$m" + "." * (length - 4002) + "\n"


def body(length):
    """A macro with a body of so many characters, over two lines; the line end is one of them."""
    return "#define m #" + "b" * 4000 + "\n" + "c" * (length - 4002) + "#\n"  # 4000, a blank, a line end, the rest


def expansions(count):
    """A line with so many calls: four of a macro of a thousand, the rest one by one."""
    calls = 4 * 1001
    return "#define e ##\n#define m #" + "$e" * 1000 + "#\n>$m$m$m$m" + "$e" * (count - calls) + "\n"


def expansions_of_a_run(count):
    """So many calls, few enough in a line."""
    lines, rest = divmod(count, 2001)
    return "#define e ##\n#define m #" + "$e" * 2000 + "#\n" + ">$m\n" * lines + ">" + "$e" * rest + "\n"


def insertions_of_a_run(count):
    """Calls that insert so many characters."""
    lines, rest = divmod(count, 4000)
    return f"#define m #{'b' * 4000}#\n#define r #{'b' * rest}#\n" + ">$m\n" * lines + ">$r\n"


def nesting(depth):
    """Macros that call one another in their bodies."""
    lines = [f"#define d{i}(x) # $d{i + 1}(1)#" for i in range(1, depth)]
    return "\n".join(lines) + f"\n#define d{depth}(x) #1#\n> $d1(1)\n"


def parameter_name(length):
    """A name that goes on in the next line, where its line is cut at 4095 characters."""
    return "#define m(" + "a" * length + ") #1#\n"


def includes(count):
    return "#include |part.txt|\n" * count


def include_name(length):
    return "#include |" + "./" * ((length - 8) // 2) + ("/" if length % 2 else "") + "part.txt|\n"


def tempo_definitions(count):
    """So many definitions, the first of which is that of beat 0."""
    return "te(60)\n" + "".join(f"te({i} {i} 60 60)\n" for i in range(1, count))


def equation(values):
    return ">~[" + "+".join(["1"] * values) + "]\n"


def segments(count):
    return block("p4 SE(T 1 1\n" + "0 1\n" * (count - 1) + ")")


def standing(events):
    """So many events in a row that do not move the clock of a block of ten beats."""
    return f"i1 = 3 0 10 {{ p2 HO(-{events} 0) 1 p3 1 }}\n"


def values(template, *numbers):
    return [template.replace("@", n) for n in numbers]


def lengths(make, at):
    return [make(at - 1), make(at), make(at + 1)]


# What it is called, the pieces (below, at, above), what the one above says.
LIMITS = [
    ("line", lengths(line_of, 4095), None),
    ("line after expansion", lengths(expanded_line, 4095), OUT_OF_MEMORY),
    ("macro body", lengths(body, 4095), "The macro body has exceeded the maximum number\nof characters allowed (4096)."),
    ("macro name", [f"#define \n{'a' * n}\n#1#\n" for n in (4094, 4095, 4096)], "Macro body must be enclosed in #s"),
    ("constant name", [f"#const \n{'a' * n}\n1\n" for n in (4094, 4095, 4096)],
     "Expecting a digit or decimal point in floating-point number."),
    ("parameter name", lengths(parameter_name, 4095),
     "The macro name has exceeded the maximum number\nof characters allowed (4096)."),
    ("macro parameters", lengths(lambda n: "#define m(" + " ".join(f"a{i}" for i in range(n)) + ") #1#\n", 128),
     OUT_OF_MEMORY),
    ("macro arguments", [
        f"#define m({' '.join(f'a{i}' for i in range(n))}) #$a0#\n> $m({chr(39).join(['1'] * given)})\n"
        for n, given in ((127, 127), (128, 128), (128, 129))],
     "Stray \"'\" found -- too many macro arguments in call?"),
    ("expansions in a line", lengths(expansions, 4096), OUT_OF_MEMORY),
    ("expansions in a run", lengths(expansions_of_a_run, 16777216), OUT_OF_MEMORY),
    ("characters inserted in a run", lengths(insertions_of_a_run, 67108864), OUT_OF_MEMORY),
    ("nesting of calls", lengths(nesting, 64), OUT_OF_MEMORY),
    ("values of an equation", lengths(equation, 30), TERMS),
    ("include files", lengths(includes, 11), "Too many embedded include files! (Max = 12)"),
    ("include name", lengths(include_name, 255), "Include filename has exceeded maximum\nlength of 255 characters."),
    ("tempo definitions", lengths(tempo_definitions, 50), OUT_OF_MEMORY),
    ("p-fields", lengths(
        lambda n: f"i1 = {n} 0 -1 {{ p2 1 p3 1 " + " ".join(f"p{i} 1" for i in range(4, min(n, 128) + 1)) + " }\n", 128),
     "ERROR: Bad number of p-fields (3 - 128)"),
    ("fewest p-fields", [f"i1 = {n} 0 -1 {{ p2 1 p3 1 {'p4 1' if n > 3 else ''} }}\n" for n in (4, 3, 2)],
     "ERROR: Bad number of p-fields (3 - 128)"),
    ("segments of a call", lengths(segments, 128), OUT_OF_MEMORY),
    ("values of an SE list", lengths(lambda n: block(f"p4 SE(T 1 * [{words(n)}])"), 65536),
     "Value missing in []s, bad input type, or out of bounds"),
    ("values of the first MS list", lengths(lambda n: block(f"p4 MS(T 1 [{words(n)}] [1])"), 65536),
     "Value missing in []s, bad input type, or out of bounds"),
    ("values of the second MS list", lengths(lambda n: block(f"p4 MS(T 1 [1] [{words(n)}])"), 65536),
     "Value missing in []s, bad input type, or out of bounds"),
    ("groups of an S2 segment", lengths(lambda n: block(f"p4 S2(T 1 [{words(n)}])"), 65536),
     "Value missing in []s, bad input type, or out of bounds"),
    ("values of an S2 segment", lengths(lambda n: block(f"p4 S2(T 1 [{words(n // 2, '1:2')} {'1 ' * (n % 2)}])"), 65536),
     "Value missing in []s, bad input type, or out of bounds"),
    ("events that stand still", lengths(standing, 65536), "Must specify EVENTS when using a start interval of 0."),
    ("length in beats", values("i1 = 3 0 @ { p2 5000 p3 1 }\n", "9999.999", "10000", "10000.001"),
     "Maximum number of beats = 10000.000000"),
    ("instrument number", values("i@ = 3 0 -1 { p2 1 p3 1 }\n", "2147483646", "2147483647", "2147483648"),
     "Bad i-number."),
    ("p-field number", values("i1 = 3 0 -1 { p2 1 p@ 1 }\n", "03", "3", "4"),
     "P-field out of bounds! (More than specified in i-header)"),
    ("seed", values("rs(@)\n", "65534", "65535", "65536"), "Format RS(ui): ui = UNSIGNED INT (0-65535)."),
    ("deviation", values("rd(@)\n", "99.99", "100", "100.01"),
     "Format DV/RD(f): f = real number >= 0 and < 100 (1 = 100%)"),
    ("tempo", values("te(@)\n", "3999.9", "4000", "4000.1"), "Format te(f): f = real number."),
    ("slowest tempo", values("te(@)\n", "1.01", "1", ".99"), "Format te(f): f = real number."),
    ("start of a tempo change", values("te(@ 10000 60 60)\n", "9999.9", "10000", "10000.1"),
     '"te" term1 (start time), out of range.'),
    ("end of a tempo change", values("te(1 @ 60 60)\n", "9999.9", "10000", "10000.1"),
     '"te" term2 (end time), out of range.'),
    ("first tempo of a change", values("te(1 2 @ 60)\n", "3999.9", "4000", "4000.1"),
     '"te" term3 (start tempo), out of range.'),
    ("second tempo of a change", values("te(1 2 60 @)\n", "3999.9", "4000", "4000.1"),
     '"te" term4 (end tempo), out of range.'),
    ("decimals of an output", values(block("p4(re@) 1"), "6", "7", "8"),
     "Invalid output specifier or precision out of range."),
    ("FFT size", values(block("p4(bn@) 1"), "6", "7", "8"), "Invalid output specifier or precision out of range."),
    ("decibels", values(block("p4 db @"), "95.9", "96", "96.1"), "Value out of bounds or syntax error."),
    ("octave of a note", values(block("p4 no c@"), "8", "9", "10"), "Value out of bounds or syntax error."),
    ("octave of a pitch", values(block("p4 op @.00"), "32766", "32767", "32768"), "Value out of bounds or syntax error."),
    ("note length", values(block().replace("p2 1", "p2 rh @"), "32766", "32767", "32768"),
     "Value out of bounds or syntax error."),
    ("values of a range", values(block("p4 RA(T 1 [@])"), "1", "1 2", "1 2 3"), "A maximum of two values expected."),
    ("marks in a p-field", values(block("p4 @ 1"), "1 2", "1 : 2", "1 : 2 : 3"), "Multiple ':'s!"),
    ("real number", values(block("p4 @"), *(n + "0" * 37 for n in ("33", "34", "35"))),
     "Value out of bounds or syntax error."),
    ("window of a walk", values(block("p4 RW(T 1 [0 1] @ 0)"), ".99", "1", "1.01"),
     "RW command: Window % value out of range (must be 0-1)."),
]


def run(text):
    with tempfile.TemporaryDirectory(prefix="korvo-limits-") as folder:
        (Path(folder) / "piece.txt").write_text(text)
        (Path(folder) / "part.txt").write_text("")
        result = subprocess.run([KORVO, "-s", "piece.txt", "piece.sco"], cwd=folder, capture_output=True, timeout=300)
        return result.returncode, result.stderr.decode()


class Limits(unittest.TestCase):
    def test_limits(self):
        for name, pieces, message in LIMITS:
            for place, piece in zip(("below", "at", "above"), pieces):
                with self.subTest(limit=name, place=place):
                    status, messages = run(piece)
                    if place == "above" and message is not None:
                        self.assertEqual(status, 1, messages[-300:])
                        self.assertIn(message, messages)
                    else:
                        self.assertEqual(status, 0, messages[-300:])

    def test_a_longer_line_is_two(self):
        """One above the length of a line nothing fails: the rest is a line of its own."""
        for length, lines in ((4094, 1), (4095, 1), (4096, 1), (4097, 2)):
            # At 4096 it is the line end that is left for the second line; at 4097 a letter, which is no statement.
            status, messages = run(line_of(length))
            if lines == 1:
                self.assertEqual(status, 0, messages[-200:])
            else:
                self.assertIn("ERROR: Line 2: Invalid G-block command or character.", messages)

    def test_no_limit(self):
        """What has none: names, sections, comments, terms of an expression, blocks, repeats."""
        for piece in (
            "".join(f"#define a{i} #1#\n#const b{i} 1\n" for i in range(20000)),
            "#if(1)\n" * 20000 + "#endif\n" * 20000,
            "/*\n" * 20000 + "*/\n" * 20000,
            block("p4 EX(T 1 [p2\n" + words(20000, "+1") + "\n])"),
            block() * 2000,
            block("p4 1 x18446744073709551615"),
        ):
            status, messages = run(piece)
            self.assertEqual(status, 0, messages[-300:])

    def test_events_of_a_block(self):
        """Counted for each block anew; many more than fit into one piece of memory."""
        status, messages = run(block(events=1000000) * 2)
        self.assertEqual(status, 0, messages[-300:])
        self.assertIn("1000000 events generated in block #2 (i1).", messages)


if __name__ == "__main__":
    KORVO = os.path.abspath(sys.argv.pop(1))
    unittest.main()
