#!/usr/bin/env python3
"""The binary is built hardened: what SECURITY.md promises of it, read from the file itself.

    hardening_test.py KORVO_BINARY SHARED_BINARY

What the program calls is read from the second one, which is the same with shared libraries; the first may have none.
"""

import os
import re
import subprocess
import sys
import unittest

import support

SHARED = os.path.abspath(sys.argv.pop(2)) if len(sys.argv) > 2 else None


def read(binary, *options):
    return subprocess.run(["readelf", "--wide", *options, binary], check=True, capture_output=True, text=True).stdout


def called():
    return set(re.findall(r"\b(\w+)@", read(SHARED, "--dyn-syms")))


class Layout(unittest.TestCase):
    def check_both(self, check):
        for binary in (support.KORVO, SHARED):
            with self.subTest(binary=binary):
                check(binary)

    def test_position_independent(self):
        def check(binary):
            self.assertRegex(read(binary, "--file-header"), r"Type: *DYN ")
            self.assertRegex(read(binary, "--dynamic"), r"\(FLAGS_1\).*\bPIE\b")

        self.check_both(check)

    def test_all_symbols_bound_at_start(self):
        self.check_both(lambda binary: self.assertRegex(
            read(binary, "--dynamic"), r"\(FLAGS\).*\bBIND_NOW\b|\(FLAGS_1\).*\bNOW\b|\(BIND_NOW\)"))

    def test_relocations_read_only(self):
        self.check_both(lambda binary: self.assertIn("GNU_RELRO", read(binary, "--program-headers")))

    def test_nothing_both_writable_and_executable(self):
        def check(binary):
            headers = read(binary, "--program-headers")
            self.assertRegex(headers, r"GNU_STACK .* RW +0x")
            flags = re.findall(r"^ *LOAD .* ([R ][W ][E ]) 0x[0-9a-f]+$", headers, re.MULTILINE)
            self.assertGreater(len(flags), 1)
            for flag in flags:
                self.assertFalse("W" in flag and "E" in flag)

        self.check_both(check)

    def test_no_search_path_for_libraries(self):
        self.check_both(lambda binary: self.assertNotRegex(read(binary, "--dynamic"), r"\((RPATH|RUNPATH)\)"))


class Calls(unittest.TestCase):
    def test_stack_protector(self):
        self.assertIn("__stack_chk_fail", called())

    def test_checked_library_calls(self):
        """What is printed by a format goes through the checked form, and through no other."""
        symbols = called()
        self.assertIn("__fprintf_chk", symbols)
        self.assertEqual(symbols & {"printf", "fprintf", "snprintf", "vprintf", "vfprintf", "vsnprintf"}, set())

    def test_no_calls_that_cannot_be_safe(self):
        # (sprintf is there, but not ours: the C++ library, which is linked in, has it for its own use.)
        symbols = called()
        unsafe = {"gets", "strcpy", "strcat", "vsprintf", "scanf", "sscanf", "fscanf", "tmpnam", "tempnam",
                  "mktemp", "system", "popen", "execl", "execv", "execve", "execvp", "getenv", "dlopen", "socket"}
        self.assertEqual(symbols & unsafe, set())

    def test_draws_are_its_own(self):
        symbols = called()
        self.assertIn("malloc", symbols)
        self.assertEqual(symbols & {"rand", "srand", "rand_r", "random", "srandom", "drand48", "lrand48"}, set())


if __name__ == "__main__":
    support.main()
