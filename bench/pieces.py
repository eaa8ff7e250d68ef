"""The pieces of the benchmark, as text."""

COMMON = """i1 = 6 0 -{events} {{
  p2 RA(T 1 [.01 .1])
  p3 RA(T 1 [1000.1 1000.5])
  p4 RA(T 1 [0 1000])
  p5 SE(T 1 [100 200 300 400 500])
  p6 RW(T 1 [0 1] .1 .5)
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


def common(events):
    return COMMON.format(events=events)


def midi(events):
    return MIDI.format(events=events)


def tiny(_size):
    return TINY


def block(events, values):
    """A block whose P4 is made of these values."""
    return f"i1 = 4 0 -{events} {{\np2 1\np3 1\np4 {values}}}\n"


def numbers(count):
    """Plain numbers, ten in a line, eight bytes each with what stands behind it."""
    values = [f"{100 + i * 7919 % 900}.{i * 104729 % 1000:03}" for i in range(count)]
    return block(count, "".join(" ".join(values[i:i + 10]) + "\n" for i in range(0, count, 10)))


def macro_calls(count):
    """Calls with two arguments, each of which becomes a value."""
    calls = "".join(f"$pair({i % 7}'{i % 5})\n" for i in range(count))
    return "#define pair(a, b) #$a $b#\n" + block(2 * count, calls)


def equations(count):
    """Equations of constants and numbers."""
    values = "".join(f"~[base + {i % 7} * step]\n" for i in range(count))
    return "#const base 60\n#const step 1.5\n" + block(count, values)


def function_calls(count):
    """Many data function calls in one p-field."""
    return block(4 * count, "RA(-4 1 [0 1])\n" * count)


def groups(count):
    """S2: every group adds two events."""
    return f"i1 = 4 0 -{count} {{\np2 .1\np3 1\np4 S2(T 1 [1:2:3 4:5:6])\n}}\n"


def insertions(count):
    """A loop with ":": every turn adds an event."""
    return f"i1 = 4 0 -{count} {{\np2 .1\np3 1\np4 < 1 : 2 >\n}}\n"
