#!/usr/bin/env python3
"""Tests ten thousand values of each distribution against the distribution's own formula.

    distributions.py KORVO_BINARY

Kolmogorov-Smirnov at a level of 0.1 per cent: of a thousand right programs one would fail. The seeds are fixed, so this
one fails always or never. What a range gives is compared with its place in the range, 0..1; the formulas are worked out
from how the values are drawn, not from drawing them.
"""

import math
import os
import subprocess
import sys
import tempfile
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent.parent))

import clock  # noqa: E402

COUNT = 10000
LIMIT = math.sqrt(-math.log(0.001 / 2) / 2)  # 1.949, for the largest distance times sqrt(COUNT)
SEEDS = (1, 42, 65535)
# The beta distribution crowds at both ends: this range shows places as near as 1e-9 to its lower end.
HIGH = 100000000


def uniform(x):
    return x


def low_exponential(x):
    """w = ln(u) / ln(0.001), at most 1."""
    return 1 - math.exp(-6.9078 * x) if x < 1 else 1.0


def high_exponential(x):
    """1 - w; a thousandth of all values is 0."""
    return math.exp(-6.9078 * (1 - x))


def triangle(x):
    return 2 * x * x if x < 0.5 else 1 - 2 * (1 - x) ** 2


def gaussian(x):
    """The sum of twelve, moved and scaled; what is outside goes to the ends."""
    if x >= 1:
        return 1.0
    y = (x - 0.5) / 0.155 + 6
    terms = ((-1) ** k * math.comb(12, k) * (y - k) ** 12 for k in range(math.floor(y) + 1))
    return math.fsum(terms) / math.factorial(12)


def double_exponential(x):
    """Two halves, each like the logarithm of a draw over 14, back to back."""
    if x >= 1:
        return 1.0
    return 0.5 * math.exp(14 * (x - 0.5)) if x < 0.5 else 1 - 0.5 * math.exp(14 * (0.5 - x))


def beta(x):
    """Two fifth powers whose sum is not above 1 make Beta(1/5, 1/5)."""
    if x > 0.5:
        return 1 - beta(1 - x)
    # the incomplete integral of t^(a-1) (1-t)^(a-1) as a power series in x
    a = 0.2
    term, total = 1.0, 0.0
    for k in range(200):
        total += term / (a + k)
        term *= x * (k + 1 - a) / (k + 1)
    complete = math.gamma(a) ** 2 / math.gamma(2 * a)
    return x**a * total / complete


FORMULAS = {
    "": uniform,
    "f": uniform,
    "l": low_exponential,
    "h": high_exponential,
    "t": triangle,
    "g": gaussian,
    "x": double_exponential,
    "b": beta,
}


def values(korvo, seed, letter):
    """The places in the range that Korvo chose, in order of size."""
    call = f"ra(T 1 [{letter} 0 {HIGH}])"
    piece = f"rs({seed})\ni1 = 4 0 -{COUNT} {{\np2 0\np3 1001\np4 {call}\n}}\n"
    with tempfile.TemporaryDirectory(prefix="korvo-distributions-") as folder:
        Path(folder, "piece.txt").write_text(piece)
        subprocess.run(
            [korvo, "-s", "piece.txt", "piece.sco"],
            cwd=folder,
            check=True,
            stdin=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            timeout=clock.HANG,
        )
        lines = Path(folder, "piece.sco").read_text().splitlines()
    return sorted(float(line.split()[3]) / HIGH for line in lines if line.startswith("i"))


def distance(places, formula):
    """The largest distance, times sqrt(n). A place stands for all places that single precision and print make alike."""
    n = len(places)
    largest = 0.0
    i = 0
    while i < n:
        j = i
        while j < n and places[j] == places[i]:
            j += 1
        half_step = max(places[i] * 2**-24, 0.0005 / HIGH)
        below = formula(places[i] - half_step) if places[i] > 0 else 0.0
        above = formula(min(places[i] + half_step, 1.0)) if places[i] < 1 else 1.0
        largest = max(largest, i / n - below, below - i / n, j / n - above, above - j / n)
        i = j
    return largest * math.sqrt(n)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    korvo = os.path.abspath(sys.argv[1])
    faults = []
    for letter, formula in FORMULAS.items():
        for seed in SEEDS:
            places = values(korvo, seed, letter)
            result = distance(places, formula)
            if len(places) != COUNT or result > LIMIT:
                faults.append(f"[{letter}], seed {seed}: {result:.3f}, allowed {LIMIT:.3f}")
        # the test is worth something only if it tells the distributions apart
        for other, other_formula in FORMULAS.items():
            if other_formula is not formula and distance(places, other_formula) <= 3 * LIMIT:
                faults.append(f"the values of [{letter}] would pass for [{other}]")
    for fault in faults:
        print(f"FAIL {fault}")
    print(f"{len(faults)} failed" if faults else f"{len(FORMULAS)} distributions passed")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
