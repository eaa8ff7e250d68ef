"""Numbers of the model: single precision, roundings, text of reals, random draws.

Python has only double precision.  Every single-precision step is made by
computing in double precision and rounding the result once more through a
32-bit float, which for + - * / is exactly what the hardware does.  Divisions
by zero, overflows and the library functions follow the C library: they give
infinities and not-a-numbers instead of raising exceptions.  The random
generator is the C library's `rand` (additive feedback over 31 words).
"""

import decimal
import fractions
import math
import struct

_SINGLE = struct.Struct('<f')
NEG_NAN = struct.unpack('<d', struct.pack('<Q', 0xFFF8000000000000))[0]
INT32_MIN, INT32_MAX = -2**31, 2**31 - 1
INT64_MIN, INT64_MAX = -2**63, 2**63 - 1
UINT64_MAX = 2**64 - 1


class GiveUp(Exception):
    """The piece is too large for the model (exit status 77)."""


def f32(x):
    """x rounded to single precision."""
    try:
        return _SINGLE.unpack(_SINGLE.pack(x))[0]
    except OverflowError:
        return math.copysign(math.inf, x)


def add(a, b):
    return f32(a + b)


def sub(a, b):
    return f32(a - b)


def mul(a, b):
    return f32(a * b)


def ddiv(a, b):
    """Double division with the C results for a zero divisor."""
    if b == 0:
        if a != a:
            return a
        if a == 0:
            return NEG_NAN
        return math.copysign(math.inf, a) * math.copysign(1.0, b)
    return a / b


def div(a, b):
    return f32(ddiv(a, b))


def dlog(x):
    if x == 0:
        return -math.inf
    if x < 0:
        return NEG_NAN
    return math.log(x)


def dpow(x, y):
    try:
        return math.pow(x, y)
    except OverflowError:
        return math.inf
    except ValueError:
        return math.inf if x == 0 else NEG_NAN


def nearest_power(x, y):
    """x above 0 to the power of y, as the double next to the exact value, which the C library often misses by a bit."""
    rough = dpow(x, y)
    if rough != rough or rough in (0.0, math.inf):
        return rough
    with decimal.localcontext() as context:
        context.prec = 50
        exact = fractions.Fraction((decimal.Decimal(x).ln() * decimal.Decimal(y)).exp())
    return exact.numerator / exact.denominator


def dexp2(x):
    try:
        return math.exp2(x)
    except OverflowError:
        return math.inf


def trunc_real(x):
    """x without its fraction, kept as a real (infinities and nan stay)."""
    if x != x or x in (math.inf, -math.inf):
        return x
    return math.copysign(float(math.trunc(x)), x)


def round_half_up(v):
    """The nearest integer as a real, exact halves going up."""
    if v != v or v in (math.inf, -math.inf):
        return v
    low = math.copysign(float(math.floor(v)), v) if v >= 0 else float(math.floor(v))
    high = math.copysign(float(math.ceil(v)), v)
    return low if v - low < high - v else high


def to_int(v, low=INT64_MIN, high=INT64_MAX):
    """v truncated to an integer; nan is 0, values out of range the nearest end."""
    if v != v:
        return 0
    if v <= low:
        return low
    if v >= high:
        return high
    return int(v)


def shrink(r, limit):
    """Bring r into -limit..limit by steps of limit; 0 when steps have no effect."""
    while r > limit:
        step = sub(r, limit)
        if step == r:
            return 0.0
        r = step
    while -r > limit:
        step = add(r, limit)
        if step == r:
            return 0.0
        r = step
    return r


def remainder(a, b):
    """a % b in single precision, with the sign of a; 0 when b is 0."""
    if b == 0:
        return 0.0
    m = abs(b)
    return shrink(sub(a, mul(trunc_real(div(a, m)), m)), m)


def real_text(width, decimals, x):
    """printf's %*.*f."""
    if x != x:
        text = '-nan' if math.copysign(1.0, x) < 0 else 'nan'
    else:
        text = '%.*f' % (decimals, x)
    return text.rjust(width)


class Random:
    """The C library's rand/srand, started as by srand(1)."""

    LIMIT = 50_000_000

    def __init__(self):
        self.drawn = 0
        self.seed(1)

    def seed(self, seed):
        word = seed or 1
        table = [word]
        for _ in range(30):
            word = 16807 * (word % 127773) - 2836 * (word // 127773)
            if word < 0:
                word += 2147483647
            table.append(word)
        self._table, self._front, self._rear = table, 3, 0
        for _ in range(310):
            self._next()

    def _next(self):
        table, front = self._table, self._front
        value = table[front] = (table[front] + table[self._rear]) & 0xFFFFFFFF
        self._front = front + 1 if front < 30 else 0
        self._rear = self._rear + 1 if self._rear < 30 else 0
        return value >> 1

    def integer(self):
        self.drawn += 1
        if self.drawn > self.LIMIT:
            raise GiveUp
        return self._next()

    def unit(self):
        """One draw in 0..1, single precision."""
        return mul(f32(self.integer()), 4.656612873077393e-10)

    def unit_not_zero(self):
        u = self.unit()
        while u == 0:
            u = self.unit()
        return u
