#!/usr/bin/env python3
"""No piece of a megabyte costs more than a hundred yardsticks or a gigabyte, unless it asks for that many events.

    cost_test.py [--measure] KORVO_BINARY [PIECE...]

Each piece is a megabyte of one thing that could be slow; the dearest cost about a fifth of what is allowed. ../clock.py
has the yardstick. With --measure nothing is checked: cost, memory and the number of message bytes are printed. What the
pieces print goes into a pipe that is only counted.
"""

import itertools
import os
import string
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

MEGABYTE = 1 << 20
MOST_YARDSTICKS = 100
MOST_BYTES = 1 << 30


def fill(text, begin="", end=""):
    """`text` as often as it takes to make a megabyte, between `begin` and `end`."""
    times = (MEGABYTE - len(begin) - len(end)) // len(text)
    return begin + text * times + end


def count_up(line, begin="", end=""):
    """Lines with a running number for %d up to a megabyte."""
    lines, size, i = [begin], len(begin) + len(end), 0
    while True:
        text = line.replace("%d", str(i))
        size += len(text)
        if size > MEGABYTE:
            return "".join(lines) + end
        lines.append(text)
        i += 1


def lines_of(items, width=4000):
    """Items with a blank between them, broken into lines."""
    lines, line, size = [], [], 0
    for item in items:
        if size + len(item) + 1 > width:
            lines.append(" ".join(line))
            line, size = [], 0
        line.append(item)
        size += len(item) + 1
    lines.append(" ".join(line))
    return "\n".join(lines)


BLOCK = "i1 = 4 0 -%d { p2 1 p3 1 p4 "


def from_macro(text, begin="", end=""):
    """A macro as long as it gets, called as often as fits."""
    return fill("$m\n", begin + "#define m #" + text * (4090 // len(text)) + "#\n", end)


LIST = lines_of([str(i % 10) for i in range(65536)])
EMPTY_CALLS = "#define e ##\n#define m #" + "$e" * 2000 + "#\n"


def names_of_one_chain(count):
    """Names that a plain 32-bit FNV-1a hash takes for one another in its low 16 bits."""
    prime, letters = 16777619, string.ascii_letters
    inverse = pow(prime, -1, 1 << 16)
    ends = {0: [""]}  # by the state that a name's last three letters lead to 0 from
    for _ in range(3):
        longer = {}
        for state, texts in ends.items():
            for c in letters:
                longer.setdefault((state * inverse & 0xFFFF) ^ ord(c), []).extend(c + text for text in texts)
        ends = longer
    names = []
    for begin in itertools.product(letters, repeat=3):
        state = 2166136261 & 0xFFFF
        for c in begin:
            state = (state ^ ord(c)) * prime & 0xFFFF
        names += ["".join(begin) + end for end in ends.get(state, [])]
        if len(names) >= count:
            return names[:count]
    raise AssertionError("too few names")


def pieces_with_names():
    long_name = "n" * 3990
    yield "a long name in a macro", fill(
        ">$q\n", f"#define {long_name} ##\n#define m(x) #${long_name}#\n#define q #" + "$m(1)" * 780 + "#\n")
    parameters = "".join("x" * 3000 + f"{i:03d}\n" for i in range(128))
    yield "long parameters", fill(
        ">$m\n", f"#define f(\n{parameters}) ##\n#define m #" + ("$f(" + "'" * 127 + ")") * 31 + "#\n")
    yield "parentheses that are swallowed", fill(
        ">$m\n", "#define e ##\n#define f(x) #$e(" + "y" * 4080 + ")#\n#define m #" + "$f(1)" * 815 + "#\n")
    names = names_of_one_chain(30000)
    defined = "".join(f"#define {name} ##\n" for name in names)
    yield "macros of one chain", fill(">$m\n", f"{defined}#define m #" + f"${names[0]}" * 581 + "#\n")
    yield "constants of one chain", fill(
        ">" + f"~{names[0]} " * 500 + "\n", "".join(f"#const {name} 1\n" for name in names))


def pieces_with_includes():
    """Most of the megabyte in a file that is included as often as a run may: piece and include."""
    eleven = "#include |part.txt|\n" * 11
    yield "warnings, included", eleven, fill("rd(2)" * 818 + "\n")
    yield "divisions, included", f"{BLOCK % 1}EX(1 1 [p2\n{eleven}]) }}\n", fill("/p3" * 1363 + "\n")
    tempos = "".join(f"te({i} {i + 1} 1111 1111 v3{'0' * 38})\n" for i in range(2, 51))
    yield "tempo listings of skipped blocks, included", tempos + eleven, fill("i-1{}\n", tempos)[len(tempos):]
    yield "references, included", "#const a 1\n" + eleven, fill(">" + "~a " * 600 + "\n")
    yield "seeds, included", eleven, fill("rs(1)" * 818 + "\n")


def pieces():
    yield "nothing but blanks", fill(" ")
    yield "one line of digits", fill("1", "i1 = 3 0 ")
    yield "empty lines", fill("\n")
    yield "nested comments", fill("/*") + "\n"
    yield "nested comments, closed", "/*" * 250000 + "\n" + "*/" * 250000 + "\n"
    yield "comments before an item", fill("/* */ ", "i1 = 3 0 1 { p2 ")
    yield "zero bytes", fill("\0")
    yield "bytes above 127", fill("\xff\xfe")
    yield "literal lines", fill(">\n")
    yield "macros", count_up("#define a%d #$b#\n")
    yield "macros defined and forgotten", fill("#define a #1#\n#undef a\n", "#define b #1#\n")
    yield "macro with a body that is used up", fill("$m\n", "#define m #" + " " * 4080 + "#\n")
    yield "calls of an empty macro", fill(">" + "$e" * 2000 + "\n", "#define e ##\n")
    yield "calls of a macro of empty calls", fill(">$m\n", EMPTY_CALLS)
    yield "calls with arguments in arguments", fill(
        ">$f(1)\n", "#define e(x) #$x#\n#define f(x) #" + " $e($x)" * 500 + "#\n")
    yield "calls with 128 arguments", fill(
        ">$f(" + "'".join(["1"] * 128) + ")\n",
        "#define f(" + " ".join(f"a{i}" for i in range(128)) + ") #" + " ".join(f"$a{i}" for i in range(128)) + "#\n",
    )
    yield "constants", count_up("#const a%d 1\n")
    yield "references to a constant", fill(">" + "~a " * 600 + "\n", "#const a 1\n")
    yield "references in a macro", fill("$m\n", "#const a 1\n#define m #>" + "~a" * 700 + "#\n")
    yield "equations", fill(">~[1+1]\n")
    yield "equations with a large remainder", fill(">~[99999999999999999999999999999999999999%.0001%.001]\n")
    yield "draws in equations", fill(">~[?+?+?+?+?+?+?+?+?+?+?+?+?+?+?+?+?+?+?+?]\n")
    yield "sections", fill("#if(1)\n#endif\n")
    yield "open sections", fill("#if(1)\n")
    yield "dropped sections", fill("#if(0)\n#endif\n")
    yield "nested dropped sections", fill("#if(", "#if(0)\n")
    yield "tempo definitions", fill("te(0 9 60 70)\n")
    yield "deviations with a warning", fill("rd(2)")
    yield "deviations with a warning, from a macro", from_macro("rd(2)")
    yield "deviations, from a macro", from_macro("rd(1)")
    yield "seeds", fill("rs(1)")
    yield "seeds, from a macro", from_macro("rs(1)")
    yield "tempos that conflict, from a macro", from_macro("te(9)", "".join(
        f"te({i} {i + 3} 99 99)\n" for i in range(0, 98, 2)))
    yield "fast tempos", fill("te(0 9 999 999)")
    yield "blocks", fill("i1=3 0-1{p2 1p3 1}\n")
    yield "skipped blocks", fill("i-1{}\n")
    yield "blocks of 128 p-fields", fill(
        "i1=128 0-1{p2 1p3 1" + "".join(f"p{i} 1" for i in range(4, 129)) + "}\n")
    yield "values behind the end", fill("1 ", BLOCK % 1, "}")
    yield "values", fill("1 ", BLOCK % 1000000, "}")
    yield "chords by S2", BLOCK % 100 + "S2(T 1 [" + lines_of(["1:1"] * 32000) + "]) }"
    yield "large chords by S2", fill("S2(1 1 " + ":".join(["1"] * 1900) + ")\n", BLOCK % 10000, "}")
    yield "marks", fill(": ", BLOCK % 100000 + "1", "}")
    yield "loops", fill("<1>", BLOCK % 1000000, "}")
    yield "a long loop", fill("1 ", BLOCK % 5000000 + "<", ">}")
    yield "calls", fill("HO(1 1)", BLOCK % 1000000, "}")
    yield "calls without events, from a macro", from_macro("HO(0 1)", BLOCK % 1000000 + "1\n", "}")
    yield "settings in a block, from a macro", from_macro("rs(1)", BLOCK % 10 + "1\n", "}")
    yield "values, from a macro", from_macro("1 ", BLOCK % 10000000 + "1\n", "}")
    yield "calls of one event, from a macro", from_macro("HO(1 1)", BLOCK % 10000000 + "1\n", "}")
    yield "calls in beats", fill("HO(1 1)", "i1 = 4 0 1000 { p2 .01 p3 1 p4 ", "}")
    yield "calls in beats with a warning", fill("HO(1 1)", "i1 = 4 0 9 { p2 1 p3 1 p4 ", "}")
    yield "calls without events", fill("HO(0 1)\n", BLOCK % 10 + "1 1 1 1 1 1 1 1 1 1 ", "}")
    yield "calls of 128 segments", fill("RA(1 1 1 " + "0 1 " * 127 + ")", BLOCK % 100000, "}")
    yield "exhaustive lists", fill(f"SE(65536 1 *[{LIST}])\n", BLOCK % 700000, "}")
    yield "a list without repeats", BLOCK % 1000000 + f"SE(T 1 x[{LIST}]) }}"
    yield "128 lists", BLOCK % 1000000 + "SE(T " + " ".join(
        f"{p} *[" + lines_of(["1"] * 3900) + "]\n" for p in [1] + [0] * 127) + ") }"
    yield "a walk in tiny windows", BLOCK % 1000 + "RW(T 1 [0 1] .000011 .5) }"
    yield "a walk in small windows", BLOCK % 100000 + "RW(T 1 [0 1] .001 .5) }"
    yield "draws of a bell", BLOCK % 1000000 + "RA(T 1 [g 0 1]) }"
    yield "an equation with many terms", BLOCK % 1000 + "EX(T 1 [p2\n" + lines_of(["+1"] * 330000) + "\n]) }"
    yield "an equation with many remainders", (
        BLOCK % 1000 + "EX(T 1 [p2\n" + lines_of(["%3" if i % 2 else "*99" for i in range(290000)]) + "\n]) }")
    yield "remainders of large numbers", (
        BLOCK % 100000 + "EX(T 1 [p2 * 99999999999 * 99999999999 * 99999999 % .0001]) }")
    yield "divisions with a warning", BLOCK % 10 + "EX(T 1 [p2\n" + lines_of(["/p3"] * 250000) + "\n]) }"
    yield "beat moves", BLOCK % 1000 + fill("MO(9 1 l* 0 1)", "", "}")
    yield "a rhythm that hardly moves", "i1 = 3 0 10000 { p2 .0000001 p3 1 }"
    yield "a rhythm that does not move", "i1 = 3 9999 9 { p2 .000001 p3 1 }"
    yield "negative durations with a warning", BLOCK % 1000000 + "1 }\ni1 = 3 0 -200000 { p2 1 p3 300 }"
    yield "repeats without end", BLOCK % 100 + "1 x99999999999999999999 }"


def all_pieces():
    """A name, a piece, and what it may include."""
    for name, text in itertools.chain(pieces_with_names(), pieces()):
        yield name, text, ""
    yield from pieces_with_includes()


def run(korvo, text, part, options):
    """Runs one piece; gives how it ended, the number of message bytes and the last of them."""
    printed = 0
    last = b""

    def count(block):
        nonlocal printed, last
        printed += len(block)
        last = block[-200:]

    with tempfile.TemporaryDirectory(prefix="korvo-cost-") as folder:
        (Path(folder) / "piece.txt").write_bytes(text.encode("latin-1"))
        (Path(folder) / "part.txt").write_bytes(part.encode("latin-1"))
        ended = clock.run([korvo, *options, "piece.txt", "/dev/null"], count, cwd=folder)
    return ended, printed, last


def main():
    arguments = sys.argv[1:]
    measuring = "--measure" in arguments
    arguments = [a for a in arguments if a != "--measure"]
    korvo, names = os.path.abspath(arguments[0]), arguments[1:]
    yardstick = clock.Yardstick(korvo)
    failures = 0
    for name, text, part in all_pieces():
        if names and name not in names:
            continue
        assert len(text) + len(part) <= MEGABYTE * 1.1, name
        for options in [], ["-m", "-s"], ["-t", "-l", "/dev/./null"]:
            ended, printed, last = run(korvo, text, part, options)
            cost = 0
            if ended.status in (0, 1):
                cost = yardstick.cost(ended.seconds, lambda: run(korvo, text, part, options)[0].seconds, MOST_YARDSTICKS)
            too_much = cost > MOST_YARDSTICKS or ended.memory > MOST_BYTES or ended.status not in (0, 1)
            failures += too_much
            if measuring or too_much:
                print(f"{'FAIL ' if too_much else ''}{name} {' '.join(options)}: {cost:.1f} yardsticks,"
                      f" {ended.memory >> 20} MiB, {printed >> 10} KiB of messages,"
                      f" {'killed, as it did not end' if ended.hung else f'status {ended.status}'}", flush=True)
            if measuring and os.environ.get("SHOW"):
                print("     ", last[-120:])
    sys.exit(1 if failures and not measuring else 0)


if __name__ == "__main__":
    main()
