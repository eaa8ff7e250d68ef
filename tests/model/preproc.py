"""Macros, named constants with their equations, and conditional sections.

Everything here rewrites the text it is given in place.  On return of an
expansion the position stands on the first inserted character.  On a failure
the position stands behind the last character that the failing step took.
"""

import math

import reader as lex
from messages import CONTEXT_ONLY, Fail
from numeric import ddiv, div, f32, remainder, round_half_up

NAME_MAX = BODY_MAX = 4096
EXPANSIONS_MAX = 4096
NESTING_MAX = 64
TERMS_MAX = 30
PARAMS_MAX = 128


class Macro:
    def __init__(self, name, params, body):
        self.name, self.params, self.body = name, params, body


def not_found(run, kind, name):
    run.screen.show('\n\nERROR: Line %d: There is no ' + kind + ' "%s" in your input file!\n',
                    run.reader.number, name)
    raise Fail(CONTEXT_ONLY)


def too_long(run, what, limit):
    run.screen.show('\n\nERROR: Line %d: The ' + what + ' has exceeded the', run.reader.number)
    run.screen.show(' maximum number\nof characters allowed (%d).\n', limit)
    raise Fail(CONTEXT_ONLY)


def defined_name(run, error, what):
    """The name that a statement defines, blanks and comments before it skipped."""
    r = run.reader
    r.skip_blanks_and_comments()
    if r.t.ch() not in lex.LETTERS:
        raise Fail(error)
    name = r.t.take_name()
    if len(name) >= NAME_MAX:
        too_long(run, what, NAME_MAX)
    return name


def keyword(t, letters):
    """A loosely compared keyword: one right letter is enough."""
    if not any(t.ch(i) == c for i, c in enumerate(letters)):
        raise Fail(80)
    t.step(len(letters))
    if t.ch() not in lex.SPACES:
        raise Fail(80)


# Macros: statements

def macro_statement(run):
    """The statement behind a "#" in the global area."""
    t = run.reader.t
    c = t.ch()
    if c == 'd':
        define_macro(run)
    elif c == 'i':
        read_if_value(run, t, lambda value: None)
    elif c == 'e':
        if t.at('endif'):
            t.pos += 5
    else:
        undefine_macro(run)


def define_macro(run):
    r, t = run.reader, run.reader.t
    t.step(6)
    if t.ch() not in lex.SPACES:
        raise Fail(80)
    r.skip_blanks()
    name = defined_name(run, 88, 'macro name')
    params = macro_parameters(run) if t.ch() == '(' else []
    r.skip_blanks()
    body = macro_body(run)
    if find(run.macros, name):
        raise Fail(84)
    run.macros.insert(0, Macro(name, params, body))


def macro_parameters(run):
    r, t = run.reader, run.reader.t
    t.pos += 1
    params = []
    while True:
        r.skip_blanks_and_comments()
        if len(params) >= PARAMS_MAX:
            raise Fail(32)
        if t.ch() not in lex.LETTERS:
            raise Fail(88)
        name = t.take_while(lex.WORD)
        while t.at_end() and not r.stream.eof and r.read_line() == 0:
            name += t.take_while(lex.WORD)
        params.append(name)
        r.skip_blanks_and_comments()
        if t.ch() in ",'#":
            t.pos += 1
        r.skip_blanks()
        if t.ch() == ')':
            t.pos += 1
            return params


def macro_body(run):
    r, t = run.reader, run.reader.t
    r.skip_blanks_and_comments()
    if t.ch() != '#':
        raise Fail(81)
    t.pos += 1
    body, comment = [], ''

    def copy(count=1):
        for _ in range(count):
            body.append(t.ch())
            t.pos += 1
            if len(body) >= BODY_MAX:
                too_long(run, 'macro body', BODY_MAX)

    while True:
        if t.at_end():
            if r.stream.eof:
                raise Fail(8)
            body.append('\n')
            if len(body) >= BODY_MAX:
                too_long(run, 'macro body', BODY_MAX)
            if r.read_line() < 0:
                raise Fail(8)
            if comment == ';':
                comment = ''
        elif comment == ';':
            copy()
        elif comment == '*':
            if t.at('*/'):
                comment = ''
                copy(2)
            else:
                copy()
        elif t.ch() == '#':
            t.pos += 1
            return ''.join(body)
        elif t.ch() == ';':
            comment = ';'
            copy()
        elif t.at('/*'):
            comment = '*'
            copy(2)
        else:
            copy()


def undefine_macro(run):
    r, t = run.reader, run.reader.t
    keyword(t, 'undef')
    r.skip_blanks()
    start = t.pos
    while not t.at_end() and t.ch() not in lex.SPACES:
        t.pos += 1
    name = t.s[start:t.pos]
    if not run.macros:
        raise Fail(91)
    macro = find(run.macros, name)
    if not macro:
        not_found(run, 'macro', name)
    run.macros.remove(macro)


# Macros: calls

def find(macros, name):
    return next((m for m in macros if m.name == name), None)


def expand_call(run, text, scope, nesting):
    """Replace the call whose "$" stands just before the position.

    `scope` holds the arguments of the enclosing call, None at the outside.
    """
    start = text.pos - 1
    run.reader.expansions += 1
    if nesting > NESTING_MAX or run.reader.expansions > EXPANSIONS_MAX:
        text.pos = start
        raise Fail(32)
    name = text.take_name()
    macro = find(scope, name) if scope else None
    macro = macro or find(run.macros, name)
    if not macro:
        not_found(run, 'macro', name)
    body = macro.body
    if macro.params:
        body = expand_body(run, body, call_arguments(text, macro), nesting)
    run.screen.info('\n\tExpanding macro "%s" into line %d...', macro.name, run.reader.number)
    replace(text, start, call_end(text.s, start), body)


def call_arguments(text, macro):
    text.skip_ws()
    if text.ch() != '(':
        raise Fail(85)
    text.pos += 1
    arguments = []
    for i, param in enumerate(macro.params):
        last = i == len(macro.params) - 1
        start = text.pos
        while text.ch() not in (')' if last else "'#"):
            if text.at_end():
                raise Fail(86)
            if last and text.ch() == "'":
                raise Fail(82)
            text.pos += 1
        body = text.s[start:text.pos]
        text.pos += 1
        if find(arguments, param):
            raise Fail(84)
        arguments.insert(0, Macro(param, [], body))
    return arguments


def expand_body(run, body, arguments, nesting):
    work = lex.Text(body)
    while True:
        k = work.s.find('$', work.pos)
        if k < 0:
            return work.s
        work.pos = k + 1
        expand_call(run, work, arguments, nesting + 1)
        if work.ch() == '$':
            work.pos = call_end(work.s, k)


def call_end(s, start):
    """Where the call text that begins at `start` ends."""
    t = lex.Text(s, start + 1)
    t.take_name()
    if t.ch() != '(':
        return t.pos
    depth = 0
    while not t.at_end():
        depth += {'(': 1, ')': -1}.get(t.ch(), 0)
        t.pos += 1
        if depth == 0:
            break
    return t.pos


def replace(text, start, end, insert):
    new = text.s[:start] + insert + text.s[end:]
    text.pos = start
    if len(new) > lex.LINE_MAX:
        raise Fail(32)
    text.s = new


# Constants

def constant_statement(run):
    r, t = run.reader, run.reader.t
    if t.ch() != 'c':
        return
    keyword(t, 'const')
    r.skip_blanks()
    name = defined_name(run, 109, 'constant name')
    r.skip_blanks()
    if t.ch() == '$':
        raise Fail(103)
    value = t.read_double()
    if value is None:
        raise Fail(500)
    if name in run.constants:
        raise Fail(100)
    run.constants[name] = value


def run_value(run, digit):
    """@1 to @4."""
    seconds = run.last_seconds if digit in '13' else run.total_seconds
    return seconds if digit in '12' else run.tempo.current / 60.0 * seconds


RUN_VALUE_NAMES = {
    '1': '@1 (Last IB Time)',
    '2': '@2 (Cumulative Time)',
    '3': '@3 (Last IB Time [BEATS])',
    '4': '@4 (Cumulative Time [BEATS])',
}


def lookup_constant(run, text):
    name = text.take_name()
    if name not in run.constants:
        not_found(run, 'constant', name)
    return name, run.constants[name]


def expand_constant(run, text):
    """Replace the reference whose "~" stands just before the position."""
    start = text.pos - 1
    if text.ch() == '@':
        digit = text.ch(1)
        if digit not in RUN_VALUE_NAMES:
            raise Fail(106)
        shown, value = RUN_VALUE_NAMES[digit], run_value(run, digit)
    elif text.ch() == '[':
        shown, value = 'equation', evaluate(run, text)
    else:
        shown, value = lookup_constant(run, text)
    run.screen.info('\n\tExpanding const "%s" (%f) into line %d...', shown, value,
                    run.reader.number)
    if not math.isfinite(value):
        raise Fail(108)
    replace(text, start, reference_end(text.s, start), constant_text(value))


def reference_end(s, start):
    t = lex.Text(s, start + 1)
    if t.ch() in lex.LETTERS:
        t.take_name()
        return t.pos
    if t.ch() == '@':
        return t.pos + 2
    close = s.find(']', t.pos)
    return close + 1 if close >= 0 else len(s)


def constant_text(value):
    sign = ''
    if value < 0:
        sign, value = '-', -value
    whole = int(value)
    thousandths = int(round_half_up((value - whole) * 1000.0))
    return '%s%d.%03d' % (sign, whole, thousandths)


def evaluate(run, text):
    """The value of the equation at the "[", the position left on the "]"."""
    text.pos += 1
    while not text.at_end() and text.ch() in lex.SPACES:
        text.pos += 1
    values, operators, after_operator = [], [], False

    def keep(where, item):
        if len(where) >= TERMS_MAX:
            raise Fail(108)
        where.append(item)

    while True:
        c = text.ch()
        if text.at_end():
            raise Fail(105)
        if c == ']':
            break
        if c in lex.LETTERS:
            keep(values, lookup_constant(run, text)[1])
            after_operator = False
        elif c == '?':
            value = div(f32(run.random.integer() % 32767), 32767.0)
            run.screen.info("\n\tLine %d: '?' evaluated at = %f", run.reader.number, value)
            text.pos += 1
            keep(values, value)
            after_operator = False
        elif c == '.' or c in lex.DIGITS or c in '+-' and after_operator:
            value = text.read_double()
            if value is None:
                raise Fail(500)
            keep(values, value)
            after_operator = False
        elif c == '@':
            if text.ch(1) not in '12':
                raise Fail(106)
            value = run_value(run, text.ch(1))
            text.pos += 2
            keep(values, value)
            after_operator = False
        elif c in ' \t\n':
            text.pos += 1
        elif c in '+-*/%':
            text.pos += 1
            keep(operators, c)
            after_operator = True
        else:
            raise Fail(107)
    if len(values) == 1 and not operators:
        return values[0]
    if len(values) < 2 or len(operators) != len(values) - 1:
        raise Fail(108)
    result = values[0]
    for operator, value in zip(operators, values[1:]):
        result = apply_operator(result, operator, value)
    return result


def apply_operator(a, operator, b):
    if operator == '+':
        return a + b
    if operator == '-':
        return a - b
    if operator == '*':
        return a * b
    if operator == '/':
        return ddiv(a, b)
    return remainder(f32(a), f32(b))


# Conditional sections

def read_if_value(run, t, keep):
    """The number in "if(number)" is given to `keep` as soon as it has been read."""
    if not t.at('if('):
        raise Fail(114)
    t.pos += 3
    t.skip_ws()
    if t.ch() == '$':
        t.pos += 1
        expand_call(run, t, None, 1)
    if t.ch() == '~':
        t.pos += 1
        expand_constant(run, t)
    value = t.read_float() if t.ch() in lex.DIGITS else None
    if value is None:
        raise Fail(115)
    keep(value)
    t.skip_ws()
    if t.ch() != ')':
        raise Fail(116)
    t.pos += 1


class Conditionals:
    """Open sections and the last value that a condition has given."""

    def __init__(self, run):
        self.run, self.depth, self.value = run, 0, 0.0

    def _keep(self, value):
        self.value = value

    def open(self, t):
        """At "if(": a false section is dropped up to its "#endif"."""
        try:
            read_if_value(self.run, t, self._keep)
        except Fail:
            pass
        saved = self.depth
        self.depth += 1
        if self.value != 0.0:
            return
        self.run.reader.skipping = True
        self._drop(t, saved)
        self.run.reader.skipping = False

    def _drop(self, t, saved):
        r = self.run.reader
        in_line = in_block = False
        while True:
            if not in_line and not in_block and t.ch() == '#':
                t.pos += 1
                if t.at('endif'):
                    self.close(t)
                    if self.depth == saved:
                        return
                elif t.at('if('):
                    t.pos += 3
                    self.depth += 1
            if t.at('*/'):
                in_block = False
            if t.ch() == ';':
                in_line = True
            if t.at('/*'):
                in_block = True
            t.step()
            if t.at_end():
                if r.stream.eof or r.read_line() < 0:
                    raise Fail(117)
                in_line = False

    def close(self, t):
        """At "endif"."""
        t.pos += 5
        if self.depth < 1:
            raise Fail(118)
        self.depth -= 1
