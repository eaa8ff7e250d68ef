#!/usr/bin/env python3
"""The binary is built hardened: what SECURITY.md promises of it, read from the file itself.

    hardening_test.py KORVO_BINARY
"""

import re
import subprocess
import unittest

import support


def readelf(*options):
    return subprocess.run(["readelf", "--wide", *options, support.KORVO], check=True, capture_output=True,
                          text=True).stdout


class Hardening(unittest.TestCase):
    def test_position_independent(self):
        self.assertRegex(readelf("--file-header"), r"Type: *DYN ")
        self.assertRegex(readelf("--dynamic"), r"\(FLAGS_1\).*\bPIE\b")

    def test_all_symbols_bound_at_start(self):
        self.assertRegex(readelf("--dynamic"), r"\(FLAGS\).*\bBIND_NOW\b|\(FLAGS_1\).*\bNOW\b|\(BIND_NOW\)")

    def test_relocations_read_only(self):
        self.assertIn("GNU_RELRO", readelf("--program-headers"))

    def test_nothing_both_writable_and_executable(self):
        headers = readelf("--program-headers")
        self.assertRegex(headers, r"GNU_STACK .* RW +0x")
        flags = re.findall(r"^ *LOAD .* ([R ][W ][E ]) 0x[0-9a-f]+$", headers, re.MULTILINE)
        self.assertGreater(len(flags), 1)
        for flag in flags:
            self.assertFalse("W" in flag and "E" in flag)

    def test_stack_protector(self):
        self.assertIn("__stack_chk_fail", readelf("--dyn-syms"))

    def test_checked_library_calls(self):
        """What is printed by a format goes through the checked form, and through no other."""
        symbols = set(re.findall(r"\b(\w+)@", readelf("--dyn-syms")))
        self.assertIn("__fprintf_chk", symbols)
        self.assertEqual(symbols & {"printf", "fprintf", "snprintf", "vprintf", "vfprintf", "vsnprintf"}, set())

    def test_no_calls_that_cannot_be_safe(self):
        # (sprintf is there, but not ours: the C++ library, which is linked in, has it for its own use.)
        symbols = set(re.findall(r"\b(\w+)@", readelf("--dyn-syms")))
        unsafe = {"gets", "strcpy", "strcat", "vsprintf", "scanf", "sscanf", "fscanf", "tmpnam", "tempnam",
                  "mktemp", "system", "popen", "execl", "execv", "execve", "execvp", "getenv", "dlopen", "socket"}
        self.assertEqual(symbols & unsafe, set())

    def test_draws_are_its_own(self):
        symbols = set(re.findall(r"\b(\w+)@", readelf("--dyn-syms")))
        self.assertIn("malloc", symbols)
        self.assertEqual(symbols & {"rand", "srand", "rand_r", "random", "srandom", "drand48", "lrand48"}, set())

    def test_no_search_path_for_libraries(self):
        self.assertNotRegex(readelf("--dynamic"), r"\((RPATH|RUNPATH)\)")


if __name__ == "__main__":
    support.main()
