#!/usr/bin/env python3
"""The benchmark's floors write what Korvo writes: score, MIDI file and listing, byte for byte. A floor that wrote less
would flatter nobody but itself.

    floors_test.py KORVO_BINARY SCORE_FLOOR MIDI_FLOOR
"""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "bench"))

import bench  # noqa: E402
import pieces  # noqa: E402

# The larger ones: starts of 1,000 seconds and more, and more random numbers than are made at once.
SCORE_EVENTS = (1, 2, 3, 100, 2500, 40000)
MIDI_EVENTS = (1, 2, 150, 2500, 120000)

korvo = score_floor = midi_floor = None


def run(*words):
    """What a program says on standard error; it has to end well."""
    return subprocess.run(words, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.PIPE).stderr


class Floors(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def path(self, name):
        return str(self.folder / name)

    def both(self, floor, make, events, *options):
        """The outputs of Korvo and of a floor, and what they have said."""
        (self.folder / "piece").write_text(make(events))
        said = run(korvo, *options, self.path("piece"), self.path("korvo"))
        floor_said = run(floor, str(events), self.path("floor"))
        return (self.folder / "korvo").read_bytes(), (self.folder / "floor").read_bytes(), said, floor_said

    def test_score(self):
        for events in SCORE_EVENTS:
            with self.subTest(events=events):
                score, floor, _, _ = self.both(score_floor, pieces.common, events)
                self.assertEqual(score.count(b"\ni1 "), events)
                self.assertTrue(score == floor)

    def test_midi_file_and_listing(self):
        for events in MIDI_EVENTS:
            with self.subTest(events=events):
                notes, floor, said, listing = self.both(midi_floor, pieces.midi, events, "-m")
                self.assertTrue(notes == floor)
                self.assertEqual(listing.count(b"\tV: "), 2 * events)
                self.assertTrue(bench.listed(said) == listing)

    def test_a_floor_wants_a_number_of_events_and_a_file(self):
        for floor in (score_floor, midi_floor):
            ended = subprocess.run([floor, "5"], stdin=subprocess.DEVNULL)
            self.assertEqual(ended.returncode, 1)


if __name__ == "__main__":
    korvo, score_floor, midi_floor = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1])
