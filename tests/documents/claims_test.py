#!/usr/bin/env python3
"""Checks what the documents' prose and tables say the program does.

    claims_test.py KORVO_BINARY

Each claim quotes its document (line ends and blanks do not matter) and says what a piece must make for the quotation to be
true. The values are worked out from the rule that is quoted. A quotation that is not in its document any more is a fault:
whoever changes the sentence looks at its claim.
"""

import re
import subprocess
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

import blocks

ROOT = Path(__file__).resolve().parents[2]
MANUAL, MIDI, README = "docs/manual.md", "docs/midi.md", "README.md"


@dataclass
class Claim:
    """What `piece` must make. `values`: for a number of a p-field what it is in the first events. `within`: a p-field,
    its bounds, which no event passes and some come near, or its whole set of values. `says`: a part of the messages;
    without, no warning and no error is allowed. `silent`: what they do not say. `status` is 1 where `says` is an error."""

    document: str
    quote: str
    piece: str
    values: dict = None
    count: int = None
    within: tuple = None
    only: tuple = None
    says: str = ""
    silent: str = ""
    options: tuple = ()
    status: int = None
    files: dict = None


def frame(length=-4, start=0):
    return f"i1 = 4 {start} {length} {{\n  p2 1\n  p3 1\n  p4 60\n}}\n"


def fields(text, length=-4, before="", start=0):
    """A piece of one block with these p-fields, in the manual's frame."""
    return before + blocks.in_frame(frame(length, start), text)


def manual(quote, piece, **expected):
    return Claim(MANUAL, quote, piece, **expected)


ERROR_OF_VALUE = "Value out of bounds or syntax error."
NOT_READ = "this is not a statement\n"

CLAIMS = [
    # The shape of a piece
    manual("enclosed in `/*` and `*/`, which nest", "/* a /* b */ c */\n" + frame(), count=4),
    manual("Two-letter names (`te`, `RA`, `Re`) are read in either case", fields("p4 ra(T 1 7) Re 8", before="TE(120)\n"),
           values={2: "0 .5 1 1.5", 4: "7 7 7 7"}, says="event(s) not added"),
    manual("a comment may follow them on their line but not come before them", "te(120) /* so */\n" + frame(),
           values={2: "0 .5"}),
    manual("a comment may follow them on their line but not come before them", "/* so */ te(120)\n" + frame(),
           says="ERROR: Line 1: Invalid G-block command or character."),
    manual("What stands on a line behind the `}` of a block is not read.", frame().rstrip() + " te(120)\n" + frame(),
           values={2: "0 1 2 3 0 1 2 3"}),
    manual("| `> text` | the rest of the line goes into the score as it is;", "> f1 0 4096\n" + frame(), count=4),
    # i-blocks
    manual("the number of p-fields (3 to 128, P1 being the instrument)", "i1 = 2 0 1 { p2 1 }\n",
           says="ERROR: Bad number of p-fields (3 - 128)"),
    manual("the number of p-fields (3 to 128, P1 being the instrument)", "i1 = 3 0 1 { p2 1 p3 1 }\n", count=1),
    manual("Items are separated by blanks, or by a `,` or `/`.", "i1 = 4, 2 / 3 { p2 1 p3 1 p4 5 }\n", values={2: "2 3 4"}),
    manual("A block whose instrument number is negative is skipped, which silences it without deleting it; a warning tells",
           "i-1 = 4 0 4 { p2 1 p3 1 p4 1 }\n", count=0, says="I-block skipped! (i-no < 0)"),
    manual("P2 comes first, since it makes the events", "i1 = 4 0 4 { p3 1 p2 1 p4 1 }\n",
           says="ERROR: Line 1: P2 must be specifed first"),
    manual("Before the first p-field, `rd(f)` and `rs(n)` may stand.", "i1 = 4 0 2 { rd(0) rs(3)\np2 1 p3 1 p4 1 }\n", count=2),
    # P-fields
    manual("When they end before the events do, the last value is held", fields("p4 1 2"), values={4: "1 2 2 2"}),
    manual("When there are more values than events, a warning tells so and the rest of the p-field is passed over",
           fields("p4 1 2 3 4 5 6"), values={4: "1 2 3 4"}, says="event(s) not added"),
    manual("A negative rhythm makes a rest of that length.", fields("p2 1 -2 1 1"), values={2: "0 3 4"}),
    # Input modes and notes
    manual("| `in` | a number, rounded to a whole one (halves up);", fields("p4 in 2.5 2.4"), values={4: "3 2"}),
    manual("`8` is half a beat, `4.` one and a half, `8,16` a tied eighth and sixteenth, `-4` a rest of a beat",
           fields("p2 rh 8 4. 8,16 -4 4", -5), values={2: "0 .5 2 3.75", 3: ".5 1.5 .75 1"}),
    manual("`c4`, `bf3`, `fs` (in the octave of the note before), `r` for a rest", fields("p4 no c4 bf3 fs r"),
           values={4: "48 46 42"}, count=3),
    manual("`8.00` is middle C, `8.01` the semitone above", fields("p4(op) op 8.00 8.01"), values={4: "8 8.01"}),
    manual("`90` is 31622", fields("p4 db 90"), values={4: "31622"}),
    manual("decibels, 0 to 96", fields("p4 db 97"), says=f"ERROR: Line 4: {ERROR_OF_VALUE}"),
    manual("P2 takes `re`, `in` and `rh`, P3 takes `re` and `in`.", fields("p2 no c4"), says='P2 input must be "re"',
           status=1),
    manual("P2 takes `re`, `in` and `rh`, P3 takes `re` and `in`.", fields("p3 rh 4"), says='P3 input must be "re"', status=1),
    manual("`c4` is 48 in a score and 60 in a MIDI file", fields("p4 100\np5 no c4"), options=("-m",),
           says="N:   60.00", silent="WARNING"),
    manual("`s` (sharp), `f` (flat) or `n` (natural), any number of them", fields("p4 no cs4 ef4 fn4 css4"),
           values={4: "49 51 53 50"}),
    manual("in whatever p-field or block that was; a piece begins in octave 0", fields("p4 no c e4\np5 no c") + fields("p4 no d"),
           values={4: "0 52 52 52 50 50", 5: "48"}),
    manual("`z` stands for the last value", fields("p4 7 z 8 z"), values={4: "7 7 8 8"}),
    manual("After `no` and `op` every value is rounded to a whole semitone", fields("p4 no RA(T 1 [c4 c5])", -200),
           only=(4, range(48, 61))),
    manual("`RA`, `RW` and `MO` give whole semitones", fields("p4 op RW(T 1 [8.00 9.00] .5 8.00)", -200), only=(4, range(48, 61))),
    manual("`RA`, `RW` and `MO` give whole semitones", fields("p4 no MO(T 1 f c4 d4)"), values={4: "48 49 49 50"}),
    manual("a deviation moves a note by whole ones", fields("p4 dv(.05) no c4", -200), only=(4, range(47, 50))),
    manual("`c+4`, not `c4+`", fields("p4 nox c+4"), values={4: "48.5"}),
    manual("`c+4`, not `c4+`", fields("p4 nox c4+"), says="ERROR: Line 4: Data is out of bounds."),
    manual("After `opx` they are not known; there `8.005` is the quarter tone.", fields("p4 opx 8.005+"),
           says=f"ERROR: Line 4: {ERROR_OF_VALUE}"),
    manual("After `opx` they are not known; there `8.005` is the quarter tone.", fields("p4 opx 8.005"), values={4: "48.5"}),
    manual("also sets its number of decimals: `re5`, or back to three", fields("p4(re1) re5 1"), says=""),
    # Rhythms
    manual("`12` is a triplet eighth, of which three fill a beat, `6` a triplet quarter, `20` a fifth of a beat",
           fields("p2 rh 12 6 20"), values={3: ".333 .667 .2"}),
    manual("`4.` is one and a half beats, `4..` one and three quarters", fields("p2 rh 4. 4.."), values={3: "1.5 1.75"}),
    manual("`RA` between two of them gives any length in between", fields("p2 rh RA(T 1 [8 4])", -300), within=(3, 0.5, 1)),
    manual("`4, 8, 8, 4` is a single one of three beats", fields("p2 rh 4, 8, 8, 4"), values={3: "3 3 3 3"}),
    # Separators, repeats, loops
    manual("`80 / /` is three times 80", fields("p4 80 / / 1"), values={4: "80 80 80 1"}),
    manual("that value four times in all", fields("p4 7x4 8 x4 1", -9), values={4: "7 7 7 7 8 8 8 8 1"}),
    manual("Once in a p-field", fields("p4 1 : 2 : 3"), says="ERROR: Line 4: Multiple ':'s!"),
    manual("`< 1 2 > 3` is 1 2 3 1 2 1 2", fields("p4 < 1 2 > 3", -7), values={4: "1 2 3 1 2 1 2"}),
    manual("two loops are repeated as one", fields("p4 < 1 2 > 3 < 4 5 >", -9), values={4: "1 2 3 4 5 1 2 4 5"}),
    # Durations
    manual("`.9` is a little detached, `2` overlaps", fields("p3 .9 2"), values={3: ".9 2"}),
    manual("| `200 + x` | the rhythm plus x seconds |", fields("p2 2\np3 200.5"), values={3: "2.5"}),
    manual("| `300 + x` | the rhythm less x seconds |", fields("p2 2\np3 300.5"), values={3: "1.5"},
           says="P3 Duration < 0! (Event turned into rest...)"),
    manual("For 300 + x a warning is printed where the duration is positive and all is well; where it is not, the event is a rest",
           fields("p2 1 1 1 3\np3 301.5", -4), values={2: "3", 3: "1.5"}, count=1, says="P3 Duration < 0!"),
    manual("| `400 + x` | x beats |", fields("p3 402", before="te(120)\n"), values={3: "1 1"}),
    manual("all of them are as long as a beat at the last event", fields("p3 401", -5, "te(0, 4, 60, 120, f)\n"),
           values={3: ".5 .5 .5 .5 .5"}),
    manual("| `1000 + x` | x seconds |", fields("p3 1002.5", before="te(120)\n"), values={3: "2.5"}),
    manual("A negative value below 200, and from 400 upward, makes a [rest]", fields("p3 -.5 -400.5 -1000.5 1"), values={2: "3"},
           count=1),
    # Rests
    manual("A P3 that does not look at the rhythm (400 and above) gives the silent event a duration again, 200 + x may do so",
           fields("p2 1 -1 -1 -1\np3 401 1001 202 200.5"), values={2: "0 1 2"}, count=3),
    manual("`p3 1002 -1002 1002`", fields("p3 1002 -1002 1002", -3), values={2: "0 2"}, count=2),
    manual("P3 comes before a p-field with `r`", "i1 = 4 0 -2 { p2 1 p4 no c4 r\np3 1001 }\n", values={4: "48 -1"}, count=2),
    manual("an `r` in P4 and one in P5", fields("p4 no c4 r e4\np5 no c4 r e4"),
           values={4: "48 -1 52"}),
    manual("or an `r` for an event that is a rest in P2 or P3 already", fields("p2 1 -1 1 1\np3 1 1 -1 1\np4 no c4 r r e4"),
           values={4: "48 -1 -1 52"}),
    manual("An `r` that a data function chooses is no rest, but the note -1", fields("p4 no SE(T 1 [r r])"), values={4: "-1 -1 -1 -1"}),
    manual("`p2 rh SE(T 1 [4 8 -8])`", "rs(1)\n" + fields("p2 rh SE(T 1 [4 8 -8])", -100), within=(3, .5, 1)),
    manual("An `r` at the end of a p-field is held like any last value", fields("p4 no c4 r"), count=1),
    # Data functions
    manual("or `T` for the whole block and `T*.25` for a part of it", fields("p4 HO(T*.25 1) HO(T*.5 2) 3", -8),
           values={4: "1 1 2 2 2 2 3 3"}),
    manual("at 120 a span of 8 reaches over 16 beats", fields("p2 SE(8 1 [1]) 2", 18, "te(120)\n"),
           values={3: ".5 " * 16 + "1"}, count=17),
    manual("a `T` over twice the block", fields("p2 SE(T 1 [1])", 8, "te(120)\n"), count=8, says="DDF data truncated"),
    manual("or a span such as `-12`", fields("p2 SE(-12 1 [1]) 2", 14, "te(120)\n"), values={3: ".5 " * 12 + "1"}, count=13),
    manual("all shares adding up to 1", fields("p4 RA(T .5 1 .4 2)"), says="ERROR: Line 4: Percentages must add up to 1.0."),
    manual("`MO(T 1 0 10)` moves from 0 to 10", fields("p4 MO(T 1 0 10)", -5), values={4: "0 2.5 5 7.5 10"}),
    manual("`RA(T 1 [f g4 b4])` draws uniformly between `g4` and `b4`", fields("p4 no RA(T 1 [f g4 b4])", -200),
           only=(4, range(55, 60))),
    manual("without which `f` is the distribution and `4` an error", fields("p4 no RA(T 1 [f4 g4])"),
           says="ERROR: Line 4: Value missing in []s, bad input type, or out of bounds"),
    manual("Behind `MO` and its share `c4` is read as the curve `c` and a stray 4", fields("p4 no MO(T 1 c4 c5)"),
           says="ERROR: Line 4: Value(s) or []s missing?"),
    manual("`v` with its exponent (`v3`)", fields("p4 MO(T 1 v3 0 8)", -3), values={4: "0 1 8"}),
    manual("`e` slow at first, `l` fast at first", fields("p4 MO(T 1 e 0 4)\np5 MO(T 1 l 0 10)", -5),
           values={4: "0 .25 1 2.25 4", 5: "0 5 7.071 8.660 10"}),
    manual("worked out strictly from left to right", fields("p4 1\np5 EX(T 1 [p4 + 2 * 3])"), values={5: "9"}),
    manual("`F` or `I` before the bracket asks for a real or a rounded result",
           fields("p4 5\np5 EX(T 1 F [p4 / 2])\np6 EX(T 1 I [p4 / 2])"), values={5: "2.5", 6: "3"}),
    manual("The remainder `%` has the sign of what is divided; a remainder by 0 is 0.",
           fields("p4 7 -7 7 5\np5 3 3 -3 0\np6 EX(T 1 [p4 % p5])\np7 EX(T 1 [p4 % 0])"), values={6: "1 -1 1 0", 7: "0 0 0 0"}),
    manual("A division by a p-field makes a warning, and an error where the p-field is 0.", fields("p4 2\np5 EX(T 1 [6 / p4])"),
           values={5: "3"}, says="Division by a pfield may / by 0!"),
    manual("A division by a p-field makes a warning, and an error where the p-field is 0.", fields("p4 0\np5 EX(T 1 [6 / p4])"),
           says="ERROR: Line 5: EX command: Division by pfield produces a / 0 error!"),
    manual("a p-field must have been specified before", fields("p4 EX(T 1 p5)\np5 1"), says="(must be previously defined)",
           status=1),
    # Chords
    manual("The block has to be counted in events", fields("p2 < 0 0 2 >\np3 1001", 8),
           says="ERROR: Line 2: Must specify EVENTS when using a start interval of 0."),
    manual("for a part of 0 is 0, a rest", fields("p2 < 0 0 2 >\np3 .9", -6), values={2: "0 2"}, count=2),
    manual("in a loop it comes again in every round", fields("p4 < 1 2 : 3 >", 5), values={2: "0 1 1 2 3 3 4", 4: "1 2 3 1 2 3 1"},
           count=7),
    manual("unless the block is full with the first of the two", fields("p4 < 1 2 : 3 >", 4), values={4: "1 2 3 1 2"}, count=5),
    manual('`Fused data changed "events" from 3 to 4`', fields("p4 1 : 2", -3), count=4, says='Fused data changed "events" from 3 to 4'),
    manual("by chance, or one after the other with a span of one event each", fields("p4 S2(-1 1 1:2) S2(-1 1 3:4)", -2),
           values={4: "1 2 3 4"}, count=4),
    # Settings
    manual("With `dv(.1)` a 100 lies between 95 and 105.", fields("p4 dv(.1) 100", -2000), within=(4, 95, 105)),
    manual("| `dv(f)` | in a p-field | the same, for this p-field only, on top of `rd`: `dv(.1) 100` lies in 95 to 105 |",
           fields("p4 dv(.1) 100", -2000, "rd(.1)\n"), within=(4, 90, 110)),
    manual("goes on into the blocks behind it, until `rd(0)`", "i1 = 4 0 -1 { p2 1 p3 1 p4 rd(.1) 1 }\nrd(0)\n" + frame(),
           values={2: "0 0 1 2 3"}),
    manual("every value of this p-field, from here on, is multiplied by f", fields("p4 pf(2) 1 2 3"), values={4: "2 4 6"}),
    manual("| `pf(f)` | in a p-field from P3 on |", fields("p2 pf(2) 1"), says="PF only valid in P3 and higher P-fields.", status=1),
    # Tempo
    manual("from beat 0 to 16 from 60 to 120", fields("", -3, "te(0, 2, 60, 120, f)\n"), values={3: "1 .667 .5"}),
    manual("A definition that starts at beat 0 replaces the first one.", fields("", -2, "te(0, 9, 60, 90)\nte(0, 9, 120, 120)\n"),
           values={3: ".5 .5"}),
    manual("start x tempo / 60", fields("", -1, "te(0, 4, 60, 120, f)\n", 3), options=("-t",), says="Beat    5.25"),
    manual("would be on beat 3 x 105 / 60 = 5.25", fields("", -1, "te(0, 4, 60, 120, f)\n", 3), values={3: ".5"}),
    manual("a half note takes both of its beats at the tempo of the first", fields("p2 rh 2", -2, "te(0, 4, 60, 120, f)\n"),
           values={3: "2 1.333"}),
    manual("Triplets do not add up to it exactly", fields("p2 rh 12", 17, "te(16, 24, 120, 120)\n"),
           values={3: ".333 " * 49 + ".167"}),
    # The text layer
    manual("one given out of order hides those behind it", fields("", -3, "te(9, 12, 60, 60)\nte(1, 3, 120, 120)\n"),
           values={3: "1 1 1"}, says="Tempo #3 conflicts with previous tempo's end time!"),
    manual("Arguments are separated by `'` (or `#`), not by commas.", "#define m(a, b) #$a $b#\n" + fields("p4 $m(1'2) $m(3#4)"),
           values={4: "1 2 3 4"}),
    manual("The bracket of a call stands directly behind the name.", "#define m(a, b) #$a $b#\n" + fields("p4 $m (1'2)"),
           says="ERROR: Line 5: Data is out of bounds."),
    manual("`#define rest #r r r r#` and `$rest`", "#define rest #r r#\n" + fields("p4 no c4 $rest c4"), values={4: "48 48"}, count=2),
    manual("`~name` becomes the number, with three decimals", "#const a 2.5\n> ~a\n" + fields("p4 ~a ~[a * 2 + 1]"),
           values={4: "2.5 6"}),
    manual("`~@3` and `~@4` the same in beats of the last tempo that was used, and not for equations",
           "te(120)\n" + frame(4) + fields("p4 ~@3 ~@4"), values={4: "60 60 60 60 4 4"}),
    manual("`~@3` and `~@4` the same in beats of the last tempo that was used, and not for equations", fields("p4 ~[@3]"),
           says='"@" must be followed by a 1, 2, 3, or 4', status=1),
    manual("a rest at the end does not count", fields("p2 1 1 -1\np3 .9", -3) + fields("p4 ~@2", -1), values={4: "60 60 1.9"}),
    manual("`#if(value)` drops the lines up to its `#endif` when the value is 0", "#if(0)\n" + frame() + "#endif\n" + fields("p4 2", -1), values={4: "2"}),
    manual("as 0 in the first. Where this is 0 the lines are dropped, after an error for the name",
           "#if(~typo)\n" + frame() + "#endif\n" + fields("p4 2", -1), values={4: "2"}, count=1,
           says='There is no constant "typo"', status=0),
    manual("and without a word otherwise", "#if(-1)\n" + frame() + "#endif\n" + fields("p4 2", -1), values={4: "2"}, count=1),
    manual("where it is not, the rest of the line stands in the way and ends the run",
           "#if(1)\n#endif\n#if(~typo)\n" + frame() + "#endif\n", says="Invalid G-block command or character.", status=1),
    # Running
    manual("so `-sm` is `-s` and writes a score", frame(), options=("-sm",), count=4, silent="N:"),
    manual("The others are passed over without a word, whatever is in them", fields("p4 100") + NOT_READ, options=("-m",),
           says="8 events generated"),
    manual("banner, summaries, tempo conflicts and errors still come",
           fields("p4 1 2 3", -2, "te(9, 12, 60, 60)\nte(1, 3, 120, 120)\n"), options=("-s",), says="Tempo #3 conflicts",
           silent="not added"),
    manual("no warnings, no notes on expansions and spans", "#const a 1\n" + fields("p4 HO(T ~a)"), options=("-s",), says="4 events generated",
           silent="valuated at|Expanding"),
    manual("390.6 semitones are `6288202398.866842`", fields("p4 (tr) 390.6"), only=(4, [6288202398.866842])),
    # What trips people up
    manual("`p4 no eb4` is two notes, an `e` in the octave of the note before and `b4`. E flat is `ef4`.",
           fields("p4 no c3 eb4 ef4"), values={4: "36 40 59 51"}),
    manual("`p4 no c e g` at the start of a piece is 0 4 7", fields("p4 no c e g"), values={4: "0 4 7"}),
    manual("`p4 no c4 e g` is 48 52 55", fields("p4 no c4 e g"), values={4: "48 52 55"}),
    manual("`SE(T 1 [f4 g4 b4])`", fields("p4 no SE(T 1 [f4 g4 b4])", -50), only=(4, (53, 55, 59))),
    manual("`p4 op 8.1` is A sharp, ten semitones above 8.00; the semitone above is `8.01`", fields("p4 op 8.1 8.01"),
           values={4: "58 49"}),
    manual("After `p2 1 -1 1` the P4 `1 2 3` writes 1 and 3", fields("p2 1 -1 1\np4 1 2 3", -3), values={4: "1 3"}, count=2),
    manual("`p2 1 -1 1` with `p3 1001` has no rest", fields("p2 1 -1 1\np3 1001", -3), count=3),
    manual("`p3 1001 -1001 1001`", fields("p3 1001 -1001 1001", -3), values={2: "0 2"}, count=2),
    manual("`p4 no SE(T 1 [c4 r])` writes the note -1 where `r` is drawn", fields("p4 no SE(T 1 [c4 r])", -20), only=(4, (48, -1)),
           count=20),
    manual("`p4 no c4 r` with `p5 no c3 r` sounds where both have their rest", fields("p4 no c4 r\np5 no c3 r", -2), count=2),
    manual("`p2 rh 4 -4 4` with `p4 no c4 r e4` sounds throughout", fields("p2 rh 4 -4 4\np4 no c4 r e4", -3), count=3),
    manual("writes the last note of each chord only", fields("p2 < 0 0 1 >\np3 .9\np4 1 2 3 4 5 6", -6), values={4: "3 6"}, count=2),
    manual("Write `p3 1000.9`.", fields("p2 < 0 0 1 >\np3 1000.9", -6), values={3: ".9 " * 6}, count=6),
    manual("A p-field behind one with `:` needs a value for the added event too", fields("p4 1 : 2 3\np5 1 2 3", -2),
           values={5: "1 2 3"}, count=3),
    manual("Put it in front, and the event gets a copy", "i1 = 5 0 -2 {\np2 1\np3 1\np5 1 2\np4 1 : 2 3\n}\n", values={5: "1 1 2"}),
    manual("With `te(120)` the P2 `SE(8 1 [4])` lasts for 16 beats", fields("p2 rh SE(8 1 [4]) 2", 18, "te(120)\n"), count=17),
    manual('With a `T` the warning "DDF data truncated" comes in every tempo above 60', fields("p2 SE(T 1 [1])", 8, "te(61)\n"),
           count=8, says="DDF data truncated"),
    manual("`p3 300.5` warns of a duration below 0 exactly when all is well", fields("p3 300.5"), values={3: ".5"}, says="Duration < 0!"),
    manual("`EX(T 1 [p4 + 2 * 3])` adds first", fields("p4 2\np5 EX(T 1 [p4 + 2 * 3])"), values={5: "12"}),
    manual("`[p4 % 0]` is 0, and no error", fields("p4 5\np5 EX(T 1 [p4 % 0])"), values={5: "0"}),
    manual("`rd(.1)` moves a value by 5 % at most, to either side", fields("p4 100", -2000, "rd(.1)\n"), within=(4, 95, 105)),
    manual("`< RA(-4 1 [1 9]) >` draws four values and repeats them.",
           fields("p4 < RA(-4 1 [1 9]) >\np5 EX(-4 1 [p4 * 0]) EX(-4 1 [p4 * 1])", -8), count=8),
    manual("`#if(-1)` and `#if(.5)` drop their lines without a word", "#if(.5)\n" + frame() + "#endif\n" + frame(-1), count=1),
    manual("the value has to begin with a digit, `#if(0.5)`", "#if(0.5)\n" + frame() + "#endif\n" + frame(-1), count=5),
    manual("`-sm` is `-s`: a score comes, not a MIDI file", frame(), options=("-sm",), count=4),
    # README
    Claim(README, "| `-s` | no warnings and no notes on expansions and spans; the banner, summaries and errors still come |",
          fields("p4 1 2 3", -2), options=("-s",), count=2, says="2 events generated", silent="WARNING"),
    Claim(README, "Each option stands by itself: `-s -m`, not `-sm`.", frame(), options=("-s", "-m"), count=0, says="N:"),
    Claim(README, "but for an unknown name in `#if(...)`, which it tells and passes over", "#if(~typo)\n#endif\n" + frame(), count=4,
          says='There is no constant "typo"', status=0),
    # midi.md
    Claim(MIDI, "`c4` is 60, the C in the middle, and `a4` is 69", fields("p4 1\np5 no c4 a4", -2), options=("-m",), says="N:   69.00"),
    Claim(MIDI, "90 is velocity 122, 84 is 61, 78 is 30", fields("p4 db 90", -1), options=("-m",), says="V:  122.56"),
    Claim(MIDI, "90 is velocity 122, 84 is 61, 78 is 30", fields("p4 db 84", -1), options=("-m",), says="V:   61.4"),
    Claim(MIDI, "90 is velocity 122, 84 is 61, 78 is 30", fields("p4 db 78", -1), options=("-m",), says="V:   30.7"),
    Claim(MIDI, "64 is velocity 64", fields("p4 pf(258.1) 64", -1), options=("-m",), says="V:   64.0"),
    Claim(MIDI, "`-s` does not keep this quiet", fields("p4 1", -1), options=("-m", "-s"), says="ON\tN:   60.00"),
    Claim(MIDI, "with `-m` `cf0` is key 11", fields("p4 1\np5 no cf0", -1), options=("-m",), says="N:   11.00"),
    Claim(MIDI, "Below `c0` a score takes a note for a rest", fields("p4 no cf0 c0", -2), values={4: "0"}, count=1),
]


def column(run, field):
    """The values of a p-field in all events that have it."""
    rows = [line[1:].split() for line in run.events]
    return [float(row[field - 1]) for row in rows if len(row) >= field]


def near(one, other):
    return abs(one - other) < 0.00051


def faults_of_values(claim, run):
    for field, values in (claim.values or {}).items():
        wanted = [float(value) for value in values.split()]
        real = column(run, field)[: len(wanted)]
        if len(real) != len(wanted) or not all(map(near, real, wanted)):
            yield f"P{field} is {real}, not {wanted}"
    if claim.count is not None and len(run.events) != claim.count:
        yield f"{len(run.events)} events, not {claim.count}"
    if claim.within:
        field, low, high = claim.within
        real = column(run, field)
        close = (high - low) / 20
        if not (low - 0.001 <= min(real) < low + close and high - close < max(real) <= high + 0.001):
            yield f"P{field} is from {min(real)} to {max(real)}, not from {low} to {high}"
    if claim.only:
        field, allowed = claim.only
        if set(column(run, field)) != {float(value) for value in allowed}:
            yield f"P{field} is {sorted(set(column(run, field)))}"


def faults_of_messages(claim, run):
    if claim.says not in run.messages:
        yield f"it does not say {claim.says!r} but\n{run.messages}"
    if claim.silent and re.search(claim.silent, run.messages):
        yield f"it says {claim.silent!r}"
    if not claim.says and run.complaints:
        yield f"it says {run.complaints}"
    status = claim.status if claim.status is not None else int(claim.says.startswith("ERROR"))
    if run.status != status:
        yield f"status {run.status}, not {status}"


def squeezed(text):
    return " ".join(text.split())


def faults_of(korvo, claim, text):
    """What is wrong with a claim; `text` is its document."""
    if squeezed(claim.quote) not in squeezed(text):
        return ["the document does not say this"]
    run = blocks.run_piece(korvo, claim.piece, claim.options, claim.files)
    return [*faults_of_values(claim, run), *faults_of_messages(claim, run)]


def ticks_of_notes(korvo, piece):
    """The ticks of the note-ons of a piece's MIDI file, as midicsv reads them."""
    with tempfile.TemporaryDirectory(prefix="korvo-documents-") as name:
        Path(name, "piece.txt").write_text(piece, encoding="utf-8")
        blocks.run_in(korvo, name, ["-m"])
        listing = subprocess.run(["midicsv", Path(name, "piece.mid")], capture_output=True, text=True, check=True).stdout
    return [int(line.split(", ")[1]) for line in listing.splitlines() if "Note_on_c" in line]


def faults_of_ticks(korvo):
    """A hundred notes: .1 seconds are 48 ticks, and from the tenth note on a note-off, a hair away, shares each step and
    costs it a tick more."""
    quote = "should begin the last one at tick 4752; it begins at 4662, which is .19 seconds early"
    if quote not in squeezed((ROOT / MIDI).read_text(encoding="utf-8")):
        return [f"{MIDI} does not say: {quote}"]
    last = ticks_of_notes(korvo, fields("p2 .1\np3 1001\np4 1000", -100))[-1]
    return [] if last == 99 * 48 - 90 else [f"{MIDI}: {quote}: it begins at {last}"]


def faults_of_draws(korvo):
    """The choices behind a deviation are the same with it and without."""
    quote = "What is drawn for a deviation is drawn without one as well: setting `rd` changes no other choice."
    if quote not in squeezed((ROOT / MANUAL).read_text(encoding="utf-8")):
        return [f"{MANUAL} does not say: {quote}"]
    chance = "p4 {} 100\np5 in SE(T 1 [1 2 3 4 5 6 7 8 9])"
    runs = [blocks.run_piece(korvo, fields(chance.format(deviation), -50)) for deviation in ("", "dv(.5)")]
    moved = column(runs[0], 4) != column(runs[1], 4)
    same = column(runs[0], 5) == column(runs[1], 5) and len(set(column(runs[0], 5))) == 9
    return [] if moved and same else [f"{MANUAL}: {quote}"]


def faults_of_columns(korvo):
    """The table of output kinds shows each column as it stands in a score, blanks included."""
    shown = {"re": "    1.500", "in": "    3", "db": "90.3", "hz": "  440.00000", "op": " 8.090", "od": "8.75", "tr": "1.059463",
             "bn": "   41"}
    values = {"re": "1.5", "in": "3", "db": "32767", "hz": "57", "op": "57", "od": "57", "tr": "1", "bn": "57"}
    table = (ROOT / MANUAL).read_text(encoding="utf-8")
    faults = [f"{MANUAL} does not show `{cell}`" for cell in shown.values() if f"`{cell}`" not in table]
    text = "".join(f"p{number}({kind}) {values[kind]}\n" for number, kind in enumerate(shown, 4))
    line = " ".join(["i1    0.000  1.000", *shown.values(), ""])
    real = blocks.run_piece(korvo, fields(text, -1)).events
    return faults if real == [line] else [*faults, f"{MANUAL}: the columns are {real}"]


def main():
    korvo = sys.argv[1]
    texts = {name: (ROOT / name).read_text(encoding="utf-8") for name in (MANUAL, MIDI, README)}
    faults = [
        f"{claim.document}: {claim.quote}: {fault}\n{claim.piece}"
        for claim in CLAIMS
        for fault in faults_of(korvo, claim, texts[claim.document])
    ]
    faults += faults_of_ticks(korvo) + faults_of_draws(korvo) + faults_of_columns(korvo)
    print("\n".join([*faults, f"{len(CLAIMS) + 3} claims, {len(faults)} faults"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
