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

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

KORVO = None

OUT_OF_MEMORY = "Yikes, out of memory!"
DEVIATION = "Format DV/RD(f): f = real number >= 0 and < 100 (1 = 100%)"
OUT_OF_BOUNDS = "Value out of bounds or syntax error."
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


def expanded_in_a_run(definition, call, per_line, each):
    """Makes pieces whose expansions go through so many characters: calls of `each` characters, and one for the rest."""
    def make(count):
        calls, rest = divmod(count - 2, each)  # "$r" itself is two of them
        lines, more = divmod(calls, per_line)
        full = ">" + call * per_line + "\n"
        return f"{definition}\n#define r #{'b' * rest}#\n" + full * lines + ">" + call * more + "\n>$r\n"
    return make


def references_of_a_run(count):
    """So many expansions, the last 500 of which are constant references. They alone do not get there: each inserts five
    characters at least, and those have a limit of their own."""
    return expansions_of_a_run(count - 500) + "#const a 1\n>" + "~a" * 500 + "\n"


# A call and what takes its place count; a body with parameters counts as it is defined and with its arguments.
CALLS = expanded_in_a_run(f"#define m #{'b' * 4000}#", "$m", 1, 2 + 4000)
CALLS_WITH_ARGUMENTS = expanded_in_a_run(
    f"#define m(x) #$x{'.' * 2000}#", "$m(1)", 2, len("$m(1)") + 2002 + 2001 + len("$x") + 1)
REFERENCES = expanded_in_a_run(f"#const a 5{'0' * 195}", "~a", 20, 2 + 200)  # a point and three decimals


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


def segments(name, rest):
    """A call of so many segments; `rest` is what stands in one behind its share."""
    return lambda count: block(f"p4 {name}(T 1 {rest}\n" + f"0 {rest}\n" * (count - 1) + ")")


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
    ("expansions in a run, references too", lengths(references_of_a_run, 16777216), OUT_OF_MEMORY),
    ("characters expanded in a run", lengths(CALLS, 67108864), OUT_OF_MEMORY),
    ("characters expanded in a run with arguments", lengths(CALLS_WITH_ARGUMENTS, 67108864), OUT_OF_MEMORY),
    ("characters expanded in a run by references", lengths(REFERENCES, 67108864), OUT_OF_MEMORY),
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
    ("segments of RA", lengths(segments("RA", "1"), 128), OUT_OF_MEMORY),
    ("segments of RW", lengths(segments("RW", "[0 1] .5 0"), 128), OUT_OF_MEMORY),
    ("segments of MO", lengths(segments("MO", "1 2"), 128), OUT_OF_MEMORY),
    ("segments of MS", lengths(segments("MS", "1 2"), 128), OUT_OF_MEMORY),
    ("segments of SE", lengths(segments("SE", "1"), 128), OUT_OF_MEMORY),
    ("segments of S2", lengths(segments("S2", "1"), 128), OUT_OF_MEMORY),
    ("segments of EX", lengths(segments("EX", "p2"), 128), OUT_OF_MEMORY),
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
    ("lowest instrument number", values("i@ = 3 0 -1 { p2 1 p3 1 }\n", "-2147483647", "-2147483648", "-2147483649"),
     "Bad i-number."),
    ("p-field number", values("i1 = 3 0 -1 { p2 1 p@ 1 }\n", "03", "3", "4"),
     "P-field out of bounds! (More than specified in i-header)"),
    ("seed", values("rs(@)\n", "65534", "65535", "65536"), "Format RS(ui): ui = UNSIGNED INT (0-65535)."),
    ("lowest seed", values("rs(@)\n", "1", "0", "-1"), "Format RS(ui): ui = UNSIGNED INT (0-65535)."),
    ("deviation", values("rd(@)\n", "99.99", "100", "100.01"), DEVIATION),
    ("lowest deviation", values("rd(@)\n", ".01", "0", "-.01"), DEVIATION),
    ("deviation of a p-field", values(block("p4 dv(@) 1"), "99.99", "100", "100.01"), DEVIATION),
    ("lowest deviation of a p-field", values(block("p4 dv(@) 1"), ".01", "0", "-.01"), DEVIATION),
    ("tempo", values("te(@)\n", "3999.9", "4000", "4000.1"), "Format te(f): f = real number."),
    ("slowest tempo", values("te(@)\n", "1.01", "1", ".99"), "Format te(f): f = real number."),
    ("start of a tempo change", values("te(@ 10000 60 60)\n", "9999.9", "10000", "10000.1"),
     '"te" term1 (start time), out of range.'),
    ("earliest start of a tempo change", values("te(@ 10000 60 60)\n", ".1", "0", "-.1"),
     '"te" term1 (start time), out of range.'),
    ("end of a tempo change", values("te(1 @ 60 60)\n", "9999.9", "10000", "10000.1"),
     '"te" term2 (end time), out of range.'),
    ("earliest end of a tempo change", values("te(0 @ 60 60)\n", ".1", "0", "-.1"),
     '"te" term2 (end time), out of range.'),
    ("end of a tempo change, and its start", values("te(10 @ 60 60)\n", "10.1", "10", "9.9"),
     '"te" term1 and term2 (times), are backwards!'),
    ("first tempo of a change", values("te(1 2 @ 60)\n", "3999.9", "4000", "4000.1"),
     '"te" term3 (start tempo), out of range.'),
    ("second tempo of a change", values("te(1 2 60 @)\n", "3999.9", "4000", "4000.1"),
     '"te" term4 (end tempo), out of range.'),
    ("slowest first tempo of a change", values("te(1 2 @ 60)\n", "1.01", "1", ".99"),
     '"te" term3 (start tempo), out of range.'),
    ("slowest second tempo of a change", values("te(1 2 60 @)\n", "1.01", "1", ".99"),
     '"te" term4 (end tempo), out of range.'),
    ("decimals of an output", values(block("p4(re@) 1"), "6", "7", "8"),
     "Invalid output specifier or precision out of range."),
    ("FFT size", values(block("p4(bn@) 1"), "6", "7", "8"), "Invalid output specifier or precision out of range."),
    ("decibels", values(block("p4 db @"), "95.9", "96", "96.1"), OUT_OF_BOUNDS),
    ("lowest decibels", values(block("p4 db @"), ".1", "0", "-.1"), OUT_OF_BOUNDS),
    ("octave of a note", values(block("p4 no c@"), "8", "9", "10"), OUT_OF_BOUNDS),
    ("lowest octave of a note", values(block("p4 no c@"), "1", "0", "-1"), OUT_OF_BOUNDS),
    ("octave of a pitch", values(block("p4 op @.00"), "32766", "32767", "32768"), OUT_OF_BOUNDS),
    ("lowest octave of a pitch", values(block("p4 op @.00"), "-32767", "-32768", "-32769"), OUT_OF_BOUNDS),
    ("note length", values(block().replace("p2 1", "p2 rh @"), "32766", "32767", "32768"),
     OUT_OF_BOUNDS),
    ("lowest note length", values(block().replace("p2 1", "p2 rh @"), "-32767", "-32768", "-32769"), OUT_OF_BOUNDS),
    ("note length near 0", values(block().replace("p2 1", "p2 rh @"), "2", "1", "0"), OUT_OF_BOUNDS),
    ("note length of a rest near 0", values(block().replace("p2 1", "p2 rh @"), "-2", "-1", "-0"), OUT_OF_BOUNDS),
    ("values of a range", values(block("p4 RA(T 1 [@])"), "1", "1 2", "1 2 3"), "A maximum of two values expected."),
    ("marks in a p-field", values(block("p4 @ 1"), "1 2", "1 : 2", "1 : 2 : 3"), "Multiple ':'s!"),
    ("real number", values(block("p4 @"), *(n + "0" * 37 for n in ("33", "34", "35"))),
     OUT_OF_BOUNDS),
    ("window of a walk", values(block("p4 RW(T 1 [0 1] @ 0)"), ".99", "1", "1.01"),
     "RW command: Window % value out of range (must be 0-1)."),
    ("smallest window of a walk", values(block("p4 RW(T 1 [0 1] @ 0)"), ".01", "0", "-.01"),
     "RW command: Window % value out of range (must be 0-1)."),
]


def run_to_score(text):
    with tempfile.TemporaryDirectory(prefix="korvo-limits-") as folder:
        (Path(folder) / "piece.txt").write_text(text)
        (Path(folder) / "part.txt").write_text("")
        result = subprocess.run([KORVO, "-s", "piece.txt", "piece.sco"], cwd=folder, capture_output=True,
                                timeout=clock.HANG)
        return result.returncode, result.stderr.decode(), (Path(folder) / "piece.sco").read_text()


def run(text):
    status, messages, _ = run_to_score(text)
    return status, messages


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

    def check_last_column(self, text, expected):
        status, messages, score = run_to_score(text)
        self.assertEqual(status, 0, messages[-300:])
        events = [line.split() for line in score.splitlines() if line.startswith("i1 ")]
        self.assertEqual([event[-1] for event in events], [expected] * 4)

    def test_a_sample_rate_wraps(self):
        """A bin is the frequency, 16.35159783 x 2^(pitch / 12), by the sample rate over 16384. 2^64 - 1 and one less
        are 2^64 as a single, which makes bins 2^50 wide. 2^64 is 0: an infinite bin, shown as the highest number."""
        for rate, pitch, expected in (
            ("18446744073709551614", 600, "16"),  # 16.35 x 2^50
            ("18446744073709551615", 600, "16"),
            ("18446744073709551616", 600, "9223372036854775807"),
            ("18446744073709568000", 48, "262"),  # 2^64 + 16384: bins 1 wide, 261.63
        ):
            with self.subTest(rate=rate):
                self.check_last_column(f"sr({rate})\n" + block(f"p4(bn6) {pitch}"), expected)

    def test_the_tenth_decimal_is_wrong(self):
        """The digits are gathered in a single and divided by a power of ten that wraps at 32 bits. Ten digits make
        1234567936, and 10^10 is 1410065408 then."""
        for number, expected in (
            (".12345678", "0.1234568"),
            (".123456789", "0.1234568"),
            (".1234567891", "0.8755395"),
        ):
            with self.subTest(number=number):
                self.check_last_column(block(f"p4(re7) {number}"), expected)

    def test_a_negative_instrument_is_skipped(self):
        for number, events in (("-2147483648", 0), ("-1", 0), ("0", 1), ("2147483647", 1)):
            status, messages, score = run_to_score(f"i{number} = 3 0 -1 {{ p2 1 p3 1 }}\n")
            self.assertEqual(status, 0, messages[-300:])
            self.assertEqual(score.count(f"\ni{number} "), events, score)

    def test_events_of_a_block(self):
        """Counted for each block anew; many more than fit into one piece of memory."""
        status, messages = run(block(events=1000000) * 2)
        self.assertEqual(status, 0, messages[-300:])
        self.assertIn("1000000 events generated in block #2 (i1).", messages)


if __name__ == "__main__":
    KORVO = os.path.abspath(sys.argv.pop(1))
    unittest.main()
