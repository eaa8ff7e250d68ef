#!/usr/bin/env python3
"""What the library may and may not do, read from its archive: nothing in it changes but what a run owns, and of the
system it asks for memory, arithmetic, the time and randomness, nothing else.

    symbols_test.py LIBKORVO_A
"""

import re
import subprocess
import sys
import unittest

LIBRARY = None

# All that the library may call. A new name here needs a reason: no file, no stream, no signal, no environment, no
# locale and no hidden state (rand, strtok and their kind) may come in.
MAY_CALL = {
    "memory": r"malloc|calloc|realloc|free|operator (new|delete)(\[\])?\(.*\)|std::nothrow",
    "bytes": r"(__)?mem(chr|cmp|cpy|move|set)(_chk)?|(__)?str(chr|cmp|cspn|len|ncmp|spn)(_chk)?",
    "arithmetic": r"__u(div|divmod|mod)ti[34]|frexp|fmax|fmod|fmodf|ilogbf|ldexp|sqrt",
    "numbers in decimal": r"std::(to|from)_chars\(.*\)",
    "the clock, in place of a randomness that a system does not have": r"time",
    "randomness, which no text can know: the key of the names' hash": r"getentropy",
    "exceptions, which end in render()": r"__gxx_personality_v0|__cxa_(begin_catch|end_catch|rethrow)"
    r"|_Unwind_Resume|std::__throw_\w+\(.*\)",
    "the compiler's own": r"__stack_chk_fail|_GLOBAL_OFFSET_TABLE_",
}

# Sections that can be written, but are not once the program runs: tables of addresses, filled in when it is loaded.
ONLY_ADDRESSES = re.compile(r"\.data\.rel\.ro(\..*)?|\.data\.rel\.local\.DW\.ref\.__gxx_personality_v0")


def output_of(*command):
    return subprocess.run([*command, LIBRARY], check=True, capture_output=True, text=True).stdout


class Library(unittest.TestCase):
    def test_calls_nothing_but_what_it_may(self):
        listed = output_of("nm", "--demangle", "--format=posix")
        kinds = re.findall(r"^(.+?) ([A-Za-z])(?: [0-9a-f]+)* *$", listed, re.MULTILINE)
        defined = {name for name, kind in kinds if kind not in "Uw"}
        self.assertIn("korvo::freeRun(korvo::Run*)", defined)
        called = {name for name, kind in kinds if kind in "Uw"} - defined
        self.assertIn("malloc", called)
        allowed = re.compile("|".join(MAY_CALL.values()))
        self.assertEqual([name for name in sorted(called) if not allowed.fullmatch(name)], [])

    def test_has_no_state_of_its_own(self):
        # Writable sections that have a size, thread-local ones (T) and common symbols included.
        sections = re.findall(
            r"^ *\[ *\d+\] (\S+) +\S+ +[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+) [0-9a-f]+ +([A-Z]*) ",
            output_of("readelf", "--wide", "--sections"), re.MULTILINE)
        self.assertGreater(len(sections), 100)
        written = {name for name, size, flags in sections if "W" in flags and int(size, 16) > 0}
        self.assertTrue(any(name.startswith(".data.rel.ro") for name in written), "no table was found")
        self.assertEqual({name for name in written if not ONLY_ADDRESSES.fullmatch(name)}, set())
        self.assertNotRegex(output_of("nm"), r"(?m) C \w+$")


if __name__ == "__main__":
    LIBRARY = sys.argv.pop(1)
    unittest.main()
