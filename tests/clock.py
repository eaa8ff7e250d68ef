"""All that the tests know of time. No verdict hangs on how busy the machine is:

- A run may take minutes. What is still there after HANG seconds by the clock will never end, and is a fault.
- What a run costs is the time that the processor gave it, measured with a yardstick: a plain program that draws,
  formats and writes a million events (yardstick.cc), built with the same switches as Korvo. It runs right beside
  what is measured, so that a slow or a busy machine slows down both. Limits are several times what any piece takes,
  and a run that seems to cost too much gets two more tries.
"""

import os
import signal
import subprocess
import threading
from dataclasses import dataclass
from pathlib import Path

HANG = 600  # seconds for one run
TRIES = 3
YARDSTICK_EVENTS = 1000000


@dataclass
class Run:
    """How a program ended."""

    status: int
    hung: bool  # it was killed for that
    seconds: float  # of the processor
    memory: int  # bytes, at most


def run(words, take, **options):
    """Runs a program to its end. What it writes to its streams, or to the one that is a pipe by the options, goes to
    `take` as it comes."""
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.STDOUT, **options}
    process = subprocess.Popen(words, **options)
    pipe = process.stdout or process.stderr
    hung = threading.Event()

    def kill():
        hung.set()
        os.kill(process.pid, signal.SIGKILL)  # not yet waited for, so that the number is still its own

    timer = threading.Timer(HANG, kill)
    timer.start()
    try:
        while block := os.read(pipe.fileno(), 1 << 20):
            take(block)
        pipe.close()
        os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOWAIT)
    finally:
        timer.cancel()
        timer.join()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return Run(process.returncode, hung.is_set(), usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024)


class Yardstick:
    """Measures in runs of the yardstick that lies beside the program."""

    def __init__(self, korvo):
        self.program = str(Path(korvo).with_name("korvo_yardstick"))
        self.shortest = None  # seconds of the processor, of all runs so far

    def seconds(self):
        """Of one run of the yardstick."""
        ended = run([self.program, str(YARDSTICK_EVENTS), "/dev/null"], lambda block: None)
        if ended.status != 0:
            raise RuntimeError(f"{self.program} ended with status {ended.status}")
        self.shortest = min(ended.seconds, self.shortest or ended.seconds)
        return ended.seconds

    def cost(self, seconds, again, most):
        """What `seconds` are in yardsticks. Above `most` the least of three tries counts; again() is a further run of
        the same, and gives its seconds. What is far below `most` is not worth a yardstick of its own."""
        if self.shortest is None:
            self.seconds()
        cost = seconds / self.shortest
        if cost < most / 10:
            return cost
        cost = seconds / self.seconds()
        for _ in range(TRIES - 1):
            if cost <= most:
                break
            cost = min(cost, again() / self.seconds())
        return cost
