#!/usr/bin/env python3
"""Keeps the corpora of the fuzzers in archives, one for each target, so that they are not thousands of files.

    corpus.py unpack ARCHIVE FOLDER    puts the inputs of an archive into a folder; without an archive there are none
    corpus.py pack ARCHIVE FOLDER      makes an archive of the files of a folder
    corpus.py seeds FOLDER             puts the pieces of tests/runs and examples into a folder

A folder to be filled is emptied first. The same inputs always give the same archive: they are sorted and numbered, and
have neither a date nor an owner.
"""

import hashlib
import io
import shutil
import sys
import tarfile
from pathlib import Path

TESTS = Path(__file__).resolve().parent.parent
EXAMPLES = TESTS.parent / "examples"
LONGEST_SEED = 8192  # bytes; the fuzzers do not look at longer inputs

sys.path.insert(0, str(TESTS))

from chapters import read_chapters  # noqa: E402


def fill(folder, inputs):
    """A folder with nothing but these inputs, each once, named after what is in it."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    for data in inputs:
        (folder / hashlib.sha1(data).hexdigest()).write_bytes(data)


def read_archive(archive):
    if not archive.exists():
        return []
    with tarfile.open(archive) as tar:
        return [tar.extractfile(member).read() for member in tar]


def write_archive(archive, inputs):
    with tarfile.open(archive, "w:xz", format=tarfile.USTAR_FORMAT, preset=9) as tar:
        for number, data in enumerate(sorted(set(inputs))):
            member = tarfile.TarInfo(f"{number:04}")
            member.size = len(data)
            tar.addfile(member, io.BytesIO(data))


def seeds():
    """What the other tests and the examples are made of."""
    cases = (case for chapter in read_chapters([TESTS / "runs"]) for case in chapter.cases)
    inputs = [data for case in cases for data in case.files.values()]
    inputs += [path.read_bytes() for path in EXAMPLES.rglob("*.txt")]
    return [data for data in inputs if len(data) <= LONGEST_SEED]


def main():
    match sys.argv[1:]:
        case ["unpack", archive, folder]:
            fill(Path(folder), read_archive(Path(archive)))
        case ["pack", archive, folder]:
            write_archive(Path(archive), [path.read_bytes() for path in Path(folder).iterdir()])
        case ["seeds", folder]:
            fill(Path(folder), seeds())
        case _:
            sys.exit(__doc__)


if __name__ == "__main__":
    main()
