#!/usr/bin/env python3
"""Writes the costly pieces of cost_test.py as JSON, for other programs that no piece may bring to a halt.

    costly_pieces.py

An array of objects with name, text and part, the text that the piece includes as part.txt. Every character is one byte.
"""

import json
import sys

sys.dont_write_bytecode = True

import cost_test  # noqa: E402

json.dump([{"name": name, "text": text, "part": part} for name, text, part in cost_test.all_pieces()], sys.stdout)
