"""Source lines and the small reading routines that every parser uses.

`Text` is a piece of text with a read position; behind its end it reads as NUL.
`Reader` owns the current line.  It fetches one physical line at a time and
prepares it before any parser sees it: directives of conditional sections are
carried out, macro calls are expanded, then constant references, and the result
is copied to the expansion file.
"""

import math

import preproc
from messages import Fail
from numeric import INT64_MAX, INT64_MIN, ddiv, f32

SPACES = frozenset(' \t\n\v\f\r')
DIGITS = frozenset('0123456789')
LETTERS = frozenset('abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ')
WORD = LETTERS | DIGITS | {'_'}
NUL = '\0'
LINE_MAX = 4095
_CLEAN = str.maketrans('\n\r\xff', '   ')


def lower(c):
    return chr(ord(c) + 32) if 'A' <= c <= 'Z' else c


class Stream:
    """A file in memory, read line by line; `eof` is set when a read hits the end."""

    def __init__(self, data):
        self._data, self._pos, self.eof = data, 0, False

    def gets(self):
        """At most 4095 characters, up to a line feed; None at the end."""
        data, start = self._data, self._pos
        limit = start + LINE_MAX
        feed = data.find('\n', start, limit)
        end = feed + 1 if feed >= 0 else min(limit, len(data))
        if feed < 0 and len(data) < limit:
            self.eof = True
        self._pos = end
        if end == start:
            return None
        return data[start:end].split(NUL, 1)[0]


class Text:
    """Text with a read position."""

    def __init__(self, s='', pos=0):
        self.s, self.pos = s, pos

    def ch(self, ahead=0):
        i = self.pos + ahead
        return self.s[i] if i < len(self.s) else NUL

    def at(self, word):
        return self.s.startswith(word, self.pos)

    def at_end(self):
        return self.pos >= len(self.s)

    def step(self, count=1):
        """Move forward, never past the end."""
        self.pos = min(self.pos + count, max(len(self.s), self.pos))

    def skip_ws(self):
        while self.ch() in SPACES:
            self.pos += 1

    def take_while(self, allowed):
        start = self.pos
        while self.ch() in allowed:
            self.pos += 1
        return self.s[start:self.pos]

    def take_name(self):
        """A letter followed by letters, digits or "_"; empty without a letter."""
        return self.take_while(WORD) if self.ch() in LETTERS else ''

    # Number readers: None means that no number could be read.

    def _sign(self, accepted):
        self.skip_ws()
        sign = self.ch()
        if sign in accepted:
            self.pos += 1
            return sign
        return ''

    def read_short(self):
        sign = self._sign('+-')
        first = self.pos
        digits = self.take_while(DIGITS)
        if not digits:
            return None
        value = -int(digits) if sign == '-' else int(digits)
        if not -32768 <= value <= 32767:
            self.pos = first
            return None
        return value

    def read_long(self):
        sign = self._sign('+-')
        digits = self.take_while(DIGITS)
        if not digits:
            return None
        value = -int(digits) if sign == '-' else int(digits)
        if not INT64_MIN <= value <= INT64_MAX:
            return None
        self.skip_ws()
        return value

    def read_ushort(self):
        self._sign('+')
        first = self.pos
        digits = self.take_while(DIGITS)
        if not digits:
            return None
        if int(digits) > 65535:
            self.pos = first
            return None
        return int(digits)

    def read_ulong(self):
        self._sign('+')
        digits = self.take_while(DIGITS)
        if not digits:
            return None
        self.skip_ws()
        return int(digits) & 0xFFFFFFFFFFFFFFFF

    def _read_real(self, fit):
        """Digits gathered into one value, the divisor being a wrapping int."""
        sign = self._sign('+-')
        if self.ch() not in DIGITS and self.ch() != '.':
            return None
        value = 0.0
        for digit in self.take_while(DIGITS):
            value = fit(fit(value * 10.0) + int(digit))
        if self.ch() == '.':
            self.pos += 1
            divisor = 1
            for digit in self.take_while(DIGITS):
                value = fit(fit(value * 10.0) + int(digit))
                divisor = (divisor * 10 + 2**31) % 2**32 - 2**31
            value = fit(ddiv(value, fit(float(divisor))))
        if not math.isfinite(value):
            return None
        return -value if sign == '-' else value

    def read_float(self):
        return self._read_real(f32)

    def read_double(self):
        return self._read_real(float)


class Reader:
    """The current line and the state that lasts from line to line."""

    def __init__(self, run, stream):
        self.run, self.stream = run, stream
        self.t = Text()
        self.number = 0         # lines read so far
        self.comment = ''       # '', ';' or '*': the comment that is open
        self.definition = 0     # number signs of an open macro definition
        self.skipping = False   # inside a false conditional section
        self.marks = set()      # positions that belong to a definition
        self.expansions = 0     # macro expansions in this line

    # Line reading

    def read_line(self):
        """The next prepared line: 0, or -1 at the end of the input."""
        line = self.stream.gets()
        if line is None:
            return -1
        self.number += 1
        self.marks = set()
        self.expansions = 0
        t = self.t
        t.s, t.pos = line.translate(_CLEAN), 0
        if self.skipping:
            return 0
        t.skip_ws()
        if t.ch() == '#':
            t.pos += 1
            if t.at('if('):
                self.run.conditionals.open(t)
                return 0
            if t.at('endif'):
                self.run.conditionals.close(t)
                return 0
            t.pos -= 1
        self._expand_macros()
        self._expand_constants()
        t.pos = 0
        if self.run.expansion is not None:
            self.run.expansion.write(t.s + '\n')
        return 0

    def _comment_step(self, comment):
        """Inside a comment: step on, give back what is open then."""
        t = self.t
        if t.at('*/'):
            t.pos += 2
            return ''
        if t.ch() == '\n' and comment == ';':
            comment = ''
        t.pos += 1
        return comment

    def _comment_start(self):
        """Step over a comment's first mark; '' when there is none."""
        t = self.t
        if t.ch() == ';':
            t.pos += 1
            return ';'
        if t.at('/*'):
            t.pos += 2
            return '*'
        return ''

    def _expand_macros(self):
        """Expand the line's macro calls and mark its macro definitions."""
        t, comment, may_define = self.t, self.comment, True
        while not t.at_end():
            start = t.pos
            c = t.ch()
            if comment:
                comment = self._comment_step(comment)
                if self.definition:
                    self.marks.update(range(start, t.pos))
                continue
            if c == '>' and start != 85:
                may_define = False
            if self.definition:
                comment = self._comment_start()
                if not comment:
                    t.pos += 1
                self.marks.update(range(start, t.pos))
                if c == '#':
                    self.definition = (self.definition + 1) % 3
                continue
            if c == '#' and may_define:
                if t.ch(1) != NUL and t.ch(1) in 'ceiu':
                    self.definition = 0
                    break
                self.definition = 1
                self.marks.add(start)
                t.pos += 1
            elif c == '$':
                t.pos += 1
                preproc.expand_call(self.run, t, None, 1)
                if start == 0:
                    t.pos = 1
            else:
                comment = self._comment_start()
                if not comment:
                    t.pos += 1
        t.pos = 0

    def _expand_constants(self):
        """Expand the line's constant references outside definitions."""
        t, comment = self.t, self.comment
        t.pos = 0
        while not t.at_end():
            if comment:
                comment = self._comment_step(comment)
                continue
            comment = self._comment_start()
            if comment:
                continue
            start = t.pos
            t.pos += 1
            if t.s[start] == '~' and start not in self.marks:
                preproc.expand_constant(self.run, t)
        self.comment = '' if comment == ';' else comment

    # Skipping

    def skip_blanks(self):
        """White space, across line ends: 0, or -1 at the end of the input."""
        t = self.t
        while True:
            t.skip_ws()
            if not t.at_end():
                return 0
            if self.stream.eof or self.read_line() < 0:
                return -1

    def comment_here(self):
        t = self.t
        return t.ch() == ';' or t.at('/*')

    def skip_comment(self):
        """The comment at the position: 0, or -1 when the input ends in it."""
        t = self.t
        if t.ch() == ';':
            t.pos = len(t.s)
            return 0
        t.pos += 2
        depth = 1
        while True:
            if t.at('/*'):
                depth += 1
                t.pos += 2
            elif t.at('*/'):
                depth -= 1
                t.pos += 2
                if depth == 0:
                    return 0
            elif t.at_end():
                if self.read_line() < 0:
                    return -1
            else:
                t.pos += 1

    def skip_blanks_and_comments(self):
        """Blanks, one comment, blanks."""
        self.skip_blanks()
        if self.comment_here():
            self.skip_comment()
        self.skip_blanks()

    def skip_separator(self, count=1):
        """Blanks, one comment or one separator character, blanks."""
        t = self.t
        for _ in range(count):
            self.skip_blanks()
            if self.comment_here():
                self.skip_comment()
                if t.ch() in '/,':
                    t.pos += 1
            elif t.ch() in '/,':
                t.pos += 1
            self.skip_blanks()

    def skip_body_comment(self):
        """A comment inside a block; an unclosed one is an error."""
        if self.skip_comment() < 0:
            raise Fail(25)
