#!/usr/bin/env python3
"""Memory refused at every allocation in turn: the run ends with a message and status 1, or does without and is right.

    memory_test.py KORVO_BINARY SHIM     SHIM is the library made of refuse_memory.cc
"""

import os
import sys

import support

SHIM = None

OUT_OF_MEMORY = (
    b"ERROR: Yikes, out of memory!",
    b": Yikes, out of memory!\n",
    b": Yikes, not enough memory to allocate constant!\n",
    b': misplaced "<" (or memory error).\n',
)
STREAM_REFUSED = (b"ERROR: Can't open \"", b"ERROR: Can't open temporary file", b"Bad include file name: \"")


def names_piece():
    """Macros and constants, more than their tables begin with room for, and a long body."""
    lines = [f"#define m{i}(a, b) #$a $b#" for i in range(70)]
    lines += [f"#const c{i} {i}.5" for i in range(70)]
    lines += ["#define long #" + " 1" * 400 + "#", "#undef m3", "#include |part.txt|"]
    lines += ["i1 = 5 0 -20 { p2 1 p3 $m7(.5'~c0) p4 $long p5 ~[c1 * 2] }"]
    return lines


def values_piece():
    """Every data function, lists and loops beyond their first room, chords, more than one chunk of events."""
    numbers = " ".join(str(i) for i in range(100))
    groups = " ".join(f"{i}:{i + 1}" for i in range(70))
    terms = " + 1" * 80
    return [
        "rs(1)",
        "te(90) te(4 8 90 120 e)",
        "i1 = 9 0 -17000 {",
        "p2 <RA(T*.01 1 [.1 .2]) .25 x90>",
        f"p3 MS(T*.1 1 [{numbers}] [{numbers}]) HO(40 1)",
        f"p4 SE(T*.1 .5 * [{numbers}] .5 x [{numbers}]) <1 : 2 x70>",
        f"p5 RW(T*.1 1 [0 1] .5 .5) S2(50 1 * [{groups}])",
        f"p6 EX(T 1 [p4 * 2{terms}])",
        "p7 MO(T 1 e 0 1)",
        f"p8(in) <{numbers}>",
        f"p9 <SE(100 1 [{numbers}])>",
        "}",
    ]


def copies_piece():
    """Blocks that fill the memory of their events to the last one, and then copy one."""
    many = ":".join(str(i) for i in range(100))
    fields = ["1 : 2", "S2(1 1 [1:2])", "1 : S2(1 1 [1])", "1 : RA(1 1 [0 1])", f"<S2(80 1 [{many}])>"]
    return [f"i{i} = 4 0 -16384 {{ p2 1 p3 1 p4 {field} }}" for i, field in enumerate(fields, 1)]


PIECES = {"copies": copies_piece(), "names": names_piece(), "values": values_piece()}
RUNS = {
    "names": ("names", ["-l", "log.txt", "-x", "exp.txt"]),
    "names as MIDI": ("names", ["-m"]),
    "copies": ("copies", ["-s"]),
    "values": ("values", ["-s"]),
    "values as MIDI": ("values", ["-m", "-s"]),
}


class RefusedMemory(support.FaultTest):
    def run_refusing(self, options, at, from_there):
        environment = dict(os.environ, LD_PRELOAD=SHIM, KORVO_REFUSE_AT=str(at),
                           KORVO_REFUSE_REPORT=str(self.folder / "report"))
        if from_there:
            environment["KORVO_REFUSE_FROM"] = "1"
        (self.folder / "report").unlink(missing_ok=True)
        result = self.run_korvo(*options, "piece.txt", "out", env=environment)
        self.assertTrue((self.folder / "report").exists(), f"allocation {at}: crashed with {result.returncode}")
        counted, refused, live = map(int, self.read("report").split())
        return result, counted, refused, live

    def check_all(self, name, from_there):
        piece, options = RUNS[name]
        self.write("piece.txt", "\n".join(PIECES[piece]).encode() + b"\n")
        self.write("part.txt", b"#const included 1\n")
        result, allocations, _, live = self.run_refusing(options, 0, False)
        self.assertEqual((result.returncode, live), (0, 0), result.stderr.decode(errors="replace"))
        self.assertGreater(allocations, 20)
        right = self.read("out")
        for at in range(1, allocations + 1):
            with self.subTest(allocation=at):
                self.check_one(options, at, from_there, right)

    def check_one(self, options, at, from_there, right):
        result, _, refused, live = self.run_refusing(options, at, from_there)
        self.assertGreater(refused, 0)
        if result.returncode == 0:
            self.assertEqual(self.read("out"), right)
            self.assertEqual(live, 0)
            return
        self.assertEqual(result.returncode, 1)
        if any(text in result.stderr for text in OUT_OF_MEMORY):
            self.assertEqual(live, 0, "blocks that were never freed")
        else:
            # The C library's own memory for a stream. A run that cannot open a file leaves those open that it had
            # opened, for the system to close.
            self.assertTrue(any(text in result.stderr for text in STREAM_REFUSED), result.stderr)
            self.assertLessEqual(live, 4)

    def test_names(self):
        self.check_all("names", False)

    def test_names_and_never_again(self):
        self.check_all("names", True)

    def test_names_as_midi(self):
        self.check_all("names as MIDI", False)

    def test_copies(self):
        self.check_all("copies", False)

    def test_values(self):
        self.check_all("values", False)

    def test_values_and_never_again(self):
        self.check_all("values", True)

    def test_values_as_midi(self):
        self.check_all("values as MIDI", False)


if __name__ == "__main__":
    SHIM = os.path.abspath(sys.argv.pop(2))
    support.main()
