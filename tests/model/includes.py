"""The include pass: the input with every included file spliced in.

The text is copied character by character.  A directive is a number sign outside
comments followed by the word and a file name between bars; after ";" or ">" it
is plain text up to the end of the line.
"""

from messages import REPORTED, Fail
from reader import NUL, SPACES

FILES_MAX = 12
NAME_MAX = 255


class IncludePass:
    """`text` is what has been copied; -1 as a code ends the run without a report."""

    def __init__(self, screen, open_text):
        self.screen, self.open_text = screen, open_text
        self.files, self._out = 0, []

    def text(self):
        return ''.join(self._out)

    def copy(self, source):
        self.files += 1
        if self.files > FILES_MAX:
            self.screen.show('\n\nToo many embedded include files! (Max = %d)\n', FILES_MAX)
            raise Fail(REPORTED)
        pos, depth, in_line, previous = 0, 0, False, ' '
        while pos < len(source):
            c = source[pos]
            pos += 1
            if c == '#' and not in_line and depth == 0:
                pos, previous = self._directive(source, pos)
                continue
            self._out.append(c)
            if c in '>;':
                in_line = previous != '/'
            elif c == '*' and previous == '/':
                depth += 1
            elif c == '/' and previous == '*':
                depth = max(0, depth - 1)
            elif c == '\n':
                in_line = False
            previous = c

    def _directive(self, source, pos):
        """Behind a "#": gives the position and the previous character to go on with."""
        for written, expected in (('#', 'i'), ('#i', 'n')):
            c = source[pos:pos + 1]
            if c != expected:
                self._out.append(written + c)
                return pos + 1, c
            pos += 1
        for expected in 'clude':
            c = source[pos:pos + 1]
            pos += 1
            if c != expected:
                return pos, c
        while pos < len(source) and source[pos] in SPACES:
            pos += 1
        if source[pos:pos + 1] != '|':
            self.screen.show('\n\nInclude filename must be preceeded by a |.\n')
            raise Fail(REPORTED)
        name, pos = self._name(source, pos + 1)
        data = self.open_text(name)
        if data is None:
            self.screen.show('\nBad include file name: "%s"\n\n', name)
            raise Fail(REPORTED)
        self.screen.show('\n\tOpening include file "%s"...', name)
        self.copy(data)
        return pos, '|'

    def _name(self, source, pos):
        name, count = [], 0
        while pos < len(source):
            c = source[pos]
            pos += 1
            if c == '|':
                break
            count += 1
            if count > NAME_MAX:
                self.screen.show('\nERROR: Include filename has exceeded maximum')
                self.screen.show('\nlength of %d characters.\n\n', NAME_MAX)
                raise Fail(REPORTED)
            if c != '\n':
                name.append(c)
        return ''.join(name).split(NUL, 1)[0], pos
