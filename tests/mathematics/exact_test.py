#!/usr/bin/env python3
"""The functions of base/mathematics.h give the nearest double, always. Worked out again with integers and with Python's
decimal numbers, 60 digits long, which know nothing of doubles.

    exact_test.py KORVO_VALUES [COUNT]     so many random places for each function; 2000 if not given
"""

import random
import struct
import subprocess
import sys
import unittest
from decimal import Decimal, getcontext
from fractions import Fraction

VALUES = None
COUNT = 2000

getcontext().prec = 60
LOGARITHM_OF_TWO = Decimal(2).ln()

# What pieces use: the decibels of an amplitude, and the ratio of a semitone.
DECIBEL = 0.11512925
SEMITONE = 1.059463094359
HALF_PI = 1.5707963267948966
UNIT = struct.unpack("<f", struct.pack("<f", 4.656613e-10))[0]  # what a draw is multiplied by


def single(x):
    return struct.unpack("<f", struct.pack("<f", x))[0]


def bits(x):
    return struct.unpack("<Q", struct.pack("<d", x))[0]


def double(text):
    return struct.unpack("<d", struct.pack("<Q", int(text, 16)))[0]


def nearest(value):
    """The double next to an exact value. Python divides integers with one rounding."""
    if isinstance(value, Decimal):
        value = Fraction(value)
    try:
        return value.numerator / value.denominator
    except OverflowError:
        return float("inf")


def exact_sine(x):
    """The series, until its terms no longer count."""
    x = Decimal(x)
    term, result, n = x, Decimal(0), 1
    while abs(term) > Decimal(10) ** -58 * abs(x):
        result += term
        n += 2
        term = -term * x * x / (n * (n - 1))
    return result


EXACT = {
    "exponential": lambda x, y: Decimal(x).exp(),
    "powerOfTwo": lambda x, y: (Decimal(x) * LOGARITHM_OF_TWO).exp(),
    "logarithm": lambda x, y: Decimal(x).ln(),
    "power": lambda x, y: (Decimal(x).ln() * Decimal(y)).exp(),
    "fifthPower": lambda x, y: Fraction(x) ** 5,
    "sine": lambda x, y: exact_sine(x),
}


def values(calls):
    """What the program gives for calls (function, x, y)."""
    lines = "".join(f"{name} {bits(x):016x} {bits(y):016x}\n" for name, x, y in calls)
    done = subprocess.run([VALUES], input=lines, check=True, capture_output=True, text=True)
    return [double(line) for line in done.stdout.split()]


class Exact(unittest.TestCase):
    def compare(self, name, arguments):
        calls = [(name, x, y) for x, y in arguments]
        found = values(calls)
        self.assertEqual(len(found), len(calls))
        for (_, x, y), value in zip(calls, found):
            self.assertEqual(value.hex(), nearest(EXACT[name](x, y)).hex(), f"{name} {x.hex()} {y.hex()}")

    def random(self):
        return random.Random(self.id())

    def draws(self, generator):
        """Draws from 0 to 1 as distributions make them, small ones as often as large ones."""
        return [single(generator.randrange(1, 2 ** generator.randrange(1, 32)) * UNIT) for _ in range(COUNT)]

    def test_amplitudes_of_decibels(self):
        self.compare("exponential", [(decibels * DECIBEL, 0.0) for decibels in range(97)])

    def test_exponentials(self):
        generator = self.random()
        self.compare("exponential", [(generator.uniform(-700, 709), 0.0) for _ in range(COUNT)])
        self.compare("exponential", [(generator.uniform(-1, 1), 0.0) for _ in range(COUNT)])

    def test_octaves(self):
        generator = self.random()
        self.compare("powerOfTwo", [(float(octave), 0.0) for octave in range(-1022, 1024)])
        semitones = [single(generator.uniform(-150, 150)) for _ in range(COUNT)]
        self.compare("powerOfTwo", [(int(each / 12) + single(each % 12) / 12, 0.0) for each in semitones])
        self.compare("powerOfTwo", [(generator.uniform(-1022, 1024), 0.0) for _ in range(COUNT)])

    def test_logarithms_of_draws(self):
        self.compare("logarithm", [(draw, 0.0) for draw in self.draws(self.random())])

    def test_logarithms_of_whole_numbers(self):
        generator = self.random()
        self.compare("logarithm", [(float(n), 0.0) for n in range(1, COUNT)])
        self.compare("logarithm", [(single(2 ** generator.uniform(10, 63)), 0.0) for _ in range(COUNT)])

    def test_logarithms_around_one(self):
        near = [(1 + sign * 2.0**-n, 0.0) for n in range(1, 53) for sign in (-1, 1)]
        self.compare("logarithm", near + [(1.0, 0.0)])

    def test_logarithms_of_all_sizes(self):
        generator = self.random()
        self.compare("logarithm", [(2 ** generator.uniform(-1022, 1023), 0.0) for _ in range(COUNT)])

    def test_transpositions(self):
        generator = self.random()
        self.compare("power", [(SEMITONE, float(semitones)) for semitones in range(-128, 129)])
        self.compare("power", [(SEMITONE, single(generator.uniform(-48, 48))) for _ in range(COUNT)])
        self.compare("power", [(SEMITONE, single(generator.uniform(-12000, 12280))) for _ in range(COUNT)])

    def test_curves(self):
        generator = self.random()
        ways = [(generator.randrange(1, 1000) / 1000, single(generator.uniform(0, 10))) for _ in range(COUNT)]
        # Exact halves between two doubles, which few exponents bring, are no matter: all that comes is rounded again.
        self.compare("power", [(way, exponent) for way, exponent in ways if exponent != int(exponent)])

    def test_powers_of_draws(self):
        self.compare("fifthPower", [(draw, 0.0) for draw in self.draws(self.random())])

    def test_sines(self):
        generator = self.random()
        self.compare("sine", [(n / 1000 * HALF_PI, 0.0) for n in range(1, 1001)])
        self.compare("sine", [(generator.random() * HALF_PI, 0.0) for _ in range(COUNT)])
        self.compare("sine", [(2 ** generator.uniform(-60, 0), 0.0) for _ in range(COUNT)])


if __name__ == "__main__":
    if len(sys.argv) > 2:
        COUNT = int(sys.argv.pop(2))
    VALUES = sys.argv.pop(1)
    unittest.main()
