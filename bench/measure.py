"""Measures programs: seconds in pairs, instructions as callgrind counts them, the largest memory."""

import os
import re
import resource
import shutil
import statistics
import subprocess
import tempfile
import time
from dataclasses import dataclass

# What sclang wants where there is no screen.
ENVIRONMENT = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "QTWEBENGINE_DISABLE_SANDBOX": "1"}


@dataclass(frozen=True)
class Command:
    """A program with its arguments; its messages go nowhere, or to a file."""

    words: tuple
    messages: str = os.devnull
    times: int = 1  # runs that make one figure: of what is over before a clock can tell


def run(words, messages):
    with open(messages, "wb") as stderr:
        subprocess.run(words, check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=stderr,
                       env=ENVIRONMENT)


def seconds(command):
    begin = time.perf_counter()
    for _ in range(command.times):
        run(command.words, command.messages)
    return (time.perf_counter() - begin) / command.times


def time_ratio(first, second, rounds):
    """The median of the ratios of so many pairs. The two of a pair run one behind the other, and take turns in who is
    first: whatever else the machine does meets both."""
    ratios = []
    for turn in range(rounds):
        if turn % 2 == 0:
            above, below = seconds(first), seconds(second)
        else:
            below, above = seconds(second), seconds(first)
        ratios.append(above / below)
    return statistics.median(ratios)


def median_seconds(command, rounds):
    return statistics.median(seconds(command) for _ in range(rounds))


def can_count():
    return shutil.which("valgrind") is not None


def instructions(command):
    """How many instructions one run takes, whatever else the machine does."""
    with tempfile.NamedTemporaryFile("r") as report:
        run(("valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", f"--log-file={report.name}",
             *command.words), command.messages)
        return int(re.search(r"Collected : (\d+)", report.read())[1])


def peak_bytes(command):
    """The largest memory of one run."""
    child = os.fork()
    if child == 0:
        null = os.open(os.devnull, os.O_RDWR)
        for stream in (0, 1, 2):
            os.dup2(null, stream)
        os.execv(command.words[0], command.words)
    _, status, usage = os.wait4(child, 0)
    if status != 0:
        raise RuntimeError(f"{command.words} failed")
    return usage.ru_maxrss * 1024


def leave_no_cores():
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
