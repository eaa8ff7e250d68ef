"""The common piece as a plain Python script: python3 event_stream.py EVENTS OUTFILE"""

import random
import sys


def walk(position, window):
    low, high = position - window / 2, position + window / 2
    if low < 0:
        low, high = 0.0, window
    elif high > 1:
        low, high = 1 - window, 1.0
    return random.uniform(low, high)


def main():
    events = int(sys.argv[1])
    random.seed(1)
    start, position = 0.0, 0.5
    with open(sys.argv[2], "w") as score:
        score.write("\n;I-block #1 (i1):")
        for _ in range(events):
            duration = random.uniform(0.1, 0.5)
            p4 = random.uniform(0, 1000)
            p5 = random.choice((100, 200, 300, 400, 500))
            score.write(f"\ni1 {start:8.3f} {duration:6.3f} {p4:9.3f} {p5:9.3f} {position:9.3f} ")
            start += random.uniform(0.01, 0.1)
            position = walk(position, 0.1)
        score.write("\n\ne\n")


main()
