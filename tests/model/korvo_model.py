#!/usr/bin/env python3
"""A second, independent Korvo: the oracle that the program is compared with.

    python3 korvo_model.py [options] infile outfile

It writes the same output file, standard output, standard error, log and
expansion file as the program and ends with the same status.  Text is handled
as bytes (latin-1).  A piece that is too large ends with status 77.

This module holds the command line, the files and the run sequence.  The other
modules: `numeric` (single precision, random draws), `messages` (catalogue and
printers), `reader` (lines and reading routines), `preproc` (macros, constants,
conditional sections), `includes`, `names`, `globals_area`, `tempo`, `iblock`,
`pfield`, `ddf` (data functions) and `output` (score and MIDI writers).
"""

import os
import sys

import globals_area
import iblock
import pfield
import preproc
import reader
import tempo
from includes import IncludePass
from messages import Fail, Screen
from numeric import GiveUp, Random

NAME_LINE = '\nKorvo (2.1.3, Nov 21 2026, 12:00:00)\n'
CREDITS = ['A score generator for algorithmic composition\n',
           'Written by the Korvo developers\n',
           'Copyright 2026, MIT license\n',
           'Manual: docs/manual.md\n\n']
USAGE = ('  Usage: korvo [options] infile outfile\n'
         '  Options:\n'
         '  -l <logfile>  screen ouput (text)\n'
         '  -m            outfile is a MIDI file (format 1)\n'
         '  -s            suppress non-error messages\n'
         '  -t            verbose tempo information\n'
         '  -x <expfile>  macro expansions (text)\n\n')
MODEL_GIVES_UP = 77


class Stop(Exception):
    """The run ends with the given status before anything was read."""

    def __init__(self, text='', status=1, stdout=''):
        super().__init__(text)
        self.text, self.status, self.stdout = text, status, stdout


def usage():
    return Stop(NAME_LINE + ''.join(CREDITS[1:]) + USAGE)


class Options:
    def __init__(self, args):
        self.log = self.expansion = None
        self.midi = self.silent = self.verbose_tempo = False
        if not args:
            raise usage()
        while args and args[0].startswith('-'):
            args = self._option(args)
        if len(args) != 2 or args[1].startswith('-'):
            raise usage()
        self.input, self.output = args
        self._check_names()

    def _option(self, args):
        letter, rest = args[0][1:2], args[0][2:]
        args = args[1:]
        if letter in ('l', 'x'):
            if not rest:
                if not args or args[0].startswith('-'):
                    kind = 'logfile' if letter == 'l' else 'macro-expansion file'
                    raise Stop(stdout='\nError: No %s name\n\n' % kind)
                rest, args = args[0], args[1:]
            if letter == 'l':
                self.log = rest
            else:
                self.expansion = rest
        elif letter == 'm':
            self.midi = True
        elif letter == 's':
            self.silent = True
        elif letter == 't':
            self.verbose_tempo = True
        else:
            raise usage()
        return args

    def _check_names(self):
        names = [self.input, self.output]
        names += [name for name in (self.log, self.expansion) if name is not None]
        if len(set(names)) < len(names):
            raise Stop("\nERROR: You can't use a filename multiple times!\n\n")


def as_path(name):
    return name.encode('latin-1')


def read_file(name):
    """The file's text, None when it can't be opened."""
    try:
        with open(as_path(name), 'rb') as f:
            return f.read().decode('latin-1')
    except (OSError, ValueError):
        return None


class OutFile:
    """A file that is written when it is closed. An older text stays when a failed run has written nothing."""

    def __init__(self, name, input_name):
        self.name, self.text = name, []
        try:
            if os.path.exists(as_path(name)) and os.path.samefile(as_path(name),
                                                                  as_path(input_name)):
                raise OSError
            self._file = open(os.open(as_path(name), os.O_WRONLY | os.O_CREAT, 0o666), 'wb', buffering=0)
        except (OSError, ValueError):
            raise Stop('\nERROR: Can\'t open "%s".\n\n' % name) from None

    def write(self, text):
        self.text.append(text)

    def close(self, ended_well):
        """False when it could not be written completely."""
        data = ''.join(self.text).encode('latin-1')
        try:
            if (data or ended_well) and os.path.isfile(as_path(self.name)):
                self._file.truncate(0)
            done = 0
            while done < len(data):
                done += self._file.write(data[done:])
            self._file.close()
        except OSError:
            return False
        return True


class Run:
    """The run-wide state."""

    def __init__(self, options):
        self.options = options
        self.midi = options.midi
        self.verbose_tempo = options.verbose_tempo
        self.screen = Screen()
        self.screen.silent = options.silent
        self.stdout = []
        self.random = Random()
        self.reader = None
        self.macros = []                # newest first
        self.constants = {}
        self.conditionals = preproc.Conditionals(self)
        self.tempo = tempo.TempoMap(self)
        self.sample_rate = 44100
        self.rd = 0.0
        self.octave = 0                 # of the last note that had one
        self.last_seconds = 0.0
        self.total_seconds = 0.0
        self.block_number = 1
        self.block = iblock.Block()
        self.field = pfield.Field(0)
        self.output = self.expansion = self._log_file = None

    def open_files(self):
        """The input's text; the other files are opened for writing."""
        o = self.options
        source = read_file(o.input)
        if source is None:
            raise Stop('\nERROR: Can\'t open "%s".\n\n' % o.input)
        self.output = OutFile(o.output, o.input)
        if o.expansion is not None:
            self.expansion = OutFile(o.expansion, o.input)
        if o.log is not None:
            self._log_file = OutFile(o.log, o.input)
            self.screen.log = self._log_file.text
        return source

    def banner(self):
        o = self.options
        text = NAME_LINE + ''.join(CREDITS)
        text += '\n\nInput\t= "%s"\nOutput\t= "%s" ' % (o.input, o.output)
        text += '[MIDI file (type 1)]\n' if o.midi else '[Csound score-file]\n'
        if o.log is not None:
            text += 'Log \t= "%s"\n' % o.log
        if o.expansion is not None:
            text += 'MExp\t= "%s"\n' % o.expansion
        self.screen.write(text)

    def close_files(self, ended_well=False):
        """False when an output is incomplete."""
        complete = True
        for out in (self.output, self.expansion):
            if out is not None and not out.close(ended_well):
                self.screen.err.append('\nERROR: Can\'t write "%s".\n\n' % out.name)
                complete = False
        if self._log_file is not None:
            self._log_file.close(ended_well)
            self.screen.log = None
        return complete

    def execute(self):
        """The whole run; gives the exit status."""
        source = self.open_files()
        self.banner()
        try:
            include_pass = IncludePass(self.screen, read_file)
            include_pass.copy(source)
        except Fail:
            self.close_files()
            return 1
        self.reader = reader.Reader(self, reader.Stream(include_pass.text()))
        r = self.reader
        self.screen.here = lambda: (r.number, r.t.s, r.t.pos)
        try:
            self.compose()
        except Fail as failure:
            self.screen.error(failure.code)
            self.close_files()
            return 1
        complete = self.close_files(ended_well=True)
        self.screen.show('\n')
        return 0 if complete else 1

    def compose(self):
        """Global area and blocks in turn, to the end of the input."""
        r = self.reader
        while True:
            if globals_area.scan_to_block(self) < 0:
                r.t.pos = len(r.t.s)
            iblock.run_block(self)
            if r.stream.eof and r.t.at_end():
                if self.conditionals.depth > 0:
                    raise Fail(119)
                break
            if self.midi:
                return
            if r.stream.eof:
                break
        if not self.midi:
            self.output.write('\ne\n')
        self.screen.show('\n\nGlobal cumulative duration of all i-blocks = %f (secs)\n',
                         self.total_seconds)


def main(args):
    stdout, stderr, status, run = [], [], 0, None
    try:
        run = Run(Options(args))
        stdout, stderr = run.stdout, run.screen.err
        status = run.execute()
    except Stop as stop:
        stderr = stderr + [stop.text]
        stdout = stdout + [stop.stdout]
        status = stop.status
    except (GiveUp, RecursionError):
        run.close_files()
        status = MODEL_GIVES_UP
    sys.stdout.buffer.write(''.join(stdout).encode('latin-1'))
    sys.stderr.buffer.write(''.join(stderr).encode('latin-1'))
    sys.stdout.flush()
    sys.stderr.flush()
    return status


if __name__ == '__main__':
    sys.exit(main([os.fsencode(arg).decode('latin-1') for arg in sys.argv[1:]]))
