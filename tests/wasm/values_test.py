#!/usr/bin/env python3
"""The functions of base/mathematics.h have the same bits in WebAssembly as in a program of this system.

    values_test.py NODE KORVO_WASM_VALUES_JS KORVO_VALUES
"""

import subprocess
import sys
import unittest

COMMANDS = None


class Values(unittest.TestCase):
    def test_have_the_same_bits(self):
        module, program = (subprocess.run([*command, "--digest"], check=True, capture_output=True, text=True).stdout
                           for command in COMMANDS)
        self.assertEqual(len(set(program.split())), 12, "six functions, each with a number of its own")
        self.assertEqual(module, program)


if __name__ == "__main__":
    COMMANDS = (sys.argv[1:3], sys.argv[3:4])
    del sys.argv[1:4]
    unittest.main()
