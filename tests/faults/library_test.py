#!/usr/bin/env python3
"""What the library promises of itself, read from its archive: no streams, no files, no state that changes, no draws
that anybody else could disturb.

    library_test.py LIBRARY_ARCHIVE
"""

import subprocess
import sys
import unittest

LIBRARY = None  # set by the command line

STREAMS = {"stdin", "stdout", "stderr", "puts", "putchar", "printf", "fputs", "fputc", "putc", "fprintf", "fwrite",
           "write", "perror", "_ZSt4cout", "_ZSt4cerr", "_ZSt4clog"}
FILES = {"fopen", "fopen64", "fdopen", "freopen", "open", "open64", "openat", "creat", "tmpfile", "tmpfile64", "fread",
         "fgets", "getc", "fgetc", "read", "unlink", "rename", "remove", "stat", "fstat"}
DRAWS = {"rand", "srand", "rand_r", "random", "srandom", "random_r", "drand48", "lrand48", "mrand48"}
WORLD = {"exit", "_exit", "quick_exit", "getenv", "setenv", "signal", "sigaction", "setlocale", "strtok", "localtime"}


def symbols():
    """(name, section) of every symbol of every object."""
    listing = subprocess.run(["nm", "--format=sysv", LIBRARY], check=True, capture_output=True, text=True).stdout
    rows = (line.split("|") for line in listing.splitlines())
    return [(row[0].strip(), row[6].strip()) for row in rows if len(row) == 7 and row[0].strip() != "Name"]


class Library(unittest.TestCase):
    def setUp(self):
        self.symbols = symbols()
        self.foreign = {name.removeprefix("__").removesuffix("_chk").removeprefix("isoc99_")
                        for name, section in self.symbols if section == "*UND*"}

    def test_the_listing_is_read(self):
        self.assertIn("_ZN5korvo7performERNS_3RunERKNS_7OptionsEPKcNS_9TextInputERKNS_4HostERKNS_8ListenerE",
                      {name for name, section in self.symbols if section == ".text"})
        self.assertIn("memcpy", self.foreign)

    def test_no_state_that_changes(self):
        for name, section in self.symbols:
            if section != "*UND*" and not name.startswith("DW.ref."):  # these are constants of the compiler
                read_only = section.startswith((".text", ".rodata", ".data.rel.ro", ".group"))
                self.assertTrue(read_only, f"{name} lies in {section}")

    def test_nothing_of_the_world_outside(self):
        for group in (STREAMS, FILES, DRAWS, WORLD):
            self.assertEqual(self.foreign & group, set())


if __name__ == "__main__":
    LIBRARY = sys.argv.pop(1)
    unittest.main()
