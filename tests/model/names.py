"""Two-letter names and their codes.

One code space serves statements, input modes, output kinds and data functions.
The lookup is a cascade: the first letter chooses where the groups are entered,
and the second letter is compared with that group and with all that follow it.
"""

from reader import DIGITS, lower

(EX, TE, DB, DV, HZ, HO, IN, MO) = range(8)
(SE, NO, OP, PF, OD, RE, RH, RA, RD, RS, RW) = range(9, 20)
(SCORE_LINE, NUMBER_SIGN, MS, XX, S2, CONST, TR, BN, SR) = range(20, 29)

CASCADE = [
    ('d', {'v': DV, 'b': DB}),
    ('e', {'x': EX}),
    ('h', {'o': HO, 'z': HZ}),
    ('i', {'n': IN}),
    ('m', {'s': MS, 'o': MO}),
    ('n', {'o': NO}),
    ('o', {'p': OP, 'd': OD}),
    ('p', {'f': PF}),
    ('s', {'2': S2, 'r': SR, 'e': SE}),
    ('r', {'a': RA, 'd': RD, 'e': RE, 'h': RH, 's': RS, 'w': RW}),
    ('t', {'r': TR, 'e': TE}),
    ('x', {'x': XX}),
    ('b', {'n': BN}),
]

DEFAULT_PRECISION = 3
DEFAULT_FFT_INDEX = 4


def lookup(run, t, previous=0):
    """The code of the name at the position, which moves behind it; None if there is none."""
    first, second = lower(t.ch()), lower(t.ch(1))
    if first == '>':
        t.pos += 1
        return SCORE_LINE
    if first in '#$':
        t.pos += 1
        return CONST if second == 'c' else NUMBER_SIGN
    groups = [letter for letter, _ in CASCADE]
    if first not in groups:
        return None
    code = previous
    for _, group in CASCADE[groups.index(first):]:
        if second in group:
            code = group[second]
            break
    t.step(2)
    return finish_name(run, t, code)


def finish_name(run, t, code):
    """What may follow a name directly: the "x" of NO and OP, a digit of RE and BN."""
    field = run.field
    if code in (NO, OP):
        field.quarter_tones = lower(t.ch()) == 'x'
        if field.quarter_tones:
            t.pos += 1
    elif code in (RE, BN):
        number = DEFAULT_PRECISION if code == RE else DEFAULT_FFT_INDEX
        if t.ch() in DIGITS:
            number = int(t.take_while(DIGITS))
            if number > 7:
                return None
        if code == RE:
            field.precision = number
        else:
            field.fft_index = number
    return code


def is_block_name(t):
    """Does a name that may stand in a block begin here?"""
    first, second = lower(t.ch()), lower(t.ch(1))
    if first == '#':
        return True
    seconds = {'d': 'bv', 'e': 'x', 'h': 'o', 'n': 'o', 'i': 'n', 'm': 'os', 'o': 'p',
               'p': 'f', 'r': 'adehsw', 's': 'e2'}
    return second in seconds.get(first, '')


def is_field_name(t):
    """The same inside a p-field, where "dx(" is a name, too."""
    if lower(t.ch()) == 'd' and lower(t.ch(1)) == 'x':
        ahead = 2
        while t.ch(ahead) in ' \t\n\v\f\r':
            ahead += 1
        return t.ch(ahead) == '('
    return is_block_name(t)
