"""The global area between the blocks, and the settings statements.

The scanner runs every statement it meets and stops at the lower-case "i" of
the next block.  Statements are recognised at the start of a line and right
after another statement only.
"""

import names
import preproc
import reader as lex
from messages import Fail

STATEMENTS = ('pf', 'rd', 'rs', 'sr', 'te')


def scan_to_block(run):
    """0 with the position on the block's "i", -1 at the end of the input."""
    r, t = run.reader, run.reader.t
    if r.read_line() < 0:
        return -1
    while True:
        t.skip_ws()
        while statement_here(t):
            code = names.lookup(run, t)
            if code is None:
                raise Fail(22)
            run_statement(run, code)
            t.skip_ws()
        if rest_of_line(run):
            return 0
        if r.read_line() < 0:
            return -1


def statement_here(t):
    return t.ch() in '#>' or lex.lower(t.ch()) + lex.lower(t.ch(1)) in STATEMENTS


def rest_of_line(run):
    """Blanks and comments up to the end of the line; true at a block's "i"."""
    r, t = run.reader, run.reader.t
    while not t.at_end():
        if t.ch() == 'i':
            if run.verbose_tempo:
                run.tempo.list()
            return True
        if t.ch() in lex.SPACES:
            t.pos += 1
        elif r.comment_here():
            try:
                closed = r.skip_comment() == 0
            except Fail:
                closed = False
            if not closed:
                raise Fail(3)
        else:
            raise Fail(22)
    return False


def run_statement(run, code):
    if code == names.TE:
        run.tempo.statement()
    elif code in (names.RD, names.RS, names.SR):
        setting(run, code)
    elif code == names.SCORE_LINE:
        score_line(run)
    elif code == names.NUMBER_SIGN:
        preproc.macro_statement(run)
    elif code == names.CONST:
        preproc.constant_statement(run)
    else:
        raise Fail(47)


def score_line(run):
    """The rest of the line goes into the score as it is."""
    t = run.reader.t
    if not run.midi:
        run.output.write('\n' + t.s[t.pos:])
    t.pos = len(t.s)


# Settings: a name and one value in parentheses

def setting(run, code):
    if code == names.PF and run.field.number == 2:
        raise Fail(126)
    r, t = run.reader, run.reader.t
    r.skip_blanks()
    if t.ch() != '(':
        raise Fail(96)
    t.pos += 1
    r.skip_blanks()
    value = {names.RS: t.read_ushort, names.SR: t.read_ulong}.get(code, t.read_float)()
    if value is None:
        raise Fail({names.RS: 29, names.SR: 65, names.PF: 125}.get(code, 28))
    r.skip_blanks()
    if t.ch() != ')':
        raise Fail(19)
    t.pos += 1
    if code == names.RS:
        run.random.seed(value)
    elif code == names.SR:
        run.sample_rate = value
    elif code == names.PF:
        run.field.factor = value
    else:
        deviation_setting(run, code, value)


def deviation_setting(run, code, value):
    if code == names.RD:
        run.rd = value
    else:
        run.field.dv = value
    if value < 0 or value > 100:
        raise Fail(28)
    if value > 1:
        run.screen.warning(26)
