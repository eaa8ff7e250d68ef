"""The pieces that draws.py works out: each data function where it may stand, and what decides about its draws."""

import random

from draws import Block, Ex, Ho, Mo, Ms, Piece, Ra, Rw, S2, Se, Setting

PIECES = []


def piece(topic, name, comment, *parts):
    PIECES.append(Piece(topic, name, comment, *parts))


def seed(value):
    return Setting("rs", value)


def plain(length, *pfields):
    """A block from 0 with a rhythm of 1 beat, durations of 1 beat, and these p-fields from P4 on."""
    return Block("0", length, "1", "1", *pfields)


# ---- the generator

piece("ra", "draws-of-an-unseeded-run", "Without a seed the generator starts as with seed 1.",
      plain("-6", [Ra("T", ("1", "[0 1]"))]))
for value in ("0", "1", "2", "65535"):
    piece("settings", f"seed-{value}", f"Seed {value}.", seed(value),
          plain("-4", [Ra("T", ("1", "[0 1]"))]))
piece("settings", "seed-with-a-plus", "A plus changes nothing.", seed("+12"), plain("-4", [Ra("T", ("1", "[0 1]"))]),
      seed("12"), plain("-4", [Ra("T", ("1", "[0 1]"))]))
piece("settings", "seed-inside-a-p-field", "A seed between two calls starts the numbers anew.", seed("5"),
      plain("-6", [Ra("-3", ("1", "[0 1]")), seed("5"), Ra("-3", ("1", "[0 1]"))]))

# ---- the deviation takes its draws even when there is nothing to deviate

piece("ra", "draws-of-plain-values", "One draw per event in P2, two in P3, one in P4.", seed("3"),
      Block("0", "-3", "1 2 1", "1 1 2", "5 6 7", [Ra("T", ("1", "[0 1]"))]))
piece("ra", "draws-of-held-values", "Completion draws as plain values do.", seed("3"),
      Block("0", "-3", "1", "1", "5", [Ra("T", ("1", "[0 1]"))]))
piece("ra", "draws-of-a-loop", "A replayed value draws as a plain one.", seed("3"),
      Block("0", "-5", "< 1 2 >", "< 1 2 >", "< 5 6 >", [Ra("T", ("1", "[0 1]"))]))
piece("ra", "draws-of-a-repeat", "A repeated value draws as a plain one.", seed("3"),
      Block("0", "-4", "1 / /", "1 / / 2", "5 / 6 /", [Ra("T", ("1", "[0 1]"))]))
piece("settings", "deviation-of-everything", "RD and DV in P2 add up, in P3 one comes after the other, in P4 they add up.",
      seed("11"), Setting("rd", "0.25"),
      Block("0", "-6", [Setting("dv", "0.5"), "1 2 < 1 3 >"], [Setting("dv", "0.5"), "1 / 202 < 301 402 1001 >"],
            [Setting("dv", "0.5"), "1 2 3"], ["100", Ra("T", ("1", "[10 20]"))]))
piece("settings", "dv-lasts-for-one-p-field", "DV is gone in P5, RD stays.", seed("4"), Setting("rd", "0.1"),
      plain("-4", [Setting("dv", "0.2"), "10"], "10"))
piece("settings", "rd-lasts-for-the-run", "RD holds in the next block, too.", seed("4"),
      plain("-3", [Setting("rd", "0.5"), "10"], "10"), plain("-3", "10"))
piece("settings", "rd-from-the-middle-of-a-p-field", "Values before the statement are not deviated.", seed("4"),
      plain("-6", ["10 20", Setting("rd", "1"), "30 40", Setting("rd", "0"), "50 60"]))
piece("settings", "rd-100", "A hundred times the value.", seed("4"), plain("-5", [Setting("rd", "100"), "10"]))
piece("settings", "rd-on-negative-and-zero-values", "The sign of the value is the sign of the width; zero stays.",
      seed("9"), Setting("rd", "0.5"), plain("-6", "-10 0 10 -10 0 10"))
piece("settings", "rd-in-integer-mode", "The deviation comes after the rounding of the mode.", seed("9"),
      plain("-5", [Setting("rd", "0.5"), "in", Ra("-4", ("1", "[1 9]")), "7"]))
piece("settings", "rd-in-note-mode", "A note is rounded after the deviation, unless quarter tones are on.", seed("9"),
      plain("-6", [Setting("rd", "0.1"), "no c4", Ra("-2", ("1", "[c4 c5]")), "nox c4", Ra("-2", ("1", "[c4 c5]"))]))
piece("settings", "rd-in-op-mode", "As for notes.", seed("9"),
      plain("-6", [Setting("rd", "0.1"), "op 8.00", Ra("-2", ("1", "[8.00 9.00]")), "opx 8.00",
                   Ra("-2", ("1", "[8.00 9.00]"))]))
piece("settings", "deviated-rhythm-in-beats", "The clock counts the beats as written, the time goes by what came out.",
      seed("21"), Setting("rd", "0.5"), Block("0", "6", "1", "1", "1"))
piece("settings", "deviated-rhythm-against-a-span-in-beats", "A span in beats is filled by the rhythms that came out.",
      seed("21"), Setting("rd", "1"), Block("0", "30", [Ra("6", ("1", "[0.5 1.5]")), Ho("4", "2"), "3"], "1", "1"))
piece("settings", "pf-multiplies-what-is-stored", "Not the last value, not what a loop records.", seed("2"),
      plain("-8", [Setting("pf", "2"), "< 3", Ra("-2", ("1", "[1 2]")), ">", "z"], "3"))
piece("settings", "pf-changes-inside-a-p-field", "Each value takes the factor of its moment.", seed("2"),
      plain("-6", ["3", Setting("pf", "-0.5"), "3", Ho("-2", "4"), Setting("pf", "0"), "9", Setting("pf", "1"), "z"]))
piece("settings", "pf-in-durations", "The factor multiplies the duration, whatever its code.", seed("2"),
      Block("0", "-6", "1 2 1", [Setting("pf", "0.5"), "1 202 300.5 402", Ho("-2", "1003")], "1"))
piece("settings", "pf-after-the-rounding-of-notes", "The factor comes last.", seed("2"),
      plain("-4", [Setting("pf", "1.25"), Setting("dv", "0.1"), "no c4", Ra("-3", ("1", "[c4 c5]"))]))

# ---- RA: seven distributions, in P2, P3 and P4

NAMES = {"": "uniform", "f": "f", "l": "l", "h": "h", "t": "t", "g": "g", "x": "x", "b": "b"}
for letter, name in NAMES.items():
    bracket = f"[{letter} %s]".replace("[ ", "[")
    piece("ra", f"distribution-{name}", "A distribution in P2, P3 and P4.", seed("17"),
          Block("0", "-20", [Ra("T", ("1", bracket % "0.25 2"))], [Ra("T", ("1", bracket % "0.5 1.5"))],
                [Ra("T", ("1", bracket % "-3 100"))], [Ra("T", ("1", "[0 1]"))]))
    piece("mo", f"distribution-{name}", "A distribution in both ranges of a move.", seed("18"),
          Block("0", "-12", [Mo("T", ("1", "", bracket % "0.25 2", bracket % "1 5"))],
                [Mo("T", ("1", "e", bracket % "0.5 1.5", bracket % "2 3"))],
                [Mo("T", ("1", "l", bracket % "-3 100", bracket % "7 8"))], [Ra("T", ("1", "[0 1]"))]))
piece("ra", "many-of-each-distribution", "Sixty values of each, so that what is drawn again shows.", seed("1234"),
      plain("-60", *[[Ra("T", ("1", f"[{letter} 0 1]"))] for letter in "flhtgxb"]))
piece("ra", "weighted-segments", "Segments of different kinds share the events.", seed("6"),
      plain("-24", [Ra("T", ("0.25", "[0 1]"), ("0.5", "[l 10 11]"), ("0.125", "20"), ("0.125", "[t 30 40]"))]))
piece("ra", "negative-percentage", "A running sum may go down.", seed("6"),
      plain("-8", [Ra("T", ("-0.5", "[0 1]"), ("1.5", "[10 11]"))]))
piece("ra", "zero-percentage", "A segment of nothing is only chosen by a draw of nothing.", seed("6"),
      plain("-8", [Ra("T", ("0", "[0 1]"), ("1", "[10 11]"), ("0", "50"))]))
piece("ra", "reversed-range", "Low and high are put in order.", seed("6"),
      plain("-5", [Ra("T", ("1", "[9 2]"))], [Ra("T", ("1", "[h 9 -2]"))]))
piece("ra", "one-value-in-brackets", "A range without extent still draws.", seed("6"),
      plain("-3", [Ra("-1", ("1", "[h 3]")), Ra("-1", ("1", "[3]")), Ra("-1", ("1", "[b 3]"))], [Ra("T", ("1", "[0 1]"))]))
piece("ra", "integer-mode-in-p4", "Drawn over the range, then rounded.", seed("6"),
      plain("-12", ["in", Ra("T", ("1", "[-2.4 2.5]"))]))
piece("ra", "integer-mode-in-p2-rounds-nothing", "Only what is read is rounded.", seed("6"),
      Block("0", "-8", ["in", Ra("T", ("1", "[1.4 3.6]"))], "1"))
piece("ra", "integer-mode-in-p3", "Rounded before the duration is made of it.", seed("6"),
      Block("0", "-8", "1.5", ["in", Ra("T", ("1", "[1 4]"))]))
piece("ra", "note-mode", "Notes as bounds, rounded after the draw.", seed("6"),
      plain("-8", ["no", Ra("-6", ("0.5", "[c4 c5]"), ("0.5", "[x e3 e4]")), "nox", Ra("T", ("1", "[c4 d4]"))]))
piece("ra", "op-mode", "Octaves as bounds.", seed("6"),
      plain("-8", ["op", Ra("-6", ("1", "[8.00 9.00]")), "opx", Ra("-2", ("1", "[l 8.00 9.00]"))]))
piece("ra", "db-mode", "Decibels as bounds: the draw is over amplitudes.", seed("6"),
      plain("-8", ["db", Ra("T", ("1", "[60 80]"))]))
piece("ra", "rhythm-mode", "Rhythms as bounds.", seed("6"),
      Block("0", "-8", ["rh", Ra("T", ("1", "[4 8..]"))], "1", ["rh", Ra("T", ("1", "[16 2.]"))]))
piece("ra", "z-as-a-bound", "z is the last value.", seed("6"),
      plain("-7", ["5", Ra("-3", ("1", "[z 6]")), Ra("-3", ("1", "z"))]))
piece("ra", "several-calls", "Each call goes on where the one before stopped.", seed("8"),
      Block("0", "-12", [Ra("-3", ("1", "[1 2]")), "0.5", Ra("-4", ("1", "[3 4]"))],
            [Ra("-2", ("1", "[1 2]")), Ra("-2", ("1", "[202 203]")), Ra("-3", ("1", "[402 403]")), "1001"],
            [Ra("-1", ("1", "[1 2]")), "7 8", Ra("-5", ("1", "[3 4]")), Ra("-2", ("1", "[5 6]"))]))
piece("ra", "in-loops", "A loop replays the values, not the draws; the last bits tell from what.", seed("8"),
      Block("0", "-9", ["<", Ra("-2", ("1", "[1 2]")), "3 >"], ["1 <", Ra("-2", ("1", "[1 2]")), ">"],
            ["< 5", Ra("-2", ("1", "[1 2]")), ">", "7"]))
piece("ra", "deviated-in-loops", "P2 and P3 record before the deviation, P4 after it.", seed("8"), Setting("rd", "0.5"),
      Block("0", "-9", ["<", Ra("-2", ("1", "[1 2]")), "3 >"], ["1 <", Ra("-2", ("1", "[1 2]")), ">"],
            ["< 5", Ra("-2", ("1", "[1 2]")), ">", "7"], ["no < c4", Ra("-2", ("1", "[c4 c5]")), ">"]))
piece("ra", "duration-codes", "The five bands of P3 and both signs.", seed("12"),
      Block("0", "-16", [Ra("T", ("1", "[0.5 2]"))],
            [Ra("-2", ("1", "[0.1 5]")), Ra("-2", ("1", "[200 201]")), Ra("-2", ("1", "[300 300.4]")),
             Ra("-2", ("1", "[400 402]")), Ra("-2", ("1", "[1000 1003]")), Ra("-2", ("1", "[-201 -200]")),
             Ra("-2", ("1", "[-301 -300]")), Ra("-2", ("1", "[-0.5 0.5]"))]))
piece("ra", "negative-rhythms", "Time moves on by the magnitude; the rhythm's sign is left in the duration.", seed("12"),
      Block("0", "-10", [Ra("-8", ("1", "[-2 2]")), "-1 1"], "1", [Ra("T", ("1", "[0 1]"))]),
      Block("0", "10", [Ra("8", ("1", "[-2 -0.5]")), "-1"], "-1", [Ra("T", ("1", "[0 1]"))]))

# ---- RW

piece("rw", "walks-in-p2-p3-and-p4", "The first value is the starting value.", seed("31"),
      Block("0", "-20", [Rw("T", ("1", "[0.5 2]", "0.2", "1"))], [Rw("T", ("1", "[1 2]", "0.5", "1.5"))],
            [Rw("T", ("1", "[-10 10]", "0.1", "0"))], [Ra("T", ("1", "[0 1]"))]))
piece("rw", "from-the-ends", "At an end the window is moved inside.", seed("32"),
      plain("-16", [Rw("T", ("1", "[0 100]", "0.25", "0"))], [Rw("T", ("1", "[0 100]", "0.25", "100"))],
            [Rw("T", ("1", "0 100", "1", "50"))], [Rw("T", ("1", "[0 100]", "0.9", "99"))]))
piece("rw", "small-window", "A narrow band needs many draws.", seed("33"),
      plain("-6", [Rw("T", ("1", "[0 1]", "0.001", "0.5"))], [Ra("T", ("1", "[0 1]"))]))
piece("rw", "window-of-nothing", "The place stays, one draw is taken.", seed("33"),
      plain("-5", [Rw("T", ("1", "[0 1]", "0", "0.25"))], [Rw("T", ("1", "[0 1]", "0.000009", "0.5"))],
            [Ra("T", ("1", "[0 1]"))]))
piece("rw", "low-equal-to-high", "A walk without room stays and draws.", seed("33"),
      plain("-5", [Rw("T", ("1", "[7 7]", "0.5", "7"))], [Ra("T", ("1", "[0 1]"))]))
piece("rw", "reversed-bounds", "Low and high are put in order.", seed("33"),
      plain("-5", [Rw("T", ("1", "[10 2]", "0.5", "4"))]))
piece("rw", "segments-walk-for-themselves", "Only the chosen segment takes a step.", seed("34"),
      plain("-24", [Rw("T", ("0.5", "[0 1]", "0.2", "0.5"), ("0.5", "[100 200]", "0.3", "150"))]))
piece("rw", "each-call-starts-again", "A new call starts from its starting value.", seed("34"),
      plain("-12", [Rw("-4", ("1", "[0 1]", "0.2", "0.5")), Rw("-4", ("1", "[0 1]", "0.2", "0.5")),
                    "<", Rw("-2", ("1", "[0 1]", "0.2", "0.5")), ">"]))
piece("rw", "integer-mode", "Rounded in P3 and P4, not in P2.", seed("35"),
      Block("0", "-10", ["in", Rw("T", ("1", "[1 3]", "0.5", "2"))], ["in", Rw("T", ("1", "[1 9]", "0.5", "5"))],
            ["in", Rw("T", ("1", "[1 9]", "0.5", "5"))]))
piece("rw", "note-mode", "Notes as bounds and start.", seed("35"),
      plain("-10", ["no", Rw("-5", ("1", "[c4 c5]", "0.5", "e4")), "nox", Rw("T", ("1", "[c4 c5]", "0.5", "e4"))]))
piece("rw", "op-db-and-rhythm-mode", "Bounds and start in the mode, the window as a number.", seed("35"),
      plain("-6", ["op", Rw("T", ("1", "[8.00 9.00]", "0.5", "8.00"))], ["db", Rw("T", ("1", "[60 80]", "0.5", "70"))],
            ["rh", Rw("T", ("1", "[4 2]", "0.5", "4."))]))
piece("rw", "rhythm-in-beats", "A walk as rhythm over a span in beats.", seed("36"),
      Block("0", "20", [Rw("12", ("1", "[0.5 2]", "0.5", "1")), "rh", Rw("T", ("1", "[8 4]", "0.5", "4"))], "1",
            [Rw("T", ("1", "[0 1]", "0.5", "0.5"))]))

# ---- HO

piece("ho", "everywhere", "A held value, with the draws of any other function.", seed("41"),
      Block("0", "-9", [Ho("-3", "1"), Ho("-2", "0.5")], [Ho("-4", "1"), Ho("-2", "202")],
            [Ho("-2", "5"), "6", Ho("-2", "-7"), "<", Ho("-2", "8"), ">"], [Ra("T", ("1", "[0 1]"))]))
piece("ho", "in-the-modes", "The value is read in the mode.", seed("41"),
      plain("-10", ["in", Ho("-1", "2.5"), Ho("-1", "-2.5"), "db", Ho("-1", "90"), "no", Ho("-1", "bf3"), "op",
                   Ho("-1", "8.00"), "rh", Ho("-1", "8."), "re7", Ho("-1", "2.25"), Ho("-1", "z"), "opx", Ho("-1", "7.00")],
            [Ra("T", ("1", "[0 1]"))]))
piece("ho", "rhythm-in-beats", "Four beats of 0.75 need six events, and the span is passed by half a beat.", seed("41"),
      Block("0", "12", [Ho("4", "0.75"), "rh", Ho("4", "4.")], "1"))
piece("ho", "rest-is-stored-as-it-is", "A function's negative note makes no rest, a plain one does.", seed("41"),
      plain("-4", ["no c4", Ho("-1", "r"), "c4 r"]))

# ---- MO

for curve in ("", "f", "e", "l", "v1.5", "v0.25", "s", "c"):
    piece("mo", f"curve-{curve or 'none'}", "A curve in P2 by events, in P2 by beats, in P3 and P4.", seed("51"),
          Block("0", "-7", [Mo("T", ("1", curve, "0.5", "2"))], [Mo("T", ("1", curve, "1", "3"))],
                [Mo("T", ("1", curve, "0", "10"))], [Mo("-4", ("1", curve, "10", "-10"))]),
          Block("0", "8", [Mo("T", ("1", curve, "0.5", "2"))], "1", [Mo("T", ("1", curve, "0", "10"))]))
for curve in ("*", "e*", "l*", "v3*", "s*", "c*"):
    piece("mo", f"beat-curve-{curve.replace('*', '') or 'none'}",
          "A move measured in beats, from the block's begin, from the middle, and past the end.", seed("52"),
          Block("0", "10", "0.5 1 1.5 2", [Mo("T", ("1", curve, "1", "2"))], [Mo("T", ("1", curve, "0", "10"))],
                ["1 2 3", Mo("4", ("1", curve, "0", "10")), Mo("3", ("1", curve, "20", "[30 40]"))]))
piece("mo", "beat-curve-in-p2", "In P2 a beat-related move is at its end from the second event on.", seed("52"),
      Block("0", "8", [Mo("T", ("1", "*", "0.5", "2"))], "1"), Block("0", "8", [Mo("6", ("1", "e*", "0.5", "[1 2]"))], "1"))
piece("mo", "one-event", "A move over one event stays at its start.", seed("53"),
      Block("0", "-3", [Mo("-1", ("1", "", "1", "9")), "1"], [Mo("-1", ("1", "e", "1", "9"))], [Mo("-1", ("1", "l", "1", "9"))]))
piece("mo", "one-event-of-a-beat-curve", "A length of no beats is at its end at once.", seed("53"),
      Block("0", "4", "1", "1", [Mo("0.5", ("1", "*", "1", "9")), Mo("0.5", ("1", "*", "1", "9")), "0"]))
piece("mo", "span-of-no-beats", "One event, all the same.", seed("53"),
      plain("-4", [Mo("0", ("1", "", "1", "9")), Mo("0", ("1", "", "[3 4]", "9"))]))
piece("mo", "weighted-segments", "Each event draws from the chosen segment only.", seed("54"),
      plain("-16", [Mo("T", ("0.5", "e", "[0 1]", "[10 11]"), ("0.25", "", "[g 100 200]", "0"), ("0.25", "c", "5", "[b 6 7]"))]))
piece("mo", "beat-curve-in-one-segment-only", "The time is told when that segment is chosen.", seed("54"),
      Block("0", "12", "1", "1", [Mo("T", ("0.5", "*", "0", "10"), ("0.5", "", "20", "30"))]))
piece("mo", "reversed-ranges", "Both ranges are put in order.", seed("54"),
      plain("-6", [Mo("T", ("1", "", "[5 1]", "[20 10]"))]))
piece("mo", "integer-and-note-mode", "Rounded after the move.", seed("55"),
      plain("-12", ["in", Mo("-6", ("1", "", "0.6", "5")), "no", Mo("-3", ("1", "", "[c4 e4]", "[c5 e5]")), "nox",
                    Mo("-3", ("1", "", "[c4 e4]", "[c5 e5]"))]))
piece("mo", "in-loops", "What was drawn is replayed.", seed("55"),
      Block("0", "-11", ["<", Mo("-4", ("1", "", "[0.5 1]", "2")), ">"], ["<", Mo("-4", ("1", "", "[0.5 1]", "2")), ">"],
            ["<", Mo("-4", ("1", "", "[0.5 1]", "2")), ">"]))
piece("mo", "cut-by-the-end", "A move longer than the block is cut, not bent.", seed("56"),
      Block("0", "-5", [Mo("-9", ("1", "", "1", "2"))], [Mo("-9", ("1", "", "1", "2"))], ["3 4", Mo("-9", ("1", "", "[0 1]", "9"))]),
      Block("0", "5", [Mo("9", ("1", "", "1", "2"))], [Mo("9", ("1", "", "1", "2"))], ["3 4", Mo("9", ("1", "", "[0 1]", "9"))]))

# ---- MS

piece("ms", "moves-in-p2-p3-and-p4", "From the first list to the second.", seed("61"),
      Block("0", "-16", [Ms("T", ("1", "", "[0.5 1]", "[2 3]"))], [Ms("T", ("1", "", "[1 2]", "[202 203 204]"))],
            [Ms("T", ("1", "", "[1 2 3]", "[11 12 13 14]"))], [Ra("T", ("1", "[0 1]"))]))
for curve in ("f", "e", "l", "v2.5", "s", "c"):
    piece("ms", f"curve-{curve}", "A curve in P2 by events and by beats, in P3 and P4.", seed("62"),
          Block("0", "-20", [Ms("T", ("1", curve, "1", "2"))], [Ms("T", ("1", curve, "1", "2"))], [Ms("T", ("1", curve, "1", "2"))]),
          Block("0", "20", [Ms("16", ("1", curve, "0.5", "1")), "1"], "1", [Ms("T", ("1", curve, "1", "2"))]))
for curve in ("*", "e*", "v3*", "c*"):
    piece("ms", f"beat-curve-{curve.replace('*', '') or 'none'}", "A choice that moves in beats.", seed("63"),
          Block("0", "16", "0.5 1 1.5", [Ms("T", ("1", curve, "1", "2"))], ["9 9", Ms("8", ("1", curve, "[1 2]", "[11 12]"))]))
piece("ms", "beat-curve-in-p2", "The first event is of the first list, all others of the second.", seed("63"),
      Block("0", "8", [Ms("T", ("1", "*", "1", "0.5"))], "1"))
piece("ms", "user-curve-in-p2-is-a-line", "The exponent does not count in P2.", seed("64"),
      Block("0", "-30", [Ms("T", ("1", "v9", "1", "2"))], "1"), Block("0", "40", [Ms("T", ("1", "v9", "1", "2"))], "1"))
piece("ms", "one-event", "The first list.", seed("64"), plain("-3", [Ms("-1", ("1", "", "1", "2")), Ms("0", ("1", "", "1", "2")), "3"]))
piece("ms", "weighted-segments", "Lists of many lengths.", seed("65"),
      plain("-20", [Ms("T", ("0.4", "", "[1 2 3 4 5 6 7]", "8"), ("0.6", "e", "11", "[12 13]"))]))
piece("ms", "in-the-modes", "Values in the mode.", seed("65"),
      plain("-12", ["no", Ms("-3", ("1", "", "[c4 e4]", "g4")), "in", Ms("-3", ("1", "", "[1.5 2.4]", "7.5")), "op",
                    Ms("-3", ("1", "", "[8.00 9.00]", "7.00")), "db", Ms("-3", ("1", "", "[60 70]", "80"))]))
piece("ms", "in-loops-and-several-calls", "Replayed as drawn.", seed("65"),
      Block("0", "-12", ["<", Ms("-3", ("1", "", "[1 2]", "3")), Ms("-2", ("1", "", "4", "5")), ">"],
            ["<", Ms("-3", ("1", "", "[1 2]", "3")), ">"], ["7", Ms("-3", ("1", "", "[1 2]", "3")), "<", Ms("-2", ("1", "", "4", "5")), ">"]))
piece("ms", "rhythm-with-rests", "Negative rhythms move time on and are rests.", seed("66"),
      Block("0", "-16", [Ms("T", ("1", "", "[1 -1]", "[2 -2]"))], "1", "1"),
      Block("0", "16", ["rh", Ms("T", ("1", "", "[4 -4]", "[8 -8]"))], "1", "1"))

# ---- SE

for mode, name in (("", "free"), ("*", "all-before-again"), ("x", "never-twice-in-a-row")):
    piece("se", name, "In P2, P3 and P4.", seed("71"),
          Block("0", "-16", [Se("T", ("1", mode, "[0.5 1 2]"))], [Se("T", ("1", mode, "[1 2 202 1003]"))],
                [Se("T", ("1", mode, "[1 2 3 4 5]"))], [Ra("T", ("1", "[0 1]"))]),
          Block("0", "16", [Se("T", ("1", mode, "[0.5 1 2]"))], [Se("T", ("1", mode, "[1 2 202 1003]"))],
                [Se("T", ("1", mode, "[1 2 3 4 5]"))], [Ra("T", ("1", "[0 1]"))]))
    piece("se", f"{name}-of-one-value", "One value is one value, and draws.", seed("72"),
          plain("-4", [Se("T", ("1", mode, "[7]"))], [Se("T", ("1", mode, "7"))], [Ra("T", ("1", "[0 1]"))]))
    piece("se", f"{name}-of-two-values", "Two values.", seed("73"), plain("-10", [Se("T", ("1", mode, "[7 8]"))]))
    piece("se", f"{name}-of-equal-values", "It is the place in the list that counts, not the value.", seed("73"),
          plain("-10", [Se("T", ("1", mode, "[7 7 8]"))], [Ra("T", ("1", "[0 1]"))]))
    piece("se", f"{name}-in-several-calls", "Each call starts afresh.", seed("74"),
          plain("-12", [Se("-4", ("1", mode, "[1 2 3]")), Se("-4", ("1", mode, "[1 2 3]")), "<", Se("-3", ("1", mode, "[1 2 3]")), ">"]))
piece("se", "segments-choose-for-themselves", "Each segment remembers what it has used.", seed("75"),
      plain("-24", [Se("T", ("0.4", "*", "[1 2 3]"), ("0.3", "x", "[11 12]"), ("0.3", "", "[21 22 23 24]"))]))
piece("se", "in-the-modes", "Values in the mode.", seed("76"),
      plain("-12", ["no", Se("-3", ("1", "*", "[c4 e4 g4]")), "in", Se("-3", ("1", "x", "[1.5 2.4]")), "op",
                    Se("-3", ("1", "", "[8.00 9.00]")), "db", Se("-3", ("1", "*", "[60 70 80]"))]))
piece("se", "rhythm-mode-with-rests", "Rhythms and rests in beats.", seed("76"),
      Block("0", "12", ["rh", Se("T", ("1", "*", "[4 8 -8 2.]"))], "1", "1"))
piece("se", "zero-among-the-rhythms", "A zero starts with the next event; in events it may stand in any span.", seed("77"),
      Block("0", "-10", [Se("-6", ("1", "x", "[0 1]")), Se("3", ("1", "*", "[0 1]")), "1"], "1001", "1"),
      Block("0", "6", [Se("-6", ("1", "x", "[0 1]")), Se("3", ("1", "*", "[0 1]")), "1"], "1001", "1"))

# ---- EX

piece("ex", "order-of-draws", "No draw of its own: one for the segment, then the deviation.", seed("81"),
      plain("-6", [Ra("T", ("1", "[1 9]"))], [Ex("T", ("0.5", "", "p4"), ("0.5", "", "[p4 + 100]"))], [Ra("T", ("1", "[0 1]"))]))
piece("ex", "left-to-right-in-single-precision", "Each step is rounded.", seed("82"),
      plain("-8", [Ra("T", ("1", "[-9 9]"))], [Ex("T", ("1", "", "[p4 * 3.3 + 0.1 / 7 - p4 * 1000 + 0.01]"))],
            [Ex("T", ("1", "i", "[p4 * 3.3 + p5]"))], [Ex("T", ("1", "", "[p4 % 2.5]"))], [Ex("T", ("1", "", "[100 % p4 * p6]"))]))
piece("ex", "remainder-of-huge-numbers", "Where taking away changes nothing, the remainder is nothing.", seed("82"),
      plain("-4", "99999999999999999999 -99999999999999999999 123456.789 -3000000.25", [Ex("T", ("1", "", "[p4 % 7]"))],
            [Ex("T", ("1", "", "[p4 * 10 % 0.001]"))], [Ex("T", ("1", "", "[p4 * 0.5 % -0.75]"))]))
piece("ex", "start-and-duration", "P2 is the start in seconds, P3 what the duration is at the moment.", seed("83"),
      Block("2", "-5", [Ra("T", ("1", "[0.5 2]"))], [Ex("T", ("1", "", "[p2 * 0.5]"))],
            [Ex("T", ("1", "", "p2"))], [Ex("T", ("1", "", "p3"))], [Ex("T", ("1", "", "[p2 + p3]"))]))
piece("ex", "rest-of-a-later-p-field", "A note rest in P4 has turned the duration, which is what P5 reads.", seed("83"),
      plain("-4", "no c4 r e4 r", [Ex("T", ("1", "", "p3"))]))
piece("ex", "integer-mode-and-deviation", "Rounded by the mode, then deviated, then multiplied.", seed("84"),
      plain("-6", [Ra("T", ("1", "[1 9]"))], [Setting("dv", "0.5"), Setting("pf", "3"), "in", Ex("T", ("1", "", "[p4 * 1.5]"))]))
piece("ex", "note-mode", "Rounded after the deviation.", seed("84"),
      plain("-6", [Ra("T", ("1", "[40 60]"))], ["no", Ex("-3", ("1", "", "p4")), "nox", Ex("-3", ("1", "", "p4"))]))
piece("ex", "in-a-loop", "The loop replays what was computed for other events.", seed("85"),
      plain("-7", [Ra("T", ("1", "[1 9]"))], ["<", Ex("-2", ("1", "", "[p4 * 10]")), ">"], ["1 2", Ex("-2", ("1", "", "p5")), Ex("-1", ("1", "", "p4"))]))
piece("ex", "sees-a-factor", "What PF stored is what EX reads.", seed("85"),
      plain("-4", [Setting("pf", "10"), "1 2 3 4"], [Ex("T", ("1", "", "[p4 + 0.5]"))]))
piece("ex", "out-of-order-p-fields", "Later numbers that stand earlier may be read.", seed("85"),
      plain("-4", "1 2 3 4", [Ex("T", ("1", "", "[p4 * p4 * p4]"))]))

# ---- S2

for mode, name in (("", "free"), ("*", "all-before-again"), ("x", "never-twice-in-a-row")):
    piece("s2", name, "Groups of one, two and three values.", seed("91"),
          plain("-8", [S2("T", ("1", mode, "[1 2:3 4:5:6]"))], [Ra("T", ("1", "[0 1]"))]),
          Block("0", "8", "1", "1", [S2("T", ("1", mode, "[1 2'3 4:5'6]"))], [Ra("T", ("1", "[0 1]"))]))
    piece("s2", f"{name}-with-one-group", "A single group is always chosen.", seed("92"),
          plain("-3", [S2("T", ("1", mode, "[1:2]"))], [S2("T", ("1", mode, "8"))], [S2("T", ("1", mode, "8:9"))]))
piece("s2", "weighted-segments", "Segments choose for themselves.", seed("93"),
      plain("-12", [S2("-10", ("0.5", "*", "[1:2 3:4]"), ("0.5", "x", "[11 12:13 14]"))]))
piece("s2", "deviation-and-factor", "Each value of a group is deviated for itself.", seed("94"),
      plain("-6", [Setting("dv", "0.5"), Setting("pf", "2"), S2("-4", ("1", "", "[10:20 30]")), "z"]))
piece("s2", "note-mode", "Notes, rounded; the copies have their event's start and duration.", seed("94"),
      plain("-6", [Setting("rd", "0.05"), "no", S2("-3", ("1", "", "[c4:e4:g4 d4:f4]")), "nox", S2("-3", ("1", "", "c4:e4"))]))
piece("s2", "integer-mode", "Values are rounded when they are read.", seed("94"),
      plain("-4", ["in", S2("-3", ("1", "", "[1.5:2.5 3.4]")), "/"]))
piece("s2", "in-a-loop", "The loop replays the groups with their copies.", seed("95"),
      plain("-8", ["<", S2("-2", ("1", "x", "[1:2 3:4:5]")), "9 >"], "7"),
      Block("0", "8", "1", "1", ["<", S2("-2", ("1", "x", "[1:2 3:4:5]")), "9 >"], "7"))
piece("s2", "copies-take-the-values-of-other-p-fields", "The copy has what the event had.", seed("95"),
      plain("-3", "1 2 3", [S2("-2", ("1", "", "10:20")), "5"], [Ex("T", ("1", "", "[p4 * 100 + p5]"))]))
piece("s2", "span-in-beats", "Beats are counted before the copies are made.", seed("96"),
      Block("0", "8", "0.5", "1", [S2("1.75", ("1", "", "[1:2 3:4]")), S2("1", ("1", "", "[11:12:13]")), "20"]))
piece("s2", "several-p-fields-with-groups", "Copies are copied again.", seed("96"),
      plain("-3", [S2("T", ("1", "", "1:2"))], [S2("T", ("1", "*", "[10:20 30]"))], [Ra("T", ("1", "[0 1]"))]))

# ---- spans

piece("spans", "beats-include-the-last-beat", "From P3 on an event at the very end of the span is taken.", seed("101"),
      Block("0", "8", "1", [Ho("3", "0.5"), "1"], [Ra("2", ("1", "[0 1]")), Ra("1.5", ("1", "[10 11]")), "20"]))
piece("spans", "beats-that-start-late", "A block's beats are counted from its start.", seed("101"),
      Block("10", "8", [Ra("4", ("1", "[0.25 0.5]")), Ra("4", ("1", "1"))], [Ra("4", ("1", "[1 2]")), "1"], [Ra("2", ("1", "[0 1]")), "9"]))
piece("spans", "beats-in-a-block-of-events", "A span may be in beats in any block.", seed("101"),
      Block("0", "-10", [Ra("3", ("1", "0.5")), "1"], [Ra("2", ("1", "[1 2]")), "3"], [Ra("2", ("1", "[0 1]")), Ra("-2", ("1", "[10 11]")), "20"]))
piece("spans", "no-beats", "One event, and those that start with it; nothing in P2.", seed("101"),
      Block("0", "-6", [Ra("0", ("1", "5")), "1 : 1 1 1"], [Ra("0", ("1", "2")), "3"], ["8", Ra("0", ("1", "[0 1]")), "9"]))
piece("spans", "fraction-of-an-event", "The fraction of a number of events is dropped.", seed("101"),
      Block("0", "-6", [Ra("-1.9", ("1", "0.5")), "1"], [Ra("-2.999", ("1", "[1 2]")), "3"], [Ra("-0.9", ("1", "[0 1]")), Ra("-1", ("1", "[10 11]")), "20"]))
piece("spans", "t-in-a-block-of-events", "Halves of an event are rounded up.", seed("102"),
      Block("0", "-5", [Ra("T*0.5", ("1", "[1 2]")), "0.5"], [Ra("T*.3", ("1", "[1 2]")), "3"],
            [Ra("T*0.1", ("1", "[0 1]")), Ra("T*0.2", ("1", "[10 11]")), Ra("T*.5", ("1", "[20 21]"))], [Ra("T", ("1", "[0 1]"))]))
piece("spans", "t-in-a-block-of-beats", "A share of the beats.", seed("102"),
      Block("0", "10", [Ra("T*0.5", ("1", "[0.25 0.5]")), Ra("T*0.5", ("1", "[1 2]"))], [Ra("T*0.25", ("1", "[1 2]")), "3"],
            [Ra("T*0.1", ("1", "[0 1]")), Ra("T*.35", ("1", "[20 21]")), "7"], [Ra("T", ("1", "[0 1]"))]))
piece("spans", "t-of-no-events", "T that rounds to no events is a span of no beats: one event from P3 on.", seed("102"),
      Block("0", "-4", [Ra("T*0.1", ("1", "9")), "1"], [Ra("T*0.1", ("1", "2")), "3"], [Ra("T*0", ("1", "[0 1]")), "7"]))
piece("spans", "t-more-than-once", "More than the whole block is cut.", seed("102"),
      Block("0", "-4", [Ra("T*2", ("1", "[1 2]"))], [Ra("T*1.5", ("1", "[1 2]"))], ["5", Ra("T", ("1", "[0 1]"))]),
      Block("0", "4", [Ra("T*2", ("1", "[1 2]"))], [Ra("T*1.5", ("1", "[1 2]"))], ["5", Ra("T", ("1", "[0 1]"))]))
piece("spans", "beats-after-the-last-event", "A span in beats with no event left does nothing, not even draw.", seed("103"),
      plain("-3", ["1 2 3", Ra("4", ("1", "[0 1]"))], [Ra("T", ("1", "[0 1]"))]),
      Block("0", "3", "1", "1", ["1 2 3", Ra("4", ("1", "[0 1]"))], [Ra("T", ("1", "[0 1]"))]))
piece("spans", "events-after-the-last-event", "A span in events takes no draw either.", seed("103"),
      plain("-3", ["1 2 3", Ra("-4", ("1", "[0 1]"))], [Ra("T", ("1", "[0 1]"))]),
      Block("0", "3", "1", "1", ["1 2 3", Ra("-4", ("1", "[0 1]"))], [Ra("T", ("1", "[0 1]"))]))
piece("spans", "huge-spans", "Nothing is counted that is not there.", seed("103"),
      Block("0", "-3", [Ra("-9999999999", ("1", "[1 2]"))], [Ho("-9999999999999999999999", "1")],
            [Mo("-4294967297", ("1", "", "[0 1]", "9"))], [Ra("99999999999999999999", ("1", "[0 1]"))]),
      Block("0", "3", [Ra("99999999999999999999", ("1", "[1 2]"))], [Ho("99999999", "1")], [Ra("-4294967297", ("1", "[0 1]"))]))
piece("spans", "under-a-tempo", "In P2 a span in beats is compared with seconds; from P3 on it is beats.", seed("104"), Setting("te", "120"),
      Block("2", "16", [Ra("4", ("1", "[0.5 1]")), Ho("1", "2"), "1"], [Ra("4", ("1", "[1 2]")), "402"], [Mo("4", ("1", "*", "0", "10")), "7"]))
piece("spans", "under-a-moving-tempo", "Each rhythm is converted at its own beat.", seed("104"), Setting("te", "0 10 60 180 f"),
      Setting("te", "20 30 180 30"),
      Block("1", "32", [Ra("8", ("1", "[0.5 1]")), Mo("6", ("1", "e", "2", "1")), "3"], [Ra("8", ("1", "[1 2]")), "402"], [Ra("T", ("1", "[0 1]"))]))

# ---- P2

piece("p2", "beats-at-the-default-tempo", "Four beats of one beat are four events.", seed("111"),
      Block("3", "6", [Ra("4", ("1", "1")), "0.5"], "1", [Mo("T", ("1", "*", "0", "6"))]))
piece("p2", "functions-one-after-another", "Each function makes its events behind the last.", seed("112"),
      Block("0", "20", [Ra("2", ("1", "[0.25 0.75]")), Rw("-3", ("1", "[0.5 1]", "0.5", "0.75")), Mo("3", ("1", "e", "0.5", "[0.6 1]")),
                        Ms("-3", ("1", "l", "[0.5 1]", "0.25")), Se("2", ("1", "*", "[0.5 0.25]")), Ho("-2", "1.5"), "rh 4 8. <", Se("-3", ("1", "x", "[4 8]")),
                        ">"], "1", "1"))
piece("p2", "plain-values-between-functions", "Plain values take the same steps.", seed("112"), Setting("rd", "0.2"),
      Block("0", "-20", ["1 2", Ra("-3", ("1", "[0.5 1]")), "/ 0.5", Ho("2", "0.25"), "/ < -1", Ra("1", ("1", "0.75")), ">"], "1", "1"))
piece("p2", "inserted-rhythm", "An inserted event has the start and the beat of the one before.", seed("113"),
      Block("0", "-8", ["1 2 :", Ra("-3", ("1", "[0.5 1]"))], "1", [Ra("T", ("1", "[0 1]"))]),
      Block("0", "8", ["1 2 :", Ra("3", ("1", "[0.5 1]"))], "1", [Mo("T", ("1", "*", "0", "8"))]))
piece("p2", "inserted-rhythm-in-a-loop", "The loop replays the insertion.", seed("113"),
      Block("0", "-7", ["< 1 2 :", Ra("-2", ("1", "[0.5 1]")), ">"], "1", [Ra("T", ("1", "[0 1]"))]),
      Block("0", "8", ["< 1 2 :", Ra("-2", ("1", "[0.5 1]")), ">"], "1", [Ra("T", ("1", "[0 1]"))]))
piece("p2", "mark-before-the-first-value", "With nothing before it the mark is dropped.", seed("113"),
      Block("0", "-3", [":", Ra("-2", ("1", "[0.5 1]"))], [":", Ho("-1", "1")], [":", Ra("-2", ("1", "[0 1]"))]))
piece("p2", "end-in-the-middle-of-a-function", "In events and in beats.", seed("114"),
      Block("0", "-8", [Ra("-20", ("1", "[0.5 1]"))], "1", "1"), Block("0", "4", [Ra("-20", ("1", "[0.5 1]"))], "1", "1"),
      Block("0", "4", [Ra("4", ("1", "0.75")), Ra("4", ("1", "1"))], "1", "1"))
piece("p2", "what-follows-a-full-block-is-skipped", "Calls behind the end are not even read, nor do they draw.", seed("114"),
      Block("0", "-3", [Ra("-4", ("1", "[0.5 1]")), Ra("-4", ("1", "[0.5 1]"))], [Ra("-4", ("1", "[1 2]")), Ra("-4", ("1", "[1 2]"))],
            [Ra("-4", ("1", "[1 2]")), "5", Ra("-4", ("1", "[1 2]"))]))

# ---- ":" before a data function from P3 on

CALLS = {
    "ra": Ra("-2", ("1", "[0.5 1]")),
    "rw": Rw("-2", ("1", "[0.5 1]", "0.5", "0.75")),
    "ho": Ho("-2", "0.5"),
    "mo": Mo("-2", ("1", "", "[0.5 1]", "2")),
    "ms": Ms("-2", ("1", "", "[0.5 1]", "2")),
    "se": Se("-2", ("1", "*", "[0.5 1]")),
}
for name, call in CALLS.items():
    piece(name, "inserted-value", "A mark before the call: its first value goes to a copy of the event before.", seed("121"),
          plain("-4", ["5 6 :", call, "9"], "1 2"), Block("0", "4", "1", ["1 2 :", call, "3"], ["5 6 :", call, "9"]))
    piece(name, "in-a-block-of-beats", "The call and a rest of plain values.", seed("122"),
          Block("0", "5", [call, "1"], [call, "1"], ["7", call, "8 9"]))
piece("ex", "inserted-value", "EX computes with the copy.", seed("121"),
      plain("-4", "1 2 3 4", ["5 6 :", Ex("-2", ("1", "", "[p4 * 10]")), "9"]))
piece("s2", "inserted-value", "The first value goes to the copy, the others to more copies.", seed("121"),
      plain("-4", ["5 6 :", S2("-2", ("1", "", "1:2:3")), "9"], "1 2"))
piece("mo", "inserted-value-of-a-beat-curve", "The span is measured from the copy.", seed("121"),
      Block("0", "6", "1", "1", ["5 6 :", Mo("2", ("1", "*", "0", "10")), "9"]))
piece("ra", "inserted-at-the-end", "A mark at the end of the block makes room for one more.", seed("121"),
      plain("-2", ["5 6 :", Ra("-1", ("1", "[0 1]"))]), plain("-2", ["5 6 :", Ra("-3", ("1", "[0 1]"))]),
      plain("-2", ["5 6 :", Ra("9", ("1", "[0 1]"))]))
piece("ra", "inserted-duration-takes-the-new-rhythm", "The copy's rhythm is the duration that the event before has by then.", seed("121"),
      Block("0", "-3", "1 2 1", ["3 :", Ra("-1", ("1", "2")), "1"]))
piece("p2", "mark-at-the-end-of-a-p-field", "The value that completes the p-field is inserted; of a loop in P2 none is, from P3 on its first one.", seed("121"),
      Block("0", "-4", "1 2 :", "1 :", "5 6 :", [Ra("T", ("1", "[0 1]"))]),
      Block("0", "-4", "< 1 2 > :", "< 1 2 > :", "< 5 6 > :", [Ra("T", ("1", "[0 1]"))]),
      Block("0", "6", "< 1 0.5 > :", "1 :", "< 5 6 > :", [Mo("T", ("1", "*", "0", "1"))]))
piece("ra", "mark-before-a-call-of-no-events", "The copy is made all the same, and filled by what follows.", seed("121"),
      plain("-3", ["5 :", Ra("-0.5", ("1", "1")), "8 9"]), plain("-3", ["5 :", Ra("-0.5", ("1", "1"))]))

# ---- every function in every mode of every p-field, over every kind of span

MODES = {  # low, high, and one between
    "re7": ("0.5", "3", "1.25"),
    "in": ("1", "4", "2"),
    "rh": ("16", "2.", "4"),
    "db": ("40", "60", "50"),
    "no": ("c3", "bf4", "e4"),
    "nox": ("c+3", "b-4", "es4"),
    "op": ("7.00", "9.00", "8.00"),
    "opx": ("7.00", "9.00", "8.00"),
}
MODES_OF = {2: ["re7", "in", "rh"], 3: ["re7", "in"]}


def call(name, span, low, high, between):
    """A call of two segments (HO has none). A skipped EX must not look like the next p-field: hence the upper-case P."""
    return {
        "ra": lambda: Ra(span, ("0.75", f"[{low} {high}]"), ("0.25", f"[l {high} {between}]")),
        "rw": lambda: Rw(span, ("0.75", f"[{low} {high}]", "0.4", between), ("0.25", f"[{between} {high}]", "0.5", high)),
        "ho": lambda: Ho(span, between),
        "mo": lambda: Mo(span, ("0.75", "e", between, f"[{low} {high}]"), ("0.25", "", f"[t {high} {low}]", low)),
        "ms": lambda: Ms(span, ("0.75", "l", f"[{between} {low}]", high), ("0.25", "", f"[{low}]", f"[{low} {high} {high}]")),
        "se": lambda: Se(span, ("0.75", "*", f"[{low} {high} {between}]"), ("0.25", "x", f"[{low} {between}]")),
        "s2": lambda: S2(span, ("0.75", "*", f"[{low}:{high} {between}]"), ("0.25", "x", f"[{low} {high}'{between}]")),
        "ex": lambda: Ex(span, ("0.75", "", "[P2 * 3 + 1]"), ("0.25", "i", "[P2 / 2 + 40]")),
    }[name]()


SPANS = ("-4", "3", "T*0.25", "T")
for name in ("ra", "rw", "ho", "mo", "ms", "se", "ex", "s2"):
    for measure, length in (("events", "-16"), ("beats", "16")):
        blocks = []
        for number in (2, 3, 4):
            if number < {"ex": 3, "s2": 4}.get(name, 2):
                continue
            for mode in MODES_OF.get(number, MODES):
                body = [mode] + [call(name, span, *MODES[mode]) for span in SPANS]
                if number == 2:
                    blocks.append(Block("1", length, body, "1", "1"))
                elif number == 3:
                    blocks.append(Block("1", length, "1 0.5", body, "1"))
                else:
                    blocks.append(Block("1", length, "1 0.5", "1", body, ["in", Ra("T", ("1", "[0 99]"))]))
        piece(name, f"every-mode-in-{measure}", f"Each mode of each p-field, four kinds of span, in a block of {measure}.",
              seed("131"), Setting("rd", "0.125"), *blocks)


# ---- pieces that nobody thought of


def random_piece(number):
    """A piece made up at random, the same for the same number."""
    dice = random.Random(number)

    def some_call(p, mode, spans):
        names = ["ra", "rw", "ho", "mo", "ms", "se"] + ["s2"] * (p > 3) + ["ex"] * (p > 2)
        name = dice.choice(names)
        span = dice.choice(spans)
        low, high, between = MODES[mode]
        if name == "mo" and dice.random() < 0.7:
            curve = dice.choice(["", "f", "e", "l", "v0.7", "s", "c"])
            if span in ("0.5", "2", "3.25"):
                curve += dice.choice(["", "*"])
            first, second = (f"[{dice.choice('fhltgxb')} {low} {high}]" for _ in range(2))
            return Mo(span, ("1", curve, first, second))
        if name == "ra" and dice.random() < 0.7:
            return Ra(span, ("1", f"[{dice.choice('fhltgxb')} {high} {low}]"))
        return call(name, span, low, high, between)

    def body(p):
        items, mode, marked, loop = [], "re7", False, None
        for _ in range(dice.randint(1, 5)):
            kind = dice.random()
            if kind < 0.2:
                mode = dice.choice(MODES_OF.get(p, list(MODES)))
                items.append(mode)
            elif kind < 0.3:
                items.append(Setting("dv", dice.choice(["0", "0.25", "1"])))
            elif kind < 0.35 and p > 2:
                items.append(Setting("pf", dice.choice(["0.5", "-2", "1"])))
            elif kind < 0.4:
                items.append(Setting("rs", str(dice.randint(0, 65535))))
            elif kind < 0.45 and not marked and loop != len(items):
                items.append(":")
                marked = True
            elif kind < 0.55 and loop is None and items[-1:] != [":"]:
                items.append("<")
                loop = len(items)
            spans = ["-1", "-2", "-3.7", "-5", "0.5", "2", "3.25", "T"]
            if items[-1:] != [":"]:
                spans += ["0", "T*0.3", "T*.5", "-0.5"]
            items.append(some_call(p, mode, spans) if dice.random() < 0.6 else " ".join(dice.choices(MODES[mode], k=dice.randint(1, 3))))
        if loop is not None:
            items.append(">")
        # a value that is sure to reach an event, first of all, so that no p-field is blank
        return [("1", "1 0.5", "2 3")[min(p, 4) - 2]] + items

    length = dice.choice(["-1", "-4", "-9", "-20", "3", "6.5", "12"])
    parts = [seed(str(dice.randint(0, 65535)))]
    if dice.random() < 0.4:
        parts.append(Setting("rd", dice.choice(["0.1", "0.5", "1"])))
    if dice.random() < 0.4:
        parts.append(Setting("te", dice.choice(["90", "0 10 60 180 f", "0 4 240 30 s"])))
    for _ in range(dice.randint(1, 2)):
        start = dice.choice(["0", "1.5", "7"])
        parts.append(Block(start, length, *(body(p) for p in range(2, dice.randint(4, 6)))))
    return Piece("random", f"piece-{number}", f"Random piece {number}.", *parts)
