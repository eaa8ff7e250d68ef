"""The pieces of the benchmark, as text."""

COMMON = """i1 = 6 0 -{events} {{
  p2 RA(T 1 [.01 .1])
  p3 RA(T 1 [1000.1 1000.5])
  p4 RA(T 1 [0 1000])
  p5 SE(T 1 [100 200 300 400 500])
  p6 RW(T 1 [0 1] .25 .5)
}}
"""

# A hundred notes sound at once: they last a hundred times the mean of the time between them.
MIDI = """i1 = 5 0 -{events} {{
  p2 RA(T 1 [.005 .015])
  p3 RA(T 1 [1000.9 1001.1])
  p4 RA(T 1 [0 32767])
  p5 RA(T 1 [20 100])
}}
"""

TINY = """te(120)
i1 = 5 0 8 {
  p2 rh < 8 8 4 >
  p3 .9
  ; four notes
  p4(op) no < c4 e
    g c5 >
  p5 80
}
"""


def macros(lines):
    """A line is a macro call with two arguments and a constant reference."""
    head = "#const loud 80\n#define pair(a, b) #$a $b#\n"
    body = "".join(f"$pair({i % 7}'{i % 5}) ~loud\n" for i in range(lines))
    return head + block(lines, body)


def written_out(lines):
    """The same piece as macros(), without them."""
    return block(lines, "".join(f"{i % 7} {i % 5} 80.000\n" for i in range(lines)))


def block(lines, body):
    return f"i1 = 4 0 -{3 * lines} {{\np2 1\np3 1\np4 {body}}}\n"


def calls(number):
    """Many data function calls in one p-field."""
    return f"i1 = 4 0 -{4 * number} {{\np2 .1\np3 1\np4 " + "RA(-4 1 [0 1])\n" * number + "}\n"


def groups(number):
    """S2: every group adds two events."""
    return f"i1 = 4 0 -{number} {{\np2 .1\np3 1\np4 S2(T 1 [1:2:3 4:5:6])\n}}\n"


def insertions(number):
    """A loop with ":": every turn adds an event."""
    return f"i1 = 4 0 -{number} {{\np2 .1\np3 1\np4 < 1 : 2 >\n}}\n"
